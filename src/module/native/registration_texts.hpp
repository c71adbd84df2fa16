// The registration scripts as the build embeds them.
#pragma once

#include <orlix/orlix.h>

#include <string_view>

namespace orlix {

struct EmbeddedScript {
    WORD number;
    std::string_view text;
};

extern const EmbeddedScript kEmbeddedScripts[];  // ends with number 0

}  // namespace orlix
