#include "module/graphics_probe.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace orlix {
namespace {

// Each step may be told to fail or to throw.
class FakeLibrary final : public GraphicsLibrary {
public:
    bool loads = true, hasEntryPoints = true;
    int status = 0;
    uintptr_t token = 42;
    enum Step { None, Loading, Finding, Starting, ShuttingDown } throwsAt = None;

    int loaded = 0, unloaded = 0;
    uintptr_t shutDownWith = 0;

    bool Load() override {
        ThrowAt(Loading);
        loaded += loads;
        return loads;
    }
    bool FindEntryPoints() override {
        ThrowAt(Finding);
        return hasEntryPoints;
    }
    int Start(uintptr_t& out) override {
        ThrowAt(Starting);
        out = token;
        return status;
    }
    void ShutDown(uintptr_t with) override {
        ThrowAt(ShuttingDown);
        shutDownWith = with;
    }
    void Unload() noexcept override { ++unloaded; }

private:
    void ThrowAt(Step step) const {
        if (throwsAt == step) throw std::runtime_error("inside the library");
    }
};

TEST(GraphicsProbe, IsZeroForAWorkingLibraryOnlyAndLeavesEachUnloaded) {
    const struct {
        const char* name;
        void (*spoil)(FakeLibrary&);
        int result = 1;
        uintptr_t shutDownWith = 0;
    } cases[] = {
        {"working", [](FakeLibrary&) {}, 0, 42},
        {"missing", [](FakeLibrary& library) { library.loads = false; }},
        {"no entry points", [](FakeLibrary& library) { library.hasEntryPoints = false; }},
        {"start-up fails", [](FakeLibrary& library) { library.status = 2; }},
        {"no token", [](FakeLibrary& library) { library.token = 0; }},
        {"loading throws", [](FakeLibrary& library) { library.throwsAt = FakeLibrary::Loading; }},
        {"finding throws", [](FakeLibrary& library) { library.throwsAt = FakeLibrary::Finding; }},
        {"starting throws", [](FakeLibrary& library) { library.throwsAt = FakeLibrary::Starting; }},
        {"shutting down throws", [](FakeLibrary& library) { library.throwsAt = FakeLibrary::ShuttingDown; }},
    };
    for (const auto& [name, spoil, result, shutDownWith] : cases) {
        SCOPED_TRACE(name);
        FakeLibrary library;
        spoil(library);
        EXPECT_EQ(result, ProbeGraphicsLibrary(library));
        EXPECT_EQ(library.loaded, library.unloaded);
        EXPECT_EQ(shutDownWith, library.shutDownWith);
    }
}

}  // namespace
}  // namespace orlix
