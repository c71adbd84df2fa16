// The store that registration scripts write to: the system's registry, or that of the process.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <memory>
#include <string>

#include "text/wide_string.hpp"

namespace orlix {

enum class RegistryRoot { Classes, LocalMachine, CurrentUser };

// A path below a root: names joined by backslashes.
struct RegistryKey {
    RegistryRoot root;
    WideString path;
};

// Names are compared without regard to case; the value named "" is the key's default value. Deleting a key or value
// that does not exist gives S_FALSE.
class RegistryStore {
public:
    virtual ~RegistryStore() = default;
    virtual HRESULT CreateKey(const RegistryKey& key) = 0;  // and its parents; an existing key is unchanged
    virtual HRESULT SetText(const RegistryKey& key, const WideString& name, const WideString& text) = 0;
    virtual HRESULT SetNumber(const RegistryKey& key, const WideString& name, uint32_t number) = 0;
    virtual HRESULT DeleteValue(const RegistryKey& key, const WideString& name) = 0;
    virtual HRESULT DeleteTree(const RegistryKey& key) = 0;     // the key and all below it
    virtual HRESULT DeleteIfEmpty(const RegistryKey& key) = 0;  // S_FALSE if values or keys below it remain
};

// The store in which this platform looks up ProgIDs and classes.
std::unique_ptr<RegistryStore> OpenRegistry();

}  // namespace orlix
