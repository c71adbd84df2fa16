// The system's dialog for choosing a folder. Off Windows there is none: E_NOTIMPL.
#pragma once

#include <orlix/orlix.h>

#include <optional>

#include "text/wide_string.hpp"

namespace orlix {

// The folder that the user chooses, nullopt when the dialog is cancelled. `start` is chosen at first; empty for none.
std::optional<WideString> AskForFolder(const WideString& title, const WideString& start);

}  // namespace orlix
