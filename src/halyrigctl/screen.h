// The picture that watch draws: the published channels as a table, and the remotes as the displays on the mast.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "halyrigctl/display_block.h"
#include "platform/console.h"

namespace twr {

struct ChannelLine {
    unsigned id;
    std::string name, text, unit;  // UTF-8
    double age;                    // seconds
    bool fresh;                    // a line that isn't is dimmed
};

// For a terminal of this size: redraws it from its top, with as much as fits and a word on what doesn't. The displays stand on the
// right of the table, or below it in a narrow window. Without a size: plain text, one line each.
std::string DrawScreen(const std::vector<ChannelLine>& channels, const std::vector<RemoteLine>& remotes,
                       std::optional<ConsoleSize> size);

}  // namespace twr
