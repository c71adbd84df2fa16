#include <algorithm>
#include <cstring>

#include "files/image_stream.hpp"
#include "orlix_image/orlix_image.hpp"

using namespace orlix;

namespace {

constexpr size_t kLargestTransfer = size_t{1} << 30;

// What a write that stores too little returns. (The system's headers call this number STG_E_CANTSAVE.)
constexpr HRESULT kShortWrite = static_cast<HRESULT>(0x80030103);

class StreamSource final : public ByteSource {
public:
    explicit StreamSource(IStream* stream) : stream_(stream) {}
    size_t Read(uint8_t* bytes, size_t size) override {
        const auto wanted = static_cast<ULONG>(std::min(size, kLargestTransfer));
        ULONG read = 0;
        PassOn(stream_->Read(bytes, wanted, &read));
        if (read > wanted) throw FailedResult(E_FAIL);
        return read;
    }

private:
    ComPtr<IStream> stream_;
};

void WriteTo(IStream* stream, std::span<const uint8_t> bytes) {
    while (!bytes.empty()) {
        const auto step = static_cast<ULONG>(std::min(bytes.size(), kLargestTransfer));
        ULONG written = 0;
        PassOn(stream->Write(bytes.data(), step, &written));
        if (written != step) throw FailedResult(kShortWrite);
        bytes = bytes.subspan(step);
    }
}

StreamSettings SettingsOf(DisplayedImage& typed) {
    StreamSettings settings;
    typed.GetLuminanceRange(settings.luminanceLower, settings.luminanceUpper);
    settings.bandToProcess = typed.bandToProcess();
    settings.numberOfBins = typed.numberOfBins();
    typed.GetDisplayRange(settings.displayLower, settings.displayUpper);
    const DisplayState& display = typed.displayState();
    settings.bandToDisplay = display.band;
    static_assert(sizeof display.colors == sizeof settings.palette);
    std::memcpy(settings.palette.data(), &display.colors, sizeof settings.palette);
    const CarriedSetting& carried = display.carried;
    static_assert(sizeof carried.number + sizeof carried.values == sizeof settings.displaySetting);
    std::memcpy(settings.displaySetting.data(), &carried.number, sizeof carried.number);
    std::memcpy(settings.displaySetting.data() + sizeof carried.number, carried.values, sizeof carried.values);
    return settings;
}

// What a reader has checked: nothing here fails.
void PutSettings(const StreamSettings& settings, DisplayedImage& typed) {
    typed.PutNumberOfBins(settings.numberOfBins);
    typed.PutLuminanceRange(settings.luminanceLower, settings.luminanceUpper);
    typed.PutBandToProcess(settings.bandToProcess);
    typed.PutDisplayRange(settings.displayLower, settings.displayUpper);
    DisplayState display;
    display.band = settings.bandToDisplay;
    std::memcpy(&display.colors, settings.palette.data(), sizeof display.colors);
    CarriedSetting& carried = display.carried;
    std::memcpy(&carried.number, settings.displaySetting.data(), sizeof carried.number);
    std::memcpy(carried.values, settings.displaySetting.data() + sizeof carried.number, sizeof carried.values);
    typed.PutDisplayState(display);
}

}  // namespace

void OrlixImage::LoadFrom(IStream* stream) {
    StreamSource source(stream);
    StreamImage image = ReadImageStream(source, SampleLimit(sampleLimit_));
    std::shared_ptr<DisplayedImage> target = typed_;
    if (!target || target->store().dataType() != image.dataType) target = DisplayedImage::Make(image.dataType);
    target->store().Replace(std::move(image.content));
    target->ContentReplaced();
    PutSettings(image.settings, *target);
    target->store().SetModified(false);
    modified_ = false;
    initialised_ = true;
    Take(target);
}

STDMETHODIMP OrlixImage::GetClassID(CLSID* clsid) noexcept {
    return Guarded([&] {
        Require(clsid);
        *clsid = __uuidof(OrlixImage);
    });
}

STDMETHODIMP OrlixImage::IsDirty() noexcept {
    return Guarded([&] { return modified_ || (typed_ && typed_->store().modified()) ? S_OK : S_FALSE; });
}

STDMETHODIMP OrlixImage::Load(IStream* stream) noexcept {
    return Guarded([&] {
        Require(stream);
        if (initialised_) throw FailedResult(E_UNEXPECTED);
        LoadFrom(stream);
    });
}

STDMETHODIMP OrlixImage::ReLoad(IStream* stream) noexcept {
    return Guarded([&] {
        Require(stream);
        LoadFrom(stream);
    });
}

STDMETHODIMP OrlixImage::Save(IStream* stream, BOOL clearDirty) noexcept {
    return Guarded([&] {
        Require(stream);
        if (!typed_ || typed_->store().empty()) throw Failure("IPersistStreamInit::Save: no image.");
        const std::shared_ptr<DisplayedImage> typed = typed_;
        ImageStore& store = typed->store();
        if (store.refused()) throw FailedResult(E_FAIL);
        // All of it before the first write: the stream may call back and change the image.
        const StreamBytes bytes = WriteImageStream(store.dataType(), store.content(), SettingsOf(*typed));
        const ComPtr<IStream> held(stream);
        const uint64_t changes = store.changes();
        const bool modified = std::exchange(modified_, false);  // what the stream's calls change sets it again
        try {
            for (const std::span<const uint8_t> piece : bytes.pieces()) WriteTo(stream, piece);
        } catch (...) {
            modified_ |= modified;
            throw;
        }
        if (!clearDirty) modified_ |= modified;
        if (clearDirty && store.changes() == changes) store.SetModified(false);
    });
}

STDMETHODIMP OrlixImage::GetSizeMax(ULARGE_INTEGER* size) noexcept {
    return Guarded([&] {
        Require(size);
        if (!typed_ || typed_->store().empty()) throw Failure("IPersistStreamInit::GetSizeMax: no image.");
        const ImageStore& store = typed_->store();
        size->QuadPart = LargestImageStream(store.dataType(), store.content(), SettingsOf(*typed_));
    });
}

STDMETHODIMP OrlixImage::InitNew() noexcept {
    return Guarded([&] {
        if (initialised_) throw FailedResult(E_UNEXPECTED);
        initialised_ = true;
    });
}
