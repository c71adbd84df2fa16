// Which neighbours of a pixel are connected with it.
#pragma once

namespace orlix {

enum class Connectivity {
    Four = 4,   // left, right, above, below
    Eight = 8,  // the diagonal ones as well
};

// The background has the other connectivity, so that a closed curve of either kind separates inside from outside.
constexpr Connectivity Dual(Connectivity c) {
    return c == Connectivity::Four ? Connectivity::Eight : Connectivity::Four;
}

}  // namespace orlix
