// Calls that make no sense.
#include <memory>
#include <random>

#include "automation/script.hpp"
#include "wscript.hpp"

namespace orlix::testing {
namespace {

// Those that scripts have besides the methods of the contract.
constexpr const char* kOthers[] = {"GetPixels", "PutPixels", "Item", "_NewEnum", "GetVertex", "Alpha", "Area", "Width",
                                   // and those of WScript
                                   "Arguments", "ConnectObject", "CreateObject", "DisconnectObject", "Echo", "Quit",
                                   "StdOut", "WriteLine"};

// Random calls of all members of all objects, also of those that calls return. Another seed makes other calls
// (--gtest_random_seed).
class RandomScript {
public:
    explicit RandomScript(unsigned seed) : random_(seed) {
        for (const char* const progId :
             {"Orlix.Image", "Orlix.Bitmap", "Orlix.Histogram", "Orlix.Polygon", "Orlix.StructuringElement",
              "Orlix.ShapeRegionOfInterest", "Orlix.OrlixBuffer", "Orlix.VBHelper"})
            Adopt(CreateObject<IDispatch>(progId));
        const std::shared_ptr<script_host::RunningScript> host(
            new script_host::RunningScript{"C:\\script.vbs",
                                           {"1"},
                                           {[](auto) {}, [](auto) {}, [](int) {}},
                                           script_host::EventConnections(nullptr),
                                           nullptr});
        Adopt(script_host::MakeWScript(host));
        kept_ = objects_.size();
    }

    void Call() {
        const ComPtr<IDispatch> object = objects_[Below(objects_.size())];
        std::string_view name =
            Below(8) ? kContractMethods[Below(std::size(kContractMethods))] : kOthers[Below(std::size(kOthers))];
        // They write files, use the desktop's clipboard, wait for a user.
        for (const std::string_view others : {"SaveToFile", "OpenFileStream", "CopyImage", "BrowseForFolder"})
            if (name == others) return;
        if (name.find("Clipboard") != name.npos) return;
        if (name.starts_with("get_") || name.starts_with("put_")) name.remove_prefix(4);
        std::basic_string<OLECHAR> wide = ToUtf16(name);
        LPOLESTR names[] = {wide.data()};
        DISPID id = 0;
        const bool known = SUCCEEDED(object->GetIDsOfNames(IID_NULL, names, 1, 0, &id));
        if (!known && Below(16) != 0) return;
        small_ = name.starts_with("Create");
        std::vector<Variant> variables(12), arguments;
        for (size_t count = Below(Below(4) ? 4 : 9); arguments.size() < count;)
            arguments.push_back(Any(variables[arguments.size()]));
        DISPID ids[3] = {static_cast<DISPID>(Below(4)), static_cast<DISPID>(Below(4)),
                         static_cast<DISPID>(Below(9)) - 4};
        if (Below(3) == 0) ids[0] = DISPID_PROPERTYPUT;
        const UINT named = Below(3) == 0 ? static_cast<UINT>(Below(4)) : ids[0] == DISPID_PROPERTYPUT ? 1 : 0;
        DISPPARAMS given = {arguments.data(), ids, static_cast<UINT>(arguments.size()), named};
        Variant result;
        EXCEPINFO exception = {};
        UINT bad = 0;
        constexpr WORD kFlags[] = {3, 1, 2, 4, 8, 0, 12, 15, 3, 3};
        const HRESULT called =
            object->Invoke(id, IID_NULL, LOCALE_INVARIANT, kFlags[Below(std::size(kFlags))], &given,
                           Below(9) ? &result : nullptr, Below(9) ? &exception : nullptr, Below(9) ? &bad : nullptr);
        for (const BSTR text : {exception.bstrDescription, exception.bstrSource, exception.bstrHelpFile})
            SysFreeString(text);
        successes += called == S_OK;
        failures += called != S_OK;
        if (result.vt == VT_DISPATCH && result.pdispVal) Adopt(ComPtr<IDispatch>(result.pdispVal));
    }

    int successes = 0, failures = 0;

private:
    size_t Below(size_t limit) { return random_() % limit; }

    void Adopt(ComPtr<IDispatch> object) {
        if (objects_.size() < 24)
            objects_.push_back(std::move(object));
        else
            objects_[kept_ + Below(objects_.size() - kept_)] = std::move(object);
    }

    // With no reference to the variable it is the argument itself.
    Variant Any(Variant& variable) {
        constexpr LONG kNumbers[] = {0, 1, 2, 3, 5, 8, 16, -1, INT32_MAX, INT32_MIN};
        constexpr double kReals[] = {0, 1, 2.5, 7, -1, 100, 1e300, -1e300};
        constexpr VARTYPE kTypes[] = {VT_EMPTY,
                                      VT_NULL,
                                      VT_UI1,
                                      VT_I2,
                                      VT_R4,
                                      VT_BOOL,
                                      VT_ERROR,
                                      VT_CY,
                                      VT_DATE,
                                      VT_UI8,
                                      VT_BYREF | VT_I4,
                                      VT_BYREF | VT_VARIANT,
                                      VT_BYREF | VT_DISPATCH,
                                      VT_DISPATCH,
                                      VT_ARRAY | VT_UI1,
                                      VT_BYREF | VT_RECORD,
                                      0x7fff,
                                      VT_BYREF | VT_ARRAY | VT_VARIANT,
                                      VT_VECTOR};
        Variant value;
        switch (Below(9)) {
            case 0:
            case 1:
            case 2:
                value = static_cast<int>(kNumbers[Below(small_ ? 8 : std::size(kNumbers))]);
                break;
            case 3:
                value = kReals[Below(small_ ? 6 : std::size(kReals))];
                break;
            case 4:
                value = Below(2) ? "3" : "text";
                break;
            case 5:
                value = objects_[Below(objects_.size())];
                break;
            case 6:
                value = Variant::Array<uint8_t>(VT_UI1, Below(2) ? std::vector<ULONG>{8} : std::vector<ULONG>{4, 2},
                                                {1, 2});
                break;
            case 7:
                value = Variant::Missing();
                break;
            default:
                value = Variant::Of(kTypes[Below(std::size(kTypes))]);
                value.llVal = 0;
        }
        if (Below(4) != 0) return value;
        variable = std::move(value);
        return Variant::To(variable);
    }

    std::mt19937 random_;
    std::vector<ComPtr<IDispatch>> objects_;
    size_t kept_ = 0;  // the first ones are never replaced
    bool small_ = false;
};

TEST(HostileScripts, AnyCallHasAResultAndLeavesNothingBehind) {
    ASSERT_TRUE(ModuleUnderTest()) << "is the module registered?";
    {
        RandomScript script(static_cast<unsigned>(::testing::UnitTest::GetInstance()->random_seed()));
        while (script.successes + script.failures < 100000) script.Call();
        EXPECT_GT(script.successes, 1000);
        EXPECT_GT(script.failures, 1000);
    }
    EXPECT_TRUE(ModuleIsUnlocked());
}

// What the process holds of the system: graphics and window objects, handles, and bytes of its own memory.
struct Holdings {
    DWORD graphics = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    DWORD windows = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    DWORD handles = 0;
    size_t bytes = 0;

    Holdings() {
        GetProcessHandleCount(GetCurrentProcess(), &handles);
        PROCESS_HEAP_ENTRY entry = {};
        const HANDLE heap = GetProcessHeap();
        HeapLock(heap);
        while (HeapWalk(heap, &entry))
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
        HeapUnlock(heap);
    }
};

// What the examples do, over and over, with failures and with bitmaps of the system.
TEST(HostileScripts, NothingGrowsOverAThousandCycles) {
    ASSERT_TRUE(ModuleUnderTest()) << "is the module registered?";
    const auto cycle = [] {
        const Script image = NewScriptImage(24, 16);
        image.Put("Pixel", {3, 4, 200});
        const Variant level = Script(image("Histogram"))("AutoThresholdMinimizeVariance", {0, 0});
        const Script particles(Script(image("Threshold", {0, level}))("FindBlobs"));
        EXPECT_EQ(383, Script(particles("Item", {0}))("PixelCount").number());
        image("CorrectPlanar", {image("PlanarFit")});
        EXPECT_TRUE(DeleteObject(reinterpret_cast<HGDIOBJ>(static_cast<intptr_t>(image("CreateHBITMAP", {0}).lVal))));
        EXPECT_NE(S_OK, image.Try("CreateFromFile", {"none.png"}).result);
        EXPECT_NE(S_OK, image.Try("Threshold", {0, image}).result);
        const Script helper("Orlix.VBHelper");
        const Variant stream = helper("CreateMemoryStream");
        image("Save", {stream});
        helper.Put("StreamPosition", {stream, 0});
        helper("ReadBytes", {stream});
    };
    for (int i = 0; i < 100; ++i) cycle();
    const Holdings before;
    for (int i = 0; i < 1000 && !::testing::Test::HasFailure(); ++i) cycle();
    const Holdings after;
    EXPECT_EQ(before.graphics, after.graphics);
    EXPECT_EQ(before.windows, after.windows);
    EXPECT_EQ(before.handles, after.handles);
    constexpr size_t kOfTheSystem = 16'000;  // 16 bytes a cycle would be as much
    EXPECT_LT(after.bytes, before.bytes + kOfTheSystem);
}

}  // namespace
}  // namespace orlix::testing
