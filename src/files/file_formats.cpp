#include "files/file_formats.hpp"

#include "files/bmp.hpp"
#include "files/png.hpp"
#include "files/pnm.hpp"

namespace orlix {
namespace {

constexpr int32_t kBits[] = {8, 16};
constexpr int32_t kGreyOrColour[] = {1, 3};
constexpr int32_t kGrey[] = {1};
constexpr int32_t kColour[] = {3};

constexpr FileFormat kFileFormats[] = {
    {"PNG", ".png", IFF_PNG, &LooksLikePng, &ReadPng, &WritePng, kGreyOrColour, kBits},
    {"BMP", ".bmp", IFF_BMP, &LooksLikeBmp, &ReadBmp, nullptr, {}, {}},
    {"PGM", ".pgm", IFF_PGM, &LooksLikePgm, &ReadPnm, &WriteRawPnm, kGrey, kBits},
    {"PPM", ".ppm", IFF_PPM, &LooksLikePpm, &ReadPnm, &WriteRawPnm, kColour, kBits},
    {"plain PGM", "", IFF_PlainPGM, &LooksLikePlainPgm, &ReadPnm, &WritePlainPnm, kGrey, kBits},
    {"plain PPM", "", IFF_PlainPPM, &LooksLikePlainPpm, &ReadPnm, &WritePlainPnm, kColour, kBits},
};

}  // namespace

std::span<const FileFormat> FileFormats() noexcept { return kFileFormats; }

}  // namespace orlix
