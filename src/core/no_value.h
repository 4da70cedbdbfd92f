// The sentinel of the core's values. The tables of calibration, which know nothing of the core, use the same one.
#pragma once
#include "calibration/no_value.h"  // IWYU pragma: export
