#include "script_object.hpp"

#include <algorithm>
#include <utility>

namespace script_host {

namespace {

// The system's conversions trust others: a null array or record, a type that does not exist.
bool IsConvertible(VARTYPE type) { return type <= VT_UINT && type != VT_VARIANT && type != VT_DECIMAL + 1; }

}  // namespace

Value Arguments::Plain(UINT index) const {
    VARIANT* argument = &given_.rgvarg[given_.cArgs - 1 - index];  // the last one comes first
    if (argument->vt == (VT_BYREF | VT_VARIANT)) argument = argument->pvarVal;
    if (!argument || ((argument->vt & VT_BYREF) && !argument->byref)) throw BadArgument{E_INVALIDARG, index};
    if (!IsConvertible(argument->vt & static_cast<VARTYPE>(~VT_BYREF))) throw BadArgument{DISP_E_TYPEMISMATCH, index};
    Value value;
    const HRESULT copied = VariantCopyInd(value.get(), argument);
    if (FAILED(copied)) throw BadArgument{copied, index};
    return value;
}

Value Arguments::Converted(UINT index, VARTYPE type) const {
    Value value = Plain(index);
    const HRESULT changed = VariantChangeType(value.get(), value.get(), 0, type);
    if (FAILED(changed)) throw BadArgument{changed, index};
    return value;
}

std::string Arguments::Text(UINT index) const {
    if (Plain(index)->vt == VT_NULL) return "null";
    Value text = Converted(index, VT_BSTR);
    return orlix::ToUtf8({text->bstrVal ? text->bstrVal : OLESTR(""), SysStringLen(text->bstrVal)});
}

LONG Arguments::Number(UINT index) const { return Converted(index, VT_I4)->lVal; }

orlix::ComPtr<IUnknown> Arguments::Object(UINT index) const {
    Value value = Plain(index);
    if ((value->vt != VT_DISPATCH && value->vt != VT_UNKNOWN) || !value->punkVal)
        throw BadArgument{DISP_E_TYPEMISMATCH, index};
    return orlix::ComPtr<IUnknown>(value->punkVal);
}

namespace {

class ScriptObject final : public orlix::CountedObject<IDispatch> {
public:
    explicit ScriptObject(std::vector<Member> members) : members_(std::move(members)) {}

    STDMETHODIMP GetTypeInfoCount(UINT* count) noexcept override {
        if (!count) return E_POINTER;
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) noexcept override {
        if (!info) return E_POINTER;
        *info = nullptr;
        return DISP_E_BADINDEX;
    }

    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) noexcept override {
        if (!names || !ids || count == 0) return E_INVALIDARG;
        std::fill_n(ids, count, DISPID_UNKNOWN);
        for (const Member& member : members_)
            if (names[0] && _wcsicmp(names[0], member.name) == 0) ids[0] = member.id;
        return count == 1 && ids[0] != DISPID_UNKNOWN ? S_OK : DISP_E_UNKNOWNNAME;  // parameters have no names
    }

    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD how, DISPPARAMS* given, VARIANT* result, EXCEPINFO* exception,
                        UINT* badArgument) noexcept override {
        if (result) VariantInit(result);
        const auto member = std::ranges::find(members_, id, &Member::id);
        if (member == members_.end() || !(how & (DISPATCH_METHOD | DISPATCH_PROPERTYGET))) return DISP_E_MEMBERNOTFOUND;
        if (!given || (given->cArgs && !given->rgvarg)) return E_INVALIDARG;
        if (given->cNamedArgs) return DISP_E_NONAMEDARGS;
        if (given->cArgs < member->least || given->cArgs > member->most) return DISP_E_BADPARAMCOUNT;
        const orlix::ComPtr<IDispatch> alive(this);
        try {
            Value value = member->call(Arguments(*given));
            if (result) *result = value.Detach();
            return S_OK;
        } catch (const BadArgument& bad) {
            if (badArgument) *badArgument = given->cArgs - 1 - bad.index;
            return bad.result;
        } catch (const orlix::Error& error) {
            return Report(error, exception);
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        } catch (...) {
            return E_FAIL;
        }
    }

private:
    static HRESULT Report(const orlix::Error& error, EXCEPINFO* exception) noexcept {
        if (!exception) return error.result();
        *exception = {};
        exception->scode = error.result();
        exception->bstrDescription = SysAllocString(orlix::ToUtf16(error.what()).c_str());
        exception->bstrSource = SysAllocString(orlix::ToUtf16(error.source()).c_str());
        return DISP_E_EXCEPTION;
    }

    const std::vector<Member> members_;
};

class TextEnumerator final : public orlix::CountedObject<IEnumVARIANT> {
public:
    TextEnumerator(std::vector<std::string> texts, size_t next) : texts_(std::move(texts)), next_(next) {}

    STDMETHODIMP Next(ULONG count, VARIANT* values, ULONG* fetched) noexcept override {
        if (fetched) *fetched = 0;
        if (!values || (!fetched && count > 1)) return E_POINTER;
        for (ULONG i = 0; i < count; ++i) VariantInit(&values[i]);
        ULONG given = 0;
        try {
            for (; given < count && next_ < texts_.size(); ++given) values[given] = Value(texts_[next_++]).Detach();
        } catch (const std::bad_alloc&) {
            while (given > 0) VariantClear(&values[--given]);
            return E_OUTOFMEMORY;
        }
        if (fetched) *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }
    STDMETHODIMP Skip(ULONG count) noexcept override {
        const size_t left = texts_.size() - next_;
        next_ += std::min<size_t>(count, left);
        return count <= left ? S_OK : S_FALSE;
    }
    STDMETHODIMP Reset() noexcept override {
        next_ = 0;
        return S_OK;
    }
    STDMETHODIMP Clone(IEnumVARIANT** copy) noexcept override {
        if (!copy) return E_POINTER;
        *copy = nullptr;
        try {
            *copy = orlix::MakeCounted<TextEnumerator>(texts_, next_).Detach();
            return S_OK;
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
    }

private:
    const std::vector<std::string> texts_;
    size_t next_;
};

}  // namespace

orlix::ComPtr<IDispatch> MakeScriptObject(std::vector<Member> members) {
    return orlix::MakeCounted<ScriptObject>(std::move(members)).As<IDispatch>();
}

orlix::ComPtr<IUnknown> MakeEnumerator(std::vector<std::string> texts) {
    return orlix::MakeCounted<TextEnumerator>(std::move(texts), size_t{0}).As<IUnknown>();
}

}  // namespace script_host
