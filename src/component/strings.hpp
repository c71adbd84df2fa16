// Strings across the interface.
#pragma once

#include <orlix/orlix.h>

#include <new>
#include <string_view>

#include "text/wide_string.hpp"

namespace orlix {

// The text of a BSTR, which may hold zeros inside and may be null (empty).
inline WideStringView ToView(BSTR text) { return text ? WideStringView(text, SysStringLen(text)) : WideStringView(); }

// A new BSTR, the receiver's to free.
inline BSTR CopyToBstr(WideStringView text) {
    const BSTR copy = SysAllocStringLen(text.data() ? text.data() : OLESTR(""), static_cast<UINT>(text.size()));
    if (!copy) throw std::bad_alloc();
    return copy;
}

}  // namespace orlix
