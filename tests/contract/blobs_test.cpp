// Blobs as clients see them. What is measured is tested in tests/blobs.
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

TEST(Blobs, AreLabelledInRasterOrderAndKnowWhatTheyLieIn) {
    const auto blobs = RingBlobs();
    ASSERT_EQ(3, Get(blobs, &IBlobs::get_Count));
    EXPECT_EQ(8, Get(blobs, &IBlobs::get_Width));
    EXPECT_EQ(5, Get(blobs, &IBlobs::get_Height));
    EXPECT_EQ(CT_8, Get(blobs, &IBlobs::get_Connectivity));
    EXPECT_EQ((std::vector<double>{16, 1, 1}), ValuesOf(blobs, SMT_PixelCount));
    EXPECT_EQ((std::vector<double>{0, 1, 2}), ValuesOf(blobs, SMT_Label));
    EXPECT_EQ(-1, Get(blobs, &IBlobs::get_Parent, LONG{0}));
    EXPECT_EQ(0, Get(blobs, &IBlobs::get_Parent, LONG{1}));
    EXPECT_EQ(-1, Get(blobs, &IBlobs::get_Parent, LONG{2}));

    const auto holes = Get(blobs, &IBlobs::get_Holes);
    ASSERT_EQ(1, Get(holes, &IBlobs::get_Count));
    EXPECT_EQ(CT_4, Get(holes, &IBlobs::get_Connectivity));
    EXPECT_EQ(0, Get(holes, &IBlobs::get_Parent, LONG{0}));
    EXPECT_EQ((std::vector<double>{8}), ValuesOf(holes, SMT_PixelCount));
    const auto islands = Get(holes, &IBlobs::get_Holes);
    EXPECT_EQ((std::vector<double>{1}), ValuesOf(islands, SMT_PixelCount));
    EXPECT_EQ(0, Get(islands, &IBlobs::get_Parent, LONG{0}));
    // Those of the chosen blobs only.
    EXPECT_EQ(0,
              Get(Get(Get(blobs, &IBlobs::Select, SMT_PixelCount, 1.0, 1.0), &IBlobs::get_Holes), &IBlobs::get_Count));
}

TEST(Blobs, AreThoseOfTheRegionAndStayWhenTheBitmapChanges) {
    const auto bitmap = RingBitmap();
    bitmap->put_RegionOfInterest(RectangleOf(8, 5, 0, 0, 2, 4).get());
    const auto blobs = Get(bitmap, &IBitmapProcess::FindBlobs, CT_8);
    bitmap->Zero();
    EXPECT_EQ((std::vector<double>{9, 1}), ValuesOf(blobs, SMT_PixelCount));
    EXPECT_EQ((std::vector<double>{2, 1}), ValuesOf(blobs, SMT_RegionBorderPixels));
    EXPECT_EQ((std::vector<double>{9, 0}), ValuesOf(blobs, SMT_ImageBorderPixels));
    EXPECT_EQ("###...../#......./#.#...../#......./###.....", RowsOf(Get(blobs, &IBlobs::get_Bitmap).get()));
    EXPECT_EQ(0, Get(Get(bitmap, &IBitmapProcess::FindBlobs, CT_8), &IBlobs::get_Count));
    ComPtr<IBlobs> none;
    EXPECT_EQ(S_FALSE, CreateObject<IBitmapProcess>("Orlix.Bitmap")->FindBlobs(CT_8, none.Out()));
}

TEST(Blobs, CanBeSelectedAndSorted) {
    const auto blobs = RingBlobs();
    const auto smallest = Get(blobs, &IBlobs::Sort, SMT_PixelCount, LONG{0});
    EXPECT_EQ((std::vector<double>{1, 2, 0}), ValuesOf(smallest, SMT_Label));
    EXPECT_EQ((std::vector<double>{0, 1, 2}), ValuesOf(Get(smallest, &IBlobs::Sort, SMT_Area, LONG{1}), SMT_Label));
    const auto left = Get(smallest, &IBlobs::Select, SMT_XCentroid, 0.0, 2.0);
    EXPECT_EQ((std::vector<double>{1, 0}), ValuesOf(left, SMT_Label));
    EXPECT_EQ("#####.../#...#.../#.#.#.../#...#.../#####...", RowsOf(Get(left, &IBlobs::get_Bitmap).get()));
    const std::vector<uint32_t> labels = PixelsOf<uint32_t>(Get(left, &IBlobs::get_LabelImage));
    EXPECT_EQ(2u, labels[0]);
    EXPECT_EQ(1u, labels[18]);
    EXPECT_EQ(0u, labels[39]);
}

TEST(Blobs, HaveShapesInTheCalibratedPlane) {
    const auto blobs = RingBlobs();
    ASSERT_EQ(S_OK, blobs->PutMicronsPerPixel(0.5, 2));
    EXPECT_EQ(std::tuple(0.5, 2.0), Get(blobs, &IBlobs::GetMicronsPerPixel));
    SBinaryMeasurements records[3] = {};
    for (SBinaryMeasurements& record : records) record.m_dFeretMaximum = -7;
    ASSERT_EQ(S_OK, blobs->GetBinaryMeasurements(BEMT_Topology | BEMT_FilledArea | BEMT_OrientedBox, 0, 3, records));
    EXPECT_EQ(16, records[0].m_dArea);
    EXPECT_EQ(25, records[0].m_dFilledArea);
    EXPECT_EQ(1, records[0].m_lHoles);
    EXPECT_EQ(0, records[0].m_lEulerNumber);
    EXPECT_EQ(2, records[0].m_dXCentroid);
    EXPECT_EQ(10, records[0].m_dBoxLength);
    EXPECT_EQ(2.5, records[0].m_dBoxWidth);
    EXPECT_EQ(90, records[0].m_dBoxAngle);
    EXPECT_EQ(2, records[2].m_lLabel);
    EXPECT_EQ(7, records[2].m_lLeft);
    EXPECT_EQ(-7, records[0].m_dFeretMaximum);  // not asked for
    SBinaryMeasurements whole = {};
    ASSERT_EQ(S_OK, blobs->GetBinaryMeasurements(BEMT_All, 0, 1, &whole));
    EXPECT_EQ(whole.m_dFeretMaximum, ValuesOf(blobs, SMT_FeretMaximum)[0]);
    EXPECT_NEAR(std::hypot(2.5, 10), whole.m_dFeretMaximum, 1e-12);
    // Taken over by what is selected.
    EXPECT_EQ(16, ValuesOf(Get(blobs, &IBlobs::Select, SMT_Holes, 1.0, 9.0), SMT_Area)[0]);
}

TEST(Blobs, HaveGreyValues) {
    const auto image = NewImage<uint16_t>(8, 5);
    image.Fill([](LONG x, LONG y) { return 100 * x + y; });
    const auto blobs = RingBlobs();
    SBlobGrayMeasurements records[3] = {};
    EXPECT_TRUE(Fails(blobs->GetGrayMeasurements(0, 3, records),
                      "IBlobs::GetGrayMeasurements: no image has been measured.", kBlobsSource));
    ASSERT_EQ(S_OK, blobs->MeasureGray(image.get(), 0, GEMT_GrayStatistics | GEMT_GrayVolume));
    ASSERT_EQ(S_OK, blobs->GetGrayMeasurements(0, 3, records));
    EXPECT_EQ(202, records[0].m_dGrayAverage);
    EXPECT_EQ(202, records[1].m_dGrayIntegrated);
    EXPECT_EQ(704, records[2].m_dGrayMaximum);
    EXPECT_TRUE(std::isnan(records[0].m_dGrayMedian));
    EXPECT_EQ((std::vector<double>{16 * 202.0, 202, 704}), ValuesOf(blobs, SMT_VolumeOverZero));
    // They stay with what is sorted; inside a blob everything else measures the same.
    const auto sorted = Get(blobs, &IBlobs::Sort, SMT_GrayAverage, LONG{1});
    EXPECT_EQ((std::vector<double>{704, 202, 202}), ValuesOf(sorted, SMT_GrayAverage));
    Check(image.process->put_RegionOfInterest(Get(blobs, &IBlobs::get_Region, LONG{0}).get()), image.process);
    SGrayMeasurements inside = {};
    Check(image.process->get_GrayMeasurements(GEMT_GrayStatistics, &inside), image.process);
    EXPECT_EQ(16, inside.m_lPixelCount);
    EXPECT_EQ(records[0].m_dGrayStandardDeviation, inside.m_dGrayStandardDeviation);
}

TEST(Blobs, HaveOutlines) {
    const auto blobs = RingBlobs();
    const auto area = [&](OutlineType type, LONG hole) {
        return Get(Get(blobs, &IBlobs::get_Outline, LONG{0}, type, hole), &IPolygon::get_Area);
    };
    EXPECT_EQ(25, area(OT_PixelEdges, -1));
    EXPECT_EQ(9, area(OT_PixelEdges, 0));
    EXPECT_EQ(16, area(OT_PixelCenters, -1));
    const auto image = NewImage<float>(8, 5);
    image.Fill([](LONG x, LONG y) { return x <= 4 && y <= 4 ? 10.0f : 0.0f; });
    const auto finer =
        Get(blobs, &IBlobs::get_LevelOutline, LONG{0}, static_cast<IImageVPA*>(image.get()), LONG{0}, 2.0, LONG{-1});
    double left = 0, top = 0, right = 0, bottom = 0;
    finer->GetBounds(&left, &top, &right, &bottom);
    EXPECT_EQ((std::vector<double>{-0.5, -0.5, 4.8, 4.5}), (std::vector<double>{left, top, right, bottom}));
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
    for (const LONG index : {LONG{-1}, LONG{3}, kMost, kLeast}) {
        EXPECT_TRUE(Fails(blobs->get_Label(index, &number), "IBlobs::get_Label: index is out of range", kBlobsSource));
        EXPECT_EQ(0, number);
        EXPECT_TRUE(
            Fails(blobs->get_Region(index, region.Out()), "IBlobs::get_Region: index is out of range", kBlobsSource));
        EXPECT_TRUE(Fails(blobs->GetBinaryMeasurements(1, index, 1, &record),
                          "IBlobs::GetBinaryMeasurements: index is out of range", kBlobsSource));
        EXPECT_TRUE(Fails(blobs->GetValues(SMT_Area, 1, index, &value), "IBlobs::GetValues: index is out of range",
                          kBlobsSource));
    }
    EXPECT_EQ(S_OK, blobs->GetValues(SMT_Area, 3, 0, &value));
    EXPECT_TRUE(Fails(blobs->get_Outline(0, OT_PixelEdges, 1, outline.Out()),
                      "IBlobs::get_Outline: hole is out of range", kBlobsSource));
    EXPECT_TRUE(FailsSilently(blobs->get_Outline(0, static_cast<OutlineType>(9), -1, outline.Out()), E_INVALIDARG));
    EXPECT_TRUE(FailsSilently(blobs->GetValues(static_cast<SingleMeasurementType>(99), 0, 1, &value), E_INVALIDARG));
    EXPECT_TRUE(Fails(blobs->Select(SMT_Area, 2, 1, result.Out()), "IBlobs::Select: Lower cannot be larger than Upper.",
                      kBlobsSource));
    EXPECT_TRUE(Fails(blobs->Select(SMT_Area, kNaN, 1, result.Out()),
                      "IBlobs::Select: Lower cannot be larger than Upper.", kBlobsSource));
    EXPECT_TRUE(
        Fails(blobs->Sort(SMT_GrayMode, 0, result.Out()), "IBlobs::Sort: no image has been measured.", kBlobsSource));
    for (const double size : {0.0, -1.0, kNaN, kInfinity})
        EXPECT_TRUE(Fails(blobs->PutMicronsPerPixel(1, size),
                          "IBlobs::PutMicronsPerPixel: the pixel size must be positive.", kBlobsSource));
    EXPECT_TRUE(Fails(blobs->MeasureGray(other.get(), 0, 31), "IBlobs::MeasureGray: the image has another size.",
                      kBlobsSource));
    EXPECT_TRUE(Fails(blobs->MeasureGray(colour.get(), BI_AllBands, 31),
                      "IBlobs::MeasureGray: multiband measurement is not supported.", kBlobsSource));
    EXPECT_TRUE(Fails(blobs->MeasureGray(Image().get(), 0, 31), "IBlobs::MeasureGray: no source image.", kBlobsSource));
    EXPECT_EQ(S_OK, blobs->MeasureGray(image.get(), BI_AllBands, 31));
    for (const HRESULT failed :
         {blobs->get_Count(nullptr), blobs->MeasureGray(nullptr, 0, 1), blobs->get_Holes(nullptr),
          blobs->GetValues(SMT_Area, 0, 1, nullptr), blobs->get_Bitmap(nullptr)})
        EXPECT_TRUE(FailsSilently(failed, E_POINTER));
}

}  // namespace
}  // namespace orlix::testing
