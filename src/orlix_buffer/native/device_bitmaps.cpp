#include "orlix_buffer/device_bitmaps.hpp"

#include "component/failure.hpp"

namespace orlix {

std::optional<std::vector<uint8_t>> PackedSystemBitmap(void*) { throw FailedResult(E_NOTIMPL); }

}  // namespace orlix
