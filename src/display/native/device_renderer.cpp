#include "display/device_renderer.hpp"

#include "component/failure.hpp"

namespace orlix {

class DeviceRenderer::BackBuffer {};

DeviceRenderer::DeviceRenderer() noexcept = default;
DeviceRenderer::~DeviceRenderer() = default;

HRESULT DeviceRenderer::Render(void*, const Rectangle&, const MakeDrawing&, const DrawOver&) {
    throw FailedResult(E_NOTIMPL);
}

void* DeviceRenderer::MakeCompatible(void*, const DisplayBitmap&, const ColorTable&) { throw FailedResult(E_NOTIMPL); }

void* DeviceRenderer::MakeSection(const DisplayBitmap&, const ColorTable&, void**) { throw FailedResult(E_NOTIMPL); }

}  // namespace orlix
