#include "files/file_formats.hpp"

#include "files/bmp.hpp"
#include "files/png.hpp"
#include "files/pnm.hpp"

namespace orlix {
namespace {

constexpr int32_t kBits[] = {8, 16};
constexpr int32_t kGreyOrColourBands[] = {1, 3};
constexpr int32_t kGreyBands[] = {1};
constexpr int32_t kColourBands[] = {3};

FileProperties ReadPlainBmp(std::span<const uint8_t> bytes, PixelSink& sink, const SampleLimit& limit) {
    return ReadBmp(bytes, sink, limit, false);
}

constexpr FileFormat kFileFormats[] = {
    {"PNG", ".png", IFF_PNG, &LooksLikePng, &ReadPng, &WritePng, kGreyOrColourBands, kBits},
    {"BMP", ".bmp", IFF_BMP, &LooksLikeBmp, &ReadPlainBmp, nullptr, {}, {}},
    {"PGM", ".pgm", IFF_PGM, &LooksLikePgm, &ReadPnm, &WriteRawPnm, kGreyBands, kBits},
    {"PPM", ".ppm", IFF_PPM, &LooksLikePpm, &ReadPnm, &WriteRawPnm, kColourBands, kBits},
    {"plain PGM", "", IFF_PlainPGM, &LooksLikePlainPgm, &ReadPnm, &WritePlainPnm, kGreyBands, kBits},
    {"plain PPM", "", IFF_PlainPPM, &LooksLikePlainPpm, &ReadPnm, &WritePlainPnm, kColourBands, kBits},
};

}  // namespace

std::span<const FileFormat> FileFormats() noexcept { return kFileFormats; }

}  // namespace orlix
