// Affine maps between coordinates; see TCoordinateMap in the interface description.
#pragma once

#include <orlix/orlix.h>

namespace orlix {

inline constexpr TCoordinateMap kIdentityMap = {0, 0, {1, 0, 0, 1}};

}  // namespace orlix
