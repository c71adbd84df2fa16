// Objects with named fields, which scripts get as results and give as arguments: records, and several results at once.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

#include <orlix/counted_object.hpp>

#include "automation/windows/contract_rows.hpp"
#include "automation/windows/script_values.hpp"

namespace orlix::automation {

// The fields are properties for reading and writing, numbered from 1.
class NamedValues : public CountedObject<IDispatch> {
public:
    STDMETHODIMP GetTypeInfoCount(UINT* count) noexcept override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) noexcept override;
    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) noexcept override;
    STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                        EXCEPINFO* exception, UINT* badArgument) noexcept override;

protected:
    NamedValues();
    ~NamedValues() override;

private:
    virtual size_t Count() const noexcept = 0;
    virtual bool IsField(size_t field, std::string_view smallLetters) const noexcept = 0;
    virtual VARIANT Get(size_t field) = 0;
    virtual void Put(size_t field, const VARIANT& value, LCID locale) = 0;
};

// Memory of one or more records, shared by the objects that show them.
using RecordMemory = std::shared_ptr<std::byte[]>;

// Zeros, but for m_lSize of each record.
RecordMemory NewRecords(const Record& record, size_t count);

// A record at an offset in the memory. Scripts know its fields with and without the prefix of their names. A field that
// is a record is shown in place; an array is copied, and an index after its name reads a single element.
ComPtr<IDispatch> ShowRecord(const Record& record, RecordMemory memory, size_t offset = 0);

// Fills a record, all of whose fields the object must have.
void ReadRecord(const VARIANT& object, const Record& record, std::byte* bytes, LCID locale);

// The results of a method, by the names of its parameters, which live as long as the module. The values are moved.
// Scripts can put numbers and texts in their place.
ComPtr<IDispatch> ShowResults(std::span<const char* const> names, std::span<Value> values);

}  // namespace orlix::automation
