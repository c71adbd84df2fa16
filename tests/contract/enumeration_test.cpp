// Enumerations as clients may put them: any number. The build with sanitizers would stop where one is read that the
// type cannot hold.
#include <limits>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

constexpr LONG kNoValues[] = {
    4, 7, 8, 99, 1 << 30, -1, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()};

std::vector<BYTE> BytesOf(const ComPtr<IBitmap>& bitmap) {
    BITMAP record = {};
    Check(bitmap->get_Bitmap(&record), bitmap);
    const auto* bytes = static_cast<const BYTE*>(record.bmBits);
    return {bytes, bytes + record.bmWidthBytes * record.bmHeight};
}

TEST(Enumerations, ADrawTypeThatHasNoNameInverts) {
    const auto drawn = [](LONG how) {
        const auto bitmap = CreateObject<IBitmap>("Orlix.Bitmap");
        const auto type = static_cast<DrawType>(how);
        EXPECT_EQ(S_OK, bitmap->Create(21, 9, 1));
        EXPECT_EQ(S_OK, bitmap->DrawRectangle(2, 1, 18, 7, type));
        EXPECT_EQ(S_OK, bitmap->DrawDisk(9, 4, 3.5, type));
        EXPECT_EQ(S_OK, bitmap->DrawLine(0, 0, 20, 8, type));
        EXPECT_EQ(S_OK, bitmap->DrawHorizontalLine(4, 0, 20, type));
        return BytesOf(bitmap);
    };
    const auto inverted = drawn(DT_Xor);
    EXPECT_NE(drawn(DT_On), inverted);
    for (const LONG how : kNoValues) EXPECT_EQ(inverted, drawn(how)) << how;
}

TEST(Enumerations, APolarityThatHasNoNameIsTheInside) {
    const auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
    Check(region->CreateCircle(20, 20, 9, 9, 5), region);
    for (const LONG value : kNoValues) {
        SCOPED_TRACE(value);
        ASSERT_EQ(S_OK, region->put_Polarity(static_cast<PolarityType>(value)));
        PolarityType polarity = PT_Frame;
        EXPECT_EQ(S_OK, region->get_Polarity(&polarity));
        EXPECT_EQ(value, static_cast<LONG>(polarity));
        RECT box = {};
        EXPECT_EQ(S_OK, region->get_BoundingBox(&box));
        EXPECT_EQ(4, box.left);
        SRun* begin = nullptr;
        SRun* end = nullptr;
        EXPECT_EQ(S_OK, region->GetRowRuns(9, &begin, &end));
        ASSERT_EQ(1, end - begin);
        EXPECT_EQ(4, begin->m_lStart);
        EXPECT_EQ(14, begin->m_lStop);
    }
}

TEST(Enumerations, OthersAreReadByTheirBitsOrRefused) {
    const auto image = ImageOf<uint8_t>(2, {10, 30, 20, 40});
    const auto process = Cast<IImageProcess>(image);
    const auto file = Cast<IImageFile>(image);
    const auto tableAndMeasures = [&](LONG value) {
        EXPECT_EQ(S_OK, process->put_Table(0, 77));
        EXPECT_EQ(S_OK, process->EqualizeTable(static_cast<EqualizationType>(value)));
        double entry = 0;
        EXPECT_EQ(S_OK, process->get_Table(0, &entry));
        EXPECT_EQ(77, entry) << "changes nothing";
        SGrayMeasurements measures = {};
        EXPECT_EQ(S_OK, process->get_GrayMeasurements(static_cast<GrayExtractMeasurementType>(value), &measures));
        EXPECT_EQ(4, measures.m_lPixelCount);
        EXPECT_EQ(value & GEMT_GrayStatistics ? 25 : 0, measures.m_dGrayAverage);
    };
    for (const LONG value : kNoValues) {
        SCOPED_TRACE(value);
        tableAndMeasures(value);
        if (value == IFF_PPM) continue;
        EXPECT_TRUE(Fails(file->SaveToFile(Text("never.png"), static_cast<ImageFileFormat>(value)),
                          "IImageFile::SaveToFile: unknown file format.", "Orlix.Image.1"));
    }
}

}  // namespace
}  // namespace orlix::testing
