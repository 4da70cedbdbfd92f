// Where Wine's stand-in for a part of Windows is known to fall short of it.
#pragma once

namespace twr::testing {

bool UnderWine();

}  // namespace twr::testing
