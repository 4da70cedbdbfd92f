#include "halyrigctl/display_block.h"

#include <algorithm>

#include "halyrigctl/screen_style.h"
#include "halyrigctl/text_cells.h"

namespace twr {
namespace {

constexpr std::size_t kInside = 11;
constexpr std::size_t kFrameWidth = kInside + 2;
constexpr std::size_t kFrameHeight = 4;
constexpr std::size_t kNumberWidth = 2;
constexpr std::size_t kNameWidth = 8;

// As many as stand side by side with a gap between them; one at least.
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
    const std::size_t shown = remotes.size() <= places ? remotes.size() : places - 1;  // the last place tells of the others
    std::vector<std::string> cells;
    for (std::size_t i = 0; i < shown; ++i) cells.push_back(Small(remotes[i], each));
    if (shown < remotes.size()) cells.push_back(Cut(std::to_string(remotes.size() - shown) + " more displays", each));
    auto lines = Tiled(cells, perLine, std::string(kGap, ' '));
    if (headed) lines.insert(lines.begin(), kDim + Cut("displays", width) + kPlain);
    return lines;
}

}  // namespace

std::vector<std::string> DrawDisplays(const std::vector<RemoteLine>& remotes, std::size_t width, std::size_t height) {
    if (remotes.empty()) return {};
    const std::size_t perLine = PerLine(width, kFrameWidth, 1);
    const bool fit = width >= kFrameWidth && remotes.size() <= height / kFrameHeight * perLine;
    return fit ? DrawFramed(remotes, perLine) : DrawSmall(remotes, width, height);
}

}  // namespace twr
