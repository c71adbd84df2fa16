#include "module/graphics_probe.hpp"

namespace orlix {
namespace {

class Loaded {
public:
    explicit Loaded(GraphicsLibrary& library) noexcept : library_(library) {}
    ~Loaded() { library_.Unload(); }
    Loaded(const Loaded&) = delete;
    Loaded& operator=(const Loaded&) = delete;

private:
    GraphicsLibrary& library_;
};

}  // namespace

int ProbeGraphicsLibrary(GraphicsLibrary& library) noexcept {
    constexpr int kWorks = 0;
    constexpr int kNeeded = 1;
    try {
        if (!library.Load()) return kNeeded;
        const Loaded loaded(library);
        if (!library.FindEntryPoints()) return kNeeded;
        uintptr_t token = 0;
        if (library.Start(token) != 0 || token == 0) return kNeeded;
        library.ShutDown(token);
        return kWorks;
    } catch (...) {
        return kNeeded;
    }
}

}  // namespace orlix
