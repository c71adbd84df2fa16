#include "windows/type_library/description.hpp"

#include <span>
#include <sstream>
#include <utility>

namespace orlix::testing {
namespace {

constexpr size_t kColumns = 120;

// The name of a value; "unknown N" for one that is not listed.
template <class Value>
std::string NameIn(std::span<const std::pair<Value, const char*>> names, Value value) {
    for (const auto& [listed, name] : names)
        if (listed == value) return name;
    return "unknown " + std::to_string(value);
}

std::string Accessor(INVOKEKIND kind) {
    static constexpr std::pair<INVOKEKIND, const char*> kNames[] = {
        {INVOKE_FUNC, ""}, {INVOKE_PROPERTYGET, "get"}, {INVOKE_PROPERTYPUT, "put"}, {INVOKE_PROPERTYPUTREF, "putref"}};
    return NameIn<INVOKEKIND>(kNames, kind);
}

std::string ParameterFlags(USHORT flags) {
    static constexpr std::pair<USHORT, const char*> kNames[] = {
        {PARAMFLAG_FIN, "in"},         {PARAMFLAG_FOUT, "out"},      {PARAMFLAG_FLCID, "lcid"},
        {PARAMFLAG_FRETVAL, "retval"}, {PARAMFLAG_FOPT, "optional"}, {PARAMFLAG_FHASDEFAULT, "defaultvalue"},
    };
    std::string text;
    for (const auto& [flag, name] : kNames)
        if (flags & flag) text += (text.empty() ? "[" : ", ") + std::string(name);
    return text.empty() ? "" : text + "] ";
}

// ", flags N" where there are any: TYPEFLAG_ of types, FUNCFLAG_ of methods.
std::string Flags(unsigned flags) { return flags ? ", flags " + std::to_string(flags) : ""; }

std::string MethodLines(const Type& type, const FUNCDESC& function) {
    // A dispatch interface calls by identifier, any other by place in the table of virtual functions.
    const bool byId = function.funckind == FUNC_DISPATCH;
    const size_t slot = static_cast<size_t>(function.oVft) / sizeof(void*);
    std::string rest = "    " + (byId ? "id " + std::to_string(function.memid) : "slot " + std::to_string(slot)) +
                       ": " + type.Describe(function) + Flags(function.wFuncFlags);
    std::string lines;
    while (rest.size() > kColumns) {
        const size_t comma = rest.rfind(", [", kColumns - 1);
        if (comma == std::string::npos) break;
        lines += rest.substr(0, comma + 1) + '\n';
        rest = std::string(12, ' ') + rest.substr(comma + 2);
    }
    return lines + rest + '\n';
}

std::string ValueOf(const VARDESC& constant) {
    const bool isLong = constant.varkind == VAR_CONST && constant.lpvarValue->vt == VT_I4;
    return isLong ? std::to_string(constant.lpvarValue->lVal) : "?";
}

void Write(std::ostream& out, const Type& type) {
    const TYPEATTR& attributes = type.attributes();
    const std::string id = ToText(attributes.guid) + Flags(attributes.wTypeFlags);
    const TYPEKIND kind = attributes.typekind;
    out << '\n';
    if (kind == TKIND_INTERFACE) {
        out << "interface " << type.Name() << " : " << type.Implemented(0).Name() << ' ' << id << ", "
            << attributes.cbSizeVft / sizeof(void*) << " slots\n";
    } else if (kind == TKIND_DISPATCH) {
        out << "dispatch interface " << type.Name() << ' ' << id << '\n';
    } else if (kind == TKIND_ENUM) {
        out << "enumeration " << type.Name() << '\n';
    } else if (kind == TKIND_RECORD) {
        out << "record " << type.Name() << '\n';
    } else if (kind == TKIND_COCLASS) {
        out << "class " << type.Name() << ' ' << id << '\n';
        for (UINT i = 0; i < attributes.cImplTypes; ++i)
            out << "    " << type.ImplementedFlags(i) << type.Implemented(i).Name() << '\n';
    } else {
        out << "kind " << kind << ' ' << type.Name() << '\n';
    }
    type.EachFunction([&](const FUNCDESC& function) { out << MethodLines(type, function); });
    type.EachVariable([&](const VARDESC& variable) {
        const std::string name = type.NameOf(variable.memid);
        if (kind == TKIND_RECORD) {
            out << "    " << type.Describe(variable.elemdescVar.tdesc) << ' ' << name << '\n';
        } else {
            out << "    " << name << " = " << ValueOf(variable) << '\n';
        }
    });
}

void WriteHeading(std::ostream& out, const ComPtr<ITypeLib>& library) {
    Text name;
    Check(library->GetDocumentation(-1, name.Out(), nullptr, nullptr, nullptr));
    TLIBATTR* attributes = nullptr;
    Check(library->GetLibAttr(&attributes));
    out << "\nlibrary " << name.Utf8() << ' ' << ToText(attributes->guid) << ", version " << attributes->wMajorVerNum
        << '.' << attributes->wMinorVerNum << ", language " << attributes->lcid << '\n';
    library->ReleaseTLibAttr(attributes);
}

}  // namespace

std::string ToText(const GUID& guid) {
    OLECHAR text[39];
    StringFromGUID2(guid, text, 39);
    return ToUtf8(text);
}

Type::Type(ComPtr<ITypeInfo> info) : info_(std::move(info)) { Check(info_->GetTypeAttr(&attributes_)); }

std::string Type::NameOf(MEMBERID member) const {
    Text name;
    Check(info_->GetDocumentation(member, name.Out(), nullptr, nullptr, nullptr));
    return name.Utf8();
}

std::string Type::HelpOf(MEMBERID member) const {
    Text help;
    Check(info_->GetDocumentation(member, nullptr, help.Out(), nullptr, nullptr));
    return help.Utf8();
}

std::string Type::MethodName(const FUNCDESC& function) const {
    const std::string accessor = Accessor(function.invkind);
    return accessor + (accessor.empty() ? "" : "_") + NameOf(function.memid);
}

Type Type::Referred(HREFTYPE reference) const { return Type(Call(info_, &ITypeInfo::GetRefTypeInfo, reference)); }

Type Type::Implemented(UINT index) const { return Referred(Call(info_, &ITypeInfo::GetRefTypeOfImplType, index)); }

std::string Type::ImplementedFlags(UINT index) const {
    const INT flags = Call(info_, &ITypeInfo::GetImplTypeFlags, index);
    return std::string(flags & IMPLTYPEFLAG_FDEFAULT ? "[default] " : "") +
           (flags & IMPLTYPEFLAG_FSOURCE ? "[source] " : "") +
           (flags & IMPLTYPEFLAG_FRESTRICTED ? "[restricted] " : "");
}

std::string Type::Describe(const TYPEDESC& type) const {
    static constexpr std::pair<VARTYPE, const char*> kNames[] = {
        {VT_I4, "long"},           {VT_R8, "double"},         {VT_UI1, "unsigned char"}, {VT_UI2, "unsigned short"},
        {VT_UINT, "unsigned int"}, {VT_UI4, "unsigned long"}, {VT_BSTR, "BSTR"},         {VT_VOID, "void"},
        {VT_UNKNOWN, "IUnknown*"}, {VT_HRESULT, "HRESULT"},   {VT_I8, "long long"},      {VT_DISPATCH, "IDispatch*"},
        {VT_VARIANT, "VARIANT"}};
    if (type.vt == VT_PTR) return Describe(*type.lptdesc) + "*";
    if (type.vt == VT_USERDEFINED) return Referred(type.hreftype).Name();
    return NameIn<VARTYPE>(kNames, type.vt);
}

std::string Type::Describe(const FUNCDESC& function) const {
    constexpr UINT kMost = 32;
    BSTR names[kMost] = {};
    UINT count = 0;
    Check(info_->GetNames(function.memid, names, kMost, &count));
    std::vector<std::string> spelled;
    for (BSTR name : names) {
        spelled.push_back(ToUtf8({name ? name : L"", SysStringLen(name)}));
        SysFreeString(name);
    }
    std::string parameters;
    for (size_t i = 0; i < static_cast<size_t>(function.cParams); ++i) {
        const ELEMDESC& parameter = function.lprgelemdescParam[i];
        parameters += (i > 0 ? ", " : "") + ParameterFlags(parameter.paramdesc.wParamFlags) + Describe(parameter.tdesc);
        // The names are those of the get where there is one, so the value that a put takes has none.
        const bool isValue = function.invkind == INVOKE_PROPERTYPUT && i + 1 == static_cast<size_t>(function.cParams);
        if (!isValue && i + 1 < kMost) parameters += " " + spelled[i + 1];
    }
    const std::string accessor = Accessor(function.invkind);
    return Describe(function.elemdescFunc.tdesc) + " " + accessor + (accessor.empty() ? "" : " ") + spelled[0] + "(" +
           parameters + ")" +
           (function.callconv == CC_STDCALL ? "" : ", calling convention " + std::to_string(function.callconv));
}

void Type::EachFunction(const std::function<void(const FUNCDESC&)>& visit) const {
    for (WORD i = 0; i < attributes_->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        Check(info_->GetFuncDesc(i, &function));
        visit(*function);
        info_->ReleaseFuncDesc(function);
    }
}

void Type::EachVariable(const std::function<void(const VARDESC&)>& visit) const {
    for (WORD i = 0; i < attributes_->cVars; ++i) {
        VARDESC* variable = nullptr;
        Check(info_->GetVarDesc(i, &variable));
        visit(*variable);
        info_->ReleaseVarDesc(variable);
    }
}

std::vector<Type> TypesOf(const ComPtr<ITypeLib>& library) {
    std::vector<Type> types;
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        Type type(Call(library, &ITypeLib::GetTypeInfo, i));
        types.push_back(type.IsDual() ? type.ForCompiledClients() : std::move(type));
    }
    return types;
}

std::string Describe(const ComPtr<ITypeLib>& library) {
    std::ostringstream out;
    out << "# Written by scripts/type-library from the type library of orlix.dll.\n";
    WriteHeading(out, library);
    for (const Type& type : TypesOf(library)) Write(out, type);
    return out.str();
}

}  // namespace orlix::testing
