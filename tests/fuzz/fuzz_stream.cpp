#include "files/check_image_stream.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    orlix::test::CheckStreamReading({data, size});
    orlix::test::CheckStreamReading(orlix::test::WithSoundPixels({data, size}));
    return 0;
}
