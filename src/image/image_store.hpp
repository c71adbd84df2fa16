// The contents of an image that do not depend on its pixel type: storage, offset table, coordinate map, description,
// file properties.
#pragma once

#include <orlix/orlix.h>

#include <cmath>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "component/failure.hpp"
#include "image/changes.hpp"
#include "image/coordinate_map.hpp"
#include "image/image_layout.hpp"
#include "image/pixel_buffer.hpp"
#include "image/pixel_view.hpp"
#include "text/wide_string.hpp"

namespace orlix {

// The keyword under which files store the description among their texts.
inline constexpr WideStringView kDescriptionKeyword = OLESTR("Description");

// IImageVPA::VPA of a band that an image does not have.
inline constexpr char kBandOutOfRange[] = "IImageVPA::VPA: BandIndex is out of range";

struct TextEntry {
    WideString keyword;
    WideString text;
};

struct BinaryEntry {
    WideString keyword;
    std::vector<uint8_t> bytes;
};

// A chunk of a PNG file that another program wrote and that may be copied although the pixels have changed.
struct ForeignChunk {
    uint32_t type = 0;
    bool behindPixels = false;
    std::vector<uint8_t> bytes;
};

// The properties that files and streams store in addition to the pixels.
struct ImageProperties {
    WideString description;
    bool hasDescription = false;  // an empty description is not the same as none
    double micronsX = 0;          // size of a pixel; both above 0, or both 0 when unknown
    double micronsY = 0;
    const char* micronsFrom = "";  // for people: where the size comes from
    int32_t significantBits = 0;   // of a sample of 8 or 16 bits; 0 when unknown
    std::vector<TextEntry> texts;
    std::vector<BinaryEntry> binaries;
    std::vector<ForeignChunk> chunks;

    // A size that IsPixelSize() accepts; where it comes from as a literal.
    void PutMicrons(double x, double y, const char* from) {
        micronsX = x;
        micronsY = y;
        micronsFrom = from;
    }
    // Adds a text of a file: the first one under kDescriptionKeyword is the description.
    void Keep(TextEntry&& entry);
    // The description, if there is one, and the texts.
    std::vector<TextEntry> AllTexts() const;
};

// Whether these can be the size of a pixel: both finite and above 0.
inline bool IsPixelSize(double x, double y) { return x > 0 && y > 0 && std::isfinite(x) && std::isfinite(y); }

// Whether samples of this type can have that number of significant bits, or it is 0 for unknown.
constexpr bool CanBeSignificant(LONG bits, LONG dataType) {
    return bits == 0 || ((dataType == DT_BYTE || dataType == DT_WORD) && bits > 0 && bits < dataType);
}

// The content that creating an image replaces as a whole. Notes:
//  (1) data points into owned or to a client's buffer of layout.totalSize bytes; null while the image is empty;
//  (2) a refused buffer is one that the operating system would not let us read and write: nothing may touch it.
struct ImageContent {
    ImageLayout layout;
    PixelBuffer owned;
    uint8_t* data = nullptr;
    bool refused = false;
    std::vector<VPAEntry> table;
    TCoordinateMap coordinates = kIdentityMap;
    ImageProperties properties;
};

// Initial bytes of a new content. Unset leaves them uninitialised, for callers that overwrite all of them, padding
// included.
enum class Samples { Zero, Unset };

// A separate content, to be filled and then swapped in: a copy or a load that fails on the way leaves the image as it
// was, and the source may lie in the old content. The failure texts are those of IImageVPAExPlus::Create.
ImageContent MakeContent(LONG dataType, LONG width, LONG height, LONG bands, Samples samples = Samples::Zero);

class ImageStore {
public:
    // changes: the record of the image object, which outlives this store.
    ImageStore(LONG dataType, Changes& changes) : dataType_(dataType), changes_(changes) {}

    LONG dataType() const { return dataType_; }
    const ImageLayout& layout() const { return content_.layout; }
    bool empty() const { return !content_.data; }
    bool refused() const { return content_.refused; }
    const ImageContent& content() const { return content_; }
    Changes& changes() { return changes_; }

    const TCoordinateMap& coordinates() const { return content_.coordinates; }
    void PutCoordinates(const TCoordinateMap& coordinates) {
        content_.coordinates = coordinates;
        ++changes_.kept;
    }
    const ImageProperties& properties() const { return content_.properties; }
    // For a change that can no longer fail.
    ImageProperties& ChangeProperties() {
        ++changes_.kept;
        return content_.properties;
    }

    // IImageVPAExPlus::Create for an image of this type: its checks, its texts and what it preserves are documented
    // there. A failure leaves the image as it was.
    void Create(LONG width, LONG height, LONG bands, LONG dataType, bool zero);

    // IImageVPAExPlus::AttachBuffer; buffer is not null. A refused buffer (Failure) stays attached; any other failure
    // leaves the image as it was. former is the store that this one replaces, itself or another: a buffer that overlaps
    // its pixels is refused without being accessed, since those pixels are freed.
    void Attach(void* buffer, LONG width, LONG height, LONG bands, LONG dataType, bool zero, const ImageStore* former);

    // Replaces the content by another one of this image's type.
    void Replace(ImageContent&& content) noexcept;

    // Whether the image has samples of this layout, in memory of its own.
    bool Owns(const ImageLayout& layout) const {
        return content_.layout == layout && content_.data && content_.data == content_.owned.data();
    }
    // For an image that owns its samples and has just been given others: all else of a new content of the same layout.
    void SamplesReplaced(std::vector<VPAEntry> table, const TCoordinateMap& coordinates, ImageProperties properties) {
        Reset(content_.layout, std::move(table));
        content_.coordinates = coordinates;
        content_.properties = std::move(properties);
    }

    // Base address of a band, 0 <= band < bands, and entry 0 of the table. The address of a refused buffer may be
    // anything.
    uint8_t* base(int32_t band) const {
        return reinterpret_cast<uint8_t*>(reinterpret_cast<uintptr_t>(content_.data) +
                                          static_cast<size_t>(band) * content_.layout.bandSize);
    }
    VPAEntry* table() { return content_.table.data() + kTableMargin; }

private:
    // table may have been moved out of content_.
    void Reset(const ImageLayout& layout, std::vector<VPAEntry> table);

    LONG dataType_;
    Changes& changes_;
    ImageContent content_;
};

// An image of one pixel type. Accumulator holds sums over a neighbourhood of these pixels, BigAccumulator products of
// such sums, both without overflow.
template <class PixelType, class AccumulatorType, class BigAccumulatorType>
class CImageBase : public ImageStore {
public:
    using Pixel = PixelType;
    using Accumulator = AccumulatorType;
    using BigAccumulator = BigAccumulatorType;

    using ImageStore::ImageStore;

    PixelView<Pixel> view(int32_t band) {
        return {reinterpret_cast<Pixel*>(base(band)), table(), layout().width, layout().height};
    }
};

}  // namespace orlix
