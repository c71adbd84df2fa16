// Small image files of every kind, to start fuzzers from.
#pragma once

#include <string>
#include <vector>

#include "files/hand_made.hpp"

namespace orlix::test {

struct Seed {
    std::string name;  // a file name: png-..., bmp-..., pnm-...
    Bytes bytes;
};
std::vector<Seed> MakeSeeds();

}  // namespace orlix::test
