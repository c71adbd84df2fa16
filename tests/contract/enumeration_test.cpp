// Enumerations as clients may put them: any number. The build with sanitizers would stop where one is read that the
// type cannot hold.
#include "contract/support.hpp"

namespace orlix::testing {
namespace {

constexpr LONG kNoValues[] = {4, 7, 8, 99, 1 << 30, -1, kLeast, kMost};

TEST(Enumerations, ADrawTypeThatHasNoNameInverts) {
    const auto drawn = [](LONG how) {
        const auto bitmap = NewBitmap(21, 9);
        const auto type = static_cast<DrawType>(how);
        EXPECT_EQ(S_OK, bitmap->DrawRectangle(2, 1, 18, 7, type));
        EXPECT_EQ(S_OK, bitmap->DrawDisk(9, 4, 3.5, type));
        EXPECT_EQ(S_OK, bitmap->DrawLine(0, 0, 20, 8, type));
        EXPECT_EQ(S_OK, bitmap->DrawHorizontalLine(4, 0, 20, type));
        return BytesOf(bitmap.get());
    };
    const auto inverted = drawn(DT_Xor);
    EXPECT_NE(drawn(DT_On), inverted);
    for (const LONG how : kNoValues) EXPECT_EQ(inverted, drawn(how)) << how;
}

TEST(Enumerations, APolarityThatHasNoNameIsTheInside) {
    const auto region = CircleOf(20, 20, 9, 9, 5);
    for (const LONG value : kNoValues) {
        SCOPED_TRACE(value);
        ASSERT_EQ(S_OK, region->put_Polarity(static_cast<PolarityType>(value)));
        EXPECT_EQ(value, static_cast<LONG>(Get(region, &IShapeRegionOfInterest::get_Polarity)));
        EXPECT_EQ(4, Get(region, &IRegionOfInterest::get_BoundingBox).left);
        const auto [begin, end] = Get(region, &IRegionOfInterest::GetRowRuns, 9);
        ASSERT_EQ(1, end - begin);
        EXPECT_EQ(4, begin->m_lStart);
        EXPECT_EQ(14, begin->m_lStop);
    }
}

TEST(Enumerations, OthersAreReadByTheirBitsOrRefused) {
    const auto image = ImageOf<uint8_t>(2, {10, 30, 20, 40});
    EXPECT_EQ(S_OK, image.process->put_Table(0, 77));
    for (const LONG value : kNoValues) {
        SCOPED_TRACE(value);
        EXPECT_EQ(S_OK, image.process->EqualizeTable(static_cast<EqualizationType>(value)));
        EXPECT_EQ(77, Get(image.process, &IImageProcess::get_Table, 0)) << "changes nothing";
        const auto measures =
            Get(image.process, &IImageProcess::get_GrayMeasurements, static_cast<GrayExtractMeasurementType>(value));
        EXPECT_EQ(4, measures.m_lPixelCount);
        EXPECT_EQ(value & GEMT_GrayStatistics ? 25 : 0, measures.m_dGrayAverage);
        if (value >= IFF_PNG && value <= IFF_PAM) continue;
        EXPECT_TRUE(Fails(image.file->SaveToFile(Text("never.png"), static_cast<ImageFileFormat>(value)),
                          "IImageFile::SaveToFile: unknown file format."));
    }
}

}  // namespace
}  // namespace orlix::testing
