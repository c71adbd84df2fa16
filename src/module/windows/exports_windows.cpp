#include <orlix/orlix.h>

#include <exception>
#include <string>

#include <orlix/com_ptr.hpp>
#include <orlix/text.hpp>

#include "component/failure.hpp"
#include "module/graphics_probe.hpp"
#include "module/registration.hpp"
#include "module/result_of.hpp"
#include "platform/module_file.hpp"

// There is no DllMain: nothing is to be done there, and switching the calls for threads off would take the runtime's
// clean-up of thread-local data away.

namespace orlix {
namespace {

class TypeLibrary {
public:
    explicit TypeLibrary(const std::wstring& path) {
        PassOn(LoadTypeLibEx(path.c_str(), REGKIND_NONE, library_.Out()));
        PassOn(library_->GetLibAttr(&attributes_));
    }
    ~TypeLibrary() { library_->ReleaseTLibAttr(attributes_); }
    TypeLibrary(const TypeLibrary&) = delete;
    TypeLibrary& operator=(const TypeLibrary&) = delete;

    ITypeLib* get() const noexcept { return library_.get(); }
    const TLIBATTR& attributes() const noexcept { return *attributes_; }

private:
    ComPtr<ITypeLib> library_;
    TLIBATTR* attributes_ = nullptr;
};

void RegisterTypeLibrary(const std::wstring& path) {
    const TypeLibrary library(path);
    std::wstring name = path;  // the function takes it without const
    PassOn(RegisterTypeLib(library.get(), name.data(), nullptr));
}

// For this bit width; the library registered for the other one stays. One that is not registered is no failure.
void UnregisterTypeLibrary(const std::wstring& path) {
    const TypeLibrary library(path);
    const TLIBATTR& is = library.attributes();
    Text registered;
    if (FAILED(QueryPathOfRegTypeLib(is.guid, is.wMajorVerNum, is.wMinorVerNum, is.lcid, registered.Out()))) return;
    PassOn(UnRegisterTypeLib(is.guid, is.wMajorVerNum, is.wMinorVerNum, is.lcid, is.syskind));
}

std::wstring KnownModulePath() {
    std::wstring path = ModulePath();
    if (path.empty()) throw FailedResult(E_UNEXPECTED);
    return path;
}

// Both parts, even when the first fails; the first failure is raised.
void Unregister(const std::wstring& path) {
    std::exception_ptr failure;
    try {
        UnregisterClasses(*OpenRegistry(), path);
    } catch (...) {
        failure = std::current_exception();
    }
    UnregisterTypeLibrary(path);
    if (failure) std::rethrow_exception(failure);
}

}  // namespace
}  // namespace orlix

STDAPI DllRegisterServer() {
    return orlix::ResultOf([] {
        const std::wstring path = orlix::KnownModulePath();
        const auto registry = orlix::OpenRegistry();
        orlix::RegisterClasses(*registry, path);
        try {
            orlix::RegisterTypeLibrary(path);
        } catch (...) {
            const std::exception_ptr failure = std::current_exception();
            orlix::ResultOf([&] { orlix::UnregisterClasses(*registry, path); });
            std::rethrow_exception(failure);
        }
    });
}

STDAPI DllUnregisterServer() {
    return orlix::ResultOf([] { orlix::Unregister(orlix::KnownModulePath()); });
}

EXTERN_C int WINAPI NeedGdiPlus() {
    try {
        return orlix::ProbeGraphicsLibrary(*orlix::MakeGraphicsLibrary());
    } catch (const std::bad_alloc&) {
        return 1;
    }
}
