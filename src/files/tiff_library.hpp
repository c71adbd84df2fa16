// libtiff, which decodes and encodes TIFF files.
//
// Off Windows it is loaded when the first TIFF file is read or written: it brings nine libraries along, which would
// nearly double the time that a program needs to start. On Windows it is part of the module.
#pragma once

#include <tiffio.h>

namespace orlix {

// The functions in use.
#define ORLIX_TIFF_FUNCTIONS(X)             \
    X(TIFFOpenOptionsAlloc)                 \
    X(TIFFOpenOptionsFree)                  \
    X(TIFFOpenOptionsSetMaxSingleMemAlloc)  \
    X(TIFFOpenOptionsSetErrorHandlerExtR)   \
    X(TIFFOpenOptionsSetWarningHandlerExtR) \
    X(TIFFClientOpenExt)                    \
    X(TIFFClose)                            \
    X(TIFFMergeFieldInfo)                   \
    X(TIFFNumberOfDirectories)              \
    X(TIFFSetDirectory)                     \
    X(TIFFCurrentDirOffset)                 \
    X(TIFFGetField)                         \
    X(TIFFGetFieldDefaulted)                \
    X(TIFFSetField)                         \
    X(TIFFIsTiled)                          \
    X(TIFFNumberOfStrips)                   \
    X(TIFFNumberOfTiles)                    \
    X(TIFFGetStrileByteCount)               \
    X(TIFFScanlineSize64)                   \
    X(TIFFReadScanline)                     \
    X(TIFFTileSize64)                       \
    X(TIFFTileRowSize64)                    \
    X(TIFFReadTile)                         \
    X(TIFFWriteEncodedStrip)                \
    X(TIFFWriteDirectory)

struct TiffLibrary {
#define ORLIX_TIFF_MEMBER(name) decltype(&::name) name = nullptr;
    ORLIX_TIFF_FUNCTIONS(ORLIX_TIFF_MEMBER)
#undef ORLIX_TIFF_MEMBER
};

// Null where the library is not installed, or is too old.
const TiffLibrary* FindTiffLibrary();

}  // namespace orlix
