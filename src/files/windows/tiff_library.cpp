#include "files/tiff_library.hpp"

namespace orlix {

const TiffLibrary* FindTiffLibrary() {
#define ORLIX_ADDRESS(name) &::name,
    static constexpr TiffLibrary kLibrary = {ORLIX_TIFF_FUNCTIONS(ORLIX_ADDRESS)};
#undef ORLIX_ADDRESS
    return &kLibrary;
}

}  // namespace orlix
