#include "geometry/orlix_structuring_element.hpp"

#include <limits>

using namespace orlix;

STDMETHODIMP OrlixStructuringElement::AddElement(LONG x, LONG y) noexcept {
    return Guarded([&] {
        if (elements_.size() >= static_cast<size_t>(std::numeric_limits<LONG>::max())) throw FailedResult(E_FAIL);
        elements_.push_back({x, y, 0, 0});
        bytes_.Reset();
    });
}

STDMETHODIMP OrlixStructuringElement::get_NumberOfElements(LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = static_cast<LONG>(elements_.size());
    });
}

STDMETHODIMP OrlixStructuringElement::ResetElements() noexcept {
    return Guarded([&] {
        elements_.clear();
        bytes_.Reset();
    });
}

STDMETHODIMP OrlixStructuringElement::get_Elements(SElement** value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = elements_.data();
    });
}

STDMETHODIMP OrlixStructuringElement::Reflect() noexcept {
    return Guarded([&] {
        orlix::Reflect(elements_);
        bytes_.Reset();
    });
}

STDMETHODIMP OrlixStructuringElement::Translate(LONG x, LONG y) noexcept {
    return Guarded([&] {
        orlix::Translate(elements_, x, y);
        bytes_.Reset();
    });
}

STDMETHODIMP OrlixStructuringElement::GetExtent(LONG* left, LONG* top, LONG* right, LONG* bottom) noexcept {
    return Guarded([&] {
        for (LONG* const out : {left, top, right, bottom}) Require(out);
        *left = *top = *right = *bottom = 0;
        if (elements_.empty()) return S_FALSE;
        const Extent extent = ExtentOf(elements_);
        *left = extent.left;
        *top = extent.top;
        *right = extent.right;
        *bottom = extent.bottom;
        return S_OK;
    });
}

STDMETHODIMP OrlixStructuringElement::CreateDisk(double radius) noexcept {
    return Guarded([&] {
        if (!(radius > 0)) throw Failure("IStructuringElement::CreateDisk: radius must be positive");
        elements_ = DiskElements(radius);
        bytes_.Reset();
    });
}

STDMETHODIMP OrlixStructuringElement::get_BinaryElements(LONG bit, SElement** begin, SElement** end) noexcept {
    return Guarded([&] {
        Require(begin);
        Require(end);
        *begin = *end = nullptr;
        if (bit < 0 || bit > 7) throw FailedResult(E_INVALIDARG);
        std::vector<SElement>& list = bytes_.At(bit, elements_);
        *begin = list.data();
        *end = list.data() + list.size();
    });
}
