// Streams as scripts can hold them.
#pragma once

#include <orlix/orlix.h>
#include <orlix/com_ptr.hpp>

namespace orlix {

// The stream as an object with IDispatch, without members: VBScript's Set takes nothing else. Off Windows the stream
// itself.
ComPtr<IUnknown> ForScripts(ComPtr<IStream> stream);

}  // namespace orlix
