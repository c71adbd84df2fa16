// Change counts of an image, for everything that is derived from it.
#pragma once

#include <cstdint>

namespace orlix {

// An image object has one record, which survives a change of the pixel type. Code that changes something increments its
// count; code that derives something (a picture, a saved stream) copies the record and compares it later.
struct Changes {
    uint64_t pixels = 0;   // the pixels and the processing band
    uint64_t display = 0;  // what pictures depend on apart from pixels and colours: the band and the range shown
    uint64_t kept = 0;     // everything else that a stream stores

    bool SavedAs(const Changes& saved) const { return pixels == saved.pixels && kept == saved.kept; }
    bool ShownAs(const Changes& shown) const { return pixels == shown.pixels && display == shown.display; }
};

}  // namespace orlix
