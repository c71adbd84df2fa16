// The fuzzer of a reader: ORLIX_FORMAT is png, bmp, pnm, tiff, jpeg or stream.
#include <algorithm>
#include <iterator>
#include <numeric>
#include <string_view>

#include "files/corpus.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace orlix::test;
    constexpr std::string_view kFormat = ORLIX_FORMAT;
    Bytes file(data, data + size);
    // Writing takes some twenty times as long: one file in 64.
    const auto writes = [&] { return std::accumulate(file.begin(), file.end(), size_t{0}) % 64 == 0; };
    if (kFormat == "stream") {
        const Bytes sound = WithSoundPixels(file);
        CheckStreamReading(file);
        CheckStreamReading(sound);
        if (writes()) {
            CheckStreamWriting(file);
            CheckStreamWriting(sound);
        }
        return 0;
    }
    // Spares the fuzzer the search for the signature.
    constexpr uint8_t kKinds[] = {'2', '3', '5', '6', '7', 'f', 'F'};
    const uint8_t version = size > 3 && ((data[2] | data[3]) & 1) != 0 ? 43 : 42;
    const Bytes signature = kFormat == "png"    ? PngSignature()
                            : kFormat == "bmp"  ? FromText("BM")
                            : kFormat == "jpeg" ? Bytes{0xFF, 0xD8, 0xFF}
                            : kFormat == "pnm"  ? Bytes{'P', kKinds[size > 1 ? data[1] % std::size(kKinds) : 0]}
                            : size > 0 && data[0] == 'M' ? Bytes{'M', 'M', 0, version}
                                                         : Bytes{'I', 'I', version, 0};
    std::copy_n(signature.begin(), std::min(signature.size(), size), file.begin());
    if (kFormat == "png") file = WithRightChecksums(file);
    CheckReading(file);
    if (writes() && kFormat != "jpeg") CheckWriting(file);
    return 0;
}
