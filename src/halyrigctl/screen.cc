#include "halyrigctl/screen.h"

#include <algorithm>
#include <cstdio>

#include "halyrigctl/screen_style.h"
#include "halyrigctl/text_cells.h"

namespace twr {
namespace {

constexpr const char* kHome = "\x1b[H";
constexpr const char* kClearLine = "\x1b[K";
constexpr const char* kClearBelow = "\x1b[J";
constexpr std::size_t kTableWidth = 56;
constexpr std::size_t kGap = 2;
constexpr int kMost = 1000;  // lines and columns: no screen has more, but a terminal may say so

std::string Row(const std::string& id, const std::string& name, const std::string& text, const std::string& unit,
                const std::string& age) {
    const std::string label = Padded(name, 12);  // a user's own can be longer
    const std::size_t room = 32 - std::min<std::size_t>(32, WidthOf(label));
    return PaddedLeft(id, 4) + "  " + label + PaddedLeft(text, room) + " " + Padded(unit, 6) + PaddedLeft(age, 10);
}

std::string Heading() { return Row("id", "channel", "value", "", "age"); }

std::string Row(const ChannelLine& line) {
    char age[32];
    std::snprintf(age, sizeof age, "%.1f s", line.age);
    return Row(std::to_string(line.id), line.name, line.text, line.unit, age);
}

// Exactly `height` lines, at least 2, of `width` characters.
std::vector<std::string> DrawTable(const std::vector<ChannelLine>& channels, std::size_t width, std::size_t height) {
    std::vector<std::string> lines{Fitted(Heading(), width)};
    const std::size_t places = height - 1;
    const std::size_t shown = channels.size() <= places ? channels.size() : places - 1;
    for (std::size_t i = 0; i < shown; ++i) {
        const std::string row = Fitted(Row(channels[i]), width);
        lines.push_back(channels[i].fresh ? row : kDim + row + kPlain);
    }
    if (channels.empty()) lines.push_back(Fitted("Nothing has been published yet.", width));
    if (shown < channels.size()) {
        lines.push_back(
            Fitted("      " + std::to_string(channels.size() - shown) + " more; enlarge the window to see them", width));
    }
    lines.resize(height, std::string(width, ' '));
    return lines;
}

std::string DrawPlain(const std::vector<ChannelLine>& channels, const std::vector<RemoteLine>& remotes) {
    std::string text = Heading() + "\n";
    for (const ChannelLine& line : channels) text += Row(line) + "\n";
    if (channels.empty()) text += "Nothing has been published yet.\n";
    for (const RemoteLine& remote : remotes) {
        text += "remote " + PaddedLeft(std::to_string(remote.number), 2) + "  " + Padded(remote.name, 10) + remote.value + "\n";
    }
    return text + "\n";
}

}  // namespace

std::string DrawScreen(const std::vector<ChannelLine>& channels, const std::vector<RemoteLine>& remotes,
                       std::optional<ConsoleSize> size) {
    if (!size) return DrawPlain(channels, remotes);
    // The last line stays free for the cursor, and the last column since some terminals go to the next line once it is filled.
    const auto height = static_cast<std::size_t>(std::clamp(size->rows - 1, 3, kMost));
    const auto width = static_cast<std::size_t>(std::clamp(size->columns - 1, 1, kMost));
    const bool beside = width >= kTableWidth + kGap + kSmallDisplayWidth;
    const auto displays =
        beside ? DrawDisplays(remotes, width - kTableWidth - kGap, height) : DrawDisplays(remotes, width, height / 2);
    auto lines = DrawTable(channels, std::min(width, kTableWidth), beside ? height : height - displays.size());
    if (beside) {
        for (std::size_t i = 0; i < displays.size(); ++i) lines[i] += std::string(kGap, ' ') + displays[i];
    } else {
        lines.insert(lines.end(), displays.begin(), displays.end());
    }
    std::string screen = kHome;
    for (const std::string& line : lines) screen += line + kClearLine + "\n";
    return screen + kClearBelow;
}

}  // namespace twr
