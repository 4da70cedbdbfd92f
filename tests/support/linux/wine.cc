#include "support/wine.h"

namespace twr::testing {

bool UnderWine() { return false; }

}  // namespace twr::testing
