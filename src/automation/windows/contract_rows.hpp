// What scripts can call, as tables, which idl/make_dispatch.py writes. The types of parameters and fields come from the
// compiler.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>

namespace orlix::automation {

enum class Kind : uint8_t {
    Number,  // LONG, enumerations
    Color,   // OLE_COLOR
    Real,    // double
    Text,    // BSTR
    Handle,  // of the system; an integer for scripts
    Object,  // an interface
    Record,  // a structure
    Value,   // VARIANT; what is given for it is a GivenValue, which added methods get as it is
};

enum ParameterFlag : uint8_t { kIn = 1, kOut = 2, kResult = 4, kOptional = 8 };

enum Access : uint8_t { kCall, kGet, kPut };

struct Record;

struct Field {
    const char* name;  // m_dAlpha; scripts leave the prefix out: Alpha
    uint8_t prefix;    // its length
    Kind kind;         // Number, Real or Record
    uint16_t offset;
    uint16_t count;  // of an array of doubles; 0 for a single value
    const Record* record;
};

inline constexpr size_t kNoSize = SIZE_MAX;

struct Record {
    std::span<const Field> fields;  // without m_lSize
    size_t size;
    size_t sizeField;  // offset of m_lSize
};

struct Parameter {
    const char* name;
    const void* type;  // const IID* of an object, const Record* of a record
    int32_t omitted;   // the value of an optional parameter that is left out; objects are null then
    Kind kind;
    uint8_t flags;
};

// What an added method gets for an array.
struct GivenValue {
    const VARIANT* value;
    LCID locale;
};

// What a method gets for a parameter.
union Argument {
    LONG number;
    DWORD color;
    double real;
    void* pointer;  // text, handle, object, record, value; where an output is written
};

// Calls the method of an interface with an argument for each parameter.
using CallFn = HRESULT (*)(void* object, const Argument* arguments);

struct Method {
    const char* name;
    const IID* iid;
    CallFn call;
    std::span<const Parameter> parameters;
    Access access;
    uint8_t slot;  // in the interface's table; from 128 on for methods that are added
};

inline constexpr size_t kMostParameters = 10;

struct Interface {
    const IID* iid;
    const char* name;
    const Interface* base;  // null for IUnknown
    std::span<const Method> methods;
};

struct NumberedMember {
    const char* name;
    DISPID id;
};

// A dispatch interface of the contract numbers members of an interface (and of those that it derives from).
struct Dispinterface {
    const IID* iid;
    const Interface* of;
    std::span<const NumberedMember> members;
};

// What the objects of a class answer, and their dispatch interface in the type library.
struct ScriptClass {
    IID iid;
    std::span<const Interface* const> interfaces;  // each behind its base
    const CLSID* coclass;                          // null where methods return the objects
    const IID* events;                             // the dispatch interface of the events; null where there are none
};

extern const std::span<const Interface* const> kInterfaces;  // each behind its base
extern const std::span<const Dispinterface> kDispinterfaces;
extern const std::span<const ScriptClass> kScriptClasses;
extern const IID kPictureEvents;  // PictureEventsDisp

// The row of a record.
template <class T>
const Record& RecordOf() noexcept;

// ------------------------------------------------------------------------------------------------- making the rows

template <class T>
constexpr const Record* kRecordOf = nullptr;

template <class T>
constexpr Kind KindOf() {
    using Pointed = std::remove_pointer_t<T>;
    if constexpr (std::is_same_v<T, LONG> || std::is_enum_v<T>) {
        return Kind::Number;
    } else if constexpr (std::is_same_v<T, OLE_COLOR>) {
        return Kind::Color;
    } else if constexpr (std::is_same_v<T, double>) {
        return Kind::Real;
    } else if constexpr (std::is_same_v<T, BSTR>) {
        return Kind::Text;
    } else if constexpr (std::is_same_v<T, void*>) {
        return Kind::Handle;
    } else if constexpr (std::is_same_v<T, VARIANT> || std::is_same_v<T, const GivenValue*>) {
        return Kind::Value;
    } else if constexpr (std::is_base_of_v<IUnknown, Pointed>) {
        return Kind::Object;
    } else {
        static_assert(kRecordOf<Pointed> != nullptr, "a type that scripts do not have");
        return Kind::Record;
    }
}

template <class T, Kind kind = KindOf<T>()>
constexpr const void* TypeOf() {
    if constexpr (kind == Kind::Object) {
        return &__uuidof(std::remove_pointer_t<T>);
    } else if constexpr (kind == Kind::Record) {
        return kRecordOf<std::remove_pointer_t<T>>;
    } else {
        return nullptr;
    }
}

template <class T>
constexpr Field FieldRow(const char* name, uint8_t prefix, size_t offset) {
    using Single = std::remove_extent_t<T>;
    static_assert(!std::is_array_v<T> || std::is_same_v<Single, double>);
    return {name,
            prefix,
            KindOf<Single>(),
            static_cast<uint16_t>(offset),
            static_cast<uint16_t>(std::extent_v<T>),
            kRecordOf<Single>};
}

template <class T>
T ArgumentAs(const Argument& argument) noexcept {
    if constexpr (std::is_same_v<T, double>) {
        return argument.real;
    } else if constexpr (std::is_same_v<T, OLE_COLOR>) {
        return argument.color;
    } else if constexpr (std::is_same_v<T, VARIANT>) {
        return *static_cast<const GivenValue*>(argument.pointer)->value;
    } else if constexpr (std::is_pointer_v<T>) {
        return static_cast<T>(argument.pointer);
    } else if constexpr (std::is_class_v<T>) {
        return *static_cast<const T*>(argument.pointer);
    } else {
        return static_cast<T>(argument.number);
    }
}

// A method of an interface, or a function that takes the interface first.
template <class Function>
struct Signature;

template <class I, class... Types>
struct Signature<HRESULT (STDMETHODCALLTYPE I::*)(Types...)> {
    using Interface = I;
    static constexpr size_t kCount = sizeof...(Types);
    template <size_t index>
    using Type = std::tuple_element_t<index, std::tuple<Types..., void>>;

    template <auto method, size_t... index>
    static HRESULT Apply(void* object, const Argument* arguments, std::index_sequence<index...>) {
        return (static_cast<I*>(object)->*method)(ArgumentAs<Types>(arguments[index])...);
    }
};

template <class I, class... Types>
struct Signature<HRESULT (*)(I*, Types...)> {
    using Interface = I;
    static constexpr size_t kCount = sizeof...(Types);
    template <size_t index>
    using Type = std::tuple_element_t<index, std::tuple<Types..., void>>;

    template <auto function, size_t... index>
    static HRESULT Apply(void* object, const Argument* arguments, std::index_sequence<index...>) {
        return function(static_cast<I*>(object), ArgumentAs<Types>(arguments[index])...);
    }
};

template <auto method>
HRESULT CallMethod(void* object, const Argument* arguments) {
    using Called = Signature<decltype(method)>;
    return Called::template Apply<method>(object, arguments, std::make_index_sequence<Called::kCount>());
}

// Outputs are written through pointers.
template <class T, bool isOutput>
using ValueOf = std::conditional_t<isOutput, std::remove_pointer_t<T>, T>;

template <auto method, size_t index, int flags>
consteval Parameter ParameterRow(const char* name, int32_t omitted = 0) {
    using Type = ValueOf<typename Signature<decltype(method)>::template Type<index>, (flags & kOut) != 0>;
    return {name, TypeOf<Type>(), omitted, KindOf<Type>(), static_cast<uint8_t>(flags)};
}

template <auto method>
consteval Method MethodRow(const char* name, Access access, int slot, std::span<const Parameter> parameters) {
    using Called = Signature<decltype(method)>;
    static_assert(Called::kCount <= kMostParameters);
    if (parameters.size() != Called::kCount) throw "a row for each parameter";
    return {name,
            &__uuidof(typename Called::Interface),
            &CallMethod<method>,
            parameters,
            access,
            static_cast<uint8_t>(slot)};
}

}  // namespace orlix::automation
