#include "component/local_text.hpp"

#include <cstring>

#include "text/encoding.hpp"

namespace orlix {

void Widen(const char* text, OLECHAR* to, size_t) noexcept {
    to[FromUtf8({reinterpret_cast<const uint8_t*>(text), std::strlen(text)}, to)] = 0;
}

void LoadText(WORD, OLECHAR (&)[1024]) noexcept {}

}  // namespace orlix
