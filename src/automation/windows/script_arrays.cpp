#include "automation/windows/script_arrays.hpp"

#include <cstring>
#include <new>
#include <utility>

namespace orlix::automation {
namespace {

// In bytes; 0 for types that are no numbers.
size_t SizeOf(VARTYPE type) {
    switch (type) {
        case VT_I1:
        case VT_UI1:
            return 1;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            return 2;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_R4:
            return 4;
        case VT_I8:
        case VT_UI8:
        case VT_R8:
            return 8;
        case VT_VARIANT:
            return sizeof(VARIANT);
        default:
            return 0;
    }
}

}  // namespace

GivenArray::GivenArray(const VARIANT& value, LCID locale) : locale_(locale) {
    const VARIANT& plain = Plain(value);
    if (!(plain.vt & VT_ARRAY)) throw BadValue{DISP_E_TYPEMISMATCH};
    SAFEARRAY* const array = plain.vt & VT_BYREF ? *plain.pparray : plain.parray;
    type_ = static_cast<VARTYPE>(plain.vt & ~(VT_ARRAY | VT_BYREF));
    elementSize_ = SizeOf(type_);
    if (!array || elementSize_ == 0 || elementSize_ != array->cbElements || array->cDims < 1 || array->cDims > 2)
        throw BadValue{DISP_E_TYPEMISMATCH};
    dimensions_ = array->cDims;
    for (int i = 0; i < dimensions_; ++i) {
        const SAFEARRAYBOUND& bound = array->rgsabound[dimensions_ - 1 - i];  // the last index comes first
        if (bound.lLbound != 0) throw BadValue{DISP_E_BADINDEX};
        sizes_[static_cast<size_t>(i)] = bound.cElements;
    }
    if (uint64_t{sizes_[0]} * sizes_[1] > SIZE_MAX / elementSize_) throw BadValue{DISP_E_TYPEMISMATCH};
    const HRESULT locked = SafeArrayLock(array);
    if (FAILED(locked)) throw BadValue{locked};
    array_ = array;
    data_ = static_cast<const uint8_t*>(array->pvData);
    if (!data_) sizes_ = {0, 0};
}

GivenArray::~GivenArray() { SafeArrayUnlock(array_); }

VARIANT GivenArray::Element(size_t index) const {
    VARIANT element;
    const uint8_t* const bytes = data_ + index * elementSize_;
    if (type_ == VT_VARIANT) {
        std::memcpy(&element, bytes, sizeof element);
    } else {
        VariantInit(&element);
        element.vt = type_;
        std::memcpy(&element.llVal, bytes, elementSize_);
    }
    return element;
}

double GivenArray::Real(size_t index) const { return ReadReal(Element(index), locale_); }

LONG GivenArray::Number(size_t index) const { return ReadNumber(Element(index), locale_); }

std::vector<uint8_t> ReadBytes(const VARIANT& value, LCID locale) {
    const GivenArray array(value, locale);
    if (array.dimensions() != 1) throw BadValue{DISP_E_TYPEMISMATCH};
    std::vector<uint8_t> bytes(array.count());
    if (array.type() == VT_UI1) {
        if (!bytes.empty()) std::memcpy(bytes.data(), array.data(), bytes.size());
        return bytes;
    }
    for (size_t i = 0; i < bytes.size(); ++i) {
        const LONG number = array.Number(i);
        if (number < 0 || number > 255) throw BadValue{DISP_E_OVERFLOW};
        bytes[i] = static_cast<uint8_t>(number);
    }
    return bytes;
}

NewArray::NewArray(VARTYPE type, size_t first, size_t second, UINT dimensions) : type_(type) {
    if (first > INT32_MAX || second > INT32_MAX) throw std::bad_alloc();
    SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(first), 0}, {static_cast<ULONG>(second), 0}};
    array_ = SafeArrayCreate(type, dimensions, bounds);
    if (!array_) throw std::bad_alloc();
}

NewArray::~NewArray() {
    if (array_) SafeArrayDestroy(array_);
}

VARIANT NewArray::Detach() noexcept {
    VARIANT value;
    VariantInit(&value);
    value.vt = static_cast<VARTYPE>(VT_ARRAY | type_);
    value.parray = std::exchange(array_, nullptr);
    return value;
}

}  // namespace orlix::automation
