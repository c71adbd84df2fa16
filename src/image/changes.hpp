// How often what an image holds has changed, for everybody who keeps something that was made from it.
#pragma once

#include <cstdint>

namespace orlix {

// An image object has one record, which stays when the pixel type changes. Whoever changes something counts it there;
// whoever makes something (a picture, a saved stream) copies the record and compares.
struct Changes {
    uint64_t pixels = 0;   // the pixels, and the band to process
    uint64_t display = 0;  // what pictures are made from apart from pixels and colours: the band and the range shown
    uint64_t kept = 0;     // everything else that a stream keeps

    bool SavedAs(const Changes& saved) const { return pixels == saved.pixels && kept == saved.kept; }
    bool ShownAs(const Changes& shown) const { return pixels == shown.pixels && display == shown.display; }
};

}  // namespace orlix
