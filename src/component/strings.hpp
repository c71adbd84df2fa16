// Strings that cross the interface.
#pragma once

#include <orlix/orlix.h>
#include <orlix/text.hpp>

#include "text/wide_string.hpp"

namespace orlix {

// The text of a BSTR, which may contain zeros and may be null (empty).
inline WideStringView ToView(BSTR text) { return text ? WideStringView(text, SysStringLen(text)) : WideStringView(); }

// A new BSTR that the receiver frees. A method that returns several first creates all of them as Text, and detaches
// them when nothing can fail any more.
inline BSTR CopyToBstr(WideStringView text) { return Text(text).Detach(); }

}  // namespace orlix
