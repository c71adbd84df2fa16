// The creatable classes as clients know them, written out once more.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace orlix::testing {

struct ClassFacts {
    const char* coclass;
    const char* clsid;
    const char* progId;  // without the version
    int script;
    bool built = false;
};

inline constexpr ClassFacts kClassFacts[] = {
    {"OrlixPolygon", "{E0AF5E0B-FB80-4687-B204-943EBC39CFF8}", "Orlix.Polygon", 101, true},
    {"OrlixHistogram", "{9CC2D5EE-E548-46B4-86D0-6D11326DA63F}", "Orlix.Histogram", 102, true},
    {"OrlixBitmap", "{5FDD9A2B-F56C-4C60-8009-CC17CB4A1AF0}", "Orlix.Bitmap", 103, true},
    {"OrlixImage", "{AA7A9966-C648-40D2-8BC7-8D5367631BCE}", "Orlix.Image", 104, true},
    {"OrlixStructuringElement", "{0A872D7F-8E99-44D0-91CF-E008F8FB3092}", "orlix.StructuringElement", 105, true},
    {"OrlixLineGraphicOverlay", "{31A46664-0854-4433-88AA-EB0F8CEE1204}", "Orlix.LineGraphicOverlay", 106},
    {"OrlixCircleGraphicOverlay", "{CEC08100-A391-41C1-8FB8-D300572684FD}", "Orlix.CircleGraphicOverlay", 109},
    {"OrlixBuffer", "{BC38C191-D432-4762-B996-3D15755DA2FD}", "Orlix.OrlixBuffer", 110, true},
    {"OrlixSplineImage", "{DB2CB075-8206-40E3-8FCA-CFC5003943D6}", "Orlix.SplineImage", 111},
    {"OrlixShapeRegionOfInterest", "{BC786B12-4454-4230-86D9-B49519E208BF}", "Orlix.ShapeRegionOfInterest", 113, true},
    {"OrlixVBHelper", "{D591CC7C-7192-4253-8485-458FEE38FE75}", "Orlix.VBHelper", 114, true},
    {"OrlixImageView", "{C35E3781-66F8-4DEE-B487-451882355339}", "Orlix.ImageView", 116},
    {"OrlixTextGraphicOverlay", "{D51CC6A3-98FA-44AE-9505-778148FED93C}", "Orlix.TextGraphicOverlay", 117},
    {"OrlixHistogramDialog", "{BC6A61F4-18F5-48FE-BA43-C9B34EB702B0}", "Orlix.HistogramDialog", 120},
};

inline constexpr const char* kTypeLibraryId = "{9DE17042-4E68-4807-B2EE-9607EC37664C}";

// What the classes' root of the registry holds for the class, in the form of ListRegistry (registry_listing.hpp).
inline std::vector<std::string> RegisteredLines(const ClassFacts& facts, const std::string& modulePath) {
    const std::string name = facts.progId, versioned = name + ".1", id = std::string("CLSID\\") + facts.clsid;
    const std::string title = name.substr(name.find('.') + 1) + " Class";
    const bool isView = title == "ImageView Class";
    const std::string progIdText = isView ? "ImageView" : title;
    std::vector<std::pair<std::string, std::string>> keys = {
        {versioned, progIdText},
        {versioned + "\\CLSID", facts.clsid},
        {name, progIdText},
        {name + "\\CLSID", facts.clsid},
        {name + "\\CurVer", versioned},
        {id, title},
        {id + "\\ProgID", versioned},
        {id + "\\VersionIndependentProgID", name},
        {id + "\\InprocServer32", modulePath},
        {id + "\\TypeLib", kTypeLibraryId},
    };
    if (isView) {
        for (const char* mark : {"\\Programmable", "\\Control", "\\Insertable", "\\verb"})
            keys.emplace_back(id + mark, "");
        keys.insert(keys.end(), {{versioned + "\\Insertable", ""},
                                 {id + "\\ToolboxBitmap32", modulePath + ", 115"},
                                 {id + "\\MiscStatus", "0"},
                                 {id + "\\MiscStatus\\1", "131473"},
                                 {id + "\\Version", "1.0"},
                                 {id + "\\verb\\0", "&Load Image...,0,2"}});
    }
    std::vector<std::string> lines = {id + "\\InprocServer32 : ThreadingModel = Apartment"};
    for (const auto& [key, value] : keys) {
        lines.push_back(key);
        if (!value.empty()) lines.push_back(key + " = " + value);
    }
    return lines;
}

// And what it holds for all of them, in alphabetical order.
inline std::vector<std::string> AllRegisteredLines(const std::string& modulePath) {
    std::vector<std::string> all = {"CLSID"};
    for (const ClassFacts& facts : kClassFacts)
        for (const std::string& line : RegisteredLines(facts, modulePath)) all.push_back(line);
    std::sort(all.begin(), all.end());
    return all;
}

}  // namespace orlix::testing
