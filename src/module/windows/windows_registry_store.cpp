#include "module/registry_store.hpp"

namespace orlix {
namespace {

HKEY RootOf(const RegistryKey& key) {
    return key.root == RegistryRoot::Classes        ? HKEY_CLASSES_ROOT
           : key.root == RegistryRoot::LocalMachine ? HKEY_LOCAL_MACHINE
                                                    : HKEY_CURRENT_USER;
}

HRESULT ResultOf(LSTATUS status) { return HRESULT_FROM_WIN32(static_cast<DWORD>(status)); }

// A deletion does not fail if there is nothing to delete.
HRESULT ResultOfDeleting(LSTATUS status) {
    return status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND ? S_FALSE : ResultOf(status);
}

class OpenKey {
public:
    OpenKey() noexcept = default;
    ~OpenKey() {
        if (key_) RegCloseKey(key_);
    }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;
    HKEY* Out() noexcept { return &key_; }
    HKEY get() const noexcept { return key_; }

private:
    HKEY key_ = nullptr;
};

class WindowsRegistryStore final : public RegistryStore {
public:
    HRESULT CreateKey(const RegistryKey& key) override {
        OpenKey open;
        return ResultOf(Create(key, open));
    }
    HRESULT SetText(const RegistryKey& key, const WideString& name, const WideString& text) override {
        const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(OLECHAR));
        return Set(key, name, REG_SZ, text.c_str(), bytes);
    }
    HRESULT SetNumber(const RegistryKey& key, const WideString& name, uint32_t number) override {
        return Set(key, name, REG_DWORD, &number, sizeof number);
    }
    HRESULT DeleteValue(const RegistryKey& key, const WideString& name) override {
        OpenKey open;
        const LSTATUS found = RegOpenKeyExW(RootOf(key), key.path.c_str(), 0, KEY_SET_VALUE, open.Out());
        if (found != ERROR_SUCCESS) return ResultOfDeleting(found);
        return ResultOfDeleting(RegDeleteValueW(open.get(), name.c_str()));
    }
    HRESULT DeleteTree(const RegistryKey& key) override {
        return ResultOfDeleting(RegDeleteTreeW(RootOf(key), key.path.c_str()));
    }
    HRESULT DeleteIfEmpty(const RegistryKey& key) override {
        {
            OpenKey open;
            const LSTATUS found = RegOpenKeyExW(RootOf(key), key.path.c_str(), 0, KEY_READ, open.Out());
            if (found != ERROR_SUCCESS) return ResultOfDeleting(found);
            DWORD keys = 0;
            DWORD values = 0;
            const LSTATUS counted = RegQueryInfoKeyW(open.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr,
                                                     &values, nullptr, nullptr, nullptr, nullptr);
            if (counted != ERROR_SUCCESS) return ResultOf(counted);
            if (keys != 0 || values != 0) return S_FALSE;
        }
        return ResultOfDeleting(RegDeleteKeyW(RootOf(key), key.path.c_str()));
    }

private:
    static LSTATUS Create(const RegistryKey& key, OpenKey& open) {
        return RegCreateKeyExW(RootOf(key), key.path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                               KEY_READ | KEY_SET_VALUE, nullptr, open.Out(), nullptr);
    }
    static HRESULT Set(const RegistryKey& key, const WideString& name, DWORD type, const void* data, DWORD bytes) {
        OpenKey open;
        if (const LSTATUS created = Create(key, open); created != ERROR_SUCCESS) return ResultOf(created);
        return ResultOf(RegSetValueExW(open.get(), name.c_str(), 0, type, static_cast<const BYTE*>(data), bytes));
    }
};

}  // namespace

std::unique_ptr<RegistryStore> OpenRegistry() { return std::make_unique<WindowsRegistryStore>(); }

}  // namespace orlix
