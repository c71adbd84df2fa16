// Whether the graphics library (GDI+) can be started.
#pragma once

#include <cstdint>

namespace orlix {

// The library as the probe needs it. Loading, looking up and starting may each fail or throw; Unload is called once for
// each successful Load.
class GraphicsLibrary {
public:
    virtual ~GraphicsLibrary() = default;
    virtual bool Load() = 0;
    virtual bool FindEntryPoints() = 0;
    virtual int Start(uintptr_t& token) = 0;  // the library's status, 0 for success
    virtual void ShutDown(uintptr_t token) = 0;
    virtual void Unload() noexcept = 0;
};

// 0 when the library loads, has its entry points and starts with a token, 1 in every other case. Leaves it unloaded.
int ProbeGraphicsLibrary(GraphicsLibrary& library) noexcept;

}  // namespace orlix
