#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <utility>

#include "component/failure.hpp"
#include "files/private_chunks.hpp"
#include "files/tiff.hpp"
#include "files/tiff_calibration.hpp"
#include "files/tiff_directory.hpp"
#include "files/tiff_handle.hpp"
#include "files/tiff_texts.hpp"
#include "image/byte_order.hpp"
#include "text/encoding.hpp"

namespace orlix {
namespace {

[[noreturn]] void CannotWriteTiff() { throw Failure("IImageFile::SaveToFile: problems writing tiff file"); }

// The bytes of a new file, which libtiff also reads back and changes.
class TiffOutput final : public TiffMemory {
public:
    size_t Read(void* to, size_t size) noexcept override {
        if (position_ >= bytes_.size()) return 0;
        size = std::min(size, bytes_.size() - static_cast<size_t>(position_));
        std::memcpy(to, bytes_.data() + position_, size);
        position_ += size;
        return size;
    }
    size_t Write(const void* from, size_t size) noexcept override try {
        if (position_ > std::numeric_limits<size_t>::max() / 2 - size) throw std::bad_alloc();
        const auto end = static_cast<size_t>(position_) + size;
        if (end > bytes_.size()) bytes_.resize(end);
        if (size > 0) std::memcpy(bytes_.data() + position_, from, size);
        position_ = end;
        return size;
    } catch (...) {
        outOfMemory_ = true;
        return 0;
    }
    uint64_t Size() const noexcept override { return bytes_.size(); }
    const uint8_t* Whole() const noexcept override { return nullptr; }

    bool outOfMemory() const { return outOfMemory_; }
    std::vector<uint8_t> Take() { return std::move(bytes_); }

private:
    std::vector<uint8_t> bytes_;
    bool outOfMemory_ = false;
};

size_t SampleSize(LONG type) { return type == DT_BYTE ? 1 : type == DT_WORD ? 2 : 4; }

class TiffWriter {
public:
    TiffWriter(const TiffLibrary& library, const FileProperties& properties, PixelSource& source)
        : library_(library), properties_(properties), source_(source) {
        planar_ = properties.bands != 1 && properties.bands != 3;
        samples_ = planar_ ? 1 : static_cast<size_t>(properties.bands);
        // Below 2^31 columns of 3 samples of 4 bytes.
        const uint64_t rowBytes = static_cast<uint64_t>(properties.width) * samples_ * SampleSize(properties.dataType);
        if (rowBytes > std::numeric_limits<size_t>::max() / 16) throw std::bad_alloc();
        rowBytes_ = static_cast<size_t>(rowBytes);
        constexpr size_t kStrip = 256 * 1024;
        stripRows_ =
            static_cast<int32_t>(std::clamp<size_t>(kStrip / rowBytes_, 1, static_cast<size_t>(properties.height)));
    }

    std::vector<uint8_t> Write() {
        // Pixels that do not become smaller grow by less than a thousandth.
        constexpr double kMostClassic = 4.2e9;
        const double size = static_cast<double>(rowBytes_) * properties_.height * (planar_ ? properties_.bands : 1);
        TiffOutput output;
        TiffHandle handle(library_, output, size < kMostClassic ? "wl" : "wl8", std::numeric_limits<uint64_t>::max());
        if (!handle) CannotWriteTiff();
        tiff_ = handle.get();
        PutLayout();
        PutResolution();
        PutTexts();
        PutPrivateTag();
        if (!PutPixels() || library_.TIFFWriteDirectory(tiff_) != 1) {
            if (output.outOfMemory()) throw std::bad_alloc();
            CannotWriteTiff();
        }
        handle.Close();
        std::vector<uint8_t> bytes = output.Take();
        Refine(tiff::kXResolution, resolutionX_, bytes);
        Refine(tiff::kYResolution, resolutionY_, bytes);
        return bytes;
    }

private:
    // libtiff keeps resolutions in single precision. The file has room for nine digits, which programs show to people.
    static void Refine(uint16_t tag, double value, std::vector<uint8_t>& bytes) {
        const auto stored = TiffDirectory(bytes).Find(tag, tiff::kRational);
        if (stored.empty()) return;
        uint8_t* const place = bytes.data() + (stored.data() - bytes.data());
        const TiffRational rational = RationalOf(value);
        PutLittleEndian32(place, rational.numerator);
        PutLittleEndian32(place + 4, rational.denominator);
    }

    template <class... Values>
    void Put(uint32_t tag, Values... values) {
        if (library_.TIFFSetField(tiff_, tag, values...) != 1) CannotWriteTiff();
    }

    void PutLayout() {
        const int bands = properties_.bands;
        const bool isFloat = properties_.dataType == DT_Float;
        Put(TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(properties_.width));
        Put(TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(properties_.height));
        Put(TIFFTAG_BITSPERSAMPLE, static_cast<int>(8 * SampleSize(properties_.dataType)));
        Put(TIFFTAG_SAMPLEFORMAT, int{isFloat ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT});
        Put(TIFFTAG_SAMPLESPERPIXEL, bands);
        Put(TIFFTAG_PLANARCONFIG, int{planar_ ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG});
        Put(TIFFTAG_PHOTOMETRIC, int{bands == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK});
        if (planar_) {
            const std::vector<uint16_t> kinds(static_cast<size_t>(bands - 1), EXTRASAMPLE_UNSPECIFIED);
            Put(TIFFTAG_EXTRASAMPLES, bands - 1, kinds.data());
        }
        Put(TIFFTAG_ORIENTATION, int{ORIENTATION_TOPLEFT});
        Put(TIFFTAG_COMPRESSION, int{COMPRESSION_ADOBE_DEFLATE});
        Put(TIFFTAG_PREDICTOR, int{isFloat ? PREDICTOR_FLOATINGPOINT : PREDICTOR_HORIZONTAL});
        Put(TIFFTAG_ROWSPERSTRIP, static_cast<uint32_t>(stripRows_));
    }

    void PutResolution() {
        const ImageProperties& kept = properties_.kept;
        if (!(kept.micronsX > 0)) return;
        // A description by ImageJ tells the unit, for ImageJ and for the reader.
        const auto imageJ = ImageJUnits(ToUtf8Bytes(kept.description));
        constexpr double kCentimetre = 10000;
        const auto [unitX, unitY] = imageJ.value_or(std::pair{kCentimetre, kCentimetre});
        resolutionX_ = unitX / kept.micronsX;
        resolutionY_ = unitY / kept.micronsY;
        // What a rational of 32 bits holds with the precision of single floating point.
        const auto fits = [](double value) { return value >= 0x1p-8 && value <= 0xFFFFFFFEu; };
        if (!fits(resolutionX_) || !fits(resolutionY_)) return;
        Put(TIFFTAG_RESOLUTIONUNIT, int{imageJ ? RESUNIT_NONE : RESUNIT_CENTIMETER});
        Put(TIFFTAG_XRESOLUTION, resolutionX_);
        Put(TIFFTAG_YRESOLUTION, resolutionY_);
    }

    void PutTexts() {
        const auto texts = properties_.kept.AllTexts();
        for (const auto& [tag, keyword] : tiff::kTextTags) {
            const auto entry = std::ranges::find(texts, keyword, &TextEntry::keyword);
            if (entry == texts.end()) continue;
            const WideStringView text = WideStringView(entry->text).substr(0, entry->text.find(OLECHAR{0}));
            if (!text.empty()) Put(tag, ToUtf8Bytes(text).c_str());
        }
    }

    void PutPrivateTag() {
        const std::vector<uint8_t> bytes = FramedChunks(properties_);
        if (bytes.empty()) return;
        char name[] = "OrlixProperties";
        const TIFFFieldInfo field = {
            kTiffPrivateTag, TIFF_VARIABLE2, TIFF_VARIABLE2, TIFF_UNDEFINED, FIELD_CUSTOM, 1, 1, name};
        if (library_.TIFFMergeFieldInfo(tiff_, &field, 1) != 0) CannotWriteTiff();
        if (bytes.size() > std::numeric_limits<uint32_t>::max()) CannotWriteTiff();
        Put(kTiffPrivateTag, static_cast<uint32_t>(bytes.size()), bytes.data());
    }

    bool PutPixels() {
        std::vector<uint8_t> strip(rowBytes_ * static_cast<size_t>(stripRows_));
        uint32_t number = 0;
        for (int32_t plane = 0; plane < (planar_ ? properties_.bands : 1); ++plane)
            for (int32_t top = 0; top < properties_.height; top += stripRows_) {
                const int32_t rows = std::min(stripRows_, properties_.height - top);
                for (int32_t row = 0; row < rows; ++row)
                    TakeRow(plane, top + row, strip.data() + rowBytes_ * static_cast<size_t>(row));
                const auto size = static_cast<tmsize_t>(rowBytes_ * static_cast<size_t>(rows));
                if (library_.TIFFWriteEncodedStrip(tiff_, number++, strip.data(), size) != size) return false;
                if (properties_.height - top <= stripRows_) break;  // the sum might overflow
            }
        return true;
    }

    void TakeRow(int32_t plane, int32_t y, uint8_t* out) {
        const size_t size = SampleSize(properties_.dataType), step = samples_ * size;
        const auto width = static_cast<size_t>(properties_.width);
        for (size_t sample = 0; sample < samples_; ++sample) {
            const auto* in =
                static_cast<const uint8_t*>(source_.Row(planar_ ? plane : static_cast<int32_t>(sample), y));
            if (samples_ == 1)
                std::memcpy(out, in, rowBytes_);
            else
                for (size_t x = 0; x < width; ++x) std::memcpy(out + x * step + sample * size, in + x * size, size);
        }
    }

    const TiffLibrary& library_;
    const FileProperties& properties_;
    PixelSource& source_;
    TIFF* tiff_ = nullptr;
    bool planar_ = false;
    size_t samples_ = 1;  // of a stored pixel
    size_t rowBytes_ = 0;
    double resolutionX_ = 0, resolutionY_ = 0;  // in the file's unit
    int32_t stripRows_ = 1;
};

}  // namespace

std::vector<uint8_t> WriteTiff(const FileProperties& properties, PixelSource& source, const WriteOptions&) {
    const TiffLibrary* library = FindTiffLibrary();
    if (!library) throw Failure("IImageFile::SaveToFile: libtiff is not installed.");
    // Counts of 16 bits.
    if (properties.bands > std::numeric_limits<uint16_t>::max()) CannotWriteTiff();
    return TiffWriter(*library, properties, source).Write();
}

}  // namespace orlix
