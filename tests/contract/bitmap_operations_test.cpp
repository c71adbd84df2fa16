// Binary morphology as clients see it. What the operations do to the pixels of a region, with bitmaps of other
// components and any arguments, is compared with slow definitions by tests/fuzz/bitmaps.
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

constexpr char kPicture[] = "......./.###.../.#.#.#./.###.../......#";

TEST(BitmapOperations, WorkOnTheBitmapItself) {
    const auto bitmap = BitmapOf(kPicture);
    EXPECT_EQ(S_OK, bitmap->AndEquals(bitmap.get()));
    EXPECT_EQ(kPicture, RowsOf(bitmap.get()));
    // Its own memory, from the second row on.
    const auto foreign = MakeCounted<ForeignBitmap>();
    foreign->record = Get(bitmap, &IBitmap::get_Bitmap);
    foreign->record.bmHeight = 4;
    foreign->record.bmBits = static_cast<uint8_t*>(foreign->record.bmBits) + foreign->record.bmWidthBytes;
    const auto upper = BitmapOf("......./.###.../.#.#.#./.###...");
    EXPECT_EQ(S_OK, upper->OrEquals(foreign.get()));
    EXPECT_EQ(".###.../.###.#./.###.#./.###..#", RowsOf(upper.get()));
    EXPECT_EQ(S_OK, bitmap->XorEquals(bitmap.get()));
    EXPECT_EQ("......./......./......./......./.......", RowsOf(bitmap.get()));
}

TEST(BitmapOperations, DoNothingWithoutPixels) {
    const auto bitmap = CreateObject<IBitmapProcess>("Orlix.Bitmap");
    const auto other = NewBitmap(3, 2);
    const auto element = CreateObject<IStructuringElement>("Orlix.StructuringElement");
    element->AddElement(0, 0);
    std::array<unsigned char, 512> table = {};
    LONG passes = 7;
    const HRESULT results[] = {bitmap->Invert(),
                               bitmap->AndEquals(other.get()),
                               bitmap->ShiftEquals(2, -1),
                               bitmap->Close(CT_4, 1),
                               bitmap->OpenRectangle(2, 1),
                               bitmap->DilateDisk(1),
                               bitmap->ErodeElement(element.get()),
                               bitmap->HitOrMiss(element.get(), element.get()),
                               bitmap->ApplyTable(table.data(), 1, &passes),
                               bitmap->Boundary(BT_Inner, CT_4),
                               bitmap->Thin(CT_8, 1),
                               bitmap->Prune(CT_8, 3),
                               bitmap->ConvexHulls(CT_8),
                               bitmap->UltimatePoints(CT_8),
                               bitmap->Reconstruct(other.get(), CT_8),
                               bitmap->FillHoles(0, CT_8),
                               bitmap->ClearBorder(CT_8),
                               bitmap->KeepArea(1, 7, CT_8),
                               bitmap->Split(0.5, 0, CT_8),
                               bitmap->ThresholdLocally(NewImage<uint8_t>(3, 2).get(), 0, 1, 5, 0, 1)};
    for (const HRESULT result : results) EXPECT_EQ(S_FALSE, result) << &result - results;
}

// Not what comes to rest, which ends earlier.
TEST(BitmapOperations, ApplyATableAsOftenAsItIsSaid) {
    std::array<unsigned char, 512> invert = {};
    for (size_t i = 0; i < invert.size(); ++i) invert[i] = (i & 16) == 0;
    const auto bitmap = BitmapOf("#######/.......");
    EXPECT_EQ(kMost, Get(bitmap, &IBitmapProcess::ApplyTable, invert.data(), kMost));
    EXPECT_EQ("......./#######", RowsOf(bitmap.get()));
}

TEST(BitmapOperations, RefuseWhatMakesNoSense) {
    const auto b = BitmapOf(kPicture), small = NewBitmap(7, 4);
    const auto empty = CreateObject<IStructuringElement>("Orlix.StructuringElement");
    const auto wrong = static_cast<ConnectivityType>(6);
    const auto gray = NewImage<float>(7, 5);
    const auto two = NewImage<uint8_t>(7, 5, 2), narrow = NewImage<uint8_t>(6, 5);
    const auto locally = [&](IImageVPA* image, LONG radius = 1, double contrast = 1, double offset = 0) {
        return [=] { return b->ThresholdLocally(image, BI_AllBands, radius, contrast, offset, 1); };
    };
    const Image none;
    const std::pair<std::function<HRESULT()>, const char*> cases[] = {
        {[&] { return b->AndEquals(small.get()); }, "AndEquals: the bitmaps have different sizes."},
        {[&] { return b->Reconstruct(small.get(), CT_8); }, "Reconstruct: the bitmaps have different sizes."},
        {[&] { return b->OpenRectangle(0, 3); }, "OpenRectangle: width and height must be positive."},
        {[&] { return b->ErodeDisk(kNaN); }, "ErodeDisk: the radius cannot be negative."},
        {[&] { return b->DilateElement(empty.get()); }, "DilateElement: the structuring element is empty."},
        {[&] { return b->HitOrMiss(nullptr, empty.get()); }, "HitOrMiss: no structuring element."},
        {[&] { return b->FillHoles(-1, CT_8); }, "FillHoles: the area cannot be negative."},
        {[&] { return b->Split(-1, 0, CT_8); }, "Split: the depth cannot be negative."},
        {[&] { return b->Split(0, kNaN, CT_8); }, "Split: the share must lie between 0 and 1."},
        {locally(gray.get(), -1), "ThresholdLocally: the radius cannot be negative."},
        {locally(gray.get(), 1, -1), "ThresholdLocally: the contrast cannot be negative."},
        {locally(gray.get(), 1, kNaN), "ThresholdLocally: the contrast cannot be negative."},
        {locally(gray.get(), 1, 1, kNaN), "ThresholdLocally: the offset is not a number."},
        {locally(two.get()), "ThresholdLocally: multiband thresholding is not supported."},
        {locally(narrow.get()), "ThresholdLocally: the image has another size."},
        {locally(none.get()), "ThresholdLocally: no source image."}};
    for (const auto& [call, text] : cases)
        EXPECT_TRUE(Fails(call(), std::string("IBitmapProcess::") + text, kSource)) << text;
    for (const HRESULT result : {b->Erode(wrong, 1), b->Skeleton(wrong), b->FillHoles(0, wrong), b->Split(0, 0, wrong),
                                 b->Boundary(static_cast<BoundaryType>(2), CT_4), b->Boundary(BT_Inner, wrong)})
        EXPECT_TRUE(FailsSilently(result, E_INVALIDARG));
    EXPECT_EQ(kPicture, RowsOf(b.get()));
}

}  // namespace
}  // namespace orlix::testing
