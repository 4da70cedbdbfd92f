#include "halyrigctl/screen.h"

#include <algorithm>
#include <cstdio>

namespace twr {
namespace {

constexpr const char* kHome = "\x1b[H";
constexpr const char* kClearLine = "\x1b[K";
constexpr const char* kClearBelow = "\x1b[J";
constexpr const char* kDim = "\x1b[2m";
constexpr const char* kBold = "\x1b[1m";
constexpr const char* kPlain = "\x1b[0m";

constexpr int kTableWidth = 56;
constexpr int kDisplayWidth = 14;  // with the gap behind it
constexpr std::size_t kInside = 11;
constexpr int kDisplayHeight = 4;

// Characters, not bytes.
std::size_t WidthOf(const std::string& utf8) {
    return static_cast<std::size_t>(std::ranges::count_if(utf8, [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string Padded(const std::string& text, std::size_t width) {
    return text + std::string(width - std::min(width, WidthOf(text)), ' ');
}

std::string PaddedLeft(const std::string& text, std::size_t width) {
    return std::string(width - std::min(width, WidthOf(text)), ' ') + text;
}

std::string Centred(const std::string& text, std::size_t width) {
    const std::size_t free = width - std::min(width, WidthOf(text));
    return std::string(free / 2, ' ') + text + std::string(free - free / 2, ' ');
}

std::string Row(const std::string& id, const std::string& name, const std::string& text, const std::string& unit,
                const std::string& age) {
    return PaddedLeft(id, 4) + "  " + Padded(name, 12) + PaddedLeft(text, 20) + " " + Padded(unit, 6) + PaddedLeft(age, 10);
}

std::string Heading() { return Row("id", "channel", "value", "", "age"); }

std::string Row(const ChannelLine& line) {
    char age[32];
    std::snprintf(age, sizeof age, "%.1f s", line.age);
    return Row(std::to_string(line.id), line.name, line.text, line.unit, age);
}

std::string Repeated(const char* text, std::size_t count) {
    std::string repeated;
    while (count-- > 0) repeated += text;
    return repeated;
}

// One of the lines of a display, from its frame's top to its bottom.
std::string DisplayRow(const RemoteLine& remote, int row) {
    const std::string side = "\u2502";
    switch (row) {
        case 0: {
            const std::string number = " " + std::to_string(remote.number) + " ";
            return "\u256D" + number + Repeated("\u2500", kInside - number.size()) + "\u256E";
        }
        case 1:
            return side + kBold + Centred(remote.value, kInside) + kPlain + side;
        case 2:
            return side + Centred(remote.name, kInside) + side;
        default:
            return "\u2570" + Repeated("\u2500", kInside) + "\u256F";
    }
}

// The displays that share a line of the screen, `perRow` beside each other.
std::string DisplaysAt(const std::vector<RemoteLine>& remotes, int line, int perRow) {
    std::string row;
    const auto first = static_cast<std::size_t>(line / kDisplayHeight * perRow);
    for (std::size_t i = first; i < std::min(remotes.size(), first + static_cast<std::size_t>(perRow)); ++i) {
        row += DisplayRow(remotes[i], line % kDisplayHeight) + " ";
    }
    return row;
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
    const int perRow = remotes.empty() ? 0 : std::max(0, (size->columns - kTableWidth - 2) / kDisplayWidth);
    const int lines = std::max(2, size->rows - 1);  // the last one stays free for the cursor
    const auto table = static_cast<std::size_t>(lines - 1);
    const bool more = channels.size() > table;

    std::string screen = kHome;
    for (int line = 0; line < lines; ++line) {
        const auto index = static_cast<std::size_t>(line - 1);
        if (line == 0) {
            screen += Padded(Heading(), kTableWidth);
        } else if (more && line == lines - 1) {
            screen += Padded("      " + std::to_string(channels.size() - table + 1) + " more; enlarge the window to see them",
                             kTableWidth);
        } else if (index < channels.size()) {
            const ChannelLine& channel = channels[index];
            screen += channel.fresh ? Padded(Row(channel), kTableWidth) : kDim + Padded(Row(channel), kTableWidth) + kPlain;
        } else if (line == 1) {
            screen += Padded("Nothing has been published yet.", kTableWidth);
        } else {
            screen += std::string(kTableWidth, ' ');
        }
        if (perRow > 0) screen += "  " + DisplaysAt(remotes, line, perRow);
        screen += std::string(kClearLine) + "\n";
    }
    return screen + kClearBelow;
}

}  // namespace twr
