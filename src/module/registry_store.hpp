// Where registration scripts write: the registry of the system, or the store of the process.
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

// Names match whatever their case; the value named "" is the key's default value. Deleting what is not there gives
// S_FALSE.
class RegistryStore {
public:
    virtual ~RegistryStore() = default;
    virtual HRESULT CreateKey(const RegistryKey& key) = 0;  // with its parents; one that exists stays as it is
    virtual HRESULT SetText(const RegistryKey& key, const WideString& name, const WideString& text) = 0;
    virtual HRESULT SetNumber(const RegistryKey& key, const WideString& name, uint32_t number) = 0;
    virtual HRESULT DeleteValue(const RegistryKey& key, const WideString& name) = 0;
    virtual HRESULT DeleteTree(const RegistryKey& key) = 0;     // the key and all below it
    virtual HRESULT DeleteIfEmpty(const RegistryKey& key) = 0;  // S_FALSE when values or keys below it are left
};

// The one that ProgID and class look-ups of this platform read.
std::unique_ptr<RegistryStore> OpenRegistry();

}  // namespace orlix
