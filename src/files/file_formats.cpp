#include "files/file_formats.hpp"

#include "files/bmp.hpp"
#include "files/jpeg.hpp"
#include "files/platform_picture.hpp"
#include "files/png.hpp"
#include "files/pnm.hpp"
#include "files/tiff.hpp"

namespace orlix {
namespace {

constexpr LONG kBytes[] = {DT_BYTE};
constexpr LONG kBytesAndWords[] = {DT_BYTE, DT_WORD};
constexpr LONG kFloats[] = {DT_Float};
constexpr LONG kAllTypes[] = {DT_BYTE, DT_WORD, DT_DWORD, DT_Float};
constexpr int32_t kGreyOrColourBands[] = {1, 3};
constexpr int32_t kGreyBands[] = {1};
constexpr int32_t kColourBands[] = {3};

constexpr FileFormat kFileFormats[] = {
    {"PNG", ".png", IFF_PNG, &LooksLikePng, &ReadPng, &WritePng, kGreyOrColourBands, kBytesAndWords},
    {"BMP", ".bmp", IFF_BMP, &LooksLikeBmp, &ReadBmp, &WriteBmp, kGreyOrColourBands, kBytes},
    {"PGM", ".pgm", IFF_PGM, &LooksLikePgm, &ReadPnm, &WriteRawPnm, kGreyBands, kBytesAndWords},
    {"PPM", ".ppm", IFF_PPM, &LooksLikePpm, &ReadPnm, &WriteRawPnm, kColourBands, kBytesAndWords},
    {"plain PGM", "", IFF_PlainPGM, &LooksLikePlainPgm, &ReadPnm, &WritePlainPnm, kGreyBands, kBytesAndWords},
    {"plain PPM", "", IFF_PlainPPM, &LooksLikePlainPpm, &ReadPnm, &WritePlainPnm, kColourBands, kBytesAndWords},
    {"PAM", ".pam", IFF_PAM, &LooksLikePam, &ReadPam, &WritePam, kGreyOrColourBands, kBytesAndWords},
    {"PFM", ".pfm", IFF_PFM, &LooksLikePfm, &ReadPfm, &WritePfm, kGreyOrColourBands, kFloats},
    {"TIFF", ".tif .tiff", IFF_TIFF, &LooksLikeTiff, &ReadTiff, &WriteTiff, {}, kAllTypes, &CountTiffPages},
    {"JPEG", ".jpg .jpeg", IFF_JPEG, &LooksLikeJpeg, &ReadJpeg, &WriteJpeg, kGreyOrColourBands, kBytes},
    {"GIF", "", IFF_ByExtension, &LooksLikeGif, &ReadPlatformPicture},
    {"icon", "", IFF_ByExtension, &LooksLikeIcon, &ReadPlatformPicture},
    {"EMF", "", IFF_ByExtension, &LooksLikeEnhancedMetafile, &ReadPlatformPicture},
    {"WMF", "", IFF_ByExtension, &LooksLikeWindowsMetafile, &ReadPlatformPicture},
};

}  // namespace

std::span<const FileFormat> FileFormats() noexcept { return kFileFormats; }

}  // namespace orlix
