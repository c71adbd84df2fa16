#include "orlix_vb_helper/folder_dialog.hpp"

#include "component/failure.hpp"

namespace orlix {

std::optional<WideString> AskForFolder(const WideString&, const WideString&) { throw FailedResult(E_NOTIMPL); }

}  // namespace orlix
