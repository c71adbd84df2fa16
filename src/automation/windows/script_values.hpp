// Values of scripts (VARIANT) as the numbers, texts and objects of the contract, and the other way round.
#pragma once

#include <orlix/orlix.h>

#include <string_view>

#include <orlix/com_ptr.hpp>

namespace orlix::automation {

// A value that a parameter does not take. The result is DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW, DISP_E_BADINDEX or
// another of the system's; the caller of Invoke is told which argument it was.
struct BadValue {
    HRESULT result;
};

// A VARIANT that is cleared in the end.
class Value {
public:
    Value() noexcept { VariantInit(&value_); }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() {
        if (value_.vt > VT_R8) VariantClear(&value_);  // others hold nothing
    }

    VARIANT* get() noexcept { return &value_; }
    VARIANT* operator->() noexcept { return &value_; }
    const VARIANT& operator*() const noexcept { return value_; }
    // Hands the content to the caller.
    VARIANT Detach() noexcept {
        const VARIANT content = value_;
        VariantInit(&value_);
        return content;
    }

private:
    VARIANT value_;
};

// The value behind a reference to a VARIANT, as VBScript passes its variables. A null reference, of any type, and a
// reference to a further reference are no values (BadValue).
const VARIANT& Plain(const VARIANT& value);

// What the system's functions take as the source of a copy, and leave as it is.
inline VARIANT* Source(const VARIANT& value) noexcept { return const_cast<VARIANT*>(&value); }

// Whether a script has left the parameter out.
bool IsMissing(const VARIANT& value) noexcept;

// Numbers of any kind, texts in the language of the call. Reals are rounded to whole numbers, halves to the even one.
// True is 1 as a whole number: in the contract these are flags. As a real it is -1, as ever.
LONG ReadNumber(const VARIANT& value, LCID locale);
double ReadReal(const VARIANT& value, LCID locale);
// -2^31 to 2^32 - 1: colours with the highest bit set are negative for some scripts and positive for others.
DWORD ReadColor(const VARIANT& value, LCID locale);
void* ReadHandle(const VARIANT& value, LCID locale);
// A new string; null for Null.
BSTR ReadText(const VARIANT& value, LCID locale);
// The interface, with a reference added; null for Nothing, Empty and Null.
IUnknown* ReadObject(const VARIANT& value, const IID& iid);

VARIANT NumberValue(LONG number) noexcept;
VARIANT RealValue(double number) noexcept;
VARIANT HandleValue(void* handle) noexcept;
// Takes over the reference, as IDispatch where the object has it.
VARIANT ObjectValue(IUnknown* object) noexcept;

// Whether results can be stored in the variable that the value refers to, and the storing, which releases what the
// variable held before. A result that the variable's type cannot hold leaves it as it was.
bool IsVariable(const VARIANT& value) noexcept;
HRESULT StoreInVariable(const VARIANT& variable, const VARIANT& result, LCID locale) noexcept;

// A name in a script, in small letters. Empty for null and for names longer than any of the contract.
class ScriptName {
public:
    explicit ScriptName(const OLECHAR* name) noexcept;
    std::string_view text() const noexcept { return {letters_, length_}; }

private:
    char letters_[64];
    size_t length_ = 0;
};

// Whether a name of the contract is this one but for capital letters.
bool IsNamed(std::string_view name, std::string_view smallLetters) noexcept;

inline char SmallLetter(char letter) noexcept {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

}  // namespace orlix::automation
