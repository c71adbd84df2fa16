// Methods that exist for scripts only, in place of those of the contract that use memory.
#pragma once

#include <orlix/orlix.h>

#include <span>

#include "automation/windows/contract_rows.hpp"

namespace orlix::automation {

// The methods that are added to an interface of the contract.
std::span<const Method> AddedMethods(const IID& iid) noexcept;

}  // namespace orlix::automation
