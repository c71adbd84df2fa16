#include "html_page.hpp"

#include <algorithm>
#include <cmath>

namespace tool {

namespace {

constexpr char kStyle[] = R"(
:root{color-scheme:light dark;--page:#f4f5f7;--card:#fff;--ink:#1c2430;--muted:#66707f;--grid:#e3e6eb;--fill:#8793a5;
--phase:#f06400;--accent:#c24d00;--line:#e3e6eb;--soft:#fff4ec;--region:#00a3d4}
@media(prefers-color-scheme:dark){:root{--page:#14171c;--card:#1d2229;--ink:#e6e9ee;--muted:#98a2b1;--grid:#2f3640;
--fill:#7b8798;--phase:#ff7a1f;--accent:#ff9447;--line:#2f3640;--soft:#2b2420;--region:#2cc4f2}}
*{box-sizing:border-box}
body{margin:0;background:var(--page);color:var(--ink);
font:15px/1.5 system-ui,-apple-system,"Segoe UI",Roboto,"Helvetica Neue",
Arial,"Liberation Sans",sans-serif}
main{max-width:1120px;margin:0 auto;padding:28px 24px 48px}
header{display:flex;flex-wrap:wrap;gap:4px 24px;align-items:baseline;justify-content:space-between;margin-bottom:16px}
h1{font-size:25px;line-height:1.25;margin:0;font-weight:650;overflow-wrap:anywhere}
h2{font-size:16px;margin:0 0 12px;font-weight:650}
.sub{color:var(--muted)}
.cards{display:grid;grid-template-columns:repeat(auto-fit,minmax(180px,1fr));gap:14px;margin:0 0 16px}
.card,section{background:var(--card);border:1px solid var(--line);border-radius:10px}
.card{padding:13px 16px}
.card b{display:block;white-space:nowrap;
font-size:20px;line-height:1.3;font-weight:650;font-variant-numeric:tabular-nums}
.card span{color:var(--muted);font-size:13px}
.card.main{border-color:var(--phase);background:var(--soft)}
.card.main b{color:var(--accent)}
section{padding:18px 20px;margin:0 0 16px}
.pictures{display:grid;grid-template-columns:1fr 1fr;gap:16px}
figure{margin:0}
figure img{display:block;width:100%;height:auto;border-radius:6px;border:1px solid var(--line);background:#000}
figcaption{color:var(--muted);font-size:13px;margin-top:7px}
.key{display:inline-block;width:11px;height:11px;border-radius:3px;margin-right:6px;vertical-align:-1px}
svg.histogram,svg.profile,svg.map{display:block;width:100%;height:auto}
svg text{fill:var(--ink);
font:12.5px system-ui,-apple-system,"Segoe UI",Roboto,"Helvetica Neue",Arial,"Liberation Sans",sans-serif}
svg .tick,svg .axis{fill:var(--muted);font-size:12px}
svg .chosen{fill:var(--accent);font-weight:700}
table{border-collapse:collapse;width:100%;font-variant-numeric:tabular-nums}
th,td{padding:6px 10px;border-bottom:1px solid var(--line);text-align:left;vertical-align:top}
th{color:var(--muted);font-size:13px;font-weight:600}
tr:last-child td,tr:last-child th[scope=row]{border-bottom:0}
td.n,th.n{text-align:right;white-space:nowrap}
tr.chosen td{background:var(--soft);font-weight:650}
tr.chosen td:first-child{box-shadow:inset 3px 0 var(--phase)}
td small{color:var(--muted);font-weight:400;font-size:13px}
.two{display:grid;grid-template-columns:1fr 1fr;gap:0 40px;align-items:start}
.two th{width:50%}
.bar{position:relative;height:8px;
border-radius:4px;background:var(--grid);min-width:90px;margin-top:8px;overflow:hidden}
.bar i{position:absolute;inset:0 auto 0 0;background:var(--phase)}
.thumb img{width:96px;border-radius:4px;display:block}
.batch td{vertical-align:middle}
.error{color:#c62828}
section.warnings{border-color:#d9a400}
.warnings ul{margin:0;padding-left:20px}
td small.warning{color:#a87400}
a{color:var(--accent)}
footer{color:var(--muted);font-size:13px}
.scroll{overflow-x:auto}
@media(max-width:760px){.pictures,.two{grid-template-columns:1fr}main{padding:18px 12px}}
@media print{:root{
--page:#fff;--card:#fff;--ink:#000;--muted:#444;--grid:#ddd;--fill:#8a8f98;--phase:#f06400;--accent:#a64200;
--line:#ccc;--soft:#fff;color-scheme:light}
body{font-size:11px;print-color-adjust:exact;-webkit-print-color-adjust:exact}
main{max-width:none;padding:0}section,.card,figure,tr{break-inside:avoid}section{padding:10px 12px;margin-bottom:10px}
.card b{font-size:18px}h1{font-size:19px}@page{margin:14mm}}
)";

}  // namespace

std::string Page(const std::string& title, const std::string& body, const std::string& version) {
    return "<!DOCTYPE html>\n<html lang='en'>\n<head>\n<meta charset='utf-8'>\n"
           "<meta name='viewport' content='width=device-width,initial-scale=1'>\n<meta name='generator' "
           "content='Orlix " +
           Escaped(version) + "'>\n<title>" + Escaped(title) + "</title>\n<style>" + kStyle +
           "</style>\n</head>\n<body>\n<main>\n" + body + "<footer>Measured with Orlix " + Escaped(version) +
           "</footer>\n</main>\n</body>\n</html>\n";
}

std::string Href(std::string_view file) {
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string out = "href='";
    for (const char c : file) {
        const auto byte = static_cast<unsigned char>(c);
        if (kPlain.find(c) != std::string_view::npos)
            out += c;
        else
            out += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return out + "'";
}

// About five significant digits; no decimals for numbers that large.
std::string Significant(double value) {
    const double size = std::fabs(value);
    if (size != 0 && (size < 1e-4 || size >= 1e12)) return Number(value);
    return Rounded(value, size >= 10000 || size == 0 ? (value == std::floor(value) ? 0 : 1)
                          : size >= 100              ? 2
                          : size >= 1                ? 3
                                                     : 5);
}

std::string Plain(double value) { return value == std::floor(value) ? Rounded(value, 0) : Significant(value); }

// 1 234 567: narrow blanks between groups of three.
std::string Grouped(const std::string& digits) {
    const size_t end = std::min(digits.find('.'), digits.size());
    std::string out = digits.substr(end);
    for (size_t i = end; i > 0; i -= std::min<size_t>(i, 3)) {
        const size_t start = i > 3 ? i - 3 : 0;
        out = digits.substr(start, i - start) + (out.empty() || i == end ? "" : "\u202f") + out;
    }
    return out;
}

std::string Percent(double fraction) { return Rounded(100 * fraction, 2) + "\u202f%"; }

std::string SquareMicrons(double area) {
    return area >= 1e6 ? Significant(area / 1e6) + " mm²" : Grouped(Significant(area)) + " µm²";
}

std::string Card(const std::string& value, const std::string& caption, bool main) {
    return std::string("<div class='card") + (main ? " main" : "") + "'><b>" + value + "</b><span>" + caption +
           "</span></div>\n";
}

std::string Row(const std::string& name, const std::string& value) {
    return "<tr><th scope='row'>" + name + "</th><td class='n'>" + value + "</td></tr>\n";
}

std::string Calibration(const Json& m) {
    if (Member(m, "micronsPerPixel").is_null()) return "not calibrated";
    const double x = NumberAt(m, "micronsPerPixel.x"), y = NumberAt(m, "micronsPerPixel.y");
    const auto shown = [](double size) {  // without trailing zeros
        std::string text = Significant(size);
        if (text.find('.') != std::string::npos && text.find('e') == std::string::npos)
            text.erase(std::max(text.find_last_not_of('0'), text.find('.') + 1) + 1);
        return text;
    };
    return shown(x) + (x == y ? std::string() : " × " + shown(y)) + " µm per pixel";
}

std::string RegionText(const Json& m) {
    const std::string shape = Member(m, "region.shape"), polarity = Member(m, "region.polarity");
    return Escaped(shape) + (polarity == "inside" ? "" : ", " + polarity) +
           (NumberAt(m, "region.pixelsLeftOut") > 0 ? " less what is masked or ignored" : "");
}

std::string PixelsText(const Json& m) {
    const double out = NumberAt(m, "region.pixelsLeftOut");
    return Grouped(Plain(NumberAt(m, "region.pixels"))) + (out > 0 ? ", left out: " + Grouped(Plain(out)) : "");
}

std::string BandsText(const Json& m, const char* measured) {
    const Json& band = m["band"];
    std::string out = Plain(NumberAt(m, "bands"));
    if (NumberAt(m, "bands") > 1)
        out += std::string(", ") + measured + ": " + (band.is_string() ? "grey of all" : Plain(NumberAt(m, "band")));
    return out;
}

}  // namespace tool
