// SPDX-License-Identifier: MIT
// The remotes drawn as the displays on the mast.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "platform/console_screen.h"
#include "platform/shared_memory.h"

namespace twr {

struct RemoteLine {
    int number;
    std::string value, name;  // UTF-8
};

// The texts sent to the stand-in in this folder; none with the real Deckman.
std::vector<RemoteLine> ReadRemotes(SharedMemory& memory, std::u16string_view dfwFolder);

struct DisplaysPicture {
    std::vector<ScreenText> texts;  // from row and column 0
    int rows = 0;
};

// Within this size, which is at least 1 by 1: framed displays if all fit, else small ones of one line under a heading, with the
// number of those that are left out.
DisplaysPicture DrawDisplays(const std::vector<RemoteLine>& remotes, ConsoleSize size);

inline constexpr int kSmallDisplayWidth = 20;
inline constexpr int kFramedDisplayWidth = 13;

}  // namespace twr
