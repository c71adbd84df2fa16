// zlib's memory comes from operator new, like all other memory of the library.
#pragma once

#include <zlib.h>

#include <cstddef>
#include <new>

namespace orlix {

inline void* AllocateForZlib(void*, uInt items, uInt size) {
    return ::operator new(static_cast<size_t>(items) * size, std::nothrow);
}
inline void FreeForZlib(void*, void* memory) { ::operator delete(memory); }

// A stream that one of zlib's functions still has to initialise.
inline z_stream NewZlibStream() {
    z_stream stream = {};
    stream.zalloc = &AllocateForZlib;
    stream.zfree = &FreeForZlib;
    return stream;
}

}  // namespace orlix
