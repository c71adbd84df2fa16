#include "automation/windows/named_values.hpp"

#include <dispex.h>

#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include <orlix/text.hpp>

#include "automation/windows/script_arrays.hpp"
#include "platform/floating_point.hpp"
#include "platform/module_lock.hpp"

namespace orlix::automation {
namespace {

template <class T>
T Load(const std::byte* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

template <class T>
void Store(std::byte* bytes, T value) {
    std::memcpy(bytes, &value, sizeof value);
}

bool IsFieldOf(const Field& field, std::string_view smallLetters) noexcept {
    return IsNamed(field.name, smallLetters) || IsNamed(field.name + field.prefix, smallLetters);
}

void ReadField(const VARIANT& value, const Field& field, std::byte* bytes, LCID locale) {
    if (field.kind == Kind::Record) {
        ReadRecord(value, *field.record, bytes, locale);
    } else if (field.count > 0) {  // of doubles
        const GivenArray array(value, locale);
        if (array.dimensions() != 1 || array.count() != field.count) throw BadValue{DISP_E_TYPEMISMATCH};
        std::vector<double> numbers(field.count);
        for (size_t i = 0; i < numbers.size(); ++i) numbers[i] = array.Real(i);
        std::memcpy(bytes, numbers.data(), numbers.size() * sizeof(double));
    } else if (field.kind == Kind::Number) {
        Store(bytes, ReadNumber(value, locale));
    } else {
        Store(bytes, ReadReal(value, locale));
    }
}

class ShownRecord final : public NamedValues {
public:
    ShownRecord(const Record& record, RecordMemory memory, size_t offset)
        : record_(record), memory_(std::move(memory)), offset_(offset) {}

private:
    size_t Count() const noexcept override { return record_.fields.size(); }
    bool IsField(size_t field, std::string_view smallLetters) const noexcept override {
        return IsFieldOf(record_.fields[field], smallLetters);
    }
    VARIANT Get(size_t index) override {
        const Field& field = record_.fields[index];
        const size_t offset = offset_ + field.offset;
        if (field.kind == Kind::Record) return ObjectValue(ShowRecord(*field.record, memory_, offset).Detach());
        const std::byte* const bytes = memory_.get() + offset;
        if (field.count > 0) {
            NewArray array(VT_R8, field.count);
            std::memcpy(array.data<double>(), bytes, field.count * sizeof(double));
            return array.Detach();
        }
        return field.kind == Kind::Number ? NumberValue(Load<LONG>(bytes)) : RealValue(Load<double>(bytes));
    }
    void Put(size_t index, const VARIANT& value, LCID locale) override {
        const Field& field = record_.fields[index];
        // Read first: the object that gives the values may be a part of this one.
        std::byte* const bytes = memory_.get() + offset_ + field.offset;
        if (field.kind != Kind::Record) return ReadField(value, field, bytes, locale);
        const RecordMemory read = NewRecords(*field.record, 1);
        ReadField(value, field, read.get(), locale);
        std::memcpy(bytes, read.get(), field.record->size);
    }

    const Record& record_;
    RecordMemory memory_;
    size_t offset_;
};

class Results final : public NamedValues {
public:
    Results(std::span<const char* const> names, std::span<Value> values)
        : names_(names.begin(), names.end()), values_(names.size()) {
        for (size_t i = 0; i < values_.size(); ++i) values_[i] = values[i].Detach();
    }

private:
    // Objects among the results may be a client's and call back.
    void LetGo() noexcept override {
        names_.clear();
        std::vector<VARIANT> values;
        values.swap(values_);
        for (VARIANT& value : values) VariantClear(&value);
    }

    size_t Count() const noexcept override { return names_.size(); }
    bool IsField(size_t field, std::string_view smallLetters) const noexcept override {
        return IsNamed(names_[field], smallLetters);
    }
    VARIANT Get(size_t field) override {
        Value copy;
        const HRESULT copied = VariantCopy(copy.get(), &values_[field]);
        if (FAILED(copied)) throw BadValue{copied};
        return copy.Detach();
    }
    // No objects and no arrays of them, through which the object could hold itself.
    void Put(size_t field, const VARIANT& value, LCID) override {
        const VARIANT& plain = Plain(value);
        const auto type = static_cast<VARTYPE>(plain.vt & ~VT_BYREF);
        if (type == VT_DISPATCH || type == VT_UNKNOWN || (type & VT_TYPEMASK) == VT_RECORD || (type & VT_ARRAY))
            throw BadValue{DISP_E_TYPEMISMATCH};
        Value copy;
        const HRESULT copied = VariantCopyInd(copy.get(), Source(plain));
        if (FAILED(copied)) throw BadValue{copied};
        std::swap(values_[field], *copy.get());
    }

    std::vector<const char*> names_;
    std::vector<VARIANT> values_;
};

// A property of a script's object, Empty where it has none. Objects that scripts define may answer IDispatchEx only.
void GetProperty(const ComPtr<IDispatch>& object, const char* name, LCID locale, Value& value) {
    Text wide{std::string_view(name)};
    BSTR names[] = {wide};
    DISPID id = DISPID_UNKNOWN;
    DISPPARAMS none = {};
    HRESULT result = E_FAIL;
    if (const auto extended = object.As<IDispatchEx>()) {
        result = extended->GetDispID(wide, fdexNameCaseInsensitive, &id);
        if (SUCCEEDED(result))
            result = extended->InvokeEx(id, locale, DISPATCH_PROPERTYGET, &none, value.get(), nullptr, nullptr);
    } else {
        result = object->GetIDsOfNames(IID_NULL, names, 1, locale, &id);
        if (SUCCEEDED(result))
            result = object->Invoke(id, IID_NULL, locale, DISPATCH_PROPERTYGET | DISPATCH_METHOD, &none, value.get(),
                                    nullptr, nullptr);
    }
    if (FAILED(result)) VariantClear(value.get());
}

}  // namespace

NamedValues::NamedValues() { LockModule(); }
NamedValues::~NamedValues() { UnlockModule(); }

STDMETHODIMP NamedValues::GetTypeInfoCount(UINT* count) noexcept {
    if (!count) return E_POINTER;
    *count = 0;
    return S_OK;
}

STDMETHODIMP NamedValues::GetTypeInfo(UINT, LCID, ITypeInfo** info) noexcept {
    if (!info) return E_POINTER;
    *info = nullptr;
    return DISP_E_BADINDEX;
}

STDMETHODIMP NamedValues::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID, DISPID* ids) noexcept {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (!names || !ids) return E_POINTER;
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    if (count == 0) return S_OK;
    const ScriptName name(names[0]);
    for (size_t field = 0; field < Count() && ids[0] == DISPID_UNKNOWN; ++field)
        if (IsField(field, name.text())) ids[0] = static_cast<DISPID>(field + 1);
    return count == 1 && ids[0] != DISPID_UNKNOWN ? S_OK : DISP_E_UNKNOWNNAME;
}

STDMETHODIMP NamedValues::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                                 EXCEPINFO*, UINT* badArgument) noexcept {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (!arguments) return E_POINTER;
    if (arguments->cArgs > 0 && !arguments->rgvarg) return E_INVALIDARG;
    if (id < 1 || static_cast<size_t>(id) > Count()) return DISP_E_MEMBERNOTFOUND;
    const ComPtr<IDispatch> alive(this);
    const FloatingPointScope arithmetic;
    const size_t field = static_cast<size_t>(id) - 1;
    try {
        if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
            if (arguments->cArgs != 1) return DISP_E_BADPARAMCOUNT;
            if (badArgument) *badArgument = 0;
            Put(field, arguments->rgvarg[0], locale);
            return S_OK;
        }
        if (!(flags & (DISPATCH_PROPERTYGET | DISPATCH_METHOD))) return DISP_E_MEMBERNOTFOUND;
        if (arguments->cNamedArgs > 0) return DISP_E_NONAMEDARGS;
        if (arguments->cArgs > 1) return DISP_E_BADPARAMCOUNT;
        Value value;
        *value.get() = Get(field);
        if (arguments->cArgs == 1) {
            if (value->vt != (VT_ARRAY | VT_R8)) return DISP_E_BADPARAMCOUNT;
            if (badArgument) *badArgument = 0;
            LONG index = ReadNumber(arguments->rgvarg[0], locale);
            double element = 0;
            if (FAILED(SafeArrayGetElement(value->parray, &index, &element))) return DISP_E_BADINDEX;
            if (result) *result = RealValue(element);
        } else if (result) {
            *result = value.Detach();
        }
        return S_OK;
    } catch (const BadValue& bad) {
        return bad.result;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

RecordMemory NewRecords(const Record& record, size_t count) {
    if (count > SIZE_MAX / 2 / record.size) throw std::bad_alloc();
    const RecordMemory memory(new std::byte[record.size * (count > 0 ? count : 1)]());
    for (size_t i = 0; i < count && record.sizeField != kNoSize; ++i)
        Store(memory.get() + i * record.size + record.sizeField, static_cast<LONG>(record.size));
    return memory;
}

ComPtr<IDispatch> ShowRecord(const Record& record, RecordMemory memory, size_t offset) {
    return ComPtr<IDispatch>::Attach(new ShownRecord(record, std::move(memory), offset));
}

void ReadRecord(const VARIANT& object, const Record& record, std::byte* bytes, LCID locale) {
    const ComPtr<IDispatch> fields =
        ComPtr<IDispatch>::Attach(static_cast<IDispatch*>(ReadObject(object, __uuidof(IDispatch))));
    if (!fields) throw BadValue{DISP_E_TYPEMISMATCH};
    for (const Field& field : record.fields) {
        Value value;
        GetProperty(fields, field.name + field.prefix, locale, value);
        if (value->vt == VT_EMPTY) GetProperty(fields, field.name, locale, value);
        if (value->vt == VT_EMPTY) throw BadValue{DISP_E_TYPEMISMATCH};
        ReadField(*value, field, bytes + field.offset, locale);
    }
}

ComPtr<IDispatch> ShowResults(std::span<const char* const> names, std::span<Value> values) {
    return ComPtr<IDispatch>::Attach(new Results(names, values));
}

}  // namespace orlix::automation
