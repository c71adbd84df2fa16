// The type library inside the module: what automation clients and other languages see.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "module/class_rows.hpp"
#include "windows/module_under_test.hpp"
#include "windows/type_library/description.hpp"

namespace orlix::testing {
namespace {

class TypeLibrary : public ::testing::Test {
protected:
    void SetUp() override {
        const std::wstring path = RegisteredModulePath();
        ASSERT_EQ(S_OK, LoadTypeLibEx(path.c_str(), REGKIND_NONE, library_.Out())) << "is the module registered?";
    }

    ComPtr<ITypeLib> library_;
};

TEST_F(TypeLibrary, SaysWhatTheKeptTextSays) {
    std::ifstream file(ORLIX_TYPE_LIBRARY_TEXTS "/types.txt");
    ASSERT_TRUE(file) << "there is no " << ORLIX_TYPE_LIBRARY_TEXTS << "/types.txt";
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), Describe(library_))
        << "tests/windows/type_library/types.txt differs from the type library. When the contract was changed on "
        << "purpose, run scripts/type-library and review the change of this file; clients depend on it.";
}

// A pointer to a virtual member function holds its offset in the table plus 1.
template <class Method>
size_t SlotOf(Method method) {
    size_t first = 0;
    std::memcpy(&first, &method, sizeof first);
    return (first - 1) / sizeof(void*);
}

// What a program depends on, a line for each declaration of the contract, in alphabetical order.
std::string Joined(std::vector<std::string> lines) {
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const std::string& line : lines) text += line + '\n';
    return text;
}

std::string OfTheHeader() {
    struct Fact {
        const char* what;
        long long number;
        const GUID* id;
    };
#define IDENTIFIER(type) {#type " ", 0, &__uuidof(type)},
#define SLOT(type, method) {#type "::" #method " in slot ", static_cast<long long>(SlotOf(&type::method)), nullptr},
#define SIZE(type) {#type " of size ", sizeof(type), nullptr},
#define OFFSET(type, member) {#type "::" #member " at ", offsetof(type, member), nullptr},
#define VALUE(type, member) {#type "::" #member " is ", type::member, nullptr},
    const Fact facts[] = {
#include "contract_rows.inc"
    };
#undef IDENTIFIER
#undef SLOT
#undef SIZE
#undef OFFSET
#undef VALUE
    std::vector<std::string> lines;
    for (const Fact& fact : facts)
        lines.push_back(fact.what + (fact.id ? ToText(*fact.id) : std::to_string(fact.number)));
    return Joined(std::move(lines));
}

std::string OfTheLibrary(const ComPtr<ITypeLib>& library) {
    std::vector<std::string> lines;
    for (const Type& type : TypesOf(library)) {
        const std::string name = type.Name();
        const TYPEATTR& attributes = type.attributes();
        // The system's record, and the dispatch interfaces of scripts, which C++ does not need.
        if (name == "tagRECT" || (attributes.typekind == TKIND_DISPATCH && !name.starts_with('I'))) continue;
        if (attributes.typekind == TKIND_RECORD) {
            lines.push_back(name + " of size " + std::to_string(attributes.cbSizeInstance));
        } else if (attributes.typekind != TKIND_ENUM) {
            lines.push_back(name + " " + ToText(attributes.guid));
        }
        type.EachFunction([&](const FUNCDESC& function) {
            if (function.funckind == FUNC_DISPATCH) return;
            const size_t slot = static_cast<size_t>(function.oVft) / sizeof(void*);
            lines.push_back(name + "::" + type.MethodName(function) + " in slot " + std::to_string(slot));
        });
        type.EachVariable([&](const VARDESC& member) {
            lines.push_back(name + "::" + type.NameOf(member.memid) +
                            (member.varkind == VAR_CONST ? " is " + std::to_string(member.lpvarValue->lVal)
                                                         : " at " + std::to_string(member.oInst)));
        });
    }
    return Joined(std::move(lines));
}

TEST_F(TypeLibrary, AgreesWithTheHeaderInIdentifiersSlotsLayoutsAndValues) {
    EXPECT_EQ(OfTheHeader(), OfTheLibrary(library_));
}

TEST_F(TypeLibrary, IsMadeForThisBitWidth) {
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, library_->GetLibAttr(&attributes));
    EXPECT_EQ(sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32, attributes->syskind);
    library_->ReleaseTLibAttr(attributes);
}

TEST_F(TypeLibrary, SaysWhatEachTypeAndMethodIs) {
    Text help;
    ASSERT_EQ(S_OK, library_->GetDocumentation(-1, nullptr, help.Out(), nullptr, nullptr));
    EXPECT_EQ("Orlix image processing library", help.Utf8());
    std::string otsu;
    for (const Type& type : TypesOf(library_)) {
        SCOPED_TRACE(type.Name());
        // tagRECT is the system's; the help string of a class is its title.
        if (type.Name() == "tagRECT" || type.attributes().typekind == TKIND_COCLASS) continue;
        EXPECT_TRUE(type.HelpOf(MEMBERID_NIL).ends_with('.'));
        type.EachFunction([&](const FUNCDESC& function) {
            const std::string sentence = type.HelpOf(function.memid);
            EXPECT_TRUE(sentence.ends_with('.')) << type.MethodName(function);
            if (type.NameOf(function.memid) == "AutoThresholdMinimizeVariance") otsu = sentence;
        });
    }
    EXPECT_EQ("Threshold of greatest variance between the classes (Otsu 1979).", otsu);
}

// Types that Visual Basic for Applications, Delphi, C# and Python can all call with.
bool IsOfAutomation(const Type& type, const TYPEDESC& description) {
    constexpr VARTYPE kKnown[] = {VT_VOID, VT_HRESULT, VT_I4, VT_R8, VT_BSTR, VT_VARIANT, VT_DISPATCH, VT_UNKNOWN};
    if (description.vt == VT_USERDEFINED)
        return type.Referred(description.hreftype).attributes().typekind == TKIND_ENUM;
    return std::find(std::begin(kKnown), std::end(kKnown), description.vt) != std::end(kKnown);
}

// A pointer to a pointer, but for those that return objects.
bool IsAddressOfMemory(const Type& type, const TYPEDESC& description) {
    if (description.vt != VT_PTR || description.lptdesc->vt != VT_PTR) return false;
    const TYPEDESC& target = *description.lptdesc->lptdesc;
    return target.vt != VT_USERDEFINED || type.Referred(target.hreftype).attributes().typekind != TKIND_INTERFACE;
}

TEST_F(TypeLibrary, OffersNoLanguageWhatItCannotCall) {
    int restricted = 0;
    for (const Type& type : TypesOf(library_))
        type.EachFunction([&](const FUNCDESC& function) {
            const std::string method = type.Name() + "::" + type.MethodName(function);
            const bool isRestricted = function.wFuncFlags & FUNCFLAG_FRESTRICTED;
            bool givesAddress = false;
            for (SHORT i = 0; i < function.cParams; ++i) {
                const TYPEDESC& parameter = function.lprgelemdescParam[i].tdesc;
                givesAddress = givesAddress || IsAddressOfMemory(type, parameter);
                if (function.funckind == FUNC_DISPATCH) {
                    EXPECT_TRUE(IsOfAutomation(type, parameter)) << method << ", parameter " << i;
                }
            }
            if (function.funckind == FUNC_DISPATCH) {
                EXPECT_TRUE(IsOfAutomation(type, function.elemdescFunc.tdesc)) << method;
            } else {
                EXPECT_EQ(givesAddress, isRestricted) << method;
                restricted += isRestricted;
            }
        });
    EXPECT_EQ(16, restricted);
}

TEST_F(TypeLibrary, HasTheClassesInTheOrderOfTheClassTable) {
    std::vector<std::string> classes, facts;
    for (const Type& type : TypesOf(library_))
        if (type.attributes().typekind == TKIND_COCLASS)
            classes.push_back(type.Name() + ToText(type.attributes().guid));
    for (const ClassFacts& row : kClassFacts) facts.push_back(std::string(row.coclass) + row.clsid);
    EXPECT_EQ(facts, classes);
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
