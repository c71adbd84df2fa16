// System-dependent text: the code page of narrow strings, and the module's resources.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>

namespace orlix {

// Writes the text in UTF-16 with a terminator. `to` has room for capacity units, one for each byte of the text and one
// for the terminator, which suffices for every code page. The code page is the thread's on Windows, UTF-8 elsewhere.
void Widen(const char* text, OLECHAR* to, size_t capacity) noexcept;

// Overwrites the text with a string resource of this module. Without such a resource the text stays.
void LoadText(WORD resource, OLECHAR (&text)[1024]) noexcept;

}  // namespace orlix
