#include "module/class_factory.hpp"

#include <atomic>
#include <span>
#include <utility>

#include "component/error_report.hpp"
#include "module/class_table.hpp"
#include "platform/module_lock.hpp"

namespace orlix {
namespace {

// References to a factory are not counted: clients keep the module in memory with LockServer.
class ClassFactory final : public IClassFactory {
public:
    explicit ClassFactory(const ClassRow& row) noexcept : row_(row) {}

    bool IsOf(REFCLSID clsid) const noexcept { return *row_.clsid == clsid; }
    bool isBuilt() const noexcept { return row_.create != nullptr; }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        if (!object) return E_POINTER;
        const bool answered = iid == __uuidof(IUnknown) || iid == __uuidof(IClassFactory);
        *object = answered ? this : nullptr;
        return answered ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return 2; }
    STDMETHODIMP_(ULONG) Release() noexcept override { return 1; }

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override {
        return row_.create(outer, iid, object);
    }
    // E_UNEXPECTED for an unlock without a lock.
    STDMETHODIMP LockServer(BOOL lock) noexcept override {
        if (lock) {
            locks_.fetch_add(1, std::memory_order_relaxed);
            LockModule();
            return S_OK;
        }
        long locks = locks_.load(std::memory_order_relaxed);
        while (locks > 0)
            if (locks_.compare_exchange_weak(locks, locks - 1, std::memory_order_relaxed)) {
                UnlockModule();
                return S_OK;
            }
        return E_UNEXPECTED;
    }

private:
    const ClassRow& row_;
    std::atomic<long> locks_{0};
};

template <size_t... Row>
std::span<ClassFactory> Factories(std::index_sequence<Row...>) noexcept {
    static ClassFactory factories[] = {ClassFactory(ClassTable()[Row])...};
    return factories;
}

}  // namespace

HRESULT GetClassFactory(REFCLSID clsid, REFIID iid, void** factory) noexcept {
    if (!factory) return E_POINTER;
    *factory = nullptr;
    for (ClassFactory& candidate : Factories(std::make_index_sequence<kNumberOfClasses>())) {
        if (!candidate.IsOf(clsid)) continue;
        if (candidate.isBuilt()) return candidate.QueryInterface(iid, factory);
        return ReportError(clsid, "This class is not built yet.", __uuidof(IClassFactory), CLASS_E_CLASSNOTAVAILABLE);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

}  // namespace orlix
