#include "frames/camera_frame.hpp"

#include <array>
#include <cstring>
#include <utility>
#include <vector>

#include "filters/linear_filter_kernels.hpp"
#include "frames/mosaic_kernels.hpp"

namespace orlix {

namespace {

PackedGroup GroupOf(const FrameFormat& format) {
    switch (format.samples) {
        case FrameSamples::Packed:
            return GroupOf(format.packing);
        case FrameSamples::Triples:
            return {1, 3};
        default:
            return {1, 1};
    }
}

uint64_t BytesOf(const FrameFormat& format, uint64_t samples) {
    const PackedGroup group = GroupOf(format);
    return (samples * group.bytes + group.samples - 1) / group.samples;
}

uint64_t PlaneBytes(const CameraFrame& frame) {
    const auto width = static_cast<uint64_t>(frame.width), height = static_cast<uint64_t>(frame.height);
    return frame.rowPitch > 0 ? frame.rowPitch * height : BytesOf(frame.format, width * height);
}

bool HasMosaic(const CameraFrame& frame) {
    return frame.format.filters != FilterOrder::None && frame.mosaic != FM_Keep;
}

// Rows of the frame, from the top of the image on.
class FrameRows {
public:
    FrameRows(const CameraFrame& frame, const uint8_t* bytes)
        : frame_(frame),
          bytes_(bytes),
          unpack_(WithUnpack(frame.format.packing, [](const auto& table) { return Choose(table); })) {}

    size_t width() const { return static_cast<size_t>(frame_.width); }
    int32_t height() const { return frame_.height; }

    // The row of the frame that is row y of the image.
    uint64_t InFrame(int32_t y) const { return static_cast<uint64_t>(frame_.bottomUp ? frame_.height - 1 - y : y); }

    void Read(int32_t y, uint8_t* row) const { ReadPlane(0, y, row); }
    void Read(int32_t y, uint16_t* row) const {
        const PackedGroup group = GroupOf(frame_.format);
        if (frame_.rowPitch > 0) return unpack_(bytes_ + InFrame(y) * frame_.rowPitch, 0, width(), row);
        const uint64_t first = InFrame(y) * width();
        unpack_(bytes_ + first / group.samples * group.bytes, static_cast<size_t>(first % group.samples), width(), row);
    }
    // Whether the rows follow each other from the top of the image on, without anything between them.
    bool Together() const {
        const bool whole = frame_.rowPitch == RowBytes(frame_) && width() % GroupOf(frame_.format).samples == 0;
        return !frame_.bottomUp && (frame_.rowPitch == 0 || whole);
    }
    void ReadAll(uint8_t* samples) const { std::memcpy(samples, bytes_, Samples()); }
    void ReadAll(uint16_t* samples) const { unpack_(bytes_, 0, Samples(), samples); }
    void ReadPlane(size_t plane, int32_t y, uint8_t* row) const {
        const uint64_t pitch = frame_.rowPitch > 0 ? frame_.rowPitch : width();
        std::memcpy(row, bytes_ + (plane * PlaneBytes(frame_) + InFrame(y) * pitch), width());
    }
    const uint8_t* Triples(int32_t y) const {
        return bytes_ + InFrame(y) * (frame_.rowPitch > 0 ? frame_.rowPitch : 3 * uint64_t{width()});
    }

private:
    size_t Samples() const { return width() * static_cast<size_t>(frame_.height); }

    const CameraFrame& frame_;
    const uint8_t* bytes_;
    UnpackFn unpack_;
};

// Rows of the image to be written.
template <class T>
class ImageRows {
public:
    ImageRows(const ImageLayout& layout, uint8_t* samples) : layout_(layout), samples_(samples) {}

    T* row(int32_t band, int32_t y) const {
        return reinterpret_cast<T*>(samples_ + static_cast<size_t>(band) * layout_.bandSize +
                                    static_cast<size_t>(y) * static_cast<size_t>(layout_.rowStride));
    }
    bool HasPadding() const { return layout_.rowStride != int64_t{layout_.width} * static_cast<int64_t>(sizeof(T)); }
    void ClearPadding(int32_t band, int32_t y) const {
        const auto width = static_cast<size_t>(layout_.width);
        std::memset(row(band, y) + width, 0, static_cast<size_t>(layout_.rowStride) - width * sizeof(T));
    }

private:
    const ImageLayout& layout_;
    uint8_t* samples_;
};

// The rows of a mosaic around one row, with mirrored margins.
template <class T, int kRadius>
class MosaicWindow {
public:
    explicit MosaicWindow(const FrameRows& from) : from_(from) {
        for (auto& row : rows_) row.resize(from.width() + 2 * kRadius);
    }

    // For y in ascending order, from 0 on: rows()[k][x] is sample x of row y - kRadius + k, -kRadius <= x < width +
    // kRadius.
    const T* const* Around(int32_t y) {
        const int32_t last = from_.height() - 1;
        for (; read_ <= last && read_ <= y + kRadius; ++read_) Fill(read_);
        for (int k = 0; k < kSize; ++k)
            around_[static_cast<size_t>(k)] = At(MirroredIndex(int64_t{y} - kRadius + k, int64_t{last} + 1));
        return around_.data();
    }

private:
    static constexpr int kSize = 2 * kRadius + 1;

    // Rows within kRadius of each other have places of their own.
    T* At(int64_t y) { return rows_[static_cast<size_t>(y % kSize)].data() + kRadius; }
    void Fill(int32_t y) {
        T* const row = At(y);
        from_.Read(y, row);
        const auto width = static_cast<int64_t>(from_.width());
        for (int64_t x = 1; x <= kRadius; ++x) {
            row[-x] = row[MirroredIndex(-x, width)];
            row[width - 1 + x] = row[MirroredIndex(width - 1 + x, width)];
        }
    }

    const FrameRows& from_;
    std::array<std::vector<T>, kSize> rows_;
    std::array<const T*, kSize> around_ = {};
    int32_t read_ = 0;  // rows so far
};

template <class T>
void ConvertToGrey(const FrameRows& from, const ImageRows<T>& to) {
    const FilterFn<T> filter = Choose(kGaussian3x3<T>);
    MosaicWindow<T, 1> window(from);
    for (int32_t y = 0; y < from.height(); ++y) {
        filter(window.Around(y), to.row(0, y), from.width(), {0, static_cast<T>(~T{0})});
        to.ClearPadding(0, y);
    }
}

template <class T>
void ConvertToBands(const FrameFormat& format, const FrameRows& from, const ImageRows<T>& to) {
    const MosaicFn<T> complete = Choose(kMosaic<T>);
    const auto most = static_cast<T>((1 << format.bits) - 1);
    const bool redBegins = format.filters == FilterOrder::RG || format.filters == FilterOrder::GR;
    const bool greenFirst = format.filters == FilterOrder::GR || format.filters == FilterOrder::GB;
    MosaicWindow<T, 2> window(from);
    for (int32_t y = 0; y < from.height(); ++y) {
        const bool second = from.InFrame(y) % 2 == 1;
        const int32_t own = redBegins != second ? 0 : 2;
        complete(window.Around(y), from.width(), greenFirst == second, most, to.row(own, y), to.row(1, y),
                 to.row(2 - own, y));
        for (int32_t band = 0; band < 3; ++band) to.ClearPadding(band, y);
    }
}

template <class T>
void ConvertGrey(const CameraFrame& frame, const FrameRows& from, const ImageRows<T>& to) {
    if (HasMosaic(frame)) {
        if (frame.mosaic == FM_Grey) return ConvertToGrey(from, to);
        return ConvertToBands(frame.format, from, to);
    }
    if (from.Together() && !to.HasPadding()) return from.ReadAll(to.row(0, 0));
    for (int32_t y = 0; y < frame.height; ++y) {
        from.Read(y, to.row(0, y));
        to.ClearPadding(0, y);
    }
}

void ConvertColours(const CameraFrame& frame, const FrameRows& from, const ImageRows<uint8_t>& to) {
    const SplitFn split = Choose(kSplitColours);
    const bool blueFirst = frame.format.code == PF_BGR8;
    for (int32_t y = 0; y < frame.height; ++y) {
        if (frame.format.samples == FrameSamples::Planes)
            for (int32_t band = 0; band < 3; ++band) from.ReadPlane(static_cast<size_t>(band), y, to.row(band, y));
        else
            split(from.Triples(y), from.width(), to.row(blueFirst ? 2 : 0, y), to.row(1, y),
                  to.row(blueFirst ? 0 : 2, y));
        for (int32_t band = 0; band < 3; ++band) to.ClearPadding(band, y);
    }
}

}  // namespace

uint64_t RowBytes(const CameraFrame& frame) { return BytesOf(frame.format, static_cast<uint64_t>(frame.width)); }

uint64_t FrameBytes(const CameraFrame& frame) {
    const uint64_t planes = frame.format.samples == FrameSamples::Planes ? 3 : 1;
    const uint64_t unused = frame.rowPitch > 0 ? frame.rowPitch - RowBytes(frame) : 0;
    return planes * PlaneBytes(frame) - unused;
}

int32_t BandsOfImage(const CameraFrame& frame) {
    const bool colours = frame.format.samples == FrameSamples::Triples || frame.format.samples == FrameSamples::Planes;
    return colours || (HasMosaic(frame) && frame.mosaic == FM_Bands) ? 3 : 1;
}

LONG TypeOfImage(const CameraFrame& frame) { return frame.format.samples == FrameSamples::Packed ? DT_WORD : DT_BYTE; }

void ConvertFrame(const CameraFrame& frame, std::span<const uint8_t> bytes, const ImageLayout& layout,
                  uint8_t* samples) {
    const FrameRows from(frame, bytes.data());
    if (TypeOfImage(frame) == DT_WORD)
        ConvertGrey(frame, from, ImageRows<uint16_t>(layout, samples));
    else if (BandsOfImage(frame) == 3 && !HasMosaic(frame))
        ConvertColours(frame, from, ImageRows<uint8_t>(layout, samples));
    else
        ConvertGrey(frame, from, ImageRows<uint8_t>(layout, samples));
}

}  // namespace orlix
