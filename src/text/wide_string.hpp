// The library's texts: UTF-16, as the contract's strings are.
#pragma once

#include <orlix/orlix.h>

#include <string>
#include <string_view>

namespace orlix {

using WideString = std::basic_string<OLECHAR>;
using WideStringView = std::basic_string_view<OLECHAR>;

}  // namespace orlix
