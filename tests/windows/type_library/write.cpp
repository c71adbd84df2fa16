// Writes what the type library of a module says into types.txt, which keeps it:
//
//     write_type_library MODULE FOLDER
//
// scripts/type-library runs it.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

#include "windows/type_library/description.hpp"

int main(int argc, char** argv) try {
    using namespace orlix;
    if (argc != 3) throw std::invalid_argument("usage: write_type_library MODULE FOLDER");
    const Apartment apartment;
    ComPtr<ITypeLib> library;
    Check(LoadTypeLibEx(std::filesystem::path(argv[1]).c_str(), REGKIND_NONE, library.Out()));
    std::ofstream file;
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file.open(std::filesystem::path(argv[2]) / "types.txt", std::ios::binary);
    file << testing::Describe(library);
    file.close();
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
