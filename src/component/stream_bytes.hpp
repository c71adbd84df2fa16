// The bytes of a client's stream. Its own failures are passed on; what it says of sizes is checked.
#pragma once

#include <orlix/orlix.h>
#include <orlix/com_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orlix {

// The stream that an object is; E_POINTER for null, E_NOINTERFACE for what is none.
ComPtr<IStream> StreamOf(IUnknown* object);

// Reads up to `size` bytes in one call, 0 at the end of the stream. E_FAIL for a stream that says it read more.
size_t ReadFrom(IStream* stream, uint8_t* bytes, size_t size);

// Reads up to `most` bytes, in as many calls as the stream needs, until it has no more. Memory grows with what arrives.
std::vector<uint8_t> ReadUpTo(IStream* stream, size_t most);
// All that is left; E_FAIL for more than 2^31 - 1 bytes.
std::vector<uint8_t> ReadRest(IStream* stream);

// Writes all bytes; STG_E_CANTSAVE for a stream that stores less.
void WriteTo(IStream* stream, std::span<const uint8_t> bytes);

}  // namespace orlix
