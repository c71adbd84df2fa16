#include <cstdio>
#include <orlix/client.hpp>

// Status 0 when an object of the installed library does what it should.
int main() try {
    using namespace orlix;
#ifdef _WIN32
    Check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
#endif
    const auto bitmap = CreateObject<IBitmap>("Orlix.Bitmap");
    Check(bitmap->Create(40, 30, 1), bitmap);
    Check(bitmap->put_Bit(39, 29, 1), bitmap);
    LONG bit = 0;
    Check(bitmap->get_Bit(39, 29, &bit), bitmap);
    return bit == 1 ? 0 : 1;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
