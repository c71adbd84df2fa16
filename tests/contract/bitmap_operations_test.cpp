// Binary morphology as clients see it. What an operation computes is tested in tests/binary, by slow definitions.
#include <cmath>
#include <functional>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

constexpr char kSource[] = "Orlix.Bitmap.1";

ComPtr<IBitmapProcess> BitmapOf(const std::string& rows) {
    const auto width = static_cast<LONG>(rows.find('/'));
    const auto bitmap = NewBitmap(width, static_cast<LONG>(rows.size() + 1) / (width + 1));
    for (size_t i = 0; i < rows.size(); ++i)
        if (rows[i] == '#') bitmap->put_Bit(static_cast<LONG>(i) % (width + 1), static_cast<LONG>(i) / (width + 1), 1);
    return bitmap;
}

ComPtr<IStructuringElement> ElementOf(const std::vector<std::pair<LONG, LONG>>& pixels) {
    const auto element = CreateObject<IStructuringElement>("Orlix.StructuringElement");
    for (const auto& [x, y] : pixels) element->AddElement(x, y);
    return element;
}

constexpr char kPicture[] = "......./.###.../.#.#.#./.###.../......#";

struct Operation {
    const char* name;
    std::function<HRESULT(const ComPtr<IBitmapProcess>&)> apply;
    const char* result;  // of kPicture
};

std::vector<Operation> Operations() {
    using Bitmap = const ComPtr<IBitmapProcess>&;
    const auto other = BitmapOf("#######/......./###..../......./......#");
    const auto element = ElementOf({{0, 0}, {2, 1}, {2, 1}});
    const auto centre = ElementOf({{0, 0}}), right = ElementOf({{1, 0}});
    const auto gray = ImageOf<uint8_t>(7, {9,  9, 9, 9, 9,  9,  30,  //
                                           9,  9, 9, 9, 9,  9,  30,  //
                                           12, 9, 9, 9, 9,  9,  9,   //
                                           9,  9, 2, 9, 9,  9,  9,   //
                                           9,  9, 9, 9, 20, 20, 9});
    return {
        {"Invert", [](Bitmap b) { return b->Invert(); }, "#######/#...###/#.#.#.#/#...###/######."},
        {"AndEquals", [=](Bitmap b) { return b->AndEquals(other.get()); }, "......./......./.#...../......./......#"},
        {"OrEquals", [=](Bitmap b) { return b->OrEquals(other.get()); }, "#######/.###.../####.#./.###.../......#"},
        {"XorEquals", [=](Bitmap b) { return b->XorEquals(other.get()); }, "#######/.###.../#.##.#./.###.../......."},
        {"AndNotEquals", [=](Bitmap b) { return b->AndNotEquals(other.get()); },
         "......./.###.../...#.#./.###.../......."},
        {"AndEquals itself", [](Bitmap b) { return b->AndEquals(b.get()); }, kPicture},
        {"XorEquals itself", [](Bitmap b) { return b->XorEquals(b.get()); }, "......./......./......./......./......."},
        {"ShiftEquals", [](Bitmap b) { return b->ShiftEquals(2, -1); }, "...###./...#.#./...###./......./......."},
        {"Erode", [](Bitmap b) { return b->Erode(CT_4, 1); }, "......./......./......./......./......."},
        {"Erode 0 times", [](Bitmap b) { return b->Erode(CT_4, 0); }, kPicture},
        {"Dilate", [](Bitmap b) { return b->Dilate(CT_4, 1); }, ".###.../######./#######/#######/.###.##"},
        {"Close 4", [](Bitmap b) { return b->Close(CT_4, 1); }, "..#..../.###.../######./.###.##/..#...#"},
        {"Close 8", [](Bitmap b) { return b->Close(CT_8, 1); }, "####.../####.../#######/#######/#######"},
        {"Open", [](Bitmap b) { return b->Open(CT_8, 1); }, "......./......./......./......./......."},
        {"ErodeRectangle", [](Bitmap b) { return b->ErodeRectangle(2, 1); }, "......./.##..../......./.##..../......#"},
        {"DilateRectangle", [](Bitmap b) { return b->DilateRectangle(2, 1); },
         "......./.####../.######/.####../......#"},
        {"OpenRectangle", [](Bitmap b) { return b->OpenRectangle(2, 1); }, "......./.###.../......./.###.../......#"},
        {"CloseRectangle", [](Bitmap b) { return b->CloseRectangle(2, 1); }, "......./.###.../.######/.###.../......#"},
        {"ErodeDisk", [](Bitmap b) { return b->ErodeDisk(0.9); }, kPicture},
        {"DilateDisk", [](Bitmap b) { return b->DilateDisk(1); }, ".###.../######./#######/#######/.###.##"},
        {"CloseDisk", [](Bitmap b) { return b->CloseDisk(1.5); }, "####.../####.../#######/#######/#######"},
        {"OpenDisk", [](Bitmap b) { return b->OpenDisk(1); }, "......./......./......./......./......."},
        {"ErodeElement", [=](Bitmap b) { return b->ErodeElement(element.get()); },
         "......./.#.#.../.#...#./......./......#"},
        {"DilateElement", [=](Bitmap b) { return b->DilateElement(element.get()); },
         "......./.###.../.#.###./.###.#./...####"},
        {"OpenElement", [=](Bitmap b) { return b->OpenElement(element.get()); },
         "......./.#.#.../.#.#.#./...#.../......#"},
        {"CloseElement", [=](Bitmap b) { return b->CloseElement(element.get()); },
         "......./.###.../.#.#.#./.###.#./...####"},
        {"HitOrMiss", [=](Bitmap b) { return b->HitOrMiss(centre.get(), right.get()); },
         "......./...#.../.#.#.#./...#.../......#"},
        {"Boundary inner", [](Bitmap b) { return b->Boundary(BT_Inner, CT_4); }, kPicture},
        {"Boundary outer", [](Bitmap b) { return b->Boundary(BT_Outer, CT_8); },
         "#####../#...###/#.#.#.#/#...###/######."},
        {"Thin", [](Bitmap b) { return b->Thin(CT_8, 1); }, "......./..#..../.#.#.#./..#..../......#"},
        {"Skeleton", [](Bitmap b) { return b->Skeleton(CT_8); }, "......./..#..../.#.#.#./..#..../......#"},
        {"Prune", [](Bitmap b) { return b->Prune(CT_8, 3); }, kPicture},
        {"ConvexHulls", [](Bitmap b) { return b->ConvexHulls(CT_8); }, "......./.###.../.###.#./.###.../......#"},
        {"UltimatePoints", [](Bitmap b) { return b->UltimatePoints(CT_8); }, kPicture},
        {"Reconstruct", [=](Bitmap b) { return b->Reconstruct(other.get(), CT_8); },
         "......./.###.../.#.#.../.###.../......#"},
        {"FillHoles", [](Bitmap b) { return b->FillHoles(0, CT_8); }, "......./.###.../.###.#./.###.../......#"},
        {"FillHoles of 1 pixel", [](Bitmap b) { return b->FillHoles(1, CT_8); },
         "......./.###.../.###.#./.###.../......#"},
        {"ClearBorder", [](Bitmap b) { return b->ClearBorder(CT_8); }, "......./.###.../.#.#.#./.###.../......."},
        {"KeepArea", [](Bitmap b) { return b->KeepArea(1, 7, CT_8); }, "......./......./.....#./......./......#"},
        {"Split", [](Bitmap b) { return b->Split(0.5, 0, CT_8); }, kPicture},
        {"ThresholdLocally", [=](Bitmap b) { return b->ThresholdLocally(gray.get(), BI_AllBands, 1, 5, 0, 1); },
         "......#/.###..#/.###.../.#...../.##.##."},
        {"ThresholdLocally dark", [=](Bitmap b) { return b->ThresholdLocally(gray.get(), 0, 1, 5, 4, 0); },
         ".....#./.###.#./.###.##/.######/.###..#"},
    };
}

TEST(BitmapOperations, DoWhatTheirNamesSay) {
    for (const Operation& operation : Operations()) {
        SCOPED_TRACE(operation.name);
        const auto bitmap = BitmapOf(kPicture);
        ASSERT_EQ(S_OK, operation.apply(bitmap));
        EXPECT_EQ(operation.result, RowsOf(bitmap.get()));
    }
}

// The result of the whole bitmap inside, the old pixels outside.
TEST(BitmapOperations, ChangeThePixelsOfTheRegionOnly) {
    for (const Operation& operation : Operations()) {
        SCOPED_TRACE(operation.name);
        const auto bitmap = BitmapOf(kPicture);
        ASSERT_EQ(S_OK, bitmap->put_RegionOfInterest(RectangleOf(7, 5, 2, 0, 4, 3).get()));
        ASSERT_EQ(S_OK, operation.apply(bitmap));
        std::string expected = kPicture;
        for (size_t y = 0; y <= 3; ++y)
            for (size_t x = 2; x <= 4; ++x) expected[8 * y + x] = operation.result[8 * y + x];
        EXPECT_EQ(expected, RowsOf(bitmap.get()));
    }
}

TEST(BitmapOperations, DoNothingWithoutPixels) {
    for (const Operation& operation : Operations()) {
        SCOPED_TRACE(operation.name);
        EXPECT_EQ(S_FALSE, operation.apply(CreateObject<IBitmapProcess>("Orlix.Bitmap")));
    }
}

TEST(BitmapOperations, CountThePixelsOfTheRegion) {
    const auto bitmap = BitmapOf(kPicture);
    EXPECT_EQ(10, Get(bitmap, &IBitmapProcess::get_PixelCount));
    const auto region = RectangleOf(7, 5, 0, 0, 2, 4);
    bitmap->put_RegionOfInterest(region.get());
    EXPECT_EQ(5, Get(bitmap, &IBitmapProcess::get_PixelCount));
    EXPECT_TRUE(region.get() == Get(bitmap, &IBitmapProcess::get_RegionOfInterest).get());
    bitmap->put_RegionOfInterest(nullptr);
    bitmap->One();
    EXPECT_EQ(35, Get(bitmap, &IBitmapProcess::get_PixelCount));  // and not the padding
}

TEST(BitmapOperations, ApplyATableUntilNothingChanges) {
    std::array<unsigned char, 512> grow = {};  // to the right: a pixel with its left neighbour
    for (size_t i = 0; i < grow.size(); ++i) grow[i] = (i & 48) != 0;
    const auto bitmap = BitmapOf("#....../.......");
    EXPECT_EQ(3, Get(bitmap, &IBitmapProcess::ApplyTable, grow.data(), LONG{3}));
    EXPECT_EQ("####.../.......", RowsOf(bitmap.get()));
    EXPECT_EQ(3, Get(bitmap, &IBitmapProcess::ApplyTable, grow.data(), kMost));
    EXPECT_EQ("#######/.......", RowsOf(bitmap.get()));
    std::array<unsigned char, 512> invert = {};
    for (size_t i = 0; i < invert.size(); ++i) invert[i] = (i & 16) == 0;
    EXPECT_EQ(kMost, Get(bitmap, &IBitmapProcess::ApplyTable, invert.data(), kMost));
    EXPECT_EQ("......./#######", RowsOf(bitmap.get()));
}

TEST(BitmapOperations, ThickenWithoutJoining) {
    const auto bitmap = BitmapOf("......./#...#../.......");
    ASSERT_EQ(S_OK, bitmap->Thicken(CT_8, 10));
    EXPECT_EQ(2, Get(Get(bitmap, &IBitmapProcess::FindBlobs, CT_8), &IBlobs::get_Count));
    EXPECT_GT(Get(bitmap, &IBitmapProcess::get_PixelCount), 10);
}

TEST(BitmapOperations, MapDistancesToTheBackground) {
    const auto bitmap = NewBitmap(5, 4);
    bitmap->One();
    bitmap->put_Bit(1, 3, 0);
    const auto map = Get(bitmap, &IBitmapProcess::get_DistanceMap);
    const std::vector<float> pixels = PixelsOf<float>(map);
    EXPECT_EQ(0, pixels[16]);
    EXPECT_EQ(1, pixels[15]);
    EXPECT_EQ(std::sqrt(18.0f), pixels[4]);
    bitmap->One();
    EXPECT_EQ(std::numeric_limits<float>::infinity(),
              PixelsOf<float>(Get(bitmap, &IBitmapProcess::get_DistanceMap))[7]);
}

TEST(BitmapOperations, RefuseWhatMakesNoSense) {
    const auto bitmap = BitmapOf(kPicture);
    const auto small = NewBitmap(7, 4);
    const auto empty = ElementOf({});
    const auto wrong = static_cast<ConnectivityType>(6);
    unsigned char table[512] = {};
    LONG passes = 7;
    EXPECT_TRUE(
        Fails(bitmap->AndEquals(small.get()), "IBitmapProcess::AndEquals: the bitmaps have different sizes.", kSource));
    EXPECT_TRUE(Fails(bitmap->Reconstruct(small.get(), CT_8),
                      "IBitmapProcess::Reconstruct: the bitmaps have different sizes.", kSource));
    EXPECT_TRUE(Fails(bitmap->OpenRectangle(0, 3), "IBitmapProcess::OpenRectangle: width and height must be positive.",
                      kSource));
    EXPECT_TRUE(Fails(bitmap->ErodeDisk(kNaN), "IBitmapProcess::ErodeDisk: the radius cannot be negative.", kSource));
    EXPECT_TRUE(Fails(bitmap->DilateElement(empty.get()),
                      "IBitmapProcess::DilateElement: the structuring element is empty.", kSource));
    EXPECT_TRUE(
        Fails(bitmap->HitOrMiss(nullptr, empty.get()), "IBitmapProcess::HitOrMiss: no structuring element.", kSource));
    EXPECT_TRUE(Fails(bitmap->FillHoles(-1, CT_8), "IBitmapProcess::FillHoles: the area cannot be negative.", kSource));
    EXPECT_TRUE(Fails(bitmap->Split(-1, 0, CT_8), "IBitmapProcess::Split: the depth cannot be negative.", kSource));
    EXPECT_TRUE(
        Fails(bitmap->Split(0, kNaN, CT_8), "IBitmapProcess::Split: the share must lie between 0 and 1.", kSource));
    using Locally = std::tuple<LONG, double, double, const char*>;
    const auto gray = NewImage<float>(7, 5);
    const auto two = NewImage<uint8_t>(7, 5, 2), narrow = NewImage<uint8_t>(6, 5);
    const Image none;
    for (const auto& [radius, contrast, offset, text] :
         {Locally{-1, 1, 0, "the radius cannot be negative."}, Locally{1, -1, 0, "the contrast cannot be negative."},
          Locally{1, kNaN, 0, "the contrast cannot be negative."}, Locally{1, 1, kNaN, "the offset is not a number."}})
        EXPECT_TRUE(Fails(bitmap->ThresholdLocally(gray.get(), 0, radius, contrast, offset, 1),
                          std::string("IBitmapProcess::ThresholdLocally: ") + text, kSource));
    for (const auto& [image, text] : {std::pair<IImageVPA*, const char*>{static_cast<IImageVPA*>(two.get()),
                                                                         "multiband thresholding is not supported."},
                                      {narrow.get(), "the image has another size."},
                                      {none.get(), "no source image."}})
        EXPECT_TRUE(Fails(bitmap->ThresholdLocally(image, BI_AllBands, 1, 1, 0, 1),
                          std::string("IBitmapProcess::ThresholdLocally: ") + text, kSource));
    for (const HRESULT result :
         {bitmap->Erode(wrong, 1), bitmap->Skeleton(wrong), bitmap->FillHoles(0, wrong), bitmap->Split(0, 0, wrong),
          bitmap->Boundary(static_cast<BoundaryType>(2), CT_4), bitmap->Boundary(BT_Inner, wrong)})
        EXPECT_TRUE(FailsSilently(result, E_INVALIDARG));
    for (const HRESULT result :
         {bitmap->OrEquals(nullptr), bitmap->ThresholdLocally(nullptr, 0, 1, 1, 0, 1), bitmap->ErodeElement(nullptr),
          bitmap->ApplyTable(nullptr, 1, &passes), bitmap->ApplyTable(table, 1, nullptr),
          bitmap->get_PixelCount(nullptr), bitmap->FindBlobs(CT_8, nullptr), bitmap->get_DistanceMap(nullptr),
          bitmap->get_RegionOfInterest(nullptr)})
        EXPECT_TRUE(FailsSilently(result, E_POINTER));
    EXPECT_EQ(kPicture, RowsOf(bitmap.get()));
}

// The bitmap's own memory, and rows of a larger one.
TEST(BitmapOperations, TakeBitmapsOfOtherComponents) {
    const auto bitmap = BitmapOf(kPicture);
    const auto foreign = MakeCounted<ForeignBitmap>();
    foreign->record = Get(bitmap, &IBitmap::get_Bitmap);
    EXPECT_EQ(S_OK, bitmap->AndEquals(foreign.get()));
    EXPECT_EQ(kPicture, RowsOf(bitmap.get()));
    foreign->record.bmHeight = 4;
    foreign->record.bmBits = static_cast<uint8_t*>(foreign->record.bmBits) + foreign->record.bmWidthBytes;
    const auto upper = BitmapOf("......./.###.../.#.#.#./.###...");
    EXPECT_EQ(S_OK, upper->OrEquals(foreign.get()));
    EXPECT_EQ(".###.../.###.#./.###.#./.###..#", RowsOf(upper.get()));
}

}  // namespace
}  // namespace orlix::testing
