#include "automation/windows/script_values.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>
#include <utility>

namespace orlix::automation {
namespace {

constexpr HRESULT kWrongType = DISP_E_TYPEMISMATCH;

// What the system converts: numbers, texts, dates, and objects that have a value.
bool IsConvertible(const VARIANT& value) noexcept {
    switch (value.vt & ~VT_BYREF) {
        case VT_EMPTY:
        case VT_I1:
        case VT_I2:
        case VT_I4:
        case VT_I8:
        case VT_INT:
        case VT_UI1:
        case VT_UI2:
        case VT_UI4:
        case VT_UI8:
        case VT_UINT:
        case VT_R4:
        case VT_R8:
        case VT_CY:
        case VT_DATE:
        case VT_DECIMAL:
        case VT_BOOL:
        case VT_BSTR:
            return true;
        case VT_DISPATCH:
            return value.vt & VT_BYREF ? *value.ppdispVal != nullptr : value.pdispVal != nullptr;
        default:
            return false;
    }
}

// The value as another type, by the system's rules.
void Convert(Value& converted, const VARIANT& value, VARTYPE type, LCID locale) {
    if (!IsConvertible(value)) throw BadValue{kWrongType};
    const HRESULT result = VariantChangeTypeEx(converted.get(), Source(value), locale, 0, type);
    if (result == E_OUTOFMEMORY) throw std::bad_alloc();
    if (FAILED(result)) throw BadValue{result == DISP_E_OVERFLOW ? result : kWrongType};
}

// The nearest whole number within these bounds.
double ReadWhole(const VARIANT& value, LCID locale, double least, double most) {
    const double whole = std::nearbyint(ReadReal(value, locale));
    if (!(whole >= least && whole <= most)) throw BadValue{DISP_E_OVERFLOW};
    return whole;
}

}  // namespace

const VARIANT& Plain(const VARIANT& value) {
    const VARIANT* plain = &value;
    if (plain->vt == (VT_BYREF | VT_VARIANT)) plain = plain->pvarVal;
    if (!plain || plain->vt == (VT_BYREF | VT_VARIANT)) throw BadValue{kWrongType};
    if ((plain->vt & VT_BYREF) && !plain->byref) throw BadValue{kWrongType};
    return *plain;
}

bool IsMissing(const VARIANT& value) noexcept {
    const VARIANT* plain = value.vt == (VT_BYREF | VT_VARIANT) && value.pvarVal ? value.pvarVal : &value;
    return plain->vt == VT_ERROR && plain->scode == DISP_E_PARAMNOTFOUND;
}

LONG ReadNumber(const VARIANT& value, LCID locale) {
    const VARIANT& plain = Plain(value);
    if (plain.vt == VT_I4 || plain.vt == VT_INT) return plain.lVal;
    if (plain.vt == VT_I2) return plain.iVal;
    if (plain.vt == VT_BOOL) return plain.boolVal != VARIANT_FALSE;
    if (plain.vt == (VT_BYREF | VT_BOOL)) return *plain.pboolVal != VARIANT_FALSE;
    return static_cast<LONG>(ReadWhole(plain, locale, INT32_MIN, INT32_MAX));
}

double ReadReal(const VARIANT& value, LCID locale) {
    const VARIANT& plain = Plain(value);
    if (plain.vt == VT_R8) return plain.dblVal;
    if (plain.vt == VT_I4 || plain.vt == VT_INT) return plain.lVal;
    if (plain.vt == VT_I2) return plain.iVal;
    Value converted;
    Convert(converted, plain, VT_R8, locale);
    return converted->dblVal;
}

DWORD ReadColor(const VARIANT& value, LCID locale) {
    const VARIANT& plain = Plain(value);
    if (plain.vt == VT_I4) return static_cast<DWORD>(plain.lVal);
    return static_cast<DWORD>(static_cast<int64_t>(ReadWhole(plain, locale, INT32_MIN, UINT32_MAX)));
}

void* ReadHandle(const VARIANT& value, LCID locale) {
    const VARIANT& plain = Plain(value);
    if (plain.vt == VT_I4) return reinterpret_cast<void*>(static_cast<intptr_t>(plain.lVal));
    Value converted;
    Convert(converted, plain, VT_I8, locale);
    if (sizeof(void*) < sizeof converted->llVal && (converted->llVal < INT32_MIN || converted->llVal > UINT32_MAX))
        throw BadValue{DISP_E_OVERFLOW};
    return reinterpret_cast<void*>(static_cast<intptr_t>(converted->llVal));
}

BSTR ReadText(const VARIANT& value, LCID locale) {
    const VARIANT& plain = Plain(value);
    if (plain.vt == VT_NULL) return nullptr;
    Value converted;
    Convert(converted, plain, VT_BSTR, locale);
    return converted.Detach().bstrVal;
}

IUnknown* ReadObject(const VARIANT& value, const IID& iid) {
    const VARIANT& plain = Plain(value);
    if (plain.vt == VT_EMPTY || plain.vt == VT_NULL) return nullptr;
    IUnknown* given = nullptr;
    if (plain.vt == VT_DISPATCH || plain.vt == VT_UNKNOWN) {
        given = plain.punkVal;
    } else if (plain.vt == (VT_BYREF | VT_DISPATCH) || plain.vt == (VT_BYREF | VT_UNKNOWN)) {
        given = *plain.ppunkVal;
    } else {
        throw BadValue{kWrongType};
    }
    if (!given) return nullptr;
    const ComPtr<IUnknown> object(given);  // a variable may change while its object is asked
    void* found = nullptr;
    if (FAILED(object->QueryInterface(iid, &found)) || !found) throw BadValue{kWrongType};
    return static_cast<IUnknown*>(found);
}

VARIANT NumberValue(LONG number) noexcept {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_I4;
    value.lVal = number;
    return value;
}

VARIANT RealValue(double number) noexcept {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_R8;
    value.dblVal = number;
    return value;
}

VARIANT HandleValue(void* handle) noexcept {
    const auto number = reinterpret_cast<intptr_t>(handle);
    if (number >= INT32_MIN && number <= INT32_MAX) return NumberValue(static_cast<LONG>(number));
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_I8;
    value.llVal = number;
    return value;
}

VARIANT ObjectValue(IUnknown* object) noexcept {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_DISPATCH;
    value.pdispVal = nullptr;
    if (!object) return value;
    void* dispatch = nullptr;
    if (SUCCEEDED(object->QueryInterface(__uuidof(IDispatch), &dispatch)) && dispatch) {
        value.pdispVal = static_cast<IDispatch*>(dispatch);
        object->Release();
    } else {
        value.vt = VT_UNKNOWN;
        value.punkVal = object;
    }
    return value;
}

bool IsVariable(const VARIANT& value) noexcept {
    if (!(value.vt & VT_BYREF) || !value.byref) return false;
    switch (value.vt & ~VT_BYREF) {
        case VT_VARIANT:
        case VT_I2:
        case VT_I4:
        case VT_INT:
        case VT_R4:
        case VT_R8:
        case VT_BOOL:
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return true;
        default:
            return false;
    }
}

HRESULT StoreInVariable(const VARIANT& variable, const VARIANT& result, LCID locale) noexcept {
    if (variable.vt == (VT_BYREF | VT_VARIANT)) {
        const VARIANT& held = *variable.pvarVal;
        if ((held.vt & (VT_ARRAY | VT_BYREF)) == VT_ARRAY && held.parray && held.parray->cLocks > 0)
            return DISP_E_ARRAYISLOCKED;
        Value copy;
        const HRESULT copied = VariantCopy(copy.get(), Source(result));
        // What was there is released last: that may call the script, which finds the new value.
        if (SUCCEEDED(copied)) std::swap(*variable.pvarVal, *copy.get());
        return copied;
    }
    Value converted;
    const auto type = static_cast<VARTYPE>(variable.vt & ~VT_BYREF);
    const HRESULT changed = VariantChangeTypeEx(converted.get(), Source(result), locale, 0, type);
    if (FAILED(changed)) return changed;
    switch (type) {
        case VT_I2:
        case VT_BOOL:
            *variable.piVal = converted->iVal;
            break;
        case VT_I4:
        case VT_INT:
        case VT_R4:
            *variable.plVal = converted->lVal;
            break;
        case VT_R8:
            *variable.pdblVal = converted->dblVal;
            break;
        default:  // a pointer; the former one is released with the value
            std::swap(*variable.ppunkVal, converted->punkVal);
    }
    return S_OK;
}

ScriptName::ScriptName(const OLECHAR* name) noexcept {
    if (!name) return;
    size_t length = 0;
    for (; name[length]; ++length) {
        // Letters beyond ASCII are in no name.
        if (length == sizeof letters_ || name[length] > 0x7e) return;
        letters_[length] = SmallLetter(static_cast<char>(name[length]));
    }
    length_ = length;
}

bool IsNamed(std::string_view name, std::string_view smallLetters) noexcept {
    return name.size() == smallLetters.size() &&
           std::equal(name.begin(), name.end(), smallLetters.begin(),
                      [](char letter, char other) { return SmallLetter(letter) == other; });
}

}  // namespace orlix::automation
