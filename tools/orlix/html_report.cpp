#include "html_report.hpp"

#include "histogram_plot.hpp"
#include "html_page.hpp"
#include "warnings.hpp"

#include <cmath>

namespace tool {

namespace {

std::string PhaseLevels(const Json& m) {
    if (Member(m, "phase.pixels").is_null()) return "none";
    const double lower = NumberAt(m, "phase.lower"), upper = NumberAt(m, "phase.upper");
    if (lower > upper) return "no grey level";
    return "grey " + (std::isnan(lower) ? std::string("…") : Plain(lower)) + " to " +
           (std::isnan(upper) ? std::string("…") : Plain(upper));
}

std::string FractionText(const Json& m) {
    const double fraction = NumberAt(m, "phase.areaFraction");
    return std::isnan(fraction) ? "–" : Percent(fraction);
}

std::string MethodLabel(const Json& m) {
    for (const Json& entry : m["thresholds"])
        if (entry["chosen"] == true) return entry["label"];
    return "given levels";
}

std::string Centroid(const Json& m, const std::string& group) {
    const double x = NumberAt(m, group + ".xCentroid"), y = NumberAt(m, group + ".yCentroid");
    return std::isnan(x) ? "–" : Rounded(x, 2) + ", " + Rounded(y, 2);
}

std::string ThresholdTable(const Json& m) {
    std::string out =
        "<div class='scroll'><table>\n<tr><th>Method</th><th class='n'>Threshold</th><th class='n'>Dark side</th>"
        "<th class='n'>Bright side</th><th>Parameters</th></tr>\n";
    for (const Json& entry : m["thresholds"]) {
        out += entry["chosen"] == true ? "<tr class='chosen'>" : "<tr>";
        out += "<td>" + Escaped(entry["label"].get<std::string>()) + " <small>" +
               Escaped(entry["method"].get<std::string>()) + "</small></td>";
        if (entry.contains("message")) {
            out += "<td colspan='3' class='error'>" + Escaped(entry["message"].get<std::string>()) + "</td>";
        } else {
            const bool pair = entry.contains("left");
            out += "<td class='n'>" +
                   (pair ? Plain(NumberAt(entry, "left")) + " | " + Plain(NumberAt(entry, "right"))
                         : Plain(NumberAt(entry, "threshold"))) +
                   "</td><td class='n'>" + Percent(NumberAt(entry, "darkFraction")) + "</td><td class='n'>" +
                   Percent(NumberAt(entry, "brightFraction")) + "</td>";
        }
        out += "<td><small>";
        bool first = true;
        for (const auto& [name, value] : entry["parameters"].items()) {
            out += (first ? "" : ", ") + name + " " + Number(value.get<double>());
            first = false;
        }
        if (entry.contains("note")) out += "; " + Escaped(entry["note"].get<std::string>());
        out += "</small></td></tr>\n";
    }
    return out + "</table></div>\n";
}

std::string Values(const Json& m) {
    const auto value = [&](const char* path) { return Plain(NumberAt(m, path)); };
    std::string out = "<div class='two'><table>\n";
    out += Row("Mean", value("grey.mean"));
    out += Row("Standard deviation", value("grey.standardDeviation"));
    out += Row("Minimum", value("grey.minimum"));
    out += Row("Maximum", value("grey.maximum"));
    out += Row("Median", value("grey.median"));
    out += Row("Mode", value("grey.mode"));
    out += Row("Skew", value("grey.skew"));
    out += Row("Excess kurtosis", value("grey.excessKurtosis"));
    out += Row("Entropy, nats", value("grey.entropy"));
    out += Row("Centroid by grey, x, y", Centroid(m, "grey"));
    out += "</table><table>\n";
    out += Row("Size", value("width") + " × " + value("height") + " pixels");
    out += Row("Type", Escaped(Member(m, "type").get<std::string>()));
    out += Row("Bands", BandsText(m, "measured"));
    out += Row("Calibration", Calibration(m));
    out += Row("Region", RegionText(m));
    out += Row("Pixels of the region", PixelsText(m));
    if (Member(m, "region.areaSquareMicrons").is_number())
        out += Row("Area of the region", SquareMicrons(NumberAt(m, "region.areaSquareMicrons")));
    if (!m["flatten"].is_null()) {
        const Json& robust = Member(m, "flatten.surface.robust");
        out += Row("Surface removed first", Escaped(Member(m, "flatten.surface.kind").get<std::string>()) +
                                                (robust.is_null() ? "" : ", robust with " + Number(robust)));
        out += Row("Deviation before, after",
                   value("flatten.before.Sq") + " \u2192 " + value("flatten.after.Sq") + " grey levels");
        out += Row("Pixels clipped by that", Grouped(value("flatten.clippedPixels")));
    }
    out += Row("Dip of the histogram",
               value("histogram.dip") + (NumberAt(m, "histogram.dip") < NumberAt(m, "histogram.leastDipOfTwoPeaks")
                                             ? ": no second peak"
                                             : ": two peaks or more"));
    out += Row("Luminance range", value("luminance.lower") + " to " + value("luminance.upper"));
    out += Row("Pixels outside that range", Grouped(value("histogram.pixelsOutside")));
    out += Row("Histogram", value("histogram.bins") + " bins of " + value("histogram.binWidth"));
    out += "</table></div>\n";
    return out;
}

}  // namespace

std::string ImageReport(const Json& m, const std::string& version, const std::string& imageUri,
                        const std::string& overlayUri) {
    const std::string name = m["file"];
    const std::string polarity = Member(m, "phase.polarity");
    std::string body = "<header><h1>" + Escaped(name) + "</h1><div class='sub'>" + Plain(NumberAt(m, "width")) + " × " +
                       Plain(NumberAt(m, "height")) + " pixels, " + Escaped(m["type"].get<std::string>()) + ", " +
                       Calibration(m) + "</div></header>\n";
    body += "<div class='cards'>\n";
    body += Card(FractionText(m), "area fraction, " + (polarity == "between" ? "chosen" : polarity) + " phase", true);
    const bool calibrated = Member(m, "phase.areaSquareMicrons").is_number();
    if (calibrated) body += Card(SquareMicrons(NumberAt(m, "phase.areaSquareMicrons")), "area of the phase");
    body +=
        Card(Grouped(Plain(NumberAt(m, "phase.pixels"))), "pixels of " + Grouped(Plain(NumberAt(m, "region.pixels"))));
    body += Card(MethodLabel(m), "threshold; phase: " + PhaseLevels(m));
    body += Card(Centroid(m, "phase"), "centroid of the phase, pixels");
    body += "</div>\n" + WarningsSection(m);

    body += "<section><div class='pictures'><figure><img alt='Image' src='" + imageUri + "'><figcaption>Image" +
            std::string(m["flatten"].is_null() ? "" : " after flattening") +
            ", stretched for display</figcaption></figure><figure><img alt='Overlay' src='" + overlayUri +
            "'><figcaption><span class='key' style='background:var(--phase)'></span>" +
            (polarity == "between"  ? "Chosen"
             : polarity == "bright" ? "Bright"
                                    : "Dark") +
            " phase";
    if (Member(m, "region.shape") != "whole image" || NumberAt(m, "region.pixelsLeftOut") > 0)
        body += " &nbsp; <span class='key' style='background:var(--region)'></span>Region " + RegionText(m);
    body += "</figcaption></figure></div></section>\n";

    body += "<section><h2>Histogram and thresholds</h2>\n" + HistogramPlot(m) +
            "<div class='sub' style='font-size:13px'><span class='key' style='background:var(--phase)'></span>grey "
            "levels of "
            "the phase &nbsp; <span class='key' style='background:var(--fill);opacity:.35'></span>the same counts on a "
            "logarithmic scale</div></section>\n";
    body += "<section><h2>Automatic thresholds</h2>\n" + ThresholdTable(m) + "</section>\n";
    body += "<section><h2>Grey levels and image</h2>\n" + Values(m) + "</section>\n";
    return Page(name, body, version);
}

std::string BatchReport(const std::vector<BatchEntry>& entries, const Json& summary, const std::string& version) {
    std::string body = "<header><h1>Area fraction of " + Rounded(NumberAt(summary, "measured"), 0) +
                       " images</h1><div class='sub'>" + Rounded(NumberAt(summary, "failed"), 0) +
                       " failed</div></header>\n";
    if (summary.contains("areaFraction")) {
        body += "<div class='cards'>\n";
        body += Card(Percent(NumberAt(summary, "areaFraction.mean")), "mean area fraction", true);
        body += Card(Percent(NumberAt(summary, "areaFraction.standardDeviation")), "standard deviation between images");
        body += Card("± " + Percent(NumberAt(summary, "areaFraction.confidence95")), "95 % confidence of the mean");
        body += Card(Rounded(100 * NumberAt(summary, "areaFraction.minimum"), 2) + " – " +
                         Percent(NumberAt(summary, "areaFraction.maximum")),
                     "smallest and largest");
        body += "</div>\n";
    }
    body += WarningsSection(summary);
    body +=
        "<section class='scroll'><table class='batch'>\n<tr><th>Overlay</th><th>Image</th><th class='n'>Area "
        "fraction</th>"
        "<th class='n'>Area</th><th>Phase</th><th class='n'>Mean grey</th></tr>\n";
    for (const BatchEntry& entry : entries) {
        const Json& m = entry.measurement;
        const std::string name = Escaped(m["file"].get<std::string>());
        if (m.contains("error")) {
            body += "<tr><td></td><td>" + name + "</td><td colspan='4' class='error'>" +
                    Escaped(m["error"].get<std::string>()) + "</td></tr>\n";
            continue;
        }
        const double fraction = NumberAt(m, "phase.areaFraction");
        body += "<tr><td class='thumb'><img alt='' src='" + entry.overlayUri + "'></td><td>";
        body += entry.reportName.empty() ? name : "<a " + Href(entry.reportName) + ">" + name + "</a>";
        body += "<br><small class='sub'>" + Plain(NumberAt(m, "width")) + " × " + Plain(NumberAt(m, "height")) + ", " +
                m["type"].get<std::string>() + ", " + Calibration(m) + "</small>" + WarningsCell(m) +
                "</td><td class='n'>" + FractionText(m) +
                "<div class='bar'><i style='width:" + Rounded(100 * (fraction > 0 ? fraction : 0), 1) +
                "%'></i></div></td><td class='n'>" +
                (Member(m, "phase.areaSquareMicrons").is_number()
                     ? SquareMicrons(NumberAt(m, "phase.areaSquareMicrons"))
                     : Grouped(Plain(NumberAt(m, "phase.pixels"))) + " pixels") +
                "</td><td>" + MethodLabel(m) + "<br><small class='sub'>" + PhaseLevels(m) +
                "</small></td><td class='n'>" + Plain(NumberAt(m, "grey.mean")) + "</td></tr>\n";
    }
    body += "</table></section>\n";
    return Page("Area fractions", body, version);
}

}  // namespace tool
