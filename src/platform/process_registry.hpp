// What is registered in this process, off Windows, where there is no registry of the system: a tree of keys with values.
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

namespace orlix {

// A key is named by its path, "HKCR\CLSID\{...}": names joined by one backslash each, the first one a root. Names of keys
// and values match whatever the case of their ASCII letters, and keep the case in which they were first written. The value
// named "" is the key's default value. All methods may be called by any thread.
// Invariant: a key's parents exist.
class ProcessRegistry {
public:
    using Text = std::basic_string<OLECHAR>;
    using TextView = std::basic_string_view<OLECHAR>;
    using Value = std::variant<Text, uint32_t>;
    struct IgnoringCase {
        using is_transparent = void;
        bool operator()(TextView a, TextView b) const noexcept;
    };
    using Values = std::map<Text, Value, IgnoringCase>;
    using Keys = std::map<Text, Values, IgnoringCase>;  // by path

    static ProcessRegistry& OfThisProcess();

    // The store of the process starts empty: what a look-up of a class asks for first. The module names its own registration.
    using Preparation = HRESULT (*)() noexcept;
    void PrepareLookUpsWith(Preparation preparation) noexcept { preparation_ = preparation; }
    HRESULT PrepareLookUp() const noexcept {
        const Preparation preparation = preparation_;
        return preparation ? preparation() : S_OK;
    }

    void CreateKey(TextView key);                             // with its parents; one that exists stays as it is
    void SetValue(TextView key, TextView name, Value value);  // creates the key too
    bool HasKey(TextView key) const;
    std::optional<Text> FindText(TextView key, TextView name) const;  // nothing for a number, too
    // Each tells whether there was something to delete.
    bool DeleteValue(TextView key, TextView name);
    bool DeleteTree(TextView key);     // the key and all below it
    bool DeleteIfEmpty(TextView key);  // a key that has neither values nor keys below it

    Keys Snapshot() const;

private:
    Keys::iterator Create(TextView key);
    Keys::iterator EndOfTree(Keys::iterator below, TextView key);

    mutable std::mutex mutex_;
    Keys keys_;
    std::atomic<Preparation> preparation_ = nullptr;
};

}  // namespace orlix
