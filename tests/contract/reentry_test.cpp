// Clients that call back in the middle of a call, and let go of the last reference there.
#include <gmock/gmock.h>

#include "contract/support.hpp"

#ifdef _WIN32
#include <olectl.h>
#endif

namespace orlix::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

// A 16-bit image of 4 x 3 and a region that covers it.
struct Visited {
    ComPtr<IImageVPAExPlus> pixels = NewImage<uint16_t>(4, 3);
    ComPtr<IImageProcess> process = Cast<IImageProcess>(pixels);
    ComPtr<ForeignRegion> region = MakeCounted<ForeignRegion>();
    Visited() {
        region->runs = {RunOf(0, 3)};
        Check(process->put_RegionOfInterest(region.get()), process);
    }
    ~Visited() {
        if (process) process->put_RegionOfInterest(nullptr);  // the hooks may hold the image
    }
    void LetGo() {
        region = nullptr;
        pixels = nullptr;
        process = nullptr;
    }
};

TEST(ARegionThatCallsBack, ChangesTheSettingsOfTheOperationThatAsksIt) {
    const Visited image;
    ASSERT_EQ(S_OK, image.process->put_NumberOfBins(60000));
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(0, 65535));
    image.region->onRuns = [&] { image.process->put_NumberOfBins(2); };
    ASSERT_EQ(S_OK, image.process->EqualizeTable(ET_Uniform));
    EXPECT_EQ(65535, Get(image.process, &IImageProcess::get_Table, 1));
    double entry = 0;
    EXPECT_TRUE(Fails(image.process->get_Table(2, &entry), "IImageProcess::get_Table: Entry is out of range."));

    // The table that an operation looks up is the one that was put last.
    image.region->onRuns = [&] {
        image.process->put_NumberOfBins(3);
        image.process->put_NumberOfBins(2);
        image.process->put_Table(0, 777);
    };
    ASSERT_EQ(S_OK, image.process->LUT());
    EXPECT_THAT(PixelsOf<uint16_t>(image.pixels), Each(777));

    image.region->onRuns = [&] { image.process->PutLuminanceRange(100, 1000); };
    ASSERT_EQ(S_OK, image.process->Invert());
    EXPECT_THAT(PixelsOf<uint16_t>(image.pixels), Each(1100 - 777));
    image.region->onRuns = [&] { image.process->PutLuminanceRange(0, 40); };
    ASSERT_EQ(S_OK, image.process->Gaussian3x3(image.pixels.get(), 0));
    EXPECT_THAT(PixelsOf<uint16_t>(image.pixels), Each(40));
}

TEST(ARegionThatCallsBack, FromItsLastReleaseFindsAnImageThatIsWhole) {
    Visited image;
    // Replaced while it is asked, it is let go of when the operation has read it out.
    image.region->onRuns = [&] { image.process->put_RegionOfInterest(nullptr); };
    image.region->onLastRelease = [&] { image.pixels->Create(1, 1, 1, DT_WORD, 1); };
    image.region = nullptr;
    EXPECT_TRUE(FailsSilently(image.process->ScalarEquals(9)));
    EXPECT_THAT(PixelsOf<uint16_t>(image.pixels), ElementsAre(0));
}

// Error information that calls back when the thread lets go of it; as often as that may be.
class CallingErrorInfo final : public Refusing<IErrorInfo> {
public:
    std::function<void()> onRelease;
    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        *object = iid == __uuidof(IUnknown) || iid == __uuidof(IErrorInfo) ? this : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return 2; }
    STDMETHODIMP_(ULONG) Release() noexcept override {
        if (const auto call = std::exchange(onRelease, nullptr)) call();
        return 1;
    }
};

TEST(ErrorInformationThatCallsBack, IsNotLetGoOfInTheMiddleOfAnOperation) {
    const Visited image;
    CallingErrorInfo info;
    ComPtr<IHistogram> histogram;
    ComPtr<IBitmap> bitmap;
    const std::pair<const char*, std::function<HRESULT()>> calls[] = {
        {"histogram", [&] { return image.process->get_Histogram(histogram.Out()); }},
        {"threshold", [&] { return image.process->Threshold(0, 1, 1, bitmap.Out()); }},
        {"range", [&] { return image.process->SnapLuminanceRange(0.1, 0.1, 0); }},
        {"table", [&] { return image.process->EqualizeTable(ET_Uniform); }}};
    for (const auto& [name, call] : calls) {
        image.region->onRuns = [&] {
            info.onRelease = nullptr;  // the thread lets go of it to take it again
            SetErrorInfo(0, &info);
            info.onRelease = [&] { image.pixels->Create(1, 1, 1, DT_WORD, 1); };
        };
        ASSERT_EQ(S_OK, image.pixels->Create(40, 3, 1, DT_WORD, 1));
        image.region->runs = {RunOf(0, 39)};
        EXPECT_EQ(S_OK, call()) << name;
    }
    info.onRelease = nullptr;
    SetErrorInfo(0, nullptr);
    Get(histogram, &IHistogram::get_NumberOfBins);
}

TEST(ADyingImage, DoesNothingForARegionThatCallsFromItsLastRelease) {
    Visited image;
    IImageVPAExPlus* const pixels = image.pixels.get();
    IImageProcess* const process = image.process.get();
    const auto other = MakeCounted<ForeignRegion>();
    int calls = 0;
    image.region->onLastRelease = [&, pixels, process] {
        ++calls;
        ComPtr<IHistogram> histogram;
        LONG bins = 0, size[3] = {};
        EXPECT_TRUE(FailsSilently(process->get_Histogram(histogram.Out())));
        EXPECT_TRUE(FailsSilently(process->get_NumberOfBins(&bins)));
        EXPECT_TRUE(FailsSilently(pixels->Dimensions(size, size + 1, size + 2)));
        EXPECT_TRUE(FailsSilently(pixels->Create(5, 5, 1, DT_BYTE, 1)));
        EXPECT_TRUE(FailsSilently(process->put_RegionOfInterest(other.get())));
        EXPECT_TRUE(FailsSilently(Cast<IPersistStreamInit>(ComPtr<IImageVPAExPlus>(pixels))->InitNew()));
    };
    image.LetGo();
    EXPECT_EQ(1, calls);
    EXPECT_EQ(1u, ReferencesOf(other.get()));
}

TEST(ADyingImage, LivesOnEmptyForAClientThatTakesAReference) {
    Visited image;
    ComPtr<IImageProcess> kept;
    image.region->onLastRelease = [&, process = image.process.get()] { kept = ComPtr<IImageProcess>(process); };
    image.LetGo();
    ASSERT_TRUE(kept);
    EXPECT_TRUE(FailsSilently(kept->Invert()));
    EXPECT_EQ(1u, ReferencesOf(kept.get()));
}

TEST(AnImage, LivesUntilItsMethodReturnsWhenARegionLetsGoOfIt) {
    for (const bool snap : {true, false}) {
        Visited image;
        IImageProcess* const process = image.process.get();
        image.region->onRuns = [&] {
            image.pixels = nullptr;
            image.process = nullptr;
        };
        ComPtr<IHistogram> histogram;
        EXPECT_EQ(S_OK, snap ? process->SnapLuminanceRange(0, 0, 0) : process->get_Histogram(histogram.Out()));
        EXPECT_EQ(!snap, static_cast<bool>(histogram));
    }
}

TEST(ASourceThatIsAskedWhoItIs, MayLetGoOfItsLastReference) {
    uint8_t samples[] = {1, 2, 3, 4};
    ComPtr<ForeignImage> source = ForeignImage::Of(2, 2, DT_BYTE, samples);
    source->onQuery = [&] { source = nullptr; };
    const auto image = NewImage<uint8_t>(1, 1);
    EXPECT_EQ(S_OK, image->CreateFromImage(source.get(), 0));
    EXPECT_EQ(nullptr, source.get());
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 3, 4}), image.values());
}

TEST(ASourceThatAnswersAnyBand, IsAskedOnceForOneThatItDoesNotHave) {
    const Visited image;
    uint16_t samples[12] = {};
    const auto source = ForeignImage::Of(4, 3, DT_WORD, samples);
    int asked = 0;
    source->onVpa = [&] { ++asked; };
    for (const LONG band : {LONG{1}, kMost, kLeast}) {
        EXPECT_TRUE(FailsSilently(image.process->PlusEquals(source.get(), band))) << band;
        EXPECT_TRUE(FailsSilently(image.process->Median3x3(source.get(), band))) << band;
        EXPECT_TRUE(FailsSilently(image.pixels->CreateFromImage(source.get(), band))) << band;
        EXPECT_EQ(3, std::exchange(asked, 0)) << band;
    }
    EXPECT_EQ(S_OK, image.process->PlusEquals(source.get(), 0));
}

TEST(ASourceThatCallsBack, MayPutTheSettingsAndReplaceTheImage) {
    const Visited image;
    uint16_t samples[12] = {9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9};
    const auto source = ForeignImage::Of(4, 3, DT_WORD, samples);
    source->onVpa = [&] { image.process->PutLuminanceRange(0, 5); };
    ASSERT_EQ(S_OK, image.process->Gaussian3x3(source.get(), 0));
    EXPECT_THAT(PixelsOf<uint16_t>(image.pixels), Each(5));
    source->onVpa = [&] { image.pixels->Create(2, 1, 1, DT_WORD, 1); };
    EXPECT_TRUE(FailsSilently(image.process->Gaussian3x3(source.get(), 0)));
    EXPECT_THAT(PixelsOf<uint16_t>(image.pixels), Each(0));
}

TEST(ADyingImage, TakesNoConnectionFromASinkThatCallsFromItsLastRelease) {
    ComPtr<IImageVPAExPlus> image = NewImage<uint8_t>(2, 2);
    auto point = PointOf(image);
    HRESULT advised = S_OK, processed = S_OK;
    const auto other = MakeCounted<Sink>();
    auto sink = MakeCounted<Sink>();
    DWORD cookie = 0;
    sink->onLastRelease = [&, raw = point.get(), process = Cast<IImageProcess>(image).get()] {
        advised = raw->Advise(other.get(), &cookie);
        processed = process->Invert();
    };
    ASSERT_EQ(S_OK, point->Advise(sink.get(), &cookie));
    sink = nullptr;
    point = nullptr;
    image = nullptr;
    EXPECT_EQ(CONNECT_E_CANNOTCONNECT, advised);
    EXPECT_EQ(E_FAIL, processed);
    EXPECT_EQ(1u, ReferencesOf(other.get()));
}

TEST(ConnectionPoints, MayBeCalledByTheOuterObjectThatTheyReferTo) {
    const auto outer = MakeCounted<Holder>();
    Check(outer->Hold(__uuidof(OrlixImage)));
    const auto container = outer.As<IConnectionPointContainer>();
    const auto point = PointOf(container);
    const ComPtr<Sink> sinks[] = {MakeCounted<Sink>(), MakeCounted<Sink>()};
    for (const auto& sink : sinks) Get(point, &IConnectionPoint::Advise, sink.get());
    outer->onAddRef = [&] { EXPECT_EQ(S_OK, point->Unadvise(1)); };
    EXPECT_EQ(S_OK, point->Unadvise(2));
    for (const auto& sink : sinks) EXPECT_EQ(1u, ReferencesOf(sink.get()));

    auto points = Get(container, &IConnectionPointContainer::EnumConnectionPoints);
    ComPtr<IEnumConnectionPoints> clone;
    IEnumConnectionPoints* const raw = points.get();
    outer->onAddRef = [&] { points = nullptr; };
    ASSERT_EQ(S_OK, raw->Clone(clone.Out()));
    ComPtr<IConnectionPoint> same;
    EXPECT_EQ(S_OK, clone->Next(1, same.Out(), nullptr));
    EXPECT_EQ(point.get(), same.get());
}

}  // namespace
}  // namespace orlix::testing
