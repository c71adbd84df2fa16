#include "files/check_image_file.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    orlix::test::Bytes file(data, data + size);
    if (size >= 2) {
        file[0] = 'B';
        file[1] = 'M';
    }
    orlix::test::CheckReading(file);
    return 0;
}
