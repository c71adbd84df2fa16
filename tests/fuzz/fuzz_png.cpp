#include <algorithm>

#include "files/check_image_file.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    orlix::test::Bytes file(data, data + size);
    // Spares the fuzzer the search for the signature.
    const orlix::test::Bytes signature = orlix::test::PngSignature();
    std::copy_n(signature.begin(), std::min(signature.size(), size), file.begin());
    file = orlix::test::WithRightChecksums(file);
    orlix::test::CheckReading(file);
    orlix::test::CheckWriting(file);
    return 0;
}
