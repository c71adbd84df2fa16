#include "orlix_image/settings.hpp"

#include <cstring>

#include "process/frame.hpp"

namespace orlix {

ImageSettings SettingsOf(DisplayedImage& image) {
    ImageSettings settings;
    WithFrame(image.typed(), [&](auto& frame) {
        settings.luminanceLower = static_cast<double>(frame.settings().lower());
        settings.luminanceUpper = static_cast<double>(frame.settings().upper());
        settings.numberOfBins = frame.settings().bins();
    });
    settings.bandToProcess = image.typed().bandToProcess();
    const DisplayState& display = image.displayState();
    settings.bandToDisplay = display.band;
    settings.displayLower = display.lower;
    settings.displayUpper = display.upper;
    static_assert(sizeof display.colors == sizeof settings.palette);
    std::memcpy(settings.palette.data(), &display.colors, sizeof settings.palette);
    const CarriedSetting& carried = display.carried;
    static_assert(sizeof carried.number + sizeof carried.values == sizeof settings.displaySetting);
    std::memcpy(settings.displaySetting.data(), &carried.number, sizeof carried.number);
    std::memcpy(settings.displaySetting.data() + sizeof carried.number, carried.values, sizeof carried.values);
    return settings;
}

void PutSettings(const ImageSettings& settings, DisplayedImage& image) {
    WithFrame(image.typed(), [&](auto& frame) {
        frame.PutNumberOfBins(settings.numberOfBins);
        frame.PutLuminanceRange(settings.luminanceLower, settings.luminanceUpper);
    });
    image.typed().PutBandToProcess(settings.bandToProcess);
    DisplayState display;
    display.band = settings.bandToDisplay;
    display.lower = settings.displayLower;
    display.upper = settings.displayUpper;
    std::memcpy(&display.colors, settings.palette.data(), sizeof display.colors);
    CarriedSetting& carried = display.carried;
    std::memcpy(&carried.number, settings.displaySetting.data(), sizeof carried.number);
    std::memcpy(carried.values, settings.displaySetting.data() + sizeof carried.number, sizeof carried.values);
    image.PutDisplayState(display);
}

}  // namespace orlix
