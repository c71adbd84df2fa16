#include "points/casting.hpp"

#include "points/casting_kernels.hpp"

namespace orlix {

template <class To, class From>
CastOperation<To, From>::CastOperation() : apply_(Choose(kCast<To, From>)) {}
template <class To, class From>
PlusOperation<To, From>::PlusOperation() : apply_(Choose(kPlus<To, From>)) {}

#define ORLIX_PAIR(To, From)                \
    template class CastOperation<To, From>; \
    template class PlusOperation<To, From>;
#define ORLIX_PAIRS(To)      \
    ORLIX_PAIR(To, uint8_t)  \
    ORLIX_PAIR(To, uint16_t) \
    ORLIX_PAIR(To, uint32_t) \
    ORLIX_PAIR(To, float)
ORLIX_PAIRS(uint8_t)
ORLIX_PAIRS(uint16_t)
ORLIX_PAIRS(uint32_t)
ORLIX_PAIRS(float)
#undef ORLIX_PAIRS
#undef ORLIX_PAIR

}  // namespace orlix
