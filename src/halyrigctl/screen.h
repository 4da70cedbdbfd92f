// The picture that watch draws: the published channels as a table, and the remotes as the displays on the mast.
#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/console.h"

namespace twr {

// --- Texts in the cells of a screen. A width is a number of characters; texts are UTF-8 without escape sequences. ---

std::size_t WidthOf(std::string_view text);

// The text's first characters, as many as `width` allows.
std::string Cut(std::string_view text, std::size_t width);

// With blanks around it up to `width`; a wider text stays as it is.
std::string Padded(const std::string& text, std::size_t width);
std::string PaddedLeft(const std::string& text, std::size_t width);
std::string Centred(const std::string& text, std::size_t width);

// Exactly `width` wide.
std::string Fitted(std::string_view text, std::size_t width);

// --- The picture ---

inline constexpr const char* kClearScreen = "\x1b[2J";

struct RemoteLine {
    int number;
    std::string value, name;
};

struct ChannelLine {
    unsigned id;
    std::string name, text, unit;  // UTF-8
    double age;                    // seconds
    bool fresh;                    // a line that isn't is dimmed
};

// For a terminal of this size: redraws it from its top, with as much as fits and the number of what doesn't. The displays are on
// the right of the table, or below it in a narrow window. Without a size: plain text, one line each.
std::string DrawScreen(const std::vector<ChannelLine>& channels, const std::vector<RemoteLine>& remotes,
                       std::optional<ConsoleSize> size);

}  // namespace twr
