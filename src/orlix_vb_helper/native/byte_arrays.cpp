#include "orlix_vb_helper/byte_arrays.hpp"

#include "component/failure.hpp"

namespace orlix {

std::vector<uint8_t> BytesOf(const VARIANT&) { throw FailedResult(E_NOTIMPL); }

void ClearArray(VARIANT&) { throw FailedResult(E_NOTIMPL); }

void PutArray(std::span<const uint8_t>, VARIANT&) { throw FailedResult(E_NOTIMPL); }

}  // namespace orlix
