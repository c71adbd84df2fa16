// Strings across the interface.
#pragma once

#include <orlix/orlix.h>

#include <new>
#include <string_view>

namespace orlix {

// The text of a BSTR, which may hold zeros inside and may be null (empty).
inline std::basic_string_view<OLECHAR> ToView(BSTR text) {
    return text ? std::basic_string_view<OLECHAR>(text, SysStringLen(text)) : std::basic_string_view<OLECHAR>();
}

// A new BSTR, the receiver's to free.
inline BSTR CopyToBstr(std::basic_string_view<OLECHAR> text) {
    const BSTR copy = SysAllocStringLen(text.data() ? text.data() : OLESTR(""), static_cast<UINT>(text.size()));
    if (!copy) throw std::bad_alloc();
    return copy;
}

}  // namespace orlix
