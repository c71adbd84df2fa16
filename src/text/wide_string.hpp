// The library's strings: UTF-16, like those of the contract.
#pragma once

#include <orlix/orlix.h>

#include <string>
#include <string_view>

namespace orlix {

using WideString = std::basic_string<OLECHAR>;
using WideStringView = std::basic_string_view<OLECHAR>;

}  // namespace orlix
