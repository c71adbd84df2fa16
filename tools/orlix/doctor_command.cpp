// orlix doctor
#include "commands.hpp"
#include "console.hpp"
#include "measurement.hpp"
#include "specimen_image.hpp"
#include "subcommand.hpp"
#include "subject.hpp"

#include <orlix/client.hpp>

#include <algorithm>
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

constexpr char kDoctorFooter[] = R"(
Says which copy of the library is in use and how it runs here, which classes are registered and
where, and measures a built-in specimen whose truth is known, with each pixel counted a second
time by this program. The first line is the verdict, PASS or FAIL; the exit code is 1 when a check
fails, 3 when the library cannot be used at all.

Examples:
  orlix doctor
  orlix doctor --json)";

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

// The file that the system loads for a class; empty on systems without a registry.
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

Json Module() {
    const auto module = CreateObject<IModuleInformation>("Orlix.Image");
    Text version, path;
    Check(module->get_Version(version.Out()), module);
    Check(module->get_ModulePath(path.Out()), module);
    Json out;
    out["version"] = version.Utf8();
    out["bits"] = 8 * sizeof(void*);
    out["path"] = path.Utf8();
    Json& kernels = out["kernels"] = Json::array();
    LONG count = 0;
    Check(module->get_NumberOfKernels(&count), module);
    for (LONG i = 0; i < count; ++i) {
        Text kernel, variant;
        Check(module->GetKernel(i, kernel.Out(), variant.Out()), module);
        kernels.push_back({{"kernel", kernel.Utf8()}, {"variant", variant.Utf8()}});
    }
    return out;
}

Json Classes() {
    Json out = Json::array();
    for (const char* progId : kClasses) {
        Json entry = {{"class", progId}, {"id", nullptr}, {"state", "not registered"}, {"server", nullptr}};
        try {
            const CLSID id = ClassOf(progId);
            entry["id"] = TextOf(id);
            ComPtr<IUnknown> object;
            const HRESULT result =
                CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown), object.OutVoid());
            entry["state"] = SUCCEEDED(result)                     ? "available"
                             : result == CLASS_E_CLASSNOTAVAILABLE ? "not built yet"
                                                                   : "cannot be created";
            if (const std::string server = RegisteredServer(id); !server.empty()) entry["server"] = server;
        } catch (const Error&) {
            // The text stays empty.
        }
        out.push_back(std::move(entry));
    }
    return out;
}

class Checks {
public:
    void That(bool passed, const std::string& what) {
        list_.push_back({{"check", what}, {"passed", passed}});
        failed_ += !passed;
    }
    void Run(const std::string& what, const std::function<void()>& body) {
        try {
            body();
        } catch (const std::exception& error) {
            That(false, what + ": " + error.what());
        }
    }
    const Json& list() const { return list_; }
    int failed() const { return failed_; }

private:
    Json list_ = Json::array();
    int failed_ = 0;
};

void MeasureSpecimen(int bits, Checks& checks) {
    samples::SpecimenSettings settings;
    settings.seed = 2;
    settings.width = 501;  // not a multiple of any vector's width
    settings.height = 333;
    settings.bits = bits;
    settings.particles = 50;
    settings.pits = 0;
    const samples::Specimen specimen = samples::MakeSpecimen(settings);
    const MeasureSettings measured;
    const Measurement measurement = MeasureImage(ImageOf(specimen), "specimen", measured);
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
    // Soft edges and noise change single pixels of the outlines; a wrong threshold changes whole per cents.
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

// Rows with aligned columns, two blanks apart.
std::string Table(const std::vector<std::vector<std::string>>& rows) {
    std::vector<size_t> widths;
    for (const auto& row : rows)
        for (size_t i = 0; i < row.size(); ++i) {
            if (i == widths.size()) widths.push_back(0);
            widths[i] = std::max(widths[i], row[i].size());
        }
    std::string out;
    for (const auto& row : rows) {
        std::string line;
        for (size_t i = 0; i < row.size(); ++i) line += "  " + Padded(row[i], widths[i], false);
        out += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return out;
}

std::string TextOf(const Json& m) {
    const auto text = [](const Json& value) { return value.is_string() ? value.get<std::string>() : std::string(); };
    std::string out = text(m["message"]) + "\n\n";
    out += "Library   " + text(m["library"]["version"]) + ", " + m["library"]["bits"].dump() + "-bit\nLoaded    " +
           text(m["library"]["path"]) + "\nProgram   " + text(m["version"]) + "\n\nMeasurement of a known specimen\n";
    for (const Json& check : m["checks"])
        out += (check["passed"] ? "  PASS  " : "  FAIL  ") + text(check["check"]) + "\n";
    std::vector<std::vector<std::string>> rows;
    for (const Json& entry : m["classes"])
        rows.push_back({text(entry["class"]), text(entry["state"]), text(entry["id"]), text(entry["server"])});
    out += "\nClasses\n" + Table(rows);
    rows.clear();
    for (const Json& entry : m["library"]["kernels"]) rows.push_back({text(entry["kernel"]), text(entry["variant"])});
    return out + "\nProcessor variants in use\n" + Table(rows);
}

int Examine(const Subcommand& command, bool json) {
    Json document = command.Envelope();
    Checks checks;
    document["verdict"] = document["message"] = nullptr;  // reserves the first places; filled in at the end
    document["library"] = Module();
    document["classes"] = Classes();
    for (const int bits : {8, 16}) checks.Run(std::to_string(bits) + "-bit", [&] { MeasureSpecimen(bits, checks); });
    document["checks"] = checks.list();
    document["warnings"] = Json::array();
    const std::string all = std::to_string(checks.list().size());
    document["verdict"] = checks.failed() ? "fail" : "pass";
    document["message"] = checks.failed() ? "FAIL: " + std::to_string(checks.failed()) + " of " + all + " checks failed"
                                          : "PASS: the library works, all " + all + " checks passed";
    std::cout << (json ? Print(document) : TextOf(document));
    return checks.failed() ? kFailed : kDone;
}

}  // namespace

Command AddDoctor(CLI::App& program) {
    Subcommand command(program, "doctor", "Check the installed library", kDoctorFooter);
    const auto json = std::make_shared<bool>(false);
    command.AddFlag("--json", *json, "As JSON");
    return [json, command] { return Examine(command, *json); };
}

}  // namespace tool
