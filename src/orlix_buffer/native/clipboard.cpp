#include "orlix_buffer/clipboard.hpp"

#include "component/failure.hpp"

namespace orlix {

std::optional<std::vector<uint8_t>> FromClipboard(ClipboardFormat) { throw FailedResult(E_NOTIMPL); }

void ToClipboard(std::span<const ClipboardItem>) { throw FailedResult(E_NOTIMPL); }

}  // namespace orlix
