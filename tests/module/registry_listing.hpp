// What a registry holds, as lines that tests compare:
//     Key
//     Key = default value
//     Key : name = text
//     Key : name = #number
#pragma once

#include <string>
#include <vector>

#include "module/registry_store.hpp"

namespace orlix::testing {

// Everything below the key, paths relative to it, in alphabetical order; nothing when there is no such key.
std::vector<std::string> ListRegistry(const RegistryKey& key);

}  // namespace orlix::testing
