// Images in files without a header, as cameras and programs dump them. Pixel formats of cameras have their GenICam
// names ("Mono12Packed").
#pragma once

#include <orlix/com_ptr.hpp>

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>

namespace tool {

// WIDTHxHEIGHT:TYPE[:OFFSET[:ROWBYTES]]. The file holds frames of HEIGHT rows from OFFSET on, one after the other. A
// row takes ROWBYTES bytes, those of its pixels if that is not given; a leading minus says that the last row comes
// first. In packed camera formats without ROWBYTES the rows are one stream, in which a row may end within a byte.
class RawLayout {
public:
    static constexpr char kForm[] = "WxH:TYPE[:OFFSET[:ROWBYTES]]";
    static std::string TypeNames();  // "u8, u16le, ..., Mono10p, ..."

    explicit RawLayout(std::string_view text);  // throws UsageError

    // The number of whole frames in a file of that many bytes; of the last one, padding behind the last row may be
    // missing.
    uint64_t Frames(uint64_t fileBytes) const;

    // Creates the image of a frame, counted from 0. Throws std::runtime_error if the file, which must be seekable, is
    // too short, before memory is taken.
    void Read(std::istream& file, LONG frame, const orlix::ComPtr<IImageVPAExPlus>& image) const;

    int64_t samples() const;  // of all bands

private:
    struct Type {
        std::string_view name;
        LONG dataType;     // of the image; 0 for camera formats
        LONG frameFormat;  // FramePixelFormat; 0 for others
        bool bigEndian = false;

        uint64_t bits() const;  // of a pixel
        bool isMosaic() const { return name.starts_with("Bayer"); }
    };
    static const Type kTypes[];

    template <class Sample>
    void ReadRows(std::istream& file, const orlix::ComPtr<IImageVPAExPlus>& image) const;
    void ReadFrame(std::istream& file, const orlix::ComPtr<IImageVPAExPlus>& image) const;

    std::string text_;
    const Type* type_ = nullptr;
    LONG width_ = 0, height_ = 0;
    // pixelBytes_: of a row without padding. rowBytes_: 0 for rows that are one stream. frameBytes_: up to the last
    // sample. frameStep_: from one frame to the next.
    uint64_t offset_ = 0, pixelBytes_ = 0, rowBytes_ = 0, frameBytes_ = 0, frameStep_ = 0;
    bool bottomUp_ = false;
};

// Bytes from the file's beginning to its end.
uint64_t SizeOf(std::istream& file);

}  // namespace tool
