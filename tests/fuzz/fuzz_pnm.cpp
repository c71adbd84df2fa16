#include "files/check_image_file.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr uint8_t kKinds[] = {'2', '3', '5', '6'};
    orlix::test::Bytes file(data, data + size);
    if (size >= 2) {
        file[0] = 'P';
        file[1] = kKinds[data[1] % 4];
    }
    orlix::test::CheckReading(file);
    return 0;
}
