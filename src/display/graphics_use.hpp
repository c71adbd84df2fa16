// The module-wide start of the graphics library: it runs while a picture exists.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/graphics_library.hpp"

namespace orlix {

// Counts the users of a library. The first one starts it, the last one shuts it down; a library that does not start is
// left alone until the next first user. From any thread.
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

// A user of the system's library, while it lives.
class GraphicsShare {
public:
    GraphicsShare();
    ~GraphicsShare();
    GraphicsShare(const GraphicsShare&) = delete;
    GraphicsShare& operator=(const GraphicsShare&) = delete;
};

}  // namespace orlix
