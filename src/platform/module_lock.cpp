#include "platform/module_lock.hpp"

#include <atomic>

namespace orlix {
namespace {
std::atomic<long> lockCount{0};
}

void LockModule() noexcept { lockCount.fetch_add(1, std::memory_order_relaxed); }
void UnlockModule() noexcept { lockCount.fetch_sub(1, std::memory_order_release); }
bool ModuleIsLocked() noexcept { return lockCount.load(std::memory_order_acquire) > 0; }

}  // namespace orlix
