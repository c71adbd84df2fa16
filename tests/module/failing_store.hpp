// A registry that answers some calls with a failure and passes the others on.
#pragma once

#include <functional>
#include <utility>

#include "component/failure.hpp"
#include "module/registry_store.hpp"

namespace orlix::testing {

class FailingStore final : public RegistryStore {
public:
    static constexpr HRESULT kDiskFull = static_cast<HRESULT>(0x80070070);

    // `fails` is asked before each call, and told whether it would create a key.
    FailingStore(RegistryStore& store, std::function<bool(bool)> fails) : store_(store), fails_(std::move(fails)) {}

    HRESULT CreateKey(const RegistryKey& key) override { return fails_(true) ? kDiskFull : store_.CreateKey(key); }
    HRESULT SetText(const RegistryKey& key, const WideString& name, const WideString& text) override {
        return fails_(false) ? kDiskFull : store_.SetText(key, name, text);
    }
    HRESULT SetNumber(const RegistryKey& key, const WideString& name, uint32_t number) override {
        return fails_(false) ? kDiskFull : store_.SetNumber(key, name, number);
    }
    HRESULT DeleteValue(const RegistryKey& key, const WideString& name) override {
        return fails_(false) ? kDiskFull : store_.DeleteValue(key, name);
    }
    HRESULT DeleteTree(const RegistryKey& key) override { return fails_(false) ? kDiskFull : store_.DeleteTree(key); }
    HRESULT DeleteIfEmpty(const RegistryKey& key) override {
        return fails_(false) ? kDiskFull : store_.DeleteIfEmpty(key);
    }

private:
    RegistryStore& store_;
    std::function<bool(bool)> fails_;
};

// The result with which an action fails; S_OK when it does not.
inline HRESULT ResultOf(const std::function<void()>& action) {
    try {
        action();
        return S_OK;
    } catch (const FailedResult& failed) {
        return failed.result();
    }
}

}  // namespace orlix::testing
