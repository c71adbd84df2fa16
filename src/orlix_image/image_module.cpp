#include "orlix_image/image_module.hpp"

#include "component/strings.hpp"
#include "orlix_image/kernels_in_use.hpp"
#include "platform/module_file.hpp"

namespace orlix {

STDMETHODIMP ImageModule::get_Version(BSTR* version) noexcept {
    return Guarded([&] {
        Require(version);
        *version = nullptr;
        *version = Text(std::string_view(ORLIX_VERSION)).Detach();
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
        Text first(entry.kernel), second(std::string_view(entry.variant));
        *kernel = first.Detach();
        *variant = second.Detach();
    });
}

}  // namespace orlix
