// Programs that have the library in their folder create its classes without the registry.
#include <gtest/gtest.h>

#include <orlix/client.hpp>

#include <string>

#include "module/class_rows.hpp"
#include "windows/module_under_test.hpp"

namespace orlix::testing {
namespace {

// As the manifest of a program asks for the library.
constexpr char kHead[] = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
<assemblyIdentity type="win32" name="program" version="1.0.0.0"/>
<dependency><dependentAssembly>
<assemblyIdentity type="win32" name="orlix" version=")" ORLIX_VERSION R"(.0" processorArchitecture=")";
constexpr char kTail[] = R"("/>
</dependentAssembly></dependency></assembly>)";

// A program's folder, with the library in it and nothing in the registry.
class Manifest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(ModuleUnderTest()) << "is the module registered?";
        wchar_t temporary[MAX_PATH];
        ASSERT_LT(0u, GetTempPathW(MAX_PATH, temporary));
        folder_ = temporary + std::wstring(L"orlix pr\u00fcfung\\");
        CreateDirectoryW(folder_.c_str(), nullptr);
        ASSERT_TRUE(CopyFileW(RegisteredModulePath().c_str(), (folder_ + L"orlix.dll").c_str(), FALSE));
        const std::string manifest = std::string(kHead) + (sizeof(void*) == 8 ? "amd64" : "x86") + kTail;
        const HANDLE file =
            CreateFileW((folder_ + L"program.manifest").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD written = 0;
        ASSERT_TRUE(WriteFile(file, manifest.data(), static_cast<DWORD>(manifest.size()), &written, nullptr));
        CloseHandle(file);
        ASSERT_EQ(S_OK, EntryPoint<HRESULT(WINAPI*)()>("DllUnregisterServer")());
    }
    void TearDown() override {
        EXPECT_EQ(S_OK, EntryPoint<HRESULT(WINAPI*)()>("DllRegisterServer")());
        CoFreeUnusedLibrariesEx(0, 0);
        for (const wchar_t* const name : {L"orlix.dll", L"program.manifest"}) DeleteFileW((folder_ + name).c_str());
        RemoveDirectoryW(folder_.c_str());
    }

    std::wstring folder_;
};

CLSID ClassOf(const std::string& progId) {
    CLSID clsid = {};
    return SUCCEEDED(CLSIDFromProgID(ToUtf16(progId).c_str(), &clsid)) ? clsid : CLSID_NULL;
}

TEST_F(Manifest, MakesEveryClassKnownToAProgramBesideTheLibrary) {
    const std::wstring program = folder_ + L"program.manifest";
    ACTCTXW wanted = {};
    wanted.cbSize = sizeof wanted;
    wanted.lpSource = program.c_str();
    const HANDLE context = CreateActCtxW(&wanted);
    ASSERT_NE(INVALID_HANDLE_VALUE, context) << GetLastError();

    for (const ClassFacts& row : kClassFacts) EXPECT_TRUE(ClassOf(row.progId) == CLSID_NULL) << row.progId;
    ULONG_PTR cookie = 0;
    ASSERT_TRUE(ActivateActCtx(context, &cookie));
    for (const ClassFacts& row : kClassFacts) {
        SCOPED_TRACE(row.progId);
        CLSID clsid = {};
        ASSERT_EQ(S_OK, CLSIDFromString(ToUtf16(row.clsid).c_str(), &clsid));
        EXPECT_EQ(std::string(row.progId) + ".1", NameOf(clsid)) << "the source of errors";
        // The system may make up an identifier for a name in a manifest.
        for (const CLSID& known : {clsid, ClassOf(row.progId), ClassOf(std::string(row.progId) + ".1")}) {
            ComPtr<IDispatch> object;
            EXPECT_EQ(row.built ? S_OK : CLASS_E_CLASSNOTAVAILABLE,
                      CoCreateInstance(known, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IDispatch), object.OutVoid()));
            ComPtr<ITypeInfo> info;
            if (object) {
                EXPECT_EQ(S_OK, object->GetTypeInfo(0, 0, info.Out())) << "late binding needs no registry either";
            }
        }
    }
    {
        Text module;
        ASSERT_EQ(S_OK, CreateObject<IModuleInformation>("Orlix.Image")->get_ModulePath(module.Out()));
        EXPECT_EQ(ToUtf8(folder_ + L"orlix.dll"), module.Utf8());
    }
    EXPECT_TRUE(DeactivateActCtx(0, cookie));
    ReleaseActCtx(context);
}

}  // namespace
}  // namespace orlix::testing
