#include "component/strings.hpp"
#include "orlix_image/kernels_in_use.hpp"
#include "orlix_image/orlix_image.hpp"
#include "platform/module_file.hpp"

using namespace orlix;

namespace {

BSTR AsciiToBstr(const char* text) {
    const std::string_view view(text);
    return CopyToBstr(WideString(view.begin(), view.end()));
}

}  // namespace

STDMETHODIMP OrlixImage::get_Version(BSTR* version) noexcept {
    return Guarded([&] {
        Require(version);
        *version = nullptr;
        *version = AsciiToBstr(ORLIX_VERSION);
    });
}

STDMETHODIMP OrlixImage::get_ModulePath(BSTR* path) noexcept {
    return Guarded([&] {
        Require(path);
        *path = nullptr;
        *path = CopyToBstr(ModulePath());
    });
}

STDMETHODIMP OrlixImage::get_NumberOfKernels(LONG* number) noexcept {
    return Guarded([&] {
        Require(number);
        *number = static_cast<LONG>(KernelsInUse().size());
    });
}

STDMETHODIMP OrlixImage::GetKernel(LONG index, BSTR* kernel, BSTR* variant) noexcept {
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
