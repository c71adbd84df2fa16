// Registration scripts: texts that list the keys and values of a class, to be added to a registry or removed from it.
//
//     HKCR                                                     a root: HKCR, HKLM or HKCU
//     {
//         Orlix.Polygon.1 = s 'Polygon Class'                  a key with its default value
//         {
//             CLSID = s '{E0AF5E0B-FB80-4687-B204-943EBC39CFF8}'
//         }
//         NoRemove CLSID
//         {
//             ForceRemove {E0AF5E0B-FB80-4687-B204-943EBC39CFF8} = s 'Polygon Class'
//             {
//                 InprocServer32 = s '%MODULE%'
//                 {
//                     val ThreadingModel = s 'Apartment'       a named value
//                 }
//             }
//         }
//     }
//
// Words are separated by blanks and line ends. A word in single quotes may hold blanks and is never a keyword or a
// brace; '' in it is one quote. Keywords and roots are read in any case. Values are texts (s) and numbers (d, decimal
// or 0x..., below 2^32). %MODULE% stands for the module's path and %% for one percent sign, in every word that is not a
// keyword. Scripts are ASCII. No key name holds a backslash.
//
//                 adding                                        removing
//     (plain)     creates the key                               deletes it once nothing is left in it
//     NoRemove    creates the key                               keeps it; what the script put below it goes
//     ForceRemove deletes the key with all below it, creates it deletes it with all below it
//     Delete      deletes the key with all below it             nothing
//     val         writes the value                              deletes it
//     NoRemove val    writes the value                          keeps it
#pragma once

#include <stdexcept>
#include <string_view>
#include <vector>

#include "module/registry_store.hpp"

namespace orlix {

// A syntax error in a script. what() names the line, counted from 1.
class ScriptError : public std::runtime_error {
public:
    ScriptError(int line, const char* what);
    int line() const noexcept { return line_; }

private:
    int line_;
};

class RegistrationScript {
public:
    // Parses the whole script, so errors are found before anything is written. Throws ScriptError.
    RegistrationScript(std::string_view script, const WideString& modulePath);

    // Throws FailedResult with the store's result at the first failure.
    void Add(RegistryStore& store) const;
    // Continues after a failure, to remove as much as possible, and throws the first one at the end.
    void Remove(RegistryStore& store) const;

    struct Value {
        WideString name;
        bool isNumber = false;
        WideString text;
        uint32_t number = 0;
        bool keep = false;  // NoRemove
    };
    enum class Rule { Plain, NoRemove, ForceRemove, Delete };
    struct Key {
        WideString name;
        Rule rule = Rule::Plain;
        std::vector<Value> values;
        std::vector<Key> keys;
    };
    struct Root {
        RegistryRoot root;
        std::vector<Key> keys;
    };

private:
    std::vector<Root> roots_;
};

}  // namespace orlix
