// What a registry holds, as lines that tests compare:
//     Key
//     Key = default value
//     Key : name = text
//     Key : name = #number
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include <orlix/client.hpp>

#include "module/registry_store.hpp"
#ifndef _WIN32
#include "platform/process_registry.hpp"
#endif

namespace orlix::testing {
namespace listing {

inline std::string Line(const std::string& key, const WideString& name, const std::string& value) {
    return key + (name.empty() ? "" : " : " + ToUtf8(name)) + " = " + value;
}

inline std::string Number(uint32_t number) {
    std::string text = "#";
    text += std::to_string(number);
    return text;
}

#ifdef _WIN32

inline void List(HKEY key, const std::string& path, std::vector<std::string>& lines) {
    for (DWORD i = 0;; ++i) {
        wchar_t name[256];
        BYTE data[4096];
        DWORD units = 256;
        DWORD bytes = sizeof data;
        DWORD type = 0;
        if (RegEnumValueW(key, i, name, &units, nullptr, &type, data, &bytes) != ERROR_SUCCESS) break;
        if (type == REG_DWORD)
            lines.push_back(Line(path, name, Number(*reinterpret_cast<const uint32_t*>(data))));
        else
            lines.push_back(Line(path, name, ToUtf8(reinterpret_cast<const wchar_t*>(data))));
    }
    for (DWORD i = 0;; ++i) {
        wchar_t name[256];
        DWORD units = 256;
        if (RegEnumKeyExW(key, i, name, &units, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        HKEY below = nullptr;
        if (RegOpenKeyExW(key, name, 0, KEY_READ, &below) != ERROR_SUCCESS) continue;
        const std::string belowPath = (path.empty() ? "" : path + "\\") + ToUtf8(name);
        lines.push_back(belowPath);
        List(below, belowPath, lines);
        RegCloseKey(below);
    }
}

#endif

}  // namespace listing

// Everything below the key, paths relative to it, in alphabetical order; nothing when there is no such key.
inline std::vector<std::string> ListRegistry(const RegistryKey& key) {
    std::vector<std::string> lines;
#ifdef _WIN32
    HKEY const root = key.root == RegistryRoot::Classes        ? HKEY_CLASSES_ROOT
                      : key.root == RegistryRoot::LocalMachine ? HKEY_LOCAL_MACHINE
                                                               : HKEY_CURRENT_USER;
    HKEY open = nullptr;
    if (RegOpenKeyExW(root, key.path.c_str(), 0, KEY_READ, &open) != ERROR_SUCCESS) return lines;
    listing::List(open, "", lines);
    RegCloseKey(open);
#else
    const WideString root = key.root == RegistryRoot::Classes        ? u"HKCR"
                            : key.root == RegistryRoot::LocalMachine ? u"HKLM"
                                                                     : u"HKCU";
    const WideString above = key.path.empty() ? root : root + u'\\' + key.path;
    for (const auto& [path, values] : ProcessRegistry::OfThisProcess().Snapshot()) {
        if (path.size() < above.size() || path.compare(0, above.size(), above) != 0) continue;
        if (path.size() > above.size() && path[above.size()] != u'\\') continue;
        const std::string relative = path == above ? "" : ToUtf8(path.substr(above.size() + 1));
        if (!relative.empty()) lines.push_back(relative);
        for (const auto& [name, value] : values) {
            const auto* text = std::get_if<WideString>(&value);
            lines.push_back(
                listing::Line(relative, name, text ? ToUtf8(*text) : listing::Number(std::get<uint32_t>(value))));
        }
    }
#endif
    std::sort(lines.begin(), lines.end());
    return lines;
}

}  // namespace orlix::testing
