#include "orlix_image/image_module.hpp"

#include "component/strings.hpp"
#include "orlix_image/kernels_in_use.hpp"
#include "platform/module_file.hpp"

namespace orlix {

namespace {

BSTR AsciiToBstr(std::string_view text) { return CopyToBstr(WideString(text.begin(), text.end())); }

}  // namespace

STDMETHODIMP ImageModule::get_Version(BSTR* version) noexcept {
    return Guarded([&] {
        Require(version);
        *version = nullptr;
        *version = AsciiToBstr(ORLIX_VERSION);
    });
}

STDMETHODIMP ImageModule::get_ModulePath(BSTR* path) noexcept {
    return Guarded([&] {
        Require(path);
        *path = nullptr;
        *path = CopyToBstr(ModulePath());
    });
}

STDMETHODIMP ImageModule::get_NumberOfKernels(LONG* number) noexcept {
    return Guarded([&] {
        Require(number);
        *number = static_cast<LONG>(KernelsInUse().size());
    });
}

STDMETHODIMP ImageModule::GetKernel(LONG index, BSTR* kernel, BSTR* variant) noexcept {
    return Guarded([&] {
        Require(kernel), Require(variant);
        *kernel = nullptr;
        *variant = nullptr;
        const std::span<const KernelInUse> kernels = KernelsInUse();
        if (index < 0 || static_cast<size_t>(index) >= kernels.size())
            throw Failure("IModuleInformation::GetKernel: Index is out of range.");
        const KernelInUse& entry = kernels[static_cast<size_t>(index)];
        BSTR name = AsciiToBstr(entry.kernel);
        try {
            *variant = AsciiToBstr(entry.variant);
        } catch (...) {
            SysFreeString(name);
            throw;
        }
        *kernel = name;
    });
}

}  // namespace orlix
