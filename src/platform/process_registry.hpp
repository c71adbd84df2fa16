// The registry of the process, a tree of keys with values. It takes the place of the system's registry, which only
// Windows has.
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

    // Sets the function that look-ups of classes call first. The store of the process starts empty; the module passes
    // its own registration here.
    using Preparation = HRESULT (*)() noexcept;
    void PrepareLookUpsWith(Preparation preparation) noexcept { preparation_ = preparation; }
    HRESULT PrepareLookUp() const noexcept {
        const Preparation preparation = preparation_;
        return preparation ? preparation() : S_OK;
    }

    void CreateKey(WideStringView key);  // and its parents; an existing key is unchanged
    void SetValue(WideStringView key, WideStringView name, Value value);  // creates the key too
    bool HasKey(WideStringView key) const;
    std::optional<WideString> FindText(WideStringView key, WideStringView name) const;  // nullopt for a number as well
    // Each returns whether there was something to delete.
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
