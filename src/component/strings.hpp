// Strings across the interface.
#pragma once

#include <orlix/orlix.h>
#include <orlix/text.hpp>

#include "text/wide_string.hpp"

namespace orlix {

// The text of a BSTR, which may hold zeros inside and may be null (empty).
inline WideStringView ToView(BSTR text) { return text ? WideStringView(text, SysStringLen(text)) : WideStringView(); }

// A new BSTR, the receiver's to free. A method that gives several makes all of them as Text first, and detaches them
// when nothing can fail any more.
inline BSTR CopyToBstr(WideStringView text) { return Text(text).Detach(); }

}  // namespace orlix
