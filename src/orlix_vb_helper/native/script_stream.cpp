#include "orlix_vb_helper/script_stream.hpp"

namespace orlix {

ComPtr<IUnknown> ForScripts(ComPtr<IStream> stream) { return ComPtr<IUnknown>::Attach(stream.Detach()); }

}  // namespace orlix
