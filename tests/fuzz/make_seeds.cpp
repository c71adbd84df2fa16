// make_seeds FOLDER FORMAT: writes the seeds of a format (png, bmp, pnm, tiff, jpeg, stream) into a folder.
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "files/corpus.hpp"

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: make_seeds FOLDER png|bmp|pnm|tiff|jpeg|stream\n");
        return 2;
    }
    const std::filesystem::path folder = arguments[1];
    const std::string prefix = std::string(arguments[2]) + "-";
    std::filesystem::create_directories(folder);
    int written = 0;
    std::vector<orlix::test::Seed> seeds = orlix::test::MakeSeeds();
    for (auto& seed : orlix::test::MakeStreamSeeds()) seeds.push_back(std::move(seed));
    for (const auto& seed : seeds) {
        if (seed.name.compare(0, prefix.size(), prefix) != 0) continue;
        std::ofstream file(folder / seed.name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(seed.bytes.data()), static_cast<std::streamsize>(seed.bytes.size()));
        if (!file.flush()) {
            std::perror(seed.name.c_str());
            return 1;
        }
        ++written;
    }
    std::printf("%d seeds in %s\n", written, folder.string().c_str());
    return written == 0;
}
