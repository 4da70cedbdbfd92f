// Parts of Windows that Wine is known to implement incompletely.
#pragma once

namespace twr::testing {

bool UnderWine();

}  // namespace twr::testing
