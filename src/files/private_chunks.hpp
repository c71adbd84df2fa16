// What image files keep of an image beyond what their formats provide for, so that nothing that a stream keeps is lost.
//
// PNG files have it as chunks of their own. The letters of their names say, by PNG's rules: optional (small), private
// (small), reserved (capital), and whether a program that does not know the chunk may copy it into a file with other
// pixels (small) or must drop it (capital). Other formats that have room for bytes of any kind hold the same chunks one
// after the other, see FramedChunks().
//
// Every chunk begins with the five letters "Orlix" and a byte 1, the version. Numbers are big-endian and have 4 bytes
// unless stated otherwise; doubles are IEEE 754. Texts are UTF-16 units of 2 bytes.
//   caLB  calibration: size of a pixel in microns, x and y (doubles, both 0 if it is not known); coordinate map: OrgX
//         OrgY A11 A12 A21 A22 (doubles); number of significant bits (1 byte)
//   seTT  settings: luminance range, lower and upper (doubles); band to process; number of bins; display range, lower
//         and upper (doubles); band to display; the display setting of streams, 28 bytes as there; then nothing for a
//         palette of greys, or 256 entries of blue, green, red and a reserved byte
//   biNe  a binary entry: number of units of the keyword, keyword, bytes
//   teXe  a text entry that the format's own texts cannot hold exactly: number of units of the keyword, keyword, text
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "files/file_types.hpp"
#include "files/png_format.hpp"

namespace orlix {

struct PrivateChunk {
    uint32_t type = 0;
    std::vector<uint8_t> data;
};

inline constexpr uint32_t kCalibrationChunk = png::ChunkType("caLB");
inline constexpr uint32_t kSettingsChunk = png::ChunkType("seTT");
inline constexpr uint32_t kBinaryEntryChunk = png::ChunkType("biNe");
inline constexpr uint32_t kTextEntryChunk = png::ChunkType("teXe");

// Calibration where there is something to tell, settings, binary entries. The texts are the format's business.
std::vector<PrivateChunk> PrivateChunks(const FileProperties& properties);
PrivateChunk TextEntryChunk(const TextEntry& entry);

// Whether it is one of these chunks. If its content is sound, the properties get it; otherwise it is skipped. `from` is
// a literal, see ImageProperties::micronsFrom.
bool TakePrivateChunk(uint32_t type, std::span<const uint8_t> data, const char* from, FileProperties& properties);

// To be called once type and bands of the image are known: removes settings that an image of these cannot have.
void DropUnfitSettings(FileProperties& properties);

// PrivateChunks() and all texts: for each chunk the number of its bytes (4 bytes), its name and the bytes.
std::vector<uint8_t> FramedChunks(const FileProperties& properties);
// Takes the chunks up to the first that is cut off.
void TakeFramedChunks(std::span<const uint8_t> bytes, const char* from, FileProperties& properties);

}  // namespace orlix
