#include "geometry/orlix_structuring_element.hpp"

#include <algorithm>
#include <limits>

using namespace orlix;

namespace {

// Modulo 2^32.
LONG Sum(LONG a, LONG b) { return static_cast<LONG>(static_cast<ULONG>(a) + static_cast<ULONG>(b)); }
LONG Negative(LONG a) { return static_cast<LONG>(0 - static_cast<ULONG>(a)); }

}  // namespace

STDMETHODIMP OrlixStructuringElement::AddElement(LONG X, LONG Y) noexcept {
    return Guarded([&] {
        if (elements_.size() >= static_cast<size_t>(std::numeric_limits<LONG>::max())) throw FailedResult(E_FAIL);
        elements_.push_back({X, Y, 0, 0});
        bytes_.Reset();
    });
}

STDMETHODIMP OrlixStructuringElement::get_NumberOfElements(LONG* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = static_cast<LONG>(elements_.size());
    });
}

STDMETHODIMP OrlixStructuringElement::ResetElements() noexcept {
    return Guarded([&] {
        elements_.clear();
        bytes_.Reset();
    });
}

STDMETHODIMP OrlixStructuringElement::get_Elements(SElement** hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = elements_.data();
    });
}

STDMETHODIMP OrlixStructuringElement::Reflect() noexcept {
    return Guarded([&] {
        for (SElement& element : elements_) {
            element.m_lX = Negative(element.m_lX);
            element.m_lY = Negative(element.m_lY);
        }
        bytes_.Reset();
    });
}

STDMETHODIMP OrlixStructuringElement::Translate(LONG X, LONG Y) noexcept {
    return Guarded([&] {
        for (SElement& element : elements_) {
            element.m_lX = Sum(element.m_lX, X);
            element.m_lY = Sum(element.m_lY, Y);
        }
        bytes_.Reset();
    });
}

STDMETHODIMP OrlixStructuringElement::GetExtent(LONG* Left, LONG* Top, LONG* Right, LONG* Bottom) noexcept {
    return Guarded([&] {
        for (LONG* const out : {Left, Top, Right, Bottom}) Require(out);
        *Left = *Top = *Right = *Bottom = 0;
        if (elements_.empty()) return S_FALSE;
        const auto [left, right] = std::minmax_element(
            elements_.begin(), elements_.end(), [](const SElement& a, const SElement& b) { return a.m_lX < b.m_lX; });
        const auto [top, bottom] = std::minmax_element(
            elements_.begin(), elements_.end(), [](const SElement& a, const SElement& b) { return a.m_lY < b.m_lY; });
        *Left = left->m_lX;
        *Top = top->m_lY;
        *Right = right->m_lX;
        *Bottom = bottom->m_lY;
        return S_OK;
    });
}

STDMETHODIMP OrlixStructuringElement::CreateDisk(double Radius) noexcept {
    return Guarded([&] {
        if (!(Radius > 0)) throw Failure("IStructuringElement::CreateDisk: radius must be positive");
        elements_ = DiskElements(Radius);
        bytes_.Reset();
    });
}

STDMETHODIMP OrlixStructuringElement::get_BinaryElements(LONG lBit, SElement** hBegin, SElement** hEnd) noexcept {
    return Guarded([&] {
        Require(hBegin);
        Require(hEnd);
        *hBegin = *hEnd = nullptr;
        if (lBit < 0 || lBit > 7) throw FailedResult(E_INVALIDARG);
        std::vector<SElement>& list = bytes_.At(lBit, elements_);
        *hBegin = list.data();
        *hEnd = list.data() + list.size();
    });
}
