#include "module/registry_store.hpp"
#include "platform/process_registry.hpp"

namespace orlix {
namespace {

WideString PathOf(const RegistryKey& key) {
    const OLECHAR* root = key.root == RegistryRoot::Classes        ? u"HKCR\\"
                          : key.root == RegistryRoot::LocalMachine ? u"HKLM\\"
                                                                   : u"HKCU\\";
    return root + key.path;
}

HRESULT Done(bool found) { return found ? S_OK : S_FALSE; }

class ProcessRegistryStore final : public RegistryStore {
public:
    HRESULT CreateKey(const RegistryKey& key) override {
        registry_.CreateKey(PathOf(key));
        return S_OK;
    }
    HRESULT SetText(const RegistryKey& key, const WideString& name, const WideString& text) override {
        registry_.SetValue(PathOf(key), name, text);
        return S_OK;
    }
    HRESULT SetNumber(const RegistryKey& key, const WideString& name, uint32_t number) override {
        registry_.SetValue(PathOf(key), name, number);
        return S_OK;
    }
    HRESULT DeleteValue(const RegistryKey& key, const WideString& name) override {
        return Done(registry_.DeleteValue(PathOf(key), name));
    }
    HRESULT DeleteTree(const RegistryKey& key) override { return Done(registry_.DeleteTree(PathOf(key))); }
    HRESULT DeleteIfEmpty(const RegistryKey& key) override { return Done(registry_.DeleteIfEmpty(PathOf(key))); }

private:
    ProcessRegistry& registry_ = ProcessRegistry::OfThisProcess();
};

}  // namespace

std::unique_ptr<RegistryStore> OpenRegistry() { return std::make_unique<ProcessRegistryStore>(); }

}  // namespace orlix
