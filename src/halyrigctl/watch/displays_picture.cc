// SPDX-License-Identifier: MIT
#include "halyrigctl/watch/displays_picture.h"

#include <algorithm>
#include <string>

#include "base/wide_text.h"
#include "displays/displays.h"
#include "halyrigctl/output/cells.h"
#include "halyrigctl/output/say.h"

namespace twr {
namespace {

constexpr int kInside = kFramedDisplayWidth - 2;
constexpr int kFrameHeight = 4;
constexpr int kFrameGap = 1, kSmallGap = 2;
constexpr int kNumberWidth = 2, kNameWidth = 8;

// As many as fit side by side with a gap between them; at least one.
int PerLine(int width, int each, int gap) { return std::max(1, (width + gap) / (each + gap)); }

std::string Edge(std::size_t width) {
    std::string dashes;
    while (width-- > 0) dashes += "\u2500";
    return dashes;
}

void DrawFramed(std::vector<ScreenText>& texts, const RemoteLine& remote, int row, int column) {
    const std::string number = " " + std::to_string(remote.number) + " ", side = "\u2502";
    const std::string empty = side + std::string(kInside, ' ') + side;
    const std::string lines[] = {"\u256D" + number + Edge(kInside - number.size()) + "\u256E", empty, empty,
                                 "\u2570" + Edge(kInside) + "\u256F"};
    for (int i = 0; i < kFrameHeight; ++i) texts.push_back({row + i, column, lines[i]});
    texts.push_back({row + 1, column + 1, Centred(Cut(remote.value, kInside), kInside), Look::kBold});
    texts.push_back({row + 2, column + 1, Centred(Cut(remote.name, kInside), kInside)});
}

void DrawSmall(std::vector<ScreenText>& texts, const RemoteLine& remote, int row, int column, int width) {
    constexpr int kValueAt = kNumberWidth + kNameWidth + 2;
    const std::string label = PaddedLeft(std::to_string(remote.number), kNumberWidth) + " " + Cut(remote.name, kNameWidth);
    texts.push_back({row, column, Cut(label, static_cast<std::size_t>(width))});
    if (width > kValueAt)
        texts.push_back({row, column + kValueAt, Cut(remote.value, static_cast<std::size_t>(width - kValueAt)), Look::kBold});
}

DisplaysPicture DrawAllFramed(const std::vector<RemoteLine>& remotes, int perLine) {
    DisplaysPicture picture;
    int count = 0;
    for (const RemoteLine& remote : remotes) {
        const int row = count / perLine * kFrameHeight;
        DrawFramed(picture.texts, remote, row, count++ % perLine * (kFramedDisplayWidth + kFrameGap));
        picture.rows = row + kFrameHeight;
    }
    return picture;
}

DisplaysPicture DrawAllSmall(const std::vector<RemoteLine>& remotes, ConsoleSize size) {
    const int each = std::min(size.columns, kSmallDisplayWidth), perLine = PerLine(size.columns, each, kSmallGap);
    const int heading = size.rows > 1 ? 1 : 0, places = perLine * (size.rows - heading);
    const int all = static_cast<int>(remotes.size());
    const int shown = all <= places ? all : places - 1;  // the last place shows how many are left out
    DisplaysPicture picture;
    if (heading) picture.texts.push_back({0, 0, Cut("displays", static_cast<std::size_t>(size.columns)), Look::kFaint});
    for (int i = 0; i < std::min(all, places); ++i) {
        const int row = heading + i / perLine, column = i % perLine * (each + kSmallGap);
        if (i < shown) {
            DrawSmall(picture.texts, remotes[static_cast<std::size_t>(i)], row, column, each);
        } else {
            picture.texts.push_back(
                {row, column, Cut(std::to_string(all - shown) + " more displays", static_cast<std::size_t>(each))});
        }
        picture.rows = row + 1;
    }
    return picture;
}

}  // namespace

std::vector<RemoteLine> ReadRemotes(SharedMemory& memory, std::u16string_view dfwFolder) {
    const auto shown = [](const DisplayedText& text) { return Harmless(FromBytes(text.text)); };
    const DisplayReader displays(memory, Trimmed(dfwFolder));
    std::vector<RemoteLine> lines;
    for (int remote = 1; remote <= kRemoteCount; ++remote) {
        const DisplayedText value = displays.Value(remote);
        if (value.updates > 0) lines.push_back({remote, shown(value), shown(displays.Name(remote))});
    }
    return lines;
}

DisplaysPicture DrawDisplays(const std::vector<RemoteLine>& remotes, ConsoleSize size) {
    if (remotes.empty()) return {};
    const int perLine = PerLine(size.columns, kFramedDisplayWidth, kFrameGap);
    const bool fit = size.columns >= kFramedDisplayWidth && static_cast<int>(remotes.size()) <= size.rows / kFrameHeight * perLine;
    return fit ? DrawAllFramed(remotes, perLine) : DrawAllSmall(remotes, size);
}

}  // namespace twr
