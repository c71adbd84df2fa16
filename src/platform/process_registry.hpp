// What is registered in this process, off Windows, where there is no registry of the system: a tree of keys with
// values.
#pragma once

#include <orlix/orlix.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "text/wide_string.hpp"

namespace orlix {

// A key is named by its path, "HKCR\CLSID\{...}": names joined by one backslash each, the first one a root. Names of
// keys and values match whatever the case of their ASCII letters, and keep the case in which they were first written.
// The value named "" is the key's default value. All methods may be called by any thread.
// Invariant: a key's parents exist.
class ProcessRegistry {
public:
    using Value = std::variant<WideString, uint32_t>;
    struct IgnoringCase {
        using is_transparent = void;
        bool operator()(WideStringView a, WideStringView b) const noexcept;
    };
    using Values = std::map<WideString, Value, IgnoringCase>;
    using Keys = std::map<WideString, Values, IgnoringCase>;  // by path

    static ProcessRegistry& OfThisProcess();

    // The store of the process starts empty: what a look-up of a class asks for first. The module names its own
    // registration.
    using Preparation = HRESULT (*)() noexcept;
    void PrepareLookUpsWith(Preparation preparation) noexcept { preparation_ = preparation; }
    HRESULT PrepareLookUp() const noexcept {
        const Preparation preparation = preparation_;
        return preparation ? preparation() : S_OK;
    }

    void CreateKey(WideStringView key);  // with its parents; one that exists stays as it is
    void SetValue(WideStringView key, WideStringView name, Value value);  // creates the key too
    bool HasKey(WideStringView key) const;
    std::optional<WideString> FindText(WideStringView key, WideStringView name) const;  // nothing for a number, too
    // Each tells whether there was something to delete.
    bool DeleteValue(WideStringView key, WideStringView name);
    bool DeleteTree(WideStringView key);     // the key and all below it
    bool DeleteIfEmpty(WideStringView key);  // a key that has neither values nor keys below it

    Keys Snapshot() const;

private:
    Keys::iterator Create(WideStringView key);
    Keys::iterator EndOfTree(Keys::iterator below, WideStringView key);

    mutable std::mutex mutex_;
    Keys keys_;
    std::atomic<Preparation> preparation_ = nullptr;
};

}  // namespace orlix
