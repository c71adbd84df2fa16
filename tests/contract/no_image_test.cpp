// What methods say of an image that has no pixels. (Filters say it too: filter_test.cpp.)
#include <functional>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

struct Interfaces {
    ComPtr<IImageVPAExPlus> image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    ComPtr<IOrlixImageProcess> process = Cast<IOrlixImageProcess>(image);
    ComPtr<IImageFile> file = Cast<IImageFile>(image);
    ComPtr<IImageEntries> entries = Cast<IImageEntries>(image);
};

struct Call {
    const char* method;
    std::function<HRESULT(const Interfaces&)> make;
};

LONG number = 0;
double real = 0;
BYTE byte = 0;
SGrayMeasurements measures;
SPlanarFit plane;
SBiquadraticFit biquadratic;
SBicubicFit bicubic;
SHemisphereFit hemisphere;
SAngledHemisphereFit angled;

// Methods of a typed image, which may have no pixels.
const Call kTyped[] = {
    {"IImageFile::GetMicronsPerPixel", [](auto& on) { return on.file->GetMicronsPerPixel(&real, &real); }},
    {"IImageFile::PutMicronsPerPixel", [](auto& on) { return on.file->PutMicronsPerPixel(1, 1); }},
    {"IImageEntries::get_NumberOfTextEntries", [](auto& on) { return on.entries->get_NumberOfTextEntries(&number); }},
    {"IImageEntries::GetTextEntry", [](auto& on) { return on.entries->GetTextEntry(0, Text().Out(), Text().Out()); }},
    {"IImageEntries::PutTextEntry", [](auto& on) { return on.entries->PutTextEntry(Text("a"), Text("b")); }},
    {"IImageEntries::RemoveTextEntry", [](auto& on) { return on.entries->RemoveTextEntry(0); }},
    {"IImageEntries::get_NumberOfBinaryEntries",
     [](auto& on) { return on.entries->get_NumberOfBinaryEntries(&number); }},
    {"IImageEntries::GetBinaryEntry", [](auto& on) { return on.entries->GetBinaryEntry(0, Text().Out(), &number); }},
    {"IImageEntries::ReadBinaryEntry", [](auto& on) { return on.entries->ReadBinaryEntry(0, 0, 1, &byte); }},
    {"IImageEntries::PutBinaryEntry", [](auto& on) { return on.entries->PutBinaryEntry(Text("a"), 1, &byte); }},
    {"IImageEntries::RemoveBinaryEntry", [](auto& on) { return on.entries->RemoveBinaryEntry(0); }},
    {"IImageProcessBase::get_BandToProcess", [](auto& on) { return on.process->get_BandToProcess(&number); }},
    {"IImageProcessBase::put_BandToProcess", [](auto& on) { return on.process->put_BandToProcess(0); }},
    {"IImageProcessBase::get_RegionOfInterest",
     [](auto& on) { return on.process->get_RegionOfInterest(ComPtr<IRegionOfInterest>().Out()); }},
    {"IImageProcessBase::put_RegionOfInterest", [](auto& on) { return on.process->put_RegionOfInterest(nullptr); }},
    {"IImageProcessBase::GetLuminanceRange", [](auto& on) { return on.process->GetLuminanceRange(&real, &real); }},
    {"IImageProcessBase::get_NumberOfBins", [](auto& on) { return on.process->get_NumberOfBins(&number); }},
    {"IImageProcess::put_NumberOfBins", [](auto& on) { return on.process->put_NumberOfBins(300); }},
    {"IImageProcess::PutLuminanceRange", [](auto& on) { return on.process->PutLuminanceRange(0, 1); }},
    {"IImageProcess::get_Table", [](auto& on) { return on.process->get_Table(0, &real); }},
    {"IImageProcess::put_Table", [](auto& on) { return on.process->put_Table(0, 1); }},
};

// Methods that need pixels.
const Call kPixels[] = {
    {"IImageProcessBase::Threshold", [](auto& on) { return on.process->Threshold(0, 1, 1, ComPtr<IBitmap>().Out()); }},
    {"IImageProcessBase::get_Histogram",
     [](auto& on) { return on.process->get_Histogram(ComPtr<IHistogram>().Out()); }},
    {"IImageProcessBase::get_GrayMeasurements",
     [](auto& on) { return on.process->get_GrayMeasurements(GEMT_GrayLocation, &measures); }},
    {"IImageProcess::SnapLuminanceRange", [](auto& on) { return on.process->SnapLuminanceRange(0, 0, 0); }},
    {"IImageProcess::EqualizeTable", [](auto& on) { return on.process->EqualizeTable(ET_Uniform); }},
    {"IImageProcess::LUT", [](auto& on) { return on.process->LUT(); }},
    {"IImageProcess::Invert", [](auto& on) { return on.process->Invert(); }},
    {"IImageProcess::ScalarEquals", [](auto& on) { return on.process->ScalarEquals(1); }},
    {"IImageProcess::ScalarDivideEquals", [](auto& on) { return on.process->ScalarDivideEquals(2); }},
    {"IImageProcess::ScalarPlusEquals", [](auto& on) { return on.process->ScalarPlusEquals(1); }},
    {"IImageProcess::CastEquals", [](auto& on) { return on.process->CastEquals(NewImage<uint8_t>(1, 1).get(), 0); }},
    {"IImageProcess::PlusEquals", [](auto& on) { return on.process->PlusEquals(NewImage<uint8_t>(1, 1).get(), 0); }},
    {"IOrlixImageProcess::get_PlanarFit", [](auto& on) { return on.process->get_PlanarFit(&plane); }},
    {"IOrlixImageProcess::CorrectPlanar", [](auto& on) { return on.process->CorrectPlanar(&plane); }},
    {"IOrlixImageProcess::get_RobustPlanarFit", [](auto& on) { return on.process->get_RobustPlanarFit(0.5, &plane); }},
    {"IOrlixImageProcess::RobustCorrectPlanar", [](auto& on) { return on.process->RobustCorrectPlanar(0.5); }},
    {"IOrlixImageProcess::get_BiquadraticFit", [](auto& on) { return on.process->get_BiquadraticFit(&biquadratic); }},
    {"IOrlixImageProcess::CorrectBiquadratic", [](auto& on) { return on.process->CorrectBiquadratic(&biquadratic); }},
    {"IOrlixImageProcess::get_RobustBiquadraticFit",
     [](auto& on) { return on.process->get_RobustBiquadraticFit(0.5, &biquadratic); }},
    {"IOrlixImageProcess::RobustCorrectBiquadratic",
     [](auto& on) { return on.process->RobustCorrectBiquadratic(0.5); }},
    {"IOrlixImageProcess::get_BicubicFit", [](auto& on) { return on.process->get_BicubicFit(&bicubic); }},
    {"IOrlixImageProcess::CorrectBicubic", [](auto& on) { return on.process->CorrectBicubic(&bicubic); }},
    {"IOrlixImageProcess::get_RobustBicubicFit",
     [](auto& on) { return on.process->get_RobustBicubicFit(0.5, &bicubic); }},
    {"IOrlixImageProcess::RobustCorrectBicubic", [](auto& on) { return on.process->RobustCorrectBicubic(0.5); }},
    {"IOrlixImageProcess::get_HemisphereFit", [](auto& on) { return on.process->get_HemisphereFit(&hemisphere); }},
    {"IOrlixImageProcess::CorrectHemisphere", [](auto& on) { return on.process->CorrectHemisphere(&hemisphere); }},
    {"IOrlixImageProcess::get_RobustHemisphereFit",
     [](auto& on) { return on.process->get_RobustHemisphereFit(0.5, &hemisphere); }},
    {"IOrlixImageProcess::RobustCorrectHemisphere", [](auto& on) { return on.process->RobustCorrectHemisphere(0.5); }},
    {"IOrlixImageProcess::get_AngledHemisphereFit",
     [](auto& on) { return on.process->get_AngledHemisphereFit(&angled); }},
    {"IOrlixImageProcess::CorrectAngledHemisphere",
     [](auto& on) { return on.process->CorrectAngledHemisphere(&angled); }},
    {"IOrlixImageProcess::get_RobustAngledHemisphereFit",
     [](auto& on) { return on.process->get_RobustAngledHemisphereFit(0.5, &angled); }},
    {"IOrlixImageProcess::RobustCorrectAngledHemisphere",
     [](auto& on) { return on.process->RobustCorrectAngledHemisphere(0.5); }},
};

void ExpectNoImage(const Interfaces& on, std::span<const Call> calls) {
    for (const Call& call : calls) {
        const std::string text = std::string(call.method) + ": no image.";
        EXPECT_TRUE(Fails(call.make(on), text, "Orlix.Image.1"));
    }
}

TEST(NoImage, IsNamedByEachMethodThatNeedsOne) {
    Interfaces none;
    ExpectNoImage(none, kTyped);
    ExpectNoImage(none, kPixels);
    EXPECT_TRUE(FailsSilently(none.image->Create(2, 2, 1, DT_Double, 0))) << "empties the image";
    ExpectNoImage(none, kTyped);
    ExpectNoImage(none, kPixels);

    EXPECT_EQ(DISP_E_EXCEPTION, none.image->Create(0, 2, 1, DT_WORD, 0)) << "a typed image without pixels";
    ExpectNoImage(none, kPixels);
    EXPECT_EQ(E_FAIL, none.image->AttachBuffer(reinterpret_cast<void*>(8), 2, 2, 1, DT_WORD, 0));
    ExpectNoImage(none, kPixels);
}

}  // namespace
}  // namespace orlix::testing
