#include "halyrigctl/screen.h"

#include <algorithm>
#include <cstdio>

namespace twr {
namespace {

constexpr const char* kDim = "\x1b[2m";
constexpr const char* kBold = "\x1b[1m";
constexpr const char* kPlain = "\x1b[0m";
bool BeginsCharacter(char byte) { return (byte & 0xC0) != 0x80; }

std::string Blanks(const std::string& text, std::size_t width) { return std::string(width - std::min(width, WidthOf(text)), ' '); }

}  // namespace

std::size_t WidthOf(std::string_view text) { return static_cast<std::size_t>(std::ranges::count_if(text, BeginsCharacter)); }

std::string Cut(std::string_view text, std::size_t width) {
    const auto beyond = std::ranges::find_if(text, [&](char byte) { return BeginsCharacter(byte) && width-- == 0; });
    return {text.begin(), beyond};
}

std::string Padded(const std::string& text, std::size_t width) { return text + Blanks(text, width); }

std::string PaddedLeft(const std::string& text, std::size_t width) { return Blanks(text, width) + text; }

std::string Centred(const std::string& text, std::size_t width) {
    const std::string blanks = Blanks(text, width);
    return blanks.substr(0, blanks.size() / 2) + text + blanks.substr(blanks.size() / 2);
}

std::string Fitted(std::string_view text, std::size_t width) { return Padded(Cut(text, width), width); }

namespace {

// --- The displays ---

constexpr std::size_t kSmallDisplayWidth = 20;
constexpr std::size_t kInside = 11;
constexpr std::size_t kFrameWidth = kInside + 2;
constexpr std::size_t kFrameHeight = 4;
constexpr std::size_t kNumberWidth = 2;
constexpr std::size_t kNameWidth = 8;

// As many as fit side by side with a gap between them; at least one.
std::size_t PerLine(std::size_t width, std::size_t each, std::size_t gap) {
    return std::max<std::size_t>(1, (width + gap) / (each + gap));
}

std::vector<std::string> Tiled(const std::vector<std::string>& cells, std::size_t perLine, const std::string& gap) {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i % perLine == 0) {
            lines.push_back(cells[i]);
        } else {
            lines.back() += gap + cells[i];
        }
    }
    return lines;
}

// One of the lines of a framed display, from the top.
std::string FrameLine(const RemoteLine& remote, std::size_t line) {
    const auto edge = [](std::size_t width) {
        std::string dashes;
        while (width-- > 0) dashes += "\u2500";
        return dashes;
    };
    const std::string side = "\u2502", number = " " + std::to_string(remote.number) + " ";
    switch (line) {
        case 0:
            return "\u256D" + number + edge(kInside - number.size()) + "\u256E";
        case 1:
            return side + kBold + Centred(Cut(remote.value, kInside), kInside) + kPlain + side;
        case 2:
            return side + Centred(Cut(remote.name, kInside), kInside) + side;
        default:
            return "\u2570" + edge(kInside) + "\u256F";
    }
}

std::vector<std::string> DrawFramed(const std::vector<RemoteLine>& remotes, std::size_t perLine) {
    std::vector<std::string> lines;
    for (std::size_t first = 0; first < remotes.size(); first += perLine) {
        for (std::size_t line = 0; line < kFrameHeight; ++line) {
            std::vector<std::string> cells;
            for (std::size_t i = first; i < std::min(first + perLine, remotes.size()); ++i) {
                cells.push_back(FrameLine(remotes[i], line));
            }
            lines.push_back(Tiled(cells, perLine, " ").front());
        }
    }
    return lines;
}

std::string Small(const RemoteLine& remote, std::size_t width) {
    const std::string label = PaddedLeft(std::to_string(remote.number), kNumberWidth) + " " + Fitted(remote.name, kNameWidth) + " ";
    const std::size_t left = width - std::min(width, WidthOf(label));
    return Cut(label, width) + kBold + Fitted(remote.value, left) + kPlain;
}

std::vector<std::string> DrawSmall(const std::vector<RemoteLine>& remotes, std::size_t width, std::size_t height) {
    constexpr std::size_t kGap = 2;
    const std::size_t each = std::min(width, kSmallDisplayWidth);
    const std::size_t perLine = PerLine(width, each, kGap);
    const bool headed = height > 1;
    const std::size_t places = perLine * (headed ? height - 1 : height);
    const std::size_t shown = remotes.size() <= places ? remotes.size() : places - 1;  // the last place shows how many are left out
    std::vector<std::string> cells;
    for (std::size_t i = 0; i < shown; ++i) cells.push_back(Small(remotes[i], each));
    if (shown < remotes.size()) cells.push_back(Cut(std::to_string(remotes.size() - shown) + " more displays", each));
    auto lines = Tiled(cells, perLine, std::string(kGap, ' '));
    if (headed) lines.insert(lines.begin(), kDim + Cut("displays", width) + kPlain);
    return lines;
}

// Lines of at most `width` characters, at most `height` of them, which is at least 1: framed displays if all fit, else small ones
// of one line under a heading, with the number of those that are left out.
std::vector<std::string> DrawDisplays(const std::vector<RemoteLine>& remotes, std::size_t width, std::size_t height) {
    if (remotes.empty()) return {};
    const std::size_t perLine = PerLine(width, kFrameWidth, 1);
    const bool fit = width >= kFrameWidth && remotes.size() <= height / kFrameHeight * perLine;
    return fit ? DrawFramed(remotes, perLine) : DrawSmall(remotes, width, height);
}

// --- The table ---

constexpr const char* kHome = "\x1b[H";
constexpr const char* kClearLine = "\x1b[K";
constexpr const char* kClearBelow = "\x1b[J";
constexpr std::size_t kTableWidth = 56;
constexpr std::size_t kGap = 2;
constexpr int kMost = 1000;  // lines and columns: no screen has more, but a terminal may report it

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
