// The helper object as scripts use it, by name and through the type library.
#include <atomic>
#include <string>
#include <thread>

#include "automation/script.hpp"
#include "support/objects.hpp"

namespace orlix::testing {
namespace {

class VBHelperScript : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(ModuleUnderTest()) << "is the module registered?"; }
    void TearDown() override { EXPECT_TRUE(ModuleIsUnlocked()); }
};

TEST_F(VBHelperScript, MovesBytesAndTextsBetweenStreamsAndArrays) {
    const Script helper("Orlix.VBHelper");
    const Variant stream = helper("CreateMemoryStream");
    ASSERT_EQ(VT_DISPATCH, stream.vt) << "for VBScript's Set";
    helper("WriteText", {stream, "caf\xC3\xA9"});
    EXPECT_EQ(5, helper("StreamPosition", {stream}).number());
    EXPECT_EQ(S_OK, helper.Try("StreamPosition", {stream, 3}, DISPATCH_PROPERTYPUT).result);
    const Variant bytes = helper("ReadBytes", {stream});
    EXPECT_EQ((std::vector<uint8_t>{0xC3, 0xA9}), bytes.elements<uint8_t>(VT_UI1));
    EXPECT_EQ(std::vector<uint8_t>(), helper("ReadBytes", {stream, 7}).elements<uint8_t>(VT_UI1)) << "at the end";
    helper("WriteBytes", {stream, bytes});
    helper.Put("StreamPosition", {stream, 0});
    EXPECT_EQ("caf\xC3\xA9\xC3\xA9", helper("ReadText", {stream}).text());
    EXPECT_EQ(7, helper("StreamSize", {stream}).number());

    EXPECT_EQ(DISP_E_TYPEMISMATCH, helper.Try("WriteBytes", {stream, 7}).scode);
    EXPECT_EQ("IVBHelper::ReadBytes: Size must not be below -1.", helper.Try("ReadBytes", {stream, -2}).text);
    EXPECT_EQ(DISP_E_TYPEMISMATCH, helper.Try("ReadText", {5}).result);
    EXPECT_EQ(E_NOINTERFACE, helper.Try("ReadText", {helper}).scode);
    EXPECT_EQ(E_POINTER, helper.Try("ReadText", {ComPtr<IDispatch>()}).scode);
}

TEST_F(VBHelperScript, KeepsImagesInStreams) {
    const Script helper("Orlix.VBHelper"), image = NewScriptImage(3, 2), other("Orlix.Image"), third("Orlix.Image");
    image("ScalarEquals", {77});
    const Variant stream = helper("CreateMemoryStream");
    image("Save", {stream});
    image("SaveToStream", {stream});
    helper.Put("StreamPosition", {stream, 0});
    other("Load", {stream});
    third("LoadFromStream", {stream});
    for (const Script* loaded : {&other, &third}) {
        EXPECT_EQ(3, (*loaded)("Width").number());
        EXPECT_EQ(77, (*loaded)("Pixel", {2, 1}).number());
    }
}

TEST_F(VBHelperScript, MeasuresAFileInOneCall) {
    const Script helper("Orlix.VBHelper"), image = NewScriptImage(4, 2);
    image("ScalarEquals", {10});
    image.Put("Pixel", {3, 1, 250});
    const Variant name = helper("TemporaryName", {".png"});
    image("SaveToFile", {name});
    const Script dark(helper("MeasureFile", {name})), bright(helper("MeasureFile", {name, TM_MinimizeVariance, true}));
    DeleteFileW(name.bstrVal);
    EXPECT_EQ(40, dark("GrayAverage").number());
    EXPECT_EQ(7, dark("PhasePixels").number());
    EXPECT_EQ(1, bright("PhasePixels").number());
    EXPECT_EQ(3, bright("PhaseXCentroid").number());
    EXPECT_EQ("IImageVPAEx::CreateFromFile: failed to open file.", helper.Try("MeasureFile", {name}).text);
}

// Presses a button of the next dialog of the thread that makes it.
class DialogUser {
public:
    explicit DialogUser(WPARAM button) : thread_([this, button, of = GetCurrentThreadId()] { Press(button, of); }) {}
    ~DialogUser() {
        gaveUp_ = true;
        thread_.join();
    }

private:
    void Press(WPARAM button, DWORD thread) const {
        for (HWND dialog = nullptr; !gaveUp_ && !dialog; Sleep(10)) {
            EnumThreadWindows(thread, &FindDialog, reinterpret_cast<LPARAM>(&dialog));
            if (dialog) PostMessageW(dialog, WM_COMMAND, button, 0);
        }
    }
    static BOOL CALLBACK FindDialog(HWND window, LPARAM found) {
        if (GetClassLongPtrW(window, GCW_ATOM) != kDialogClass || !IsWindowVisible(window)) return TRUE;
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    }
    static constexpr ULONG_PTR kDialogClass = 32770;

    std::atomic<bool> gaveUp_ = false;
    std::thread thread_;
};

TEST_F(VBHelperScript, AsksForAFolder) {
    const Script helper("Orlix.VBHelper");
    const std::string folder = helper("TemporaryFolder").text(), start = folder.substr(0, folder.size() - 1);
    {
        const DialogUser agrees(IDOK);
        EXPECT_EQ(start, helper("BrowseForFolder", {"Where are the images?", start.c_str()}).text());
    }
    const DialogUser cancels(IDCANCEL);
    EXPECT_EQ("", helper("BrowseForFolder", {"Where are the images?", start.c_str()}).text());
}

// Languages that bind early call the interface's methods as the type library describes them.
TEST_F(VBHelperScript, IsDual) {
    const Script helper("Orlix.VBHelper");
    ComPtr<ITypeInfo> late, dual;
    ComPtr<ITypeLib> library;
    UINT index = 0;
    ASSERT_EQ(S_OK, helper.get()->GetTypeInfo(0, 0, late.Out()));
    ASSERT_EQ(S_OK, late->GetContainingTypeLib(library.Out(), &index));
    ASSERT_EQ(S_OK, library->GetTypeInfoOfGuid(__uuidof(IVBHelper), dual.Out()));
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, dual->GetTypeAttr(&attributes));
    EXPECT_TRUE(attributes->wTypeFlags & TYPEFLAG_FDUAL);
    int members = 0;
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* method = nullptr;
        ASSERT_EQ(S_OK, dual->GetFuncDesc(i, &method));
        Text name;
        ASSERT_EQ(S_OK, dual->GetDocumentation(method->memid, name.Out(), nullptr, nullptr, nullptr));
        if (method->memid > 0 && method->memid < 0x60000000) {
            EXPECT_EQ(method->memid, helper.IdsOf(name.Utf8().c_str())[0]) << name.Utf8();
            ++members;
        }
        dual->ReleaseFuncDesc(method);
    }
    dual->ReleaseTypeAttr(attributes);
    EXPECT_EQ(17, members) << "15 numbers, of which two are properties that can be set";

    // The library calls the method with the arguments on the stack, a VARIANT by value among them.
    const auto object = CreateObject<IVBHelper>("Orlix.VBHelper");
    const auto call = [&](DISPID id, std::vector<Variant> backwards) {
        DISPPARAMS arguments = {backwards.data(), nullptr, static_cast<UINT>(backwards.size()), 0};
        Variant result;
        EXPECT_EQ(S_OK, dual->Invoke(object.get(), id, DISPATCH_METHOD, &arguments, &result, nullptr, nullptr)) << id;
        return result;
    };
    const Variant stream = call(2, {});
    const Variant given = helper("CreateMemoryStream");
    helper("WriteText", {given, "abc"});
    helper.Put("StreamPosition", {given, 0});
    call(8, {call(7, {-1, given}), stream});
    EXPECT_EQ(3, helper("StreamSize", {stream}).number());
}

}  // namespace
}  // namespace orlix::testing
