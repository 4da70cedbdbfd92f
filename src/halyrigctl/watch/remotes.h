// What the remotes show, as far as another process can know it: those of the stand-in for Deckman, not the displays on a mast.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "platform/shared_memory.h"

namespace twr {

struct RemoteLine {
    int number;
    std::string value, name;  // UTF-8
};

// The texts sent to the stand-in in this folder; none with the real Deckman.
std::vector<RemoteLine> ReadRemotes(SharedMemory& memory, std::u16string_view dfwFolder);

}  // namespace twr
