#include <cstdio>
#include <orlix/measure.hpp>

#if !defined(_WIN32) && (defined(interface) || __has_include(<windows.h>))
#error "the library's headers bring what is Windows's own"
#endif

// Status 0 when objects of the library do what they should, and say what they cannot.
int main() try {
    using namespace orlix;
    const Apartment apartment;
    const auto bitmap = CreateObject<IBitmap>("Orlix.Bitmap");
    Check(bitmap->Create(40, 30, 1), bitmap);
    Check(bitmap->put_Bit(39, 29, 1), bitmap);
    LONG bit = 0;
    Check(bitmap->get_Bit(39, 29, &bit), bitmap);
    if (bit != 1 || MeasureBitmap(bitmap).pixelCount != 1) return 1;
    try {
        const auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
        Check(image->CreateFromFile(Text("missing.png")), image);
    } catch (const Error& error) {
        return error.source() == "Orlix.Image.1" && !error.message().empty() ? 0 : 2;
    }
    return 3;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 4;
}
