// orlix doctor
#include "commands.hpp"
#include "console.hpp"
#include "measurement.hpp"
#include "specimen_image.hpp"
#include "subcommand.hpp"

#include <orlix/client.hpp>

#include <cmath>
#include <functional>
#include <iostream>
#include <memory>
#include <numeric>

#ifdef _WIN32
#include <objbase.h>
#include <windows.h>
#endif

namespace tool {

using namespace orlix;

namespace {

constexpr char kFooter[] = R"(
Says which copy of the library is in use and how it runs here, which classes are registered and
where, and measures a built-in specimen whose truth is known, with each pixel counted a second
time by this program. Every check says PASS or FAIL; the exit code is 1 when one fails, 3 when
the library cannot be used at all.

Example:
  orlix doctor)";

constexpr const char* kClasses[] = {"Orlix.Image",
                                    "Orlix.Histogram",
                                    "Orlix.Bitmap",
                                    "Orlix.ShapeRegionOfInterest",
                                    "Orlix.Polygon",
                                    "Orlix.StructuringElement",
                                    "Orlix.LineGraphicOverlay",
                                    "Orlix.CircleGraphicOverlay",
                                    "Orlix.TextGraphicOverlay",
                                    "Orlix.OrlixBuffer",
                                    "Orlix.SplineImage",
                                    "Orlix.VBHelper",
                                    "Orlix.ImageView",
                                    "Orlix.HistogramDialog"};

std::string TextOf(const CLSID& id) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string out = "{";
    const auto hex = [&](uint32_t value, int digits) {
        for (int shift = 4 * digits - 4; shift >= 0; shift -= 4) out += kDigits[value >> shift & 15];
    };
    hex(static_cast<uint32_t>(id.Data1), 8);
    out += '-';
    hex(id.Data2, 4);
    out += '-';
    hex(id.Data3, 4);
    out += '-';
    for (int i = 0; i < 8; ++i) {
        hex(id.Data4[i], 2);
        if (i == 1) out += '-';
    }
    return out + "}";
}

// The file that the system loads for a class; empty where the system keeps no such list.
std::string RegisteredServer([[maybe_unused]] const CLSID& id) {
#ifdef _WIN32
    const std::wstring key = L"CLSID\\" + ToUtf16(TextOf(id)) + L"\\InprocServer32";
    wchar_t path[1024] = L"";
    DWORD size = sizeof path;
    if (RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, path, &size) != ERROR_SUCCESS)
        return "no InprocServer32";
    return ToUtf8(path);
#else
    return {};
#endif
}

void ShowModule() {
    const auto module = CreateObject<IModuleInformation>("Orlix.Image");
    Text version, path;
    Check(module->get_Version(version.Out()), module);
    Check(module->get_ModulePath(path.Out()), module);
    std::cout << "Library   " << version.Utf8() << ", " << 8 * sizeof(void*) << "-bit\n"
              << "Loaded    " << path.Utf8() << "\nProgram   " ORLIX_TOOL_VERSION "\n\nProcessor variants in use\n";
    LONG count = 0;
    Check(module->get_NumberOfKernels(&count), module);
    for (LONG i = 0; i < count; ++i) {
        Text kernel, variant;
        Check(module->GetKernel(i, kernel.Out(), variant.Out()), module);
        std::string name = kernel.Utf8();
        name.resize(std::max<size_t>(name.size(), 28), ' ');
        std::cout << "  " << name << variant.Utf8() << "\n";
    }
}

void ShowClasses() {
    std::cout << "\nClasses\n";
    for (const char* progId : kClasses) {
        std::string line = progId;
        line.resize(30, ' ');
        try {
            const CLSID id = ClassOf(progId);
            line += TextOf(id);
            ComPtr<IUnknown> object;
            const HRESULT result =
                CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown), object.OutVoid());
            line += SUCCEEDED(result)                     ? "  available"
                    : result == CLASS_E_CLASSNOTAVAILABLE ? "  not built yet"
                                                          : "  cannot be created";
            const std::string server = RegisteredServer(id);
            if (!server.empty()) line += "  " + server;
        } catch (const Error&) {
            line += "not registered";
        }
        std::cout << "  " << line << "\n";
    }
}

class Checks {
public:
    void That(bool passed, const std::string& what) {
        std::cout << (passed ? "  PASS  " : "  FAIL  ") << what << "\n";
        failed_ = failed_ || !passed;
    }
    void Run(const std::string& what, const std::function<void()>& body) {
        try {
            body();
        } catch (const std::exception& error) {
            That(false, what + ": " + error.what());
        }
    }
    bool failed() const { return failed_; }

private:
    bool failed_ = false;
};

void MeasureSpecimen(int bits, Checks& checks) {
    samples::SpecimenSettings settings;
    settings.seed = 2;
    settings.width = 501;  // not a multiple of anything that vectors like
    settings.height = 333;
    settings.bits = bits;
    settings.particles = 50;
    settings.pits = 0;
    const samples::Specimen specimen = samples::MakeSpecimen(settings);
    const Measurement measurement = MeasureImage(ImageOf(specimen), "specimen", {});
    const Json& m = measurement.document;
    const std::string name = std::to_string(bits) + "-bit: ";

    uint64_t sum = 0, squares = 0;
    for (const uint16_t pixel : specimen.pixels) {
        sum += pixel;
        squares += uint64_t{pixel} * pixel;
    }
    const double count = static_cast<double>(specimen.pixels.size());
    const double mean = static_cast<double>(sum) / count;
    const double deviation = std::sqrt(static_cast<double>(squares) / count - mean * mean);
    checks.That(m["grey"]["mean"] == mean, name + "mean grey level " + Number(NumberAt(m, "grey.mean")));
    checks.That(std::fabs(NumberAt(m, "grey.standardDeviation") - deviation) <= 1e-9 * deviation,
                name + "standard deviation " + Number(NumberAt(m, "grey.standardDeviation")));

    const double upper = NumberAt(m, "phase.upper");
    int64_t dark = 0;
    for (const uint16_t pixel : specimen.pixels) dark += pixel <= upper;
    checks.That(m["phase"]["pixels"] == dark,
                name + std::to_string(dark) + " pixels at or below the threshold " + Number(upper));

    const double truth = static_cast<double>(specimen.particleArea);
    const double error = 100 * (static_cast<double>(dark) - truth) / truth;
    // Softened edges and noise move single pixels of the outlines; a wrong threshold moves whole per cents.
    checks.That(std::fabs(error) <= 2, name + "area of the particles " + std::to_string(dark) + ", truth " +
                                           std::to_string(specimen.particleArea) + " pixels: " + Rounded(error, 2) +
                                           " %");

    MeasureSettings outside;
    outside.region = ParseRegion("circle:250,166,120.5");
    const double inner = NumberAt(MeasureImage(ImageOf(specimen), "specimen", outside).document, "region.pixels");
    outside.region->polarity = PT_Outside;
    const double outer = NumberAt(MeasureImage(ImageOf(specimen), "specimen", outside).document, "region.pixels");
    checks.That(inner + outer == count, name + "a circle and its outside cover the image once");
}

int Examine() {
    ShowModule();
    ShowClasses();
    std::cout << "\nMeasurement of a known specimen\n";
    Checks checks;
    for (const int bits : {8, 16}) checks.Run(std::to_string(bits) + "-bit", [&] { MeasureSpecimen(bits, checks); });
    std::cout << (checks.failed() ? "\nFAIL\n" : "\nPASS\n");
    return checks.failed() ? kFailed : kDone;
}

}  // namespace

Command AddDoctor(CLI::App& program) {
    Subcommand command(program, "doctor", "Check the installed library", kFooter);
    return [] { return Examine(); };
}

}  // namespace tool
