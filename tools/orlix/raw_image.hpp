// Images in files without a header, as cameras and programs dump them.
#pragma once

#include <orlix/com_ptr.hpp>

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>

namespace tool {

// WIDTHxHEIGHT:TYPE[:OFFSET[:ROWBYTES]]. The file holds frames of HEIGHT rows from OFFSET on, one after the other. A
// row takes ROWBYTES bytes, those of its pixels if that is not given; a leading minus says that the last row comes
// first.
class RawLayout {
public:
    static constexpr char kForm[] = "WxH:TYPE[:OFFSET[:ROWBYTES]]";
    static std::string TypeNames();  // "u8, u16le, ..."

    explicit RawLayout(std::string_view text);  // throws UsageError

    // The number of whole frames in a file of that many bytes; of the last one, padding behind the last row may be
    // missing.
    uint64_t Frames(uint64_t fileBytes) const;

    // Creates the image of a frame, counted from 0. Throws std::runtime_error if the file, which must be seekable, is
    // too short, before memory is taken.
    void Read(std::istream& file, LONG frame, const orlix::ComPtr<IImageVPAExPlus>& image) const;

    int64_t pixels() const { return int64_t{width_} * height_; }

private:
    struct Type {
        std::string_view name;
        LONG dataType;
        uint64_t bytes;
        bool bigEndian;
    };
    static const Type kTypes[];

    template <class Sample>
    void ReadRows(std::istream& file, const orlix::ComPtr<IImageVPAExPlus>& image) const;

    std::string text_;
    const Type* type_ = nullptr;
    LONG width_ = 0, height_ = 0;
    uint64_t offset_ = 0, rowBytes_ = 0, pixelBytes_ = 0;  // pixelBytes_: of a row without padding
    bool bottomUp_ = false;
};

// Bytes from the file's beginning to its end.
uint64_t SizeOf(std::istream& file);

}  // namespace tool
