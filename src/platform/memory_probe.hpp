// Whether the operating system lets this process read or write a range of memory.
#pragma once

#include <cstddef>

namespace orlix {

// Asks the system about each page of the range, and touches nothing that could fault. An empty range is always
// accessible; a null pointer or a range beyond the address space never is. The answer is momentary: another thread may
// change the mapping afterwards.
bool IsReadable(const void* memory, size_t size);
bool IsWritable(const void* memory, size_t size);

}  // namespace orlix
