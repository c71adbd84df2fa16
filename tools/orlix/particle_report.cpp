#include "particle_report.hpp"

#include "drawing.hpp"
#include "histogram_plot.hpp"
#include "html_page.hpp"
#include "label_places.hpp"
#include "particle_pictures.hpp"
#include "pictures.hpp"
#include "size_plot.hpp"
#include "subject.hpp"
#include "units.hpp"
#include "warnings.hpp"

#include <orlix/client.hpp>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace tool {

using namespace orlix;

namespace {

constexpr char kParticleStyle[] = R"(<style>
svg.particles{display:block;width:100%;height:auto;border-radius:6px;border:1px solid var(--line);background:#000}
svg.particles image{image-rendering:auto}
svg.particles path{fill:#ff6a00;fill-opacity:.12;stroke:#ff6a00;stroke-width:1.5;vector-effect:non-scaling-stroke;
fill-rule:evenodd;cursor:pointer}
svg.particles path:hover{fill-opacity:.4}
svg.particles path.on{fill:#00c8ff;fill-opacity:.45;stroke:#00c8ff;stroke-width:3}
svg.particles text{fill:#fff;stroke:#000;paint-order:stroke;text-anchor:middle;pointer-events:none;font-weight:650}
svg.particles circle{fill:none;stroke:#00c8ff;stroke-width:2;vector-effect:non-scaling-stroke;pointer-events:none}
.list{max-height:30rem;overflow:auto}
.list table{font-size:14px}
.list thead th{position:sticky;top:0;background:var(--card);cursor:pointer;white-space:nowrap;user-select:none}
.list thead th:after{content:'\00a0\00a0';display:inline-block;width:1em}
.list thead th[aria-sort=ascending]:after{content:'▲'}
.list thead th[aria-sort=descending]:after{content:'▼'}
.list tbody tr{cursor:pointer}
.list tbody tr:hover td{background:var(--soft)}
.list tbody tr.on td{background:color-mix(in srgb,var(--region) 28%,var(--card))}
@media print{.list{max-height:none;overflow:visible}}
</style>
)";

// Rows and outlines carry the particle's number. Without scripts the page still shows everything.
constexpr char kParticleScript[] = R"(<script>
(() => {
  const map = document.getElementById('map'), table = document.getElementById('particles');
  const ring = document.getElementById('ring'), body = table.tBodies[0];
  const choose = number => {
    document.querySelectorAll('.on').forEach(e => e.classList.remove('on'));
    const path = document.getElementById('p' + number), row = document.getElementById('r' + number);
    if (!path || !row) return null;
    path.classList.add('on');
    row.classList.add('on');
    const box = path.getBBox();
    ring.setAttribute('cx', box.x + box.width / 2);
    ring.setAttribute('cy', box.y + box.height / 2);
    ring.setAttribute('r', Math.max(0.75 * Math.hypot(box.width, box.height), map.viewBox.baseVal.width / 40));
    ring.removeAttribute('visibility');
    return {path, row};
  };
  map.addEventListener('click', event => {
    if (!event.target.id.startsWith('p')) return;
    const chosen = choose(event.target.id.slice(1));
    if (chosen) {
      const list = body.closest('.list');
      list.scrollTop = chosen.row.offsetTop - list.clientHeight / 2;
    }
  });
  body.addEventListener('click', event => {
    const row = event.target.closest('tr');
    const chosen = row && choose(row.id.slice(1));
    if (chosen) chosen.path.scrollIntoView({block: 'nearest', behavior: 'smooth'});
  });
  const valueOf = (row, column) => {
    const value = parseFloat(row.cells[column].textContent);
    return isNaN(value) ? Infinity : value;
  };
  const sort = head => {
    const descending = head.getAttribute('aria-sort') === 'ascending', column = head.cellIndex;
    const sign = descending ? -1 : 1;
    for (const other of head.parentNode.cells) other.removeAttribute('aria-sort');
    head.setAttribute('aria-sort', descending ? 'descending' : 'ascending');
    const rows = [...body.rows].map(row => [valueOf(row, column), row]);
    rows.sort((a, b) => a[0] === b[0] ? 0 : a[0] === Infinity ? 1 : b[0] === Infinity ? -1 : sign * (a[0] - b[0]));
    body.append(...rows.map(pair => pair[1]));
  };
  for (const head of table.tHead.rows[0].cells) {
    head.tabIndex = 0;
    head.addEventListener('click', () => sort(head));
    head.addEventListener('keydown', event => { if (event.key === 'Enter') sort(head); });
  }
})();
</script>
)";

struct TableColumn {
    const char* title;
    const char* path;
    const char* hint;
};
constexpr TableColumn kTableColumns[] = {
    {"No.", "number", "in the picture, the lists and the label picture"},
    {"x", "x", "centroid, pixels"},
    {"y", "y", "centroid, pixels"},
    {"Area", "area", "pixels times the area of a pixel"},
    {"Diameter", "diameter", "of the disc of the same area"},
    {"Feret max", "feretMaximum", "largest diameter"},
    {"Feret min", "feretMinimum", "smallest width"},
    {"Perimeter", "perimeter", "of the outer border and the holes"},
    {"Circularity", "circularity", "4 pi area / perimeter squared"},
    {"Aspect ratio", "aspectRatio", "of the ellipse of the same moments"},
    {"Solidity", "solidity", "area / area of the convex hull"},
    {"Mean grey", "grey.mean", "of the pixels"},
    {"Area, sub-pixel", "outline.area", "inside the outline at the threshold's grey level"},
};
constexpr TableColumn kTrustColumns[] = {
    {"± level, %", "trust.oneLevel", "greatest change of the area when the threshold moves by one level"},
    {"± valley, %", "trust.valley", "when it moves by half the width of the histogram's valley"},
};

// Runs of the outline in relative steps: "M12.5 3.5h4v-2..."; positions are pixel centres.
std::string OutlinePath(const ComPtr<IBlobs>& blobs, LONG index, LONG holes) {
    std::string path;
    for (LONG hole = -1; hole < holes; ++hole) {
        ComPtr<IPolygon> polygon;
        Check(blobs->get_Outline(index, OT_PixelEdges, hole, polygon.Out()), blobs);
        LONG count = 0;
        SVertice* vertices = nullptr;
        Check(polygon->get_NumberOfVertices(&count), polygon);
        Check(polygon->get_Vertices(&vertices), polygon);
        for (LONG i = 0; i < count; ++i) {
            const SVertice& to = vertices[i];
            if (i == 0) {
                path += "M" + Number(to.m_dX) + " " + Number(to.m_dY);
                continue;
            }
            const SVertice& from = vertices[i - 1];
            path += to.m_dY == from.m_dY ? "h" + Number(to.m_dX - from.m_dX) : "v" + Number(to.m_dY - from.m_dY);
        }
        path += "z";
    }
    return path;
}

// The particles shown, as indices in their order: all, or the largest ones.
std::vector<size_t> Shown(const Json& particles) {
    std::vector<size_t> shown(particles.size());
    std::iota(shown.begin(), shown.end(), size_t{0});
    if (shown.size() <= kMostInReport) return shown;
    std::stable_sort(shown.begin(), shown.end(), [&](size_t a, size_t b) {
        return particles[a]["pixels"].get<int64_t>() > particles[b]["pixels"].get<int64_t>();
    });
    shown.resize(kMostInReport);
    std::sort(shown.begin(), shown.end());
    return shown;
}

std::string ParticleMap(const Json& m, const ComPtr<IBlobs>& blobs, const std::vector<size_t>& shown,
                        const std::string& imageUri) {
    const auto width = m["width"].get<int32_t>(), height = m["height"].get<int32_t>();
    // The picture may be reduced; its last column and row may then reach beyond the image.
    const int32_t factor = Reduction({width, height, 1, {}}, kLargestInReport);
    const auto whole = [&](int32_t size) { return std::to_string((size + factor - 1) / factor * factor); };
    std::string svg = "<svg id='map' class='particles' viewBox='-0.5 -0.5 " + std::to_string(width) + " " +
                      std::to_string(height) + "' role='img' aria-label='Particles'>\n<image href='" + imageUri +
                      "' x='-0.5' y='-0.5' width='" + whole(width) + "' height='" + whole(height) + "'/>\n";
    const std::vector<SBinaryMeasurements> circles = InscribedCircles(blobs);
    std::string numbers;
    LabelPlaces places(width, height);
    const double most = std::max(width, height), font = most / 75;
    for (const size_t i : shown) {
        const Json& particle = m["particles"][i];
        const std::string number = particle["number"].dump();
        svg += "<path id='p" + number + "' d='" + OutlinePath(blobs, static_cast<LONG>(i), circles[i].m_lHoles) +
               "'><title>" + number + ": diameter " + Digits(NumberAt(particle, "diameter"), 4) + " " +
               m["unit"].get<std::string>() + "</title></path>\n";
        const LabelBox box{NumberAt(particle, "left"), NumberAt(particle, "top"), NumberAt(particle, "right"),
                           NumberAt(particle, "bottom")};
        const double edge = font / 4;
        const double wide = 0.6 * font * static_cast<double>(number.size()) + font / 3, high = 0.72 * font + 2 * edge;
        // Not on a particle that the number would cover.
        const LabelBox place = places.Take(box, circles[i].m_dInscribedXCenter, circles[i].m_dInscribedYCenter,
                                           box.bottom - box.top > 2 * font, wide, high, 0);
        numbers += "<text x='" + Coordinate((place.left + place.right) / 2) + "' y='" +
                   Coordinate(place.bottom - edge) + "'>" + number + "</text>\n";
    }
    return svg + "<g style='font-size:" + Coordinate(font) + "px;stroke-width:" + Coordinate(font / 6) + "px'>\n" +
           numbers + "</g>\n<circle id='ring' visibility='hidden'/>\n</svg>\n";
}

// How much the area of a particle changes, in percent; what becomes of it where that is no change of area.
std::string ChangeText(const Json& move, double area) {
    if (move.is_null()) return "–";
    if (move["fate"] != "same") return move["fate"];
    return Digits(100 * std::max(std::fabs(NumberAt(move, "narrowerArea") / area - 1),
                                 std::fabs(NumberAt(move, "widerArea") / area - 1)),
                  2);
}

std::string ParticleTable(const Json& m, const std::vector<size_t>& shown) {
    std::vector<TableColumn> columns;  // those that were measured
    for (const TableColumn& column : kTableColumns)
        if (std::ranges::any_of(m["particles"],
                                [&](const Json& particle) { return !Member(particle, column.path).is_null(); }))
            columns.push_back(column);
    std::string out = "<div class='list'><table id='particles'>\n<thead><tr>";
    const auto head = [&](const TableColumn& column) {
        out += std::string("<th class='n' title='") + column.hint + "'>" + column.title + "</th>";
    };
    const bool trust = !m["trust"].is_null();
    for (const TableColumn& column : columns) head(column);
    if (trust)
        for (const TableColumn& column : kTrustColumns) head(column);
    out += "</tr></thead>\n<tbody>\n";
    for (const size_t i : shown) {
        const Json& particle = m["particles"][i];
        out += "<tr id='r" + particle["number"].dump() + "'>";
        for (const TableColumn& column : columns) {
            const double value = NumberAt(particle, column.path);
            out += "<td class='n'>" + (value == std::floor(value) ? Rounded(value, 0) : Digits(value, 4)) + "</td>";
        }
        if (trust)
            for (const TableColumn& column : kTrustColumns)
                out +=
                    "<td class='n'>" + ChangeText(Member(particle, column.path), NumberAt(particle, "area")) + "</td>";
        out += "</tr>\n";
    }
    return out + "</tbody></table></div>\n";
}

std::string UnitOf(const Json& unit) { return unit == "pixel" ? "pixels" : unit.is_null() ? "" : "µm"; }
std::string PerArea(const Json& number) { return number["unit"] == "1/mm2" ? "per mm²" : "per megapixel"; }
std::string SizeText(const Json& sizes, const char* name) { return Digits(NumberAt(sizes, name), 4); }

std::string SizesTable(const Json& diameter, const std::string& unit) {
    std::string out = "<table>\n<tr><th>Diameter, " + unit +
                      "</th><th class='n'>d10</th><th class='n'>d50</th><th class='n'>d90</th><th "
                      "class='n'>Mean</th></tr>\n";
    for (const auto& [title, name] : {std::pair{"by number", "byNumber"}, {"by area", "byArea"}}) {
        out += std::string("<tr><td>") + title + "</td>";
        for (const char* size : {"d10", "d50", "d90", "mean"})
            out += "<td class='n'>" + SizeText(diameter[name], size) + "</td>";
        out += "</tr>\n";
    }
    return out + "</table>\n";
}

std::string SizesSection(const std::vector<const Json*>& particles, const Json& diameter, const std::string& unit) {
    if (particles.empty()) return {};
    return "<section><h2>Size distribution</h2>\n" + SizePlot(particles, unit) +
           "<div class='sub' style='font-size:13px;margin-bottom:10px'><span class='key' "
           "style='background:var(--fill)'></span>by number &nbsp; <span class='key' "
           "style='background:var(--phase)'></span>by area; lines: share of what is smaller</div>\n" +
           SizesTable(diameter, unit) + "</section>\n";
}

// The figures with the threshold where it is, and moved.
std::string TrustSection(const Json& m, const std::string& unit) {
    const Json &trust = m["trust"], &summary = m["particleSummary"];
    if (trust.is_null()) return {};
    struct Column {
        std::string title;
        const Json* figures;
    };
    std::vector<Column> columns;
    const auto add = [&](const char* move, const char* phase, const char* sign) {
        const Json& of = trust[move];
        if (!of.is_null()) columns.push_back({sign + Number(NumberAt(of, "shift")), &of[phase]});
    };
    add("valley", "narrower", "− ");
    add("oneLevel", "narrower", "− ");
    columns.push_back({"the level", nullptr});
    add("oneLevel", "wider", "+ ");
    add("valley", "wider", "+ ");
    std::string out = "<section class='scroll'><h2>How far the numbers can be trusted</h2>\n<table>\n<tr><th></th>";
    for (const Column& column : columns) out += "<th class='n'>" + column.title + "</th>";
    out += "</tr>\n";
    const std::string square = unit == "µm" ? "µm²" : unit;
    for (const auto& [title, figure, path] : {std::array<std::string, 3>{"Particles", "count", "count"},
                                              {"Area, " + square, "area", "area"},
                                              {"d50 by number, " + unit, "d50ByNumber", "diameter.byNumber.d50"},
                                              {"d50 by area, " + unit, "d50ByArea", "diameter.byArea.d50"}}) {
        out += "<tr><td>" + title + "</td>";
        const double base = NumberAt(summary, path);
        for (const Column& column : columns) {
            const double value = column.figures ? NumberAt(*column.figures, figure) : base;
            out += "<td class='n'>" + (figure == "count" ? Plain(value) : Digits(value, 4));
            if (column.figures && base > 0 && !std::isnan(value)) {
                const double change = 100 * (value / base - 1);
                out += std::string("<br><small>") + (change > 0 ? "+" : "") + Digits(change, 2) + " %</small>";
            }
            out += "</td>";
        }
        out += "</tr>\n";
    }
    out +=
        "</table>\n<div class='sub' style='font-size:13px;margin-top:7px'>All steps again with a phase that is wider "
        "(+) or narrower (−) by so many grey levels";
    const auto fates = [&](const char* move) {
        std::string text;
        for (const auto& [fate, past] : {std::pair{"splits", "split"}, {"merges", "merged"}, {"vanishes", "vanished"}})
            if (const double count = NumberAt(trust[move]["particles"], fate); count > 0)
                text += (text.empty() ? "" : ", ") + Plain(count) + " " + past;
        return text.empty() ? std::string("none split, merged or vanished") : text;
    };
    out += ": by " + Number(NumberAt(trust, "oneLevel.shift")) + " (" + fates("oneLevel") + ")";
    if (trust["valley"].is_null())
        out += "; " + trust["noValley"].get<std::string>();
    else
        out += " and by half the width of the histogram's valley, " + Digits(NumberAt(trust, "valley.left"), 4) +
               " to " + Digits(NumberAt(trust, "valley.right"), 4) + " (" + fates("valley") + ")";
    return out + ".</div></section>\n";
}

std::string StepsText(const Json& steps) {
    std::string out;
    for (const Json& step : steps) {
        out += (out.empty() ? "" : " → ") + step["step"].get<std::string>();
        for (const auto& [name, value] : step.items())
            if (name != "step" && !value.is_null())
                out += " <small>" + Escaped(name) + "</small> " +
                       (value.is_string() ? Escaped(value.get<std::string>()) : Number(value.get<double>()));
    }
    return out;
}

std::vector<const Json*> Pointers(const Json& particles) {
    std::vector<const Json*> out;
    for (const Json& particle : particles) out.push_back(&particle);
    return out;
}

}  // namespace

std::string ParticleReport(const Json& m, const ComPtr<IBlobs>& blobs, const std::string& version,
                           const std::string& imageUri) {
    const std::string name = m["file"], unit = UnitOf(m["unit"]);
    const Json &summary = m["particleSummary"], &number = summary["numberPerArea"];
    const Json &byNumber = summary["diameter"]["byNumber"], &byArea = summary["diameter"]["byArea"];
    const std::vector<size_t> shown = Shown(m["particles"]);
    std::string body = kParticleStyle;
    body += "<header><h1>" + Escaped(name) + "</h1><div class='sub'>" + Plain(NumberAt(m, "width")) + " × " +
            Plain(NumberAt(m, "height")) + " pixels, " + Escaped(m["type"].get<std::string>()) + ", " + Calibration(m) +
            "</div></header>\n<div class='cards'>\n";
    const bool excluded = m["steps"].back()["step"] == "border";
    body += Card(Grouped(Plain(NumberAt(summary, "count"))),
                 "particles; " + Plain(NumberAt(summary, "atBorder")) +
                     (excluded ? " more cut by the border" : " of them cut by the border"),
                 true);
    body += Card(Digits(NumberAt(number, "value"), 4),
                 PerArea(number) + "; 95 %: " + Digits(NumberAt(number, "lower"), 3) + " to " +
                     Digits(NumberAt(number, "upper"), 3) +
                     "; counting rule: " + Plain(NumberAt(summary, "counting.counted")));
    body += Card(SizeText(byNumber, "d50") + " " + unit,
                 "median diameter by number; " + SizeText(byNumber, "d10") + " to " + SizeText(byNumber, "d90"));
    body += Card(SizeText(byArea, "d50") + " " + unit,
                 "median diameter by area; " + SizeText(byArea, "d10") + " to " + SizeText(byArea, "d90"));
    body += Card(Percent(NumberAt(summary, "areaFraction")), "area fraction of the particles");
    body += "</div>\n" + WarningsSection(m);
    body +=
        "<section>" + ParticleMap(m, blobs, shown, imageUri) +
        "<div class='sub' style='font-size:13px;margin-top:7px'>Click a particle to find its row.</div></section>\n";
    body +=
        "<section><h2>Particles</h2>\n" + ParticleTable(m, shown) +
        "<div class='sub' style='font-size:13px;margin-top:7px'>Click a row to find the particle, a column to sort. "
        "Lengths in " +
        unit + ", areas in " + (unit == "µm" ? "µm²" : "pixels") + ", positions in pixels." +
        (shown.size() < m["particles"].size()
             ? " The " + std::to_string(shown.size()) + " largest; particles.csv has all."
             : "") +
        "</div></section>\n";
    body += SizesSection(Pointers(m["particles"]), summary["diameter"], unit);
    body += TrustSection(m, unit);
    body += "<section><h2>Histogram and threshold</h2>\n" + HistogramPlot(m) + "</section>\n";
    body += "<section><h2>How it was found</h2>\n<table>\n";
    body += Row("Steps", StepsText(m["steps"]));
    body += Row("Region", RegionText(m));
    body += Row("Counting rule", Escaped(Member(summary, "counting.rule").get<std::string>()));
    body += Row("Edge correction of sizes", Member(summary, "edgeCorrection").is_null()
                                                ? "none"
                                                : Escaped(summary["edgeCorrection"].get<std::string>()));
    body += "</table></section>\n";
    body += kParticleScript;
    return Page(name, body, version);
}

std::string ParticleBatchReport(const std::vector<ParticleEntry>& entries, const Json& summary,
                                const std::string& version) {
    const std::string unit = UnitOf(summary["unit"]);
    std::string body = "<header><h1>Particles in " + Plain(NumberAt(summary, "measured")) +
                       " images</h1><div class='sub'>" + Plain(NumberAt(summary, "failed")) +
                       " failed</div></header>\n<div class='cards'>\n";
    body += Card(Grouped(Plain(NumberAt(summary, "particles"))), "particles", true);
    if (const Json& number = summary["numberPerArea"]; !number.is_null())
        body += Card(Digits(NumberAt(number, "mean"), 4),
                     PerArea(number) + "; ± " + Digits(NumberAt(number, "confidence95"), 3) +
                         " (95 % confidence); deviation " + Digits(NumberAt(number, "standardDeviation"), 3));
    std::vector<const Json*> particles;
    if (!summary["diameter"].is_null()) {
        for (const ParticleEntry& entry : entries)
            if (entry.document.contains("particles"))
                for (const Json& particle : entry.document["particles"]) particles.push_back(&particle);
        for (const auto& [title, name] : {std::pair{"number", "byNumber"}, {"area", "byArea"}}) {
            const Json& sizes = summary["diameter"][name];
            body +=
                Card(SizeText(sizes, "d50") + " " + unit, std::string("median diameter by ") + title + "; " +
                                                              SizeText(sizes, "d10") + " to " + SizeText(sizes, "d90"));
        }
    }
    body += "</div>\n" + WarningsSection(summary) + SizesSection(particles, summary["diameter"], unit);
    body +=
        "<section class='scroll'><table class='batch'>\n<tr><th>Particles</th><th>Image</th><th "
        "class='n'>Count</th><th class='n'>Number per area</th><th class='n'>d50 by number</th><th class='n'>d50 by "
        "area</th><th class='n'>Area fraction</th></tr>\n";
    for (const ParticleEntry& entry : entries) {
        const Json& m = entry.document;
        const std::string name = Escaped(m["file"].get<std::string>());
        if (m.contains("error")) {
            body += "<tr><td></td><td>" + name + "</td><td colspan='5' class='error'>" +
                    Escaped(m["error"].get<std::string>()) + "</td></tr>\n";
            continue;
        }
        const Json &of = m["particleSummary"], &number = of["numberPerArea"];
        const std::string lengths = " " + UnitOf(m["unit"]);
        body += "<tr><td class='thumb'><img alt='' src='" + entry.overlayUri + "'></td><td>";
        body += entry.reportName.empty() ? name : "<a " + Href(entry.reportName) + ">" + name + "</a>";
        body += "<br><small class='sub'>" + Plain(NumberAt(m, "width")) + " × " + Plain(NumberAt(m, "height")) + ", " +
                Calibration(m) + "</small>" + WarningsCell(m) + "</td><td class='n'>" + Plain(NumberAt(of, "count")) +
                "</td><td class='n'>" + Digits(NumberAt(number, "value"), 4) + " " + PerArea(number) + "<br><small>" +
                Digits(NumberAt(number, "lower"), 3) + " to " + Digits(NumberAt(number, "upper"), 3) +
                "</small></td><td class='n'>" + SizeText(of["diameter"]["byNumber"], "d50") + lengths +
                "</td><td class='n'>" + SizeText(of["diameter"]["byArea"], "d50") + lengths + "</td><td class='n'>" +
                Percent(NumberAt(of, "areaFraction")) + "</td></tr>\n";
    }
    body += "</table></section>\n";
    return Page("Particles", body, version);
}

}  // namespace tool
