#include "platform/graphics_library.hpp"

#include <windows.h>

namespace orlix {
namespace {

class GdiPlus final : public GraphicsLibrary {
public:
    bool Load() override {
        module_ = LoadLibraryW(L"GdiPlus.dll");
        return module_ != nullptr;
    }
    bool FindEntryPoints() override {
        startup_ = Find<Startup>("GdiplusStartup");
        shutdown_ = Find<Shutdown>("GdiplusShutdown");
        return startup_ && shutdown_;
    }
    int Start(uintptr_t& token) override {
        const StartupInput input = {1, nullptr, FALSE, FALSE};
        ULONG_PTR started = 0;
        const int status = startup_(&started, &input, nullptr);
        token = started;
        return status;
    }
    void ShutDown(uintptr_t token) override { shutdown_(token); }
    void Unload() noexcept override { FreeLibrary(module_); }

private:
    // The library's own record, written out because its headers would bind the module to it.
    struct StartupInput {
        UINT32 version;
        void* debugEventCallback;
        BOOL suppressBackgroundThread;
        BOOL suppressExternalCodecs;
    };
    using Startup = int(WINAPI*)(ULONG_PTR* token, const StartupInput* input, void* output);
    using Shutdown = void(WINAPI*)(ULONG_PTR token);

    template <class Function>
    Function Find(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    }

    HMODULE module_ = nullptr;
    Startup startup_ = nullptr;
    Shutdown shutdown_ = nullptr;
};

}  // namespace

std::unique_ptr<GraphicsLibrary> MakeGraphicsLibrary() { return std::make_unique<GdiPlus>(); }

}  // namespace orlix
