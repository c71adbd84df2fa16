// Objects as a script sees them: members by name, values as VARIANT.
#pragma once

#include <gtest/gtest.h>

#include <orlix/client.hpp>

#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "windows/module_under_test.hpp"

namespace orlix::testing {

// The methods of the contract as C++ spells them: get_Width.
inline constexpr const char* kContractMethods[] = {
#define ORLIX_METHOD(interface, method) #method,
#include "contract_methods.inc"
#undef ORLIX_METHOD
};

// Owns a VARIANT.
class Variant : public VARIANT {
public:
    Variant() { VariantInit(this); }
    Variant(const Variant& other) : Variant() { VariantCopy(this, const_cast<Variant*>(&other)); }
    Variant(Variant&& other) noexcept : Variant() { std::swap<VARIANT>(*this, other); }
    Variant& operator=(Variant other) noexcept {
        std::swap<VARIANT>(*this, other);
        return *this;
    }
    ~Variant() { VariantClear(this); }

    Variant(int number) : Variant() { vt = VT_I4, lVal = number; }
    template <class Enumeration, class = std::enable_if_t<std::is_enum_v<Enumeration>>>
    Variant(Enumeration number) : Variant(static_cast<int>(number)) {}
    Variant(double number) : Variant() { vt = VT_R8, dblVal = number; }
    Variant(bool truth) : Variant() { vt = VT_BOOL, boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE; }
    Variant(const char* text) : Variant() { vt = VT_BSTR, bstrVal = Text(text).Detach(); }
    Variant(const ComPtr<IDispatch>& object) : Variant() {
        vt = VT_DISPATCH, pdispVal = ComPtr<IDispatch>(object).Detach();
    }
    // A script's variable, passed by reference.
    static Variant To(VARIANT& variable) {
        Variant reference;
        reference.vt = VT_BYREF | VT_VARIANT, reference.pvarVal = &variable;
        return reference;
    }
    static Variant Missing() {
        Variant missing;
        missing.vt = VT_ERROR, missing.scode = DISP_E_PARAMNOTFOUND;
        return missing;
    }
    static Variant Of(VARTYPE type) {
        Variant value;
        value.vt = type;
        return value;
    }
    // An array of doubles or the like; the first index runs fastest.
    template <class T>
    static Variant Array(VARTYPE type, std::vector<ULONG> sizes, const std::vector<T>& elements, LONG lower = 0) {
        std::vector<SAFEARRAYBOUND> bounds;
        for (const ULONG size : sizes) bounds.push_back({size, lower});
        Variant array;
        array.vt = static_cast<VARTYPE>(VT_ARRAY | type);
        array.parray = SafeArrayCreate(type, static_cast<UINT>(sizes.size()), bounds.data());
        for (size_t i = 0; i < elements.size(); ++i) static_cast<T*>(array.parray->pvData)[i] = elements[i];
        return array;
    }

    double number() const {
        Variant converted;
        EXPECT_EQ(S_OK, VariantChangeType(&converted, const_cast<Variant*>(this), 0, VT_R8)) << "type " << vt;
        return converted.dblVal;
    }
    std::string text() const { return vt == VT_BSTR && bstrVal ? ToUtf8(bstrVal) : "(no text)"; }
    // The elements of an array, as in memory.
    template <class T>
    std::vector<T> elements(VARTYPE type) const {
        if (vt != (VT_ARRAY | type)) ADD_FAILURE() << "type " << vt;
        if (vt != (VT_ARRAY | type)) return {};
        const T* const first = static_cast<const T*>(parray->pvData);
        size_t count = 1;
        for (UINT i = 0; i < parray->cDims; ++i) count *= parray->rgsabound[i].cElements;
        return std::vector<T>(first, first + count);
    }
    ULONG size(UINT index) const { return parray->rgsabound[parray->cDims - 1 - index].cElements; }
};

using Arguments = std::vector<Variant>;
// Names of the last arguments.
using Names = std::vector<const char*>;

struct Outcome {
    HRESULT result;
    Variant value;
    HRESULT scode;
    std::string text, source;
    UINT badArgument;  // in the order of the call; 99 where none is named
};

constexpr WORD kCallIt = DISPATCH_METHOD | DISPATCH_PROPERTYGET;  // as VBScript does

class Script {
public:
    explicit Script(const char* progId) : Script(CreateObject<IDispatch>(progId)) {}
    explicit Script(ComPtr<IDispatch> object) : object_(std::move(object)) {}
    explicit Script(const Variant& value)
        : object_(ComPtr<IDispatch>(value.vt == VT_DISPATCH ? value.pdispVal : nullptr)) {
        EXPECT_TRUE(object_) << "no object but type " << value.vt;
    }
    const ComPtr<IDispatch>& get() const { return object_; }
    operator Variant() const { return object_; }

    std::vector<DISPID> IdsOf(const char* name, const Names& parameters = {}) const {
        std::vector<std::basic_string<OLECHAR>> texts = {ToUtf16(name)};
        for (const char* parameter : parameters) texts.push_back(ToUtf16(parameter));
        std::vector<LPOLESTR> names;
        for (auto& text : texts) names.push_back(text.data());
        std::vector<DISPID> ids(names.size(), 0);
        const HRESULT found =
            object_->GetIDsOfNames(IID_NULL, names.data(), static_cast<UINT>(names.size()), 0, ids.data());
        bool all = true;
        for (const DISPID id : ids) all = all && id != DISPID_UNKNOWN;
        EXPECT_EQ(all ? S_OK : DISP_E_UNKNOWNNAME, found);
        return ids;
    }
    Outcome Try(const char* name, Arguments arguments, WORD how = kCallIt, const Names& names = {},
                LCID locale = LOCALE_INVARIANT) const {
        std::vector<DISPID> ids = IdsOf(name, names);
        const DISPID id = ids[0];
        ids.erase(ids.begin());
        if (how & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) ids.push_back(DISPID_PROPERTYPUT);
        return TryId(id, std::move(arguments), how, ids, locale);
    }
    Outcome TryId(DISPID id, Arguments arguments, WORD how, std::vector<DISPID> named = {},
                  LCID locale = LOCALE_INVARIANT) const {
        std::vector<Variant> reversed(arguments.rbegin(), arguments.rend());
        std::vector<DISPID> ids(named.rbegin(), named.rend());
        DISPPARAMS given = {reversed.data(), ids.data(), static_cast<UINT>(reversed.size()),
                            static_cast<UINT>(ids.size())};
        Outcome outcome = {};
        EXCEPINFO exception = {};
        UINT bad = 99;
        outcome.result = object_->Invoke(id, IID_NULL, locale, how, &given, &outcome.value, &exception, &bad);
        outcome.scode = exception.scode;
        outcome.badArgument = bad == 99 ? bad : given.cArgs - 1 - bad;
        for (auto [text, to] :
             {std::pair{exception.bstrDescription, &outcome.text}, {exception.bstrSource, &outcome.source}})
            if (text) *to = ToUtf8(text), SysFreeString(text);
        return outcome;
    }
    // What succeeds.
    Variant operator()(const char* name, Arguments arguments = {}, const Names& names = {}) const {
        Outcome outcome = Try(name, std::move(arguments), kCallIt, names);
        EXPECT_EQ(S_OK, outcome.result) << name << ": " << outcome.text << " (argument " << outcome.badArgument << ")";
        return std::move(outcome.value);
    }
    void Put(const char* name, Arguments arguments) const {
        const bool isObject = arguments.back().vt == VT_DISPATCH;
        const Outcome outcome =
            Try(name, std::move(arguments), isObject ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT);
        EXPECT_EQ(S_OK, outcome.result) << name << ": " << outcome.text;
    }

private:
    ComPtr<IDispatch> object_;
};

inline Script NewScriptImage(int width, int height, int bands = 1, int type = DT_BYTE) {
    const Script image("Orlix.Image");
    image("Create", {width, height, bands, type});
    return image;
}

inline bool ModuleIsUnlocked() {
    const auto canUnload = EntryPoint<HRESULT(WINAPI*)()>("DllCanUnloadNow");
    return canUnload && canUnload() == S_OK;
}

}  // namespace orlix::testing
