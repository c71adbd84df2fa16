// Arrays of bytes as scripts have them. Off Windows there are none: E_NOTIMPL.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <span>
#include <vector>

namespace orlix {

// The elements of an array of numbers. DISP_E_TYPEMISMATCH for no array, DISP_E_OVERFLOW for an element beyond 0..255.
std::vector<uint8_t> BytesOf(const VARIANT& value);

// An output: nothing, and then an array of VT_UI1.
void ClearArray(VARIANT& value);
void PutArray(std::span<const uint8_t> bytes, VARIANT& value);

}  // namespace orlix
