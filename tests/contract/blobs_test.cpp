// Blobs as clients see them. What is found, measured, chosen and sorted is compared with slow definitions by
// tests/fuzz/bitmaps.
#include <cmath>
#include <functional>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

constexpr char kBlobsSource[] = "Orlix.Bitmap.1";

// A ring, a pixel in its hole, and a pixel in the corner of the bitmap.
ComPtr<IBitmapProcess> RingBitmap() {
    const auto bitmap = NewBitmap(8, 5);
    bitmap->DrawRectangle(0, 0, 4, 4, DT_On);
    bitmap->DrawRectangle(1, 1, 3, 3, DT_Off);
    bitmap->put_Bit(2, 2, 1);
    bitmap->put_Bit(7, 4, 1);
    return bitmap;
}
ComPtr<IBlobs> RingBlobs(ConnectivityType connectivity = CT_8) {
    return Get(RingBitmap(), &IBitmapProcess::FindBlobs, connectivity);
}

std::vector<double> ValuesOf(const ComPtr<IBlobs>& blobs, SingleMeasurementType type) {
    std::vector<double> values(static_cast<size_t>(Get(blobs, &IBlobs::get_Count)));
    Check(blobs->GetValues(type, 0, static_cast<LONG>(values.size()), values.data()), blobs);
    return values;
}

TEST(Blobs, KnowTheirConnectivityAndTheirHoles) {
    const auto blobs = RingBlobs();
    EXPECT_EQ(CT_8, Get(blobs, &IBlobs::get_Connectivity));
    EXPECT_EQ((std::vector<double>{0, 1, 2}), ValuesOf(blobs, SMT_Label));
    const auto holes = Get(blobs, &IBlobs::get_Holes);
    EXPECT_EQ(CT_4, Get(holes, &IBlobs::get_Connectivity));
    const auto islands = Get(holes, &IBlobs::get_Holes);
    EXPECT_EQ((std::vector<double>{1}), ValuesOf(islands, SMT_PixelCount));
    EXPECT_EQ(0, Get(islands, &IBlobs::get_Parent, LONG{0}));
    // Those of the chosen blobs only.
    EXPECT_EQ(0,
              Get(Get(Get(blobs, &IBlobs::Select, SMT_PixelCount, 1.0, 1.0), &IBlobs::get_Holes), &IBlobs::get_Count));
}

TEST(Blobs, StayWhenTheBitmapChanges) {
    const auto bitmap = RingBitmap();
    const auto blobs = Get(bitmap, &IBitmapProcess::FindBlobs, CT_8);
    bitmap->Zero();
    EXPECT_EQ((std::vector<double>{16, 1, 1}), ValuesOf(blobs, SMT_PixelCount));
    EXPECT_EQ(0, Get(Get(bitmap, &IBitmapProcess::FindBlobs, CT_8), &IBlobs::get_Count));
    ComPtr<IBlobs> none;
    EXPECT_EQ(S_FALSE, CreateObject<IBitmapProcess>("Orlix.Bitmap")->FindBlobs(CT_8, none.Out()));
}

TEST(Blobs, SelectedFromSortedOnesKeepTheirOrderAndTheirPixelSize) {
    const auto blobs = RingBlobs();
    ASSERT_EQ(S_OK, blobs->PutMicronsPerPixel(0.5, 2));
    const auto smallest = Get(blobs, &IBlobs::Sort, SMT_PixelCount, LONG{0});
    EXPECT_EQ((std::vector<double>{1, 2, 0}), ValuesOf(smallest, SMT_Label));
    const auto left = Get(smallest, &IBlobs::Select, SMT_XCentroid, 0.0, 2.0);
    EXPECT_EQ((std::vector<double>{1, 0}), ValuesOf(left, SMT_Label));
    EXPECT_EQ(std::tuple(0.5, 2.0), Get(left, &IBlobs::GetMicronsPerPixel));
}

TEST(Blobs, HaveTheMeasurementsAskedForOnly) {
    const auto blobs = RingBlobs();
    ASSERT_EQ(S_OK, blobs->PutMicronsPerPixel(0.5, 2));
    SBinaryMeasurements records[3] = {};
    for (SBinaryMeasurements& record : records) record.m_dFeretMaximum = -7;
    ASSERT_EQ(S_OK, blobs->GetBinaryMeasurements(BEMT_Topology | BEMT_FilledArea | BEMT_OrientedBox, 0, 3, records));
    EXPECT_EQ(25, records[0].m_dFilledArea);
    EXPECT_EQ(0, records[0].m_lEulerNumber);
    EXPECT_EQ((std::vector<double>{10, 2.5, 90}),
              (std::vector<double>{records[0].m_dBoxLength, records[0].m_dBoxWidth, records[0].m_dBoxAngle}));
    EXPECT_EQ(2, records[2].m_lLabel);
    EXPECT_EQ(-7, records[0].m_dFeretMaximum);
}

TEST(Blobs, HaveGreyValuesOnceAnImageIsMeasured) {
    const auto image = NewImage<uint16_t>(8, 5);
    image.Fill([](LONG x, LONG y) { return 100 * x + y; });
    const auto blobs = RingBlobs();
    SBlobGrayMeasurements records[3] = {};
    EXPECT_TRUE(Fails(blobs->GetGrayMeasurements(0, 3, records),
                      "IBlobs::GetGrayMeasurements: no image has been measured.", kBlobsSource));
    ASSERT_EQ(S_OK, blobs->MeasureGray(image.get(), 0, GEMT_GrayStatistics | GEMT_GrayVolume));
    ASSERT_EQ(S_OK, blobs->GetGrayMeasurements(0, 3, records));
    EXPECT_TRUE(std::isnan(records[0].m_dGrayMedian));
    EXPECT_EQ((std::vector<double>{16 * 202.0, 202, 704}), ValuesOf(blobs, SMT_VolumeOverZero));
    // They stay with what is sorted; inside a blob everything else measures the same.
    const auto sorted = Get(blobs, &IBlobs::Sort, SMT_GrayAverage, LONG{1});
    EXPECT_EQ((std::vector<double>{704, 202, 202}), ValuesOf(sorted, SMT_GrayAverage));
    Check(image.process->put_RegionOfInterest(Get(blobs, &IBlobs::get_Region, LONG{0}).get()), image.process);
    const auto inside = Get(image.process, &IImageProcess::get_GrayMeasurements, GEMT_GrayStatistics);
    EXPECT_EQ(16, inside.m_lPixelCount);
    EXPECT_EQ(records[0].m_dGrayStandardDeviation, inside.m_dGrayStandardDeviation);
}

TEST(Blobs, HaveOutlinesThroughPixelCentresAndAtALevel) {
    const auto blobs = RingBlobs();
    EXPECT_EQ(16, Get(Get(blobs, &IBlobs::get_Outline, LONG{0}, OT_PixelCenters, LONG{-1}), &IPolygon::get_Area));
    const auto image = NewImage<float>(8, 5);
    image.Fill([](LONG x, LONG y) { return x <= 4 && y <= 4 ? 10.0f : 0.0f; });
    const auto finer =
        Get(blobs, &IBlobs::get_LevelOutline, LONG{0}, static_cast<IImageVPA*>(image.get()), LONG{0}, 2.0, LONG{-1});
    EXPECT_EQ(std::tuple(-0.5, -0.5, 4.8, 4.5), Get(finer, &IPolygon::GetBounds));
    SLevelMeasurements measured = {};
    ASSERT_EQ(S_OK, blobs->GetLevelMeasurements(image.get(), 0, 2.0, 0, 1, &measured));
    EXPECT_EQ(5.0 / 32, measured.m_dLevelShare);  // of 20 edges outside and 12 inside
    EXPECT_GT(measured.m_dArea, 16);
}

TEST(Blobs, RefuseWhatMakesNoSense) {
    const auto blobs = RingBlobs();
    const auto image = NewImage<uint8_t>(8, 5), other = NewImage<uint8_t>(8, 4), colour = NewImage<uint8_t>(8, 5, 3);
    LONG number = 7;
    double value = 7;
    SBinaryMeasurements record = {};
    ComPtr<IBlobs> result;
    ComPtr<IPolygon> outline;
    ComPtr<IRegionOfInterest> region;
    const auto refuses = [](HRESULT failed, const char* text) {
        EXPECT_TRUE(Fails(failed, std::string("IBlobs::") + text, kBlobsSource)) << text;
    };
    for (const LONG index : {LONG{-1}, LONG{3}, kMost, kLeast}) {
        refuses(blobs->get_Label(index, &number), "get_Label: index is out of range");
        EXPECT_EQ(0, number);
        refuses(blobs->get_Region(index, region.Out()), "get_Region: index is out of range");
        refuses(blobs->GetBinaryMeasurements(1, index, 1, &record), "GetBinaryMeasurements: index is out of range");
        refuses(blobs->GetValues(SMT_Area, 1, index, &value), "GetValues: index is out of range");
    }
    EXPECT_EQ(S_OK, blobs->GetValues(SMT_Area, 3, 0, &value));
    refuses(blobs->get_Outline(0, OT_PixelEdges, 1, outline.Out()), "get_Outline: hole is out of range");
    EXPECT_TRUE(FailsSilently(blobs->get_Outline(0, static_cast<OutlineType>(9), -1, outline.Out()), E_INVALIDARG));
    EXPECT_TRUE(FailsSilently(blobs->GetValues(static_cast<SingleMeasurementType>(99), 0, 1, &value), E_INVALIDARG));
    for (const double lower : {2.0, kNaN})
        refuses(blobs->Select(SMT_Area, lower, 1, result.Out()), "Select: Lower cannot be larger than Upper.");
    refuses(blobs->Sort(SMT_GrayMode, 0, result.Out()), "Sort: no image has been measured.");
    for (const double size : {0.0, -1.0, kNaN, kInfinity})
        refuses(blobs->PutMicronsPerPixel(1, size), "PutMicronsPerPixel: the pixel size must be positive.");
    refuses(blobs->MeasureGray(other.get(), 0, 31), "MeasureGray: the image has another size.");
    refuses(blobs->MeasureGray(colour.get(), BI_AllBands, 31), "MeasureGray: multiband measurement is not supported.");
    refuses(blobs->MeasureGray(Image().get(), 0, 31), "MeasureGray: no source image.");
    EXPECT_EQ(S_OK, blobs->MeasureGray(image.get(), BI_AllBands, 31));
}

}  // namespace
}  // namespace orlix::testing
