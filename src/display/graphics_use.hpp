// Module-wide start of the system's graphics library, which runs while a picture exists.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/graphics_library.hpp"

namespace orlix {

// Counts the users of a library. The first one starts it, the last one shuts it down; after a failed start the next
// attempt is made by the next first user. Callable from any thread.
class GraphicsUse {
public:
    explicit GraphicsUse(std::unique_ptr<GraphicsLibrary> library) : library_(std::move(library)) {}

    void Begin() noexcept;
    void End() noexcept;

private:
    void Start();
    void ShutDown();

    std::mutex mutex_;
    int users_ = 0;
    bool loaded_ = false;
    uintptr_t token_ = 0;  // 0: not started
    std::unique_ptr<GraphicsLibrary> library_;
};

// One user of the system's library, for the lifetime of this object.
class GraphicsShare {
public:
    GraphicsShare();
    ~GraphicsShare();
    GraphicsShare(const GraphicsShare&) = delete;
    GraphicsShare& operator=(const GraphicsShare&) = delete;
};

}  // namespace orlix
