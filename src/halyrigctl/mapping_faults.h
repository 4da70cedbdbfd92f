// What the bridge passes over in the user's mapping file, in words.
#pragma once
#include <string>

#include "core/core.h"
#include "status/bridge_status.h"

namespace twr {

// Reads the mapping as the bridge does, and writes nothing. The first line that is passed over, with what to do, and the number of
// further ones; empty if there is none.
std::string MappingFaults(const CoreServices& services, const CoreRecord& record, const BridgeStatus& bridge);

}  // namespace twr
