// Objects that a host gives to its scripts: IDispatch from a table of functions.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <orlix/client.hpp>
#include <orlix/counted_object.hpp>

namespace script_host {

// Owns a VARIANT.
class Value {
public:
    Value() noexcept { VariantInit(&value_); }
    Value(Value&& other) noexcept : value_(other.Detach()) {}
    Value& operator=(Value&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~Value() { VariantClear(&value_); }

    explicit Value(LONG number) noexcept : Value() { value_.vt = VT_I4, value_.lVal = number; }
    explicit Value(std::string_view text) : Value() {
        value_.bstrVal = orlix::Text(text).Detach(), value_.vt = VT_BSTR;
    }
    explicit Value(orlix::ComPtr<IDispatch> object) noexcept : Value() {
        value_.vt = VT_DISPATCH, value_.pdispVal = object.Detach();
    }
    explicit Value(orlix::ComPtr<IUnknown> object) noexcept : Value() {
        value_.vt = VT_UNKNOWN, value_.punkVal = object.Detach();
    }

    VARIANT* get() noexcept { return &value_; }
    VARIANT* operator->() noexcept { return &value_; }
    VARIANT Detach() noexcept {
        const VARIANT content = value_;
        VariantInit(&value_);
        return content;
    }

private:
    VARIANT value_;
};

// An argument that a member does not take: the result of the call, with the argument's position.
struct BadArgument {
    HRESULT result;
    UINT index;
};

// The arguments of a call, in its order. Variables that are passed by reference count as their values. The functions
// throw BadArgument: DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW or another result of the system's conversions.
class Arguments {
public:
    explicit Arguments(const DISPPARAMS& given) noexcept : given_(given) {}
    UINT size() const noexcept { return given_.cArgs; }
    // Null is "null" and an empty variable nothing; all else as the system converts it in the user's language.
    std::string Text(UINT index) const;
    LONG Number(UINT index) const;
    orlix::ComPtr<IUnknown> Object(UINT index) const;  // never null

private:
    Value Plain(UINT index) const;
    Value Converted(UINT index, VARTYPE type) const;

    const DISPPARAMS& given_;
};

// A method or a property to read, which scripts may take for each other. A call with fewer or more arguments fails with
// DISP_E_BADPARAMCOUNT. Where `call` throws orlix::Error, the script gets its text and source.
struct Member {
    const OLECHAR* name;
    DISPID id;
    UINT least, most;
    std::function<Value(const Arguments&)> call;
};
constexpr UINT kAnyNumber = 0xffffffff;

// Names are found in any case. There are no named arguments, and nothing can be assigned.
orlix::ComPtr<IDispatch> MakeScriptObject(std::vector<Member> members);

// What For Each walks over: texts, as IEnumVARIANT.
orlix::ComPtr<IUnknown> MakeEnumerator(std::vector<std::string> texts);

}  // namespace script_host
