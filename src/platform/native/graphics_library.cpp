#include "platform/graphics_library.hpp"

namespace orlix {
namespace {

class NoLibrary final : public GraphicsLibrary {
public:
    bool Load() override { return false; }
    bool FindEntryPoints() override { return false; }
    int Start(uintptr_t&) override { return 1; }
    void ShutDown(uintptr_t) override {}
    void Unload() noexcept override {}
};

}  // namespace

std::unique_ptr<GraphicsLibrary> MakeGraphicsLibrary() { return std::make_unique<NoLibrary>(); }

}  // namespace orlix
