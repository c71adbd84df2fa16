// orlix polygon
#include "batch.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "image_file.hpp"
#include "subcommand.hpp"
#include "subject.hpp"
#include "vertex_list.hpp"

#include <orlix/client.hpp>

#include <iostream>
#include <memory>
#include <optional>

namespace tool {

using namespace orlix;

namespace {

constexpr char kPolygonFooter[] = R"(
Files
  CSV   x and y a line, perhaps under a header; an empty line ends an outline and begins the next one
  JSON  [[x, y], ...], or {"name": "a", "vertices": [[x, y], ...]}, or an array of these
The last vertex is joined with the first. Coordinates are in pixels, x to the right, y downwards.

What is measured
  Area, perimeter, the radius of a circle of the same perimeter, the largest distance between two
  vertices, circularity (1 for a regular polygon), centroid of the area (negated for outlines whose
  signed area is negative: list them the other way round), bounds; convex hull. With --point the
  distances to the nearest and farthest vertex, whether the point is inside, and the angle that the
  outline covers as seen from it. With --circle P a circle through the better part P of the vertices.
  With --smooth T an outline with fewer vertices, those left out at most T pixels beside it.

Examples:
  orlix polygon outline.csv
  orlix polygon particles.json --json --circle 0.7
  orlix polygon outline.csv --point 120.5 80 --smooth 0.5 --csv)";

struct PolygonOptions {
    std::vector<std::string> files;
    std::vector<double> point;
    std::optional<double> circle, smooth;
    bool json = false, csv = false;
};

const std::vector<std::string> kPolygonColumns = {"file",
                                                  "outline",
                                                  "error",
                                                  "vertices",
                                                  "area",
                                                  "perimeter",
                                                  "perimeterEquivalentRadius",
                                                  "diameter.length",
                                                  "diameter.x1",
                                                  "diameter.y1",
                                                  "diameter.x2",
                                                  "diameter.y2",
                                                  "circularity",
                                                  "centroid.x",
                                                  "centroid.y",
                                                  "bounds.left",
                                                  "bounds.top",
                                                  "bounds.right",
                                                  "bounds.bottom",
                                                  "hull.vertices",
                                                  "hull.area",
                                                  "hull.perimeter",
                                                  "point.inside",
                                                  "point.nearest.distance",
                                                  "point.farthest.distance",
                                                  "point.subtendedAngle",
                                                  "circle.x",
                                                  "circle.y",
                                                  "circle.radius",
                                                  "smooth.vertices",
                                                  "smooth.area",
                                                  "smooth.perimeter"};

Json At(double x, double y) {
    Json out;
    out["x"] = Finite(x);
    out["y"] = Finite(y);
    return out;
}

double Value(const ComPtr<IPolygon>& polygon, HRESULT (STDMETHODCALLTYPE IPolygon::*get)(double*)) {
    double value = 0;
    Check((polygon.get()->*get)(&value), polygon);
    return value;
}

Json Summary(const ComPtr<IPolygon>& polygon) {
    LONG vertices = 0;
    Check(polygon->get_NumberOfVertices(&vertices), polygon);
    Json out;
    out["vertices"] = vertices;
    out["area"] = Finite(Value(polygon, &IPolygon::get_Area));
    out["perimeter"] = Finite(Value(polygon, &IPolygon::get_Perimeter));
    return out;
}

Json FromPoint(const ComPtr<IPolygon>& polygon, double x, double y) {
    double xn = 0, yn = 0, nearest = 0, xf = 0, yf = 0, farthest = 0, angle = 0;
    const HRESULT where = Check(polygon->GetDistancesFromPoint(x, y, &xn, &yn, &nearest, &xf, &yf, &farthest), polygon);
    Check(polygon->get_SubtendedAngle(x, y, &angle), polygon);
    Json out = At(x, y);
    out["inside"] = where == S_FALSE;
    out["nearest"] = At(xn, yn);
    out["nearest"]["distance"] = Finite(nearest);
    out["farthest"] = At(xf, yf);
    out["farthest"]["distance"] = Finite(farthest);
    out["subtendedAngle"] = Finite(angle);
    return out;
}

Json Measured(const NamedOutline& outline, const PolygonOptions& options) {
    const auto polygon = CreateObject<IPolygon>("Orlix.Polygon");
    std::vector<SVertice> vertices = outline.vertices;
    Check(polygon->Create(static_cast<LONG>(vertices.size()), vertices.data()), polygon);
    Json out = {{"outline", outline.name}};
    out.update(Summary(polygon));
    out["perimeterEquivalentRadius"] = Finite(Value(polygon, &IPolygon::get_PerimeterEquivalentRadius));
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0, x = 0, y = 0, value = 0;
    Check(polygon->GetDiameter(&x1, &y1, &x2, &y2, &value), polygon);
    Json& diameter = out["diameter"];
    diameter["length"] = Finite(value);
    diameter["x1"] = Finite(x1);
    diameter["y1"] = Finite(y1);
    diameter["x2"] = Finite(x2);
    diameter["y2"] = Finite(y2);
    out["circularity"] = Finite(Value(polygon, &IPolygon::get_Circularity));
    Check(polygon->GetCentroid(&x, &y), polygon);
    out["centroid"] = At(x, y);
    Check(polygon->GetBounds(&x1, &y1, &x2, &y2), polygon);
    Json& bounds = out["bounds"];
    bounds["left"] = Finite(x1);
    bounds["top"] = Finite(y1);
    bounds["right"] = Finite(x2);
    bounds["bottom"] = Finite(y2);
    ComPtr<IPolygon> other;
    Check(polygon->ConvexHull(other.Out()), polygon);
    out["hull"] = Summary(other);
    if (!options.point.empty()) out["point"] = FromPoint(polygon, options.point[0], options.point[1]);
    if (options.circle) {
        Json& circle = out["circle"];
        if (Check(polygon->RobustCircleFit(*options.circle, &x, &y, &value), polygon) == S_OK) {
            circle = At(x, y);
            circle["radius"] = Finite(value);
        }
    }
    if (options.smooth) {
        Check(polygon->Smooth(*options.smooth, other.Out()), polygon);
        out["smooth"] = Summary(other);
    }
    return out;
}

std::string PolygonText(const std::string& file, const Json& m) {
    const auto number = [&](const char* path) {
        const double value = NumberAt(m, path);
        return value == value ? Number(value) : std::string("–");
    };
    std::string out =
        file + ", outline " + m["outline"].get<std::string>() + "\n" +
        TextLine("vertices", number("vertices") + ", " + number("hull.vertices") + " on the convex hull") +
        TextLine("area", number("area") + ", of the hull " + number("hull.area")) +
        TextLine("perimeter", number("perimeter") + ", equivalent radius " + number("perimeterEquivalentRadius")) +
        TextLine("diameter", number("diameter.length") + " from " + number("diameter.x1") + ", " +
                                 number("diameter.y1") + " to " + number("diameter.x2") + ", " +
                                 number("diameter.y2")) +
        TextLine("circularity", number("circularity")) +
        TextLine("centroid", number("centroid.x") + ", " + number("centroid.y")) +
        TextLine("bounds", number("bounds.left") + ", " + number("bounds.top") + " to " + number("bounds.right") +
                               ", " + number("bounds.bottom"));
    if (m.contains("point"))
        out += TextLine("point", std::string(m["point"]["inside"] ? "inside" : "outside") + ", vertices " +
                                     number("point.nearest.distance") + " to " + number("point.farthest.distance") +
                                     " away, seen over " + number("point.subtendedAngle") + " degrees");
    if (m.contains("circle"))
        out += TextLine("circle", m["circle"].is_null() ? "none"
                                                        : number("circle.x") + ", " + number("circle.y") + ", radius " +
                                                              number("circle.radius"));
    if (m.contains("smooth"))
        out += TextLine("smoothed", number("smooth.vertices") + " vertices, area " + number("smooth.area") +
                                        ", perimeter " + number("smooth.perimeter"));
    return out + "\n";
}

int MeasureAll(const PolygonOptions& options, const Subcommand& command) {
    if (options.csv) std::cout << CsvHeader(kPolygonColumns);
    Batch batch = RunBatch(
        options.files,
        [&](size_t i, const std::string& name, Progress&) {
            Json document = {{"file", name}};
            Json& outlines = document["outlines"] = Json::array();
            for (const NamedOutline& outline : ParseOutlines(ReadInput(options.files[i])))
                outlines.push_back(Measured(outline, options));
            return document;
        },
        [&](const Json& document) {
            const std::string file = document["file"];
            if (document.contains("error")) {
                if (options.csv) std::cout << CsvLine(kPolygonColumns, document) << std::flush;
                return;
            }
            for (Json outline : document["outlines"]) {
                outline["file"] = file;
                if (options.csv)
                    std::cout << CsvLine(kPolygonColumns, outline) << std::flush;
                else if (!options.json)
                    std::cout << PolygonText(file, outline) << std::flush;
            }
        });
    if (options.json) {
        Json document = command.Envelope();
        document["files"] = std::move(batch.images);
        document["warnings"] = std::move(batch.warnings);
        std::cout << Print(document);
    }
    return batch.code();
}

}  // namespace

Command AddPolygon(CLI::App& program) {
    const auto options = std::make_shared<PolygonOptions>();
    Subcommand command(program, "polygon", "Measure outlines given as lists of vertices", kPolygonFooter);
    command.Add("FILE", options->files, "CSV or JSON files; - is standard input").Required();
    command.Add("--point", options->point, "Distances from here").Pair("X Y");
    command.Add("--circle", options->circle, "Robust circle: probability that a vertex belongs to it").Named("P");
    command.Add("--smooth", options->smooth, "Tolerance of a simplified outline, pixels").Named("T");
    const Parameter json = command.AddFlag("--json", options->json, "As JSON");
    command.AddFlag("--csv", options->csv, "A line for each outline").Excludes(json);
    return [options, command] { return MeasureAll(*options, command); };
}

}  // namespace tool
