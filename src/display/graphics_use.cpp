#include "display/graphics_use.hpp"

namespace orlix {
namespace {

GraphicsUse& ModuleUse() {
    static GraphicsUse use(MakeGraphicsLibrary());
    return use;
}

}  // namespace

void GraphicsUse::Begin() noexcept {
    const std::lock_guard lock(mutex_);
    if (++users_ > 1) return;
    try {
        Start();
    } catch (...) {
        // Pictures are drawn without the library.
        ShutDown();
    }
}

void GraphicsUse::End() noexcept {
    const std::lock_guard lock(mutex_);
    if (--users_ == 0) ShutDown();
}

void GraphicsUse::Start() {
    loaded_ = library_->Load();
    if (!loaded_ || !library_->FindEntryPoints()) return;
    uintptr_t token = 0;
    if (library_->Start(token) == 0) token_ = token;
}

void GraphicsUse::ShutDown() {
    if (token_ != 0) library_->ShutDown(std::exchange(token_, 0));
    if (std::exchange(loaded_, false)) library_->Unload();
}

GraphicsShare::GraphicsShare() { ModuleUse().Begin(); }
GraphicsShare::~GraphicsShare() { ModuleUse().End(); }

}  // namespace orlix
