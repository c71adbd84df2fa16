#include "flatten_report.hpp"

#include "html_page.hpp"
#include "units.hpp"
#include "warnings.hpp"

#include <cmath>

namespace tool {

namespace {

// A length if the z scale is known, otherwise grey levels.
std::string Short(const Json& image, const std::string& path) {
    const double microns = NumberAt(image, path + "Microns");
    if (std::isnan(microns)) return Digits(NumberAt(image, path), 5) + " levels";
    const Unit unit = LengthUnit(microns);
    return Digits(microns * unit.scale, 5) + " " + unit.name;
}

std::string SurfaceName(const Json& image) {
    const Json& robust = Member(image, "surface.robust");
    return Escaped(Member(image, "surface.kind").get<std::string>()) +
           (robust.is_null() ? "" : ", robust with " + Number(robust));
}

std::string FiguresTable(const Json& image) {
    const bool scaled = !image["zScale"].is_null();
    std::string out =
        "<div class='scroll'><table>\n<tr><th></th><th class='n'>Before, grey levels</th><th class='n'>After, "
        "grey levels</th>";
    if (scaled) out += "<th class='n'>Before</th><th class='n'>After</th>";
    out += "</tr>\n";
    const auto row = [&](const std::string& name, const std::string& member, bool length) {
        out += "<tr><th scope='row'>" + name + "</th>";
        for (const char* when : {"before.", "after."})
            out += "<td class='n'>" + Digits(NumberAt(image, when + member), 7) + "</td>";
        for (const char* when : {"before.", "after."})
            if (scaled)
                out += "<td class='n'>" +
                       (length ? Length(NumberAt(image, when + member + "Microns")) : std::string()) + "</td>";
        out += "</tr>\n";
    };
    row("Sa, mean height from the mean", "Sa", true);
    row("Sq, root mean square of it", "Sq", true);
    row("Sz, lowest to highest", "Sz", true);
    row("Sz without the outermost 0.1 %", "trimmedSz", true);
    row("Ssk, skewness", "Ssk", false);
    row("Sku, kurtosis", "Sku", false);
    row("Mean", "mean", false);
    row("Minimum", "minimum", false);
    row("Maximum", "maximum", false);
    return out +
           "</table></div>\n<div class='sub' style='font-size:13px;margin-top:8px'>Areal parameters as ISO 25178-2 "
           "defines them, with no filter. After: in floating point, before rounding to grey levels.</div>\n";
}

std::string Facts(const Json& image) {
    const auto value = [&](const char* path) { return Plain(NumberAt(image, path)); };
    std::string out = "<div class='two'><table>\n" + Row("Surface", SurfaceName(image));
    for (const auto& [name, coefficient] : Member(image, "surface.coefficients").items())
        out += Row(name, coefficient.is_null() ? "–" : Number(coefficient));
    if (const double pixels = NumberAt(image, "surface.refit.pixels"); !std::isnan(pixels))
        out += Row("Pixels of the final least squares", Grouped(Plain(pixels)));
    out += Row("Average grey level", Digits(NumberAt(image, "surface.average"), 9));
    if (const double slope = NumberAt(image, "surface.slopeX"); !std::isnan(slope)) {
        out += Row("Slope along x", Digits(slope, 6) + " µm/mm");
        out += Row("Slope along y", Digits(NumberAt(image, "surface.slopeY"), 6) + " µm/mm");
    }
    if (const double radius = NumberAt(image, "surface.apexRadius"); !std::isnan(radius))
        out += Row("Radius of curvature at the apex", Length(radius));
    out += "</table><table>\n";
    out += Row("Size", value("width") + " × " + value("height") + " pixels");
    out += Row("Type", Escaped(Member(image, "type").get<std::string>()));
    out += Row("Bands", BandsText(image, "flattened"));
    out += Row("Calibration", Calibration(image));
    out += Row("Height of a grey level", image["zScale"].is_null() ? "not known" : Length(NumberAt(image, "zScale")));
    out += Row("Region", RegionText(image));
    out += Row("Pixels of the region", PixelsText(image));
    out += Row("Clipped by the pixel type", Grouped(value("clippedPixels")) + " pixels");
    return out + "</table></div>\n<div class='sub' style='font-size:13px;margin-top:8px'>" +
           Escaped(Member(image, "surface.formula").get<std::string>()) +
           "; x column, y row, z grey level, in pixels and grey levels.</div>\n";
}

}  // namespace

std::string Figure(const Json& image, const std::string& when, const std::string& value) {
    const double microns = NumberAt(image, when + "." + value + "Microns");
    return Digits(NumberAt(image, when + "." + value), 7) + " grey levels" +
           (std::isnan(microns) ? "" : " (" + Length(microns) + ")");
}

std::string FlattenReport(const Json& image, const std::string& version, const FlattenPictures& pictures) {
    const std::string name = image["file"], kind = Member(image, "surface.kind");
    std::string body = "<header><h1>" + Escaped(name) + "</h1><div class='sub'>" + Plain(NumberAt(image, "width")) +
                       " × " + Plain(NumberAt(image, "height")) + " pixels, " +
                       Escaped(image["type"].get<std::string>()) + ", " + Calibration(image) +
                       "</div></header>\n<div class='cards'>\n";
    body +=
        Card(Short(image, "after.Sq"), "Sq after removing the " + kind + (kind.ends_with("c") ? " surface" : ""), true);
    body += Card(Short(image, "before.Sq"), "Sq before");
    body += Card(Short(image, "after.Sa"), "Sa after");
    body += Card(Short(image, "after.trimmedSz"), "Sz after, without the outermost 0.1 %");
    body += Card(Short(image, "after.Sz"), "Sz after");
    body += Card(Grouped(Plain(NumberAt(image, "clippedPixels"))), "pixels clipped by the pixel type");
    body += "</div>\n" + WarningsSection(image);

    const auto figure = [](const std::string& uri, const char* text, const std::string& range) {
        return "<figure><img alt='" + std::string(text) + "' src='" + uri + "'><figcaption>" + text + ": " + range +
               "</figcaption></figure>";
    };
    body += "<section><div class='pictures'>" + figure(pictures.before, "Before", pictures.beforeRange) +
            figure(pictures.after, "After", pictures.afterRange) + "</div></section>\n";

    const Json& zScale = image["zScale"];
    const Unit unit =
        HeightUnit(pictures.limit, zScale.is_null() ? std::nullopt : std::optional<double>(zScale.get<double>()));
    const std::string end = Plain(pictures.limit * unit.scale) + " " + unit.name;
    body +=
        "<section><h2>Residual of the fit: " + SurfaceName(image) + "</h2>\n" + pictures.residualMap +
        "<div class='sub' style='font-size:13px;margin-top:8px'>Red above the surface, blue below. Colours end at ±" +
        end + ", " + Percent(pictures.beyond) + " of the pixels lie beyond" +
        (Member(image, "region.shape") == "whole image" && !(NumberAt(image, "region.pixelsLeftOut") > 0)
             ? ""
             : "; grey: outside the region " + RegionText(image)) +
        ". Dashed: the lines of the profiles.</div></section>\n";
    body += "<section><h2>Profile along row " + std::to_string(pictures.row) + "</h2>\n" +
            ProfilePlot(pictures.horizontal) + "</section>\n<section><h2>Profile along column " +
            std::to_string(pictures.column) + "</h2>\n" + ProfilePlot(pictures.vertical) + "</section>\n";
    body += "<section><h2>Figures of the region</h2>\n" + FiguresTable(image) + "</section>\n";
    body += "<section><h2>Surface and image</h2>\n" + Facts(image) + "</section>\n";
    return Page(name, body, version);
}

std::string FlattenOverview(const Json& images, const Json& warnings, const std::string& version) {
    std::string body = "<header><h1>" + std::to_string(images.size()) + " flattened images</h1></header>\n" +
                       WarningsSection({{"warnings", warnings}}) +
                       "<section class='scroll'><table>\n<tr><th>Image</th><th>Surface</th>"
                       "<th class='n'>Sq before</th><th class='n'>Sq after</th><th class='n'>Sz after, trimmed</th>"
                       "<th class='n'>Clipped</th></tr>\n";
    for (const Json& image : images) {
        const std::string name = Escaped(image["file"].get<std::string>());
        if (image.contains("error")) {
            body += "<tr><td>" + name + "</td><td colspan='5' class='error'>" +
                    Escaped(image["error"].get<std::string>()) + "</td></tr>\n";
            continue;
        }
        body += "<tr><td><a " + Href(Member(image, "outputs.report").get<std::string>()) + ">" + name + "</a>" +
                WarningsCell(image) + "</td><td>" + SurfaceName(image) + "</td>";
        for (const char* path : {"before.Sq", "after.Sq", "after.trimmedSz"})
            body += "<td class='n'>" + Short(image, path) + "</td>";
        body += "<td class='n'>" + Grouped(Plain(NumberAt(image, "clippedPixels"))) + "</td></tr>\n";
    }
    return Page("Flattened images", body + "</table></section>\n", version);
}

}  // namespace tool
