// The picture that watch draws: the published channels as a table, and the remotes as the displays on the mast.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "platform/console.h"

namespace twr {

struct ChannelLine {
    unsigned id;
    std::string name, text, unit;  // UTF-8
    double age;                    // seconds
    bool fresh;                    // a line that isn't is dimmed
};

struct RemoteLine {
    int number;
    std::string value, name;
};

// For a terminal of this size: redraws it from its top, the displays on the right of the table, with as many lines as fit. Without
// a size: plain text, one line each.
std::string DrawScreen(const std::vector<ChannelLine>& channels, const std::vector<RemoteLine>& remotes,
                       std::optional<ConsoleSize> size);

}  // namespace twr
