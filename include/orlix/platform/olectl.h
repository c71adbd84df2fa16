// Stand-in for the system's header of this name: see component_abi.h.
#include "component_abi.h"
