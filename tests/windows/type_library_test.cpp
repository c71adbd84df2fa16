// The type library inside the module: what automation clients and other languages see.
#include <gtest/gtest.h>

#include <orlix/client.hpp>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "module/class_rows.hpp"
#include "windows/expected_type_library.hpp"
#include "windows/module_under_test.hpp"

namespace orlix::testing {
namespace {

std::string ToText(const GUID& guid) {
    OLECHAR text[39];
    StringFromGUID2(guid, text, 39);
    return ToUtf8(text);
}

// A description of a type, and its attributes.
class Type {
public:
    explicit Type(ComPtr<ITypeInfo> info) : info_(std::move(info)) { info_->GetTypeAttr(&attributes_); }
    ~Type() { info_->ReleaseTypeAttr(attributes_); }
    Type(const Type&) = delete;
    Type& operator=(const Type&) = delete;

    ITypeInfo* operator->() const { return info_.get(); }
    const TYPEATTR& attributes() const { return *attributes_; }

    std::string Name() const { return NameOf(MEMBERID_NIL); }
    std::string NameOf(MEMBERID member) const {
        Text name;
        info_->GetDocumentation(member, name.Out(), nullptr, nullptr, nullptr);
        return name.Utf8();
    }
    std::string ReferredName(HREFTYPE reference) const {
        ComPtr<ITypeInfo> referred;
        if (FAILED(info_->GetRefTypeInfo(reference, referred.Out()))) return "?";
        return Type(std::move(referred)).Name();
    }
    std::string ReferredName(UINT implemented) const {
        HREFTYPE reference = 0;
        if (FAILED(info_->GetRefTypeOfImplType(implemented, &reference))) return "?";
        return ReferredName(reference);
    }
    std::string TypeName(const TYPEDESC& type) const {
        switch (type.vt) {
            case VT_PTR:
                return TypeName(*type.lptdesc) + "*";
            case VT_USERDEFINED:
                return ReferredName(type.hreftype);
            case VT_I4:
                return "long";
            case VT_R8:
                return "double";
            case VT_UI1:
                return "unsigned char";
            case VT_UI2:
                return "unsigned short";
            case VT_UINT:
                return "unsigned int";
            case VT_UI4:
                return "unsigned long";
            case VT_BSTR:
                return "BSTR";
            case VT_VOID:
                return "void";
            case VT_UNKNOWN:
                return "IUnknown*";
            case VT_HRESULT:
                return "HRESULT";
            default:
                return "type " + std::to_string(type.vt);
        }
    }

private:
    ComPtr<ITypeInfo> info_;
    TYPEATTR* attributes_ = nullptr;
};

std::string Kind(INVOKEKIND kind) {
    return kind == INVOKE_FUNC          ? "method"
           : kind == INVOKE_PROPERTYGET ? "get"
           : kind == INVOKE_PROPERTYPUT ? "put"
                                        : "?";
}

std::string Flags(USHORT flags) {
    std::string text;
    const auto add = [&](USHORT flag, const char* name) {
        if (flags & flag) text += (text.empty() ? "[" : ", ") + std::string(name);
    };
    add(PARAMFLAG_FIN, "in");
    add(PARAMFLAG_FOUT, "out");
    add(PARAMFLAG_FRETVAL, "retval");
    add(PARAMFLAG_FOPT, "optional");
    return text.empty() ? "" : text + "] ";
}

// "at OFFSET: KIND NAME(PARAMETERS)", offsets in bytes.
std::string MethodLine(size_t offset, const std::string& kind, const std::string& name, const std::string& parameters) {
    return "at " + std::to_string(offset) + ": " + kind + " " + name + "(" + parameters + ")";
}

std::string MethodLine(const Type& type, const FUNCDESC& function) {
    BSTR names[32] = {};
    UINT count = 0;
    type->GetNames(function.memid, names, 32, &count);
    std::string parameters;
    for (SHORT i = 0; i < function.cParams; ++i) {
        const ELEMDESC& parameter = function.lprgelemdescParam[i];
        if (i > 0) parameters += ", ";
        parameters += Flags(parameter.paramdesc.wParamFlags) + type.TypeName(parameter.tdesc);
        const BSTR name = names[i + 1];
        const bool isPutValue = function.invkind == INVOKE_PROPERTYPUT && i == function.cParams - 1;
        if (isPutValue) continue;
        parameters += ' ';
        parameters += ToUtf8({name ? name : L"", SysStringLen(name)});
    }
    const std::string name = ToUtf8({names[0], SysStringLen(names[0])});
    for (UINT i = 0; i < count; ++i) SysFreeString(names[i]);
    std::string line = MethodLine(static_cast<size_t>(function.oVft), Kind(function.invkind), name, parameters);
    if (type.TypeName(function.elemdescFunc.tdesc) != "HRESULT" || function.callconv != CC_STDCALL) line += " ?";
    return line;
}

std::string MemberLine(const Type& type, const FUNCDESC& function) {
    BSTR name = nullptr;
    UINT count = 0;
    type->GetNames(function.memid, &name, 1, &count);
    std::string line = std::to_string(function.memid) + ": " + Kind(function.invkind) + " " +
                       ToUtf8({name ? name : L"", SysStringLen(name)}) + " " +
                       type.TypeName(function.elemdescFunc.tdesc) + "(";
    SysFreeString(name);
    for (SHORT i = 0; i < function.cParams; ++i)
        line += (i > 0 ? ", " : "") + type.TypeName(function.lprgelemdescParam[i].tdesc);
    return line + ")";
}

class TypeLibrary : public ::testing::Test {
protected:
    void SetUp() override {
        const std::wstring path = RegisteredModulePath();
        ASSERT_EQ(S_OK, LoadTypeLibEx(path.c_str(), REGKIND_NONE, library_.Out())) << "is the module registered?";
    }

    // By the position in the library, of the kinds asked for.
    std::vector<std::unique_ptr<Type>> Types(std::set<TYPEKIND> kinds) const {
        std::vector<std::unique_ptr<Type>> types;
        for (UINT i = 0; i < library_->GetTypeInfoCount(); ++i) {
            ComPtr<ITypeInfo> info;
            if (FAILED(library_->GetTypeInfo(i, info.Out()))) continue;
            auto type = std::make_unique<Type>(std::move(info));
            if (kinds.contains(type->attributes().typekind)) types.push_back(std::move(type));
        }
        return types;
    }
    std::unique_ptr<Type> Find(TYPEKIND kind, const std::string& name) const {
        for (auto& type : Types({kind}))
            if (type->Name() == name) return std::move(type);
        return nullptr;
    }
    std::vector<std::string> Names(TYPEKIND kind) const {
        std::vector<std::string> names;
        for (const auto& type : Types({kind})) names.push_back(type->Name());
        std::sort(names.begin(), names.end());
        return names;
    }

    ComPtr<ITypeLib> library_;
};

template <class Facts>
std::vector<std::string> SortedNames(const Facts& facts) {
    std::vector<std::string> names;
    for (const auto& fact : facts) names.push_back(fact.name);
    std::sort(names.begin(), names.end());
    return names;
}

TEST_F(TypeLibrary, IsTheOneOfTheContractForThisBitWidth) {
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, library_->GetLibAttr(&attributes));
    EXPECT_EQ(kTypeLibraryId, ToText(attributes->guid));
    EXPECT_EQ(1, attributes->wMajorVerNum);
    EXPECT_EQ(0, attributes->wMinorVerNum);
    EXPECT_EQ(sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32, attributes->syskind);
    library_->ReleaseTLibAttr(attributes);
    Text name;
    Text help;
    ASSERT_EQ(S_OK, library_->GetDocumentation(-1, name.Out(), help.Out(), nullptr, nullptr));
    EXPECT_EQ("OrlixLib", name.Utf8());
    EXPECT_EQ("Orlix image processing library", help.Utf8());
}

TEST_F(TypeLibrary, HoldsTheTypesOfTheContractAndNoOthers) {
    EXPECT_EQ(SortedNames(ExpectedInterfaces()), Names(TKIND_INTERFACE));
    EXPECT_EQ(SortedNames(ExpectedEnumerations()), Names(TKIND_ENUM));
    EXPECT_EQ(SortedNames(ExpectedRecords()), Names(TKIND_RECORD));
    EXPECT_EQ(SortedNames(ExpectedCoclasses()), Names(TKIND_COCLASS));
    EXPECT_EQ(std::vector<std::string>{}, Names(TKIND_MODULE));
    EXPECT_EQ(std::vector<std::string>{}, Names(TKIND_UNION));
    EXPECT_EQ(SortedNames(ExpectedDispatchInterfaces()), Names(TKIND_DISPATCH));
}

TEST_F(TypeLibrary, SaysWhatEachTypeAndMethodIs) {
    const auto helpOf = [](const Type& type, MEMBERID member) {
        Text help;
        type->GetDocumentation(member, nullptr, help.Out(), nullptr, nullptr);
        return help.Utf8();
    };
    for (const auto& type : Types({TKIND_INTERFACE, TKIND_DISPATCH, TKIND_ENUM, TKIND_RECORD})) {
        SCOPED_TRACE(type->Name());
        if (type->Name() == "tagRECT") continue;  // the system's
        EXPECT_TRUE(helpOf(*type, MEMBERID_NIL).ends_with('.'));
        for (WORD i = 0; i < type->attributes().cFuncs; ++i) {
            FUNCDESC* function = nullptr;
            ASSERT_EQ(S_OK, (*type)->GetFuncDesc(i, &function));
            EXPECT_TRUE(helpOf(*type, function->memid).ends_with('.')) << type->NameOf(function->memid);
            (*type)->ReleaseFuncDesc(function);
        }
    }
    const auto histogram = Find(TKIND_INTERFACE, "IHistogram");
    ASSERT_TRUE(histogram);
    OLECHAR* name = const_cast<OLECHAR*>(L"AutoThresholdMinimizeVariance");
    MEMBERID otsu = MEMBERID_NIL;
    ASSERT_EQ(S_OK, (*histogram)->GetIDsOfNames(&name, 1, &otsu));
    EXPECT_EQ("Threshold of greatest variance between the classes (Otsu 1979).", helpOf(*histogram, otsu));
}

TEST_F(TypeLibrary, HasTheMembersOfDispatchInterfaces) {
    for (const ExpectedDispatchInterface& expected : ExpectedDispatchInterfaces()) {
        SCOPED_TRACE(expected.name);
        const auto type = Find(TKIND_DISPATCH, expected.name);
        ASSERT_TRUE(type);
        EXPECT_EQ(expected.iid, ToText(type->attributes().guid));
        EXPECT_EQ(0, type->attributes().cVars);
        std::vector<std::string> got;
        for (WORD i = 0; i < type->attributes().cFuncs; ++i) {
            FUNCDESC* function = nullptr;
            ASSERT_EQ(S_OK, (*type)->GetFuncDesc(i, &function));
            got.push_back(MemberLine(*type, *function));
            (*type)->ReleaseFuncDesc(function);
        }
        EXPECT_EQ(std::vector<std::string>(expected.members.begin(), expected.members.end()), got);
    }
}

TEST_F(TypeLibrary, HasEachMethodInTheSlotOfTheHeaderWithItsParameters) {
    for (const ExpectedInterface& expected : ExpectedInterfaces()) {
        SCOPED_TRACE(expected.name);
        const auto type = Find(TKIND_INTERFACE, expected.name);
        ASSERT_TRUE(type);
        EXPECT_EQ(expected.iid, ToText(type->attributes().guid));
        EXPECT_EQ(expected.iid, ToText(expected.headerIid));
        ASSERT_EQ(1, type->attributes().cImplTypes);
        EXPECT_EQ(expected.parent, type->ReferredName(UINT{0}));

        std::vector<std::string> want;
        for (const ExpectedMethod& method : expected.methods)
            want.push_back(MethodLine(method.offset, Kind(method.kind), method.name, method.parameters));
        std::vector<std::string> got;
        for (WORD i = 0; i < type->attributes().cFuncs; ++i) {
            FUNCDESC* function = nullptr;
            ASSERT_EQ(S_OK, (*type)->GetFuncDesc(i, &function));
            got.push_back(MethodLine(*type, *function));
            (*type)->ReleaseFuncDesc(function);
        }
        EXPECT_EQ(want, got);
        if (!expected.methods.empty()) {
            EXPECT_EQ(expected.methods.back().offset + sizeof(void*), type->attributes().cbSizeVft);
        }
    }
}

TEST_F(TypeLibrary, HasTheRecordsAsTheHeaderLaysThemOut) {
    for (const ExpectedRecord& expected : ExpectedRecords()) {
        SCOPED_TRACE(expected.name);
        const auto type = Find(TKIND_RECORD, expected.name);
        ASSERT_TRUE(type);
        EXPECT_EQ(expected.size, type->attributes().cbSizeInstance);
        const auto line = [](size_t offset, const std::string& name, const std::string& typeName) {
            return "at " + std::to_string(offset) + ": " + typeName + " " + name;
        };
        std::vector<std::string> want;
        for (const ExpectedField& field : expected.fields) want.push_back(line(field.offset, field.name, field.type));
        std::vector<std::string> got;
        for (WORD i = 0; i < type->attributes().cVars; ++i) {
            VARDESC* field = nullptr;
            ASSERT_EQ(S_OK, (*type)->GetVarDesc(i, &field));
            got.push_back(line(field->oInst, type->NameOf(field->memid), type->TypeName(field->elemdescVar.tdesc)));
            (*type)->ReleaseVarDesc(field);
        }
        EXPECT_EQ(want, got);
    }
}

TEST_F(TypeLibrary, HasTheEnumerationsWithTheirValues) {
    for (const ExpectedEnumeration& expected : ExpectedEnumerations()) {
        SCOPED_TRACE(expected.name);
        const auto type = Find(TKIND_ENUM, expected.name);
        ASSERT_TRUE(type);
        std::vector<std::pair<std::string, long>> want(expected.values.begin(), expected.values.end());
        std::vector<std::pair<std::string, long>> got;
        for (WORD i = 0; i < type->attributes().cVars; ++i) {
            VARDESC* value = nullptr;
            ASSERT_EQ(S_OK, (*type)->GetVarDesc(i, &value));
            EXPECT_EQ(VAR_CONST, value->varkind);
            EXPECT_EQ(VT_I4, value->lpvarValue->vt);
            got.emplace_back(type->NameOf(value->memid), value->lpvarValue->lVal);
            (*type)->ReleaseVarDesc(value);
        }
        EXPECT_EQ(want, got);
    }
}

TEST_F(TypeLibrary, HasTheClassesInTheOrderOfTheClassTableWithTheirInterfaces) {
    const auto classes = Types({TKIND_COCLASS});
    ASSERT_EQ(std::size(kClassFacts), classes.size());
    const auto expected = ExpectedCoclasses();
    for (size_t i = 0; i < classes.size(); ++i) {
        const Type& type = *classes[i];
        SCOPED_TRACE(type.Name());
        EXPECT_EQ(kClassFacts[i].coclass, type.Name());
        EXPECT_EQ(kClassFacts[i].clsid, ToText(type.attributes().guid));
        std::vector<std::string> got;
        for (UINT k = 0; k < type.attributes().cImplTypes; ++k) {
            INT flags = 0;
            ASSERT_EQ(S_OK, type->GetImplTypeFlags(k, &flags));
            const bool isDefault = flags & IMPLTYPEFLAG_FDEFAULT;
            const bool isSource = flags & IMPLTYPEFLAG_FSOURCE;
            got.push_back((isDefault ? "[default] " : "") + std::string(isSource ? "[source] " : "") +
                          type.ReferredName(k));
            if (isDefault) {
                EXPECT_EQ(isSource ? kClassFacts[i].sourceInterface : kClassFacts[i].defaultInterface,
                          type.ReferredName(k));
            }
        }
        EXPECT_EQ(std::vector<std::string>(expected[i].interfaces.begin(), expected[i].interfaces.end()), got);
    }
}

TEST_F(TypeLibrary, IsFoundByItsIdentifierOnceTheModuleIsRegistered) {
    GUID id = {};
    ASSERT_EQ(S_OK, CLSIDFromString(ToUtf16(kTypeLibraryId).c_str(), &id));
    Text path;
    ASSERT_EQ(S_OK, QueryPathOfRegTypeLib(id, 1, 0, 0, path.Out()));
    EXPECT_EQ(ToUtf8(RegisteredModulePath()), path.Utf8());
    ComPtr<ITypeLib> registered;
    EXPECT_EQ(S_OK, LoadRegTypeLib(id, 1, 0, 0, registered.Out()));
}

}  // namespace
}  // namespace orlix::testing
