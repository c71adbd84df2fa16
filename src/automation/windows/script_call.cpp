#include "automation/windows/script_call.hpp"

#include <utility>

#include "automation/windows/script_values.hpp"

namespace orlix::automation {

ScriptCall::Cell::~Cell() {
    if (owned_ == Owned::Text) SysFreeString(text_);
    if (owned_ == Owned::Object && object_) object_->Release();
    if (owned_ == Owned::Value) VariantClear(&value_);
}

void ScriptCall::Cell::Read(const Parameter& parameter, const VARIANT& value, LCID locale) {
    switch (parameter.kind) {
        case Kind::Number:
            argument.number = ReadNumber(value, locale);
            break;
        case Kind::Color:
            argument.color = ReadColor(value, locale);
            break;
        case Kind::Real:
            argument.real = ReadReal(value, locale);
            break;
        case Kind::Handle:
            argument.pointer = ReadHandle(value, locale);
            break;
        case Kind::Text:
            text_ = ReadText(value, locale);
            owned_ = Owned::Text;
            argument.pointer = text_;
            break;
        case Kind::Object:
            object_ = ReadObject(value, *static_cast<const IID*>(parameter.type));
            owned_ = Owned::Object;
            argument.pointer = object_;
            break;
        case Kind::Record: {
            const auto& record = *static_cast<const Record*>(parameter.type);
            record_ = NewRecords(record, 1);
            ReadRecord(value, record, record_.get(), locale);
            argument.pointer = record_.get();
            break;
        }
        case Kind::Value:
            givenValue_ = {&Plain(value), locale};
            argument.pointer = &givenValue_;
            break;
    }
}

void ScriptCall::Cell::Omit(const Parameter& parameter) noexcept {
    if (parameter.kind == Kind::Number) argument.number = parameter.omitted;
    if (parameter.kind == Kind::Real) argument.real = parameter.omitted;
}

void ScriptCall::Cell::Prepare(const Parameter& parameter) {
    argument.pointer = &value_;
    switch (parameter.kind) {
        case Kind::Number:
            number_ = 0;
            break;
        case Kind::Color:
            color_ = 0;
            break;
        case Kind::Real:
            real_ = 0;
            break;
        case Kind::Handle:
            handle_ = nullptr;
            break;
        case Kind::Text:
            text_ = nullptr;
            owned_ = Owned::Text;
            break;
        case Kind::Object:
            object_ = nullptr;
            owned_ = Owned::Object;
            break;
        case Kind::Record:
            record_ = NewRecords(*static_cast<const Record*>(parameter.type), 1);
            argument.pointer = record_.get();
            break;
        case Kind::Value:
            VariantInit(&value_);
            owned_ = Owned::Value;
            break;
    }
}

VARIANT ScriptCall::Cell::TakeResult(const Parameter& parameter) {
    VARIANT result;
    VariantInit(&result);
    switch (parameter.kind) {
        case Kind::Number:
            return NumberValue(number_);
        case Kind::Color:
            return NumberValue(static_cast<LONG>(color_));
        case Kind::Real:
            return RealValue(real_);
        case Kind::Handle:
            return HandleValue(handle_);
        case Kind::Text:
            result.vt = VT_BSTR;
            result.bstrVal = text_;
            break;
        case Kind::Object:
            result = ObjectValue(object_);
            break;
        case Kind::Record:
            return ObjectValue(ShowRecord(*static_cast<const Record*>(parameter.type), record_).Detach());
        case Kind::Value:
            result = value_;
            break;
    }
    owned_ = Owned::Nothing;
    return result;
}

Parameters::Parameters(const Method& method) noexcept {
    for (size_t i = 0; i < method.parameters.size(); ++i) {
        if (method.parameters[i].flags & kResult) continue;
        all_[allCount_++] = static_cast<uint8_t>(i);
        if (!(method.parameters[i].flags & kOut)) numbered_[inputCount_++] = static_cast<uint8_t>(i);
    }
    size_t number = inputCount_;
    for (size_t i = 0; i < allCount_; ++i)
        if (method.parameters[all_[i]].flags & kOut) numbered_[number++] = all_[i];
}

// Positions count the parameters that are no results, if there are not more arguments than those; else all.
void ScriptCall::Assign(const DISPPARAMS& arguments) {
    const Parameters parameters(method_);
    for (UINT i = 0; i < arguments.cNamedArgs; ++i) {
        const DISPID name = arguments.rgdispidNamedArgs[i];
        const bool isValue = name == DISPID_PROPERTYPUT && method_.access == kPut;
        const size_t number = isValue ? parameters.numbered().size() - 1 : static_cast<size_t>(name);
        if ((name < 0 && !isValue) || number >= parameters.numbered().size()) throw BadCall{DISP_E_PARAMNOTFOUND, i};
        const size_t parameter = parameters.numbered()[number];
        if (given_[parameter]) throw BadCall{DISP_E_PARAMNOTFOUND, i};
        given_[parameter] = &arguments.rgvarg[i];
        places_[parameter] = i;
    }
    const UINT positional = arguments.cArgs - arguments.cNamedArgs;
    const std::span<const uint8_t> inputs = parameters.inputs(), all = parameters.all();
    if (positional > all.size()) throw BadCall{DISP_E_BADPARAMCOUNT};
    const std::span<const uint8_t> order = positional > inputs.size() ? all : inputs;
    for (UINT i = 0; i < positional; ++i) {
        const UINT place = arguments.cArgs - 1 - i;
        if (given_[order[i]]) throw BadCall{DISP_E_BADPARAMCOUNT};
        given_[order[i]] = &arguments.rgvarg[place];
        places_[order[i]] = place;
    }
}

void ScriptCall::Take(const DISPPARAMS& arguments) {
    Assign(arguments);
    for (size_t i = 0; i < method_.parameters.size(); ++i) {
        const Parameter& parameter = method_.parameters[i];
        const VARIANT* const value = given_[i];
        if (!value && !(parameter.flags & (kOut | kOptional))) throw BadCall{DISP_E_BADPARAMCOUNT};
        const bool missing = !value || IsMissing(*value);
        try {
            if (parameter.flags & kOut) {
                cells_[i].Prepare(parameter);
                // Scripts without references pass something that is not there.
                if (missing || value->vt == VT_EMPTY || value->vt == VT_NULL) {
                    given_[i] = nullptr;
                } else if (!IsVariable(*value)) {
                    throw BadValue{DISP_E_TYPEMISMATCH};
                }
            } else if (!missing) {
                cells_[i].Read(parameter, *value, locale_);
            } else if (parameter.flags & kOptional) {
                cells_[i].Omit(parameter);
            } else {
                throw BadValue{DISP_E_PARAMNOTOPTIONAL};
            }
        } catch (const BadValue& bad) {
            throw BadCall{bad.result, places_[i]};
        }
    }
}

HRESULT ScriptCall::Run(void* object) {
    std::array<Argument, kMostParameters> arguments;
    for (size_t i = 0; i < method_.parameters.size(); ++i) arguments[i] = cells_[i].argument;
    try {
        return method_.call(object, arguments.data());
    } catch (const BadValue& bad) {
        size_t array = 0;
        while (array + 1 < method_.parameters.size() && method_.parameters[array].kind != Kind::Value) ++array;
        throw BadCall{bad.result, places_[array]};
    }
}

void ScriptCall::Give(VARIANT* result) {
    std::array<Value, kMostParameters> values;
    std::array<const char*, kMostParameters> names{};
    size_t count = 0, single = 0;
    bool isSingle = false;
    for (size_t i = 0; i < method_.parameters.size(); ++i) {
        const Parameter& parameter = method_.parameters[i];
        if (!(parameter.flags & kOut)) continue;
        Value& value = values[count];
        *value.get() = cells_[i].TakeResult(parameter);
        if (const VARIANT* const variable = given_[i]) {
            const HRESULT stored = StoreInVariable(*variable, *value, locale_);
            if (FAILED(stored)) throw BadCall{stored, places_[i]};
        }
        if (parameter.flags & kResult) {
            single = count;
            isSingle = true;
        }
        names[count++] = parameter.name;
    }
    if (!result) return;
    if (isSingle || count <= 1) {
        *result = values[single].Detach();
    } else {
        *result = ObjectValue(ShowResults({names.data(), count}, {values.data(), count}).Detach());
    }
}

}  // namespace orlix::automation
