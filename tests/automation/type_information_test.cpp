// What object browsers and early-bound languages see of the objects: the dispatch interfaces of the type library.
#include <set>

#include "automation/script.hpp"
#include "automation/windows/class_members.hpp"
#include "automation/windows/script_call.hpp"

namespace orlix::testing {
namespace {

using namespace automation;

// A script's objects, one of each class.
std::vector<Script> AllObjects() {
    const Script image = NewScriptImage(8, 6);
    image("ScalarEquals", {9});
    const Script bitmap(image("Threshold", {5, 10}));
    const Script blobs(bitmap("FindBlobs"));
    return {Script("Orlix.Polygon"),
            Script(image("Histogram")),
            bitmap,
            image,
            Script("Orlix.StructuringElement"),
            Script("Orlix.OrlixBuffer"),
            Script("Orlix.ShapeRegionOfInterest"),
            Script("Orlix.VBHelper"),
            blobs,
            Script(blobs("Region", {0})),
            Script(blobs("LabelImage"))};
}

Access AccessOf(INVOKEKIND kind) { return kind == INVOKE_FUNC ? kCall : kind == INVOKE_PROPERTYGET ? kGet : kPut; }

// Parameters that may be left out have the same value here as in a call without them.
void ExpectSameParameters(const FUNCDESC& function, const Method& method) {
    const Parameters parameters(method);
    ASSERT_EQ(parameters.inputs().size(), static_cast<size_t>(function.cParams));
    bool mayBeLeftOut = false;
    for (size_t i = 0; i < parameters.inputs().size(); ++i) {
        const PARAMDESC& shown = function.lprgelemdescParam[i].paramdesc;
        const Parameter& parameter = method.parameters[parameters.inputs()[i]];
        const bool isOptional = (shown.wParamFlags & PARAMFLAG_FOPT) != 0;
        EXPECT_TRUE(isOptional || !mayBeLeftOut) << "optional parameters come last";
        EXPECT_TRUE(!isOptional || (parameter.flags & kOptional)) << parameter.name;
        mayBeLeftOut = isOptional;
        if ((shown.wParamFlags & PARAMFLAG_FHASDEFAULT) && parameter.kind == Kind::Text) {
            EXPECT_EQ(0u, SysStringLen(shown.pparamdescex->varDefaultValue.bstrVal)) << parameter.name;
        } else if (shown.wParamFlags & PARAMFLAG_FHASDEFAULT) {
            EXPECT_EQ(parameter.omitted, shown.pparamdescex->varDefaultValue.lVal) << parameter.name;
        } else {
            EXPECT_TRUE(!isOptional || parameter.kind == Kind::Real) << parameter.name;
        }
    }
}

TEST(TypeInformation, SaysWhatTheObjectAnswers) {
    ASSERT_TRUE(ModuleUnderTest()) << "is the module registered?";
    std::set<std::string> classes;
    for (const Script& object : AllObjects()) {
        const auto info = Call(object.get(), &IDispatch::GetTypeInfo, 0u, LCID{0});
        Text className;
        ASSERT_EQ(S_OK, info->GetDocumentation(MEMBERID_NIL, className.Out(), nullptr, nullptr, nullptr));
        SCOPED_TRACE(className.Utf8());
        EXPECT_TRUE(classes.insert(className.Utf8()).second) << "each class has its own";
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(S_OK, info->GetTypeAttr(&attributes));
        EXPECT_EQ(TKIND_DISPATCH, attributes->typekind);
        ComPtr<IDispatch> answered;
        EXPECT_EQ(S_OK, object.get()->QueryInterface(attributes->guid, answered.OutVoid()));
        EXPECT_EQ(object.get().get(), answered.get());

        std::vector<const IID*> interfaces;
        for (const ScriptClass& row : kScriptClasses)
            if (row.iid == attributes->guid)
                for (const Interface* const above : row.interfaces) interfaces.push_back(above->iid);
        const ClassMembers members(interfaces);
        std::set<const Method*> shown;
        for (UINT i = 0; i < attributes->cFuncs; ++i) {
            FUNCDESC* function = nullptr;
            ASSERT_EQ(S_OK, info->GetFuncDesc(i, &function));
            const Member* const member = members.Find(function->memid);
            const Method* const method = member ? member->methods[AccessOf(function->invkind)] : nullptr;
            BSTR names[20] = {};
            UINT count = 0;
            EXPECT_EQ(S_OK, info->GetNames(function->memid, names, 20, &count));
            std::vector<std::string> spelled;
            for (UINT name = 0; name < count; ++name) {
                spelled.push_back(ToUtf8(names[name]));
                SysFreeString(names[name]);
            }
            SCOPED_TRACE(spelled.at(0));
            if (method) {
                shown.insert(method);
                ExpectSameParameters(*function, *method);
            }
            EXPECT_TRUE(method) << function->memid;
            const Names parameters = {spelled.size() > 1 ? spelled[1].c_str() : "no such parameter"};
            const std::vector<DISPID> ids = object.IdsOf(spelled[0].c_str(), parameters);
            EXPECT_EQ(function->memid, ids[0]);
            EXPECT_EQ(spelled.size() > 1 ? 0 : DISPID_UNKNOWN, ids[1]);
            info->ReleaseFuncDesc(function);
        }
        for (const ScriptClass& row : kScriptClasses) {
            if (row.iid != attributes->guid) continue;
            for (const Interface* const above : row.interfaces)
                for (const Method& method : above->methods) EXPECT_TRUE(shown.contains(&method)) << method.name;
        }
        info->ReleaseTypeAttr(attributes);
    }
    EXPECT_EQ(kScriptClasses.size(), classes.size());
}

}  // namespace
}  // namespace orlix::testing
