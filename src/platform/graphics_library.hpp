// The system's graphics library (GDI+), which runs while there are pictures.
#pragma once

#include <cstdint>
#include <memory>

namespace orlix {

// Loading, looking up and starting may each fail or throw; Unload is called once for each successful Load.
class GraphicsLibrary {
public:
    virtual ~GraphicsLibrary() = default;
    virtual bool Load() = 0;
    virtual bool FindEntryPoints() = 0;
    virtual int Start(uintptr_t& token) = 0;  // the library's status, 0 for success
    virtual void ShutDown(uintptr_t token) = 0;
    virtual void Unload() noexcept = 0;
};

// Off Windows this is a library that does not load.
std::unique_ptr<GraphicsLibrary> MakeGraphicsLibrary();

}  // namespace orlix
