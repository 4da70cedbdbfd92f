// SPDX-License-Identifier: MIT
#include "halyrigctl/watch/watch_view.h"

#include <algorithm>
#include <limits>

#include "base/wide_text.h"
#include "halyrigctl/output/cells.h"
#include "halyrigctl/watch/displays_picture.h"
#include "halyrigctl/watch/watch_table.h"

namespace twr {
namespace {

constexpr int kBetween = 2;                              // columns between table and displays
constexpr int kLeastForHints = 5, kLeastForHeading = 3;  // rows: of the screen, and of the table
constexpr char32_t kDelete = 127;                        // Ctrl and Backspace on Windows
constexpr std::size_t kEndOfAll = std::numeric_limits<std::size_t>::max() / 2;

const char* WordOf(RowOrder order) {
    static constexpr const char* kWords[] = {"id", "name", "age"};
    return kWords[static_cast<std::size_t>(order)];
}

void Append(std::vector<ScreenText>& picture, const std::vector<ScreenText>& texts, int row, int column) {
    for (ScreenText text : texts) {
        text.row += row;
        text.column += column;
        picture.push_back(std::move(text));
    }
}

// Beside displays, with room for at least one.
int TableWidthBeside(int width) {
    constexpr int kTwoFrames = 2 * kFramedDisplayWidth + 1;
    return width >= kFullTable + kBetween + kTwoFrames ? std::max(kFullTable, width / 2) : width - kBetween - kSmallDisplayWidth;
}

// The bridge counts more than the clock where there is no room for both.
void DrawHead(std::vector<ScreenText>& picture, const WatchedLook& look, int width) {
    const int clockWidth = static_cast<int>(WidthOf(look.clock)) + kBetween;
    const bool roomForClock = clockWidth + static_cast<int>(WidthOf(look.bridge)) <= width;
    const auto fresh = std::ranges::count(look.rows, ChannelState::kFresh, &WatchedRow::state);
    if (roomForClock) picture.push_back({0, 0, look.clock, Look::kBold});
    picture.push_back({0, roomForClock ? clockWidth : 0,
                       look.bridge + "  " + std::to_string(look.rows.size()) + " channels, " + std::to_string(fresh) + " fresh",
                       look.bridgeWorks ? Look::kPlain : Look::kRed});
}

}  // namespace

bool WatchView::OnKey(char32_t key) {
    Move(key);
    if (typing_) {
        OnFilterKey(key);
        return true;
    }
    if (key == U'q' || key == U'Q' || (key == Key::kEscape && filter_.empty() && !explains_)) return false;
    if (key == Key::kEscape && explains_) {
        explains_.reset();
    } else if (key == Key::kEscape) {
        filter_.clear();
    }
    if (key == Key::kEnter && count_ > 0)
        explains_ = explains_ == selectedChannel_ ? std::nullopt : std::optional(selectedChannel_);
    if (key == U'/') typing_ = true;
    if (key == U's' || key == U'S') order_ = static_cast<RowOrder>((static_cast<int>(order_) + 1) % 3);
    return true;
}

void WatchView::OnFilterKey(char32_t key) {
    std::u16string filter = FromUtf8(filter_);
    if (key == Key::kBackspace && !filter.empty()) filter.pop_back();
    if (key == Key::kEscape) filter.clear();
    if (key == Key::kEnter || key == Key::kEscape) typing_ = false;
    if (key >= U' ' && key != kDelete && key <= 0xFFFF) filter += static_cast<char16_t>(key);
    filter_ = ToUtf8(filter);
}

void WatchView::Move(char32_t key) {
    if (key == Key::kUp) selected_ -= std::min<std::size_t>(selected_, 1);
    if (key == Key::kPageUp) selected_ -= std::min(selected_, places_);
    if (key == Key::kHome) selected_ = 0;
    if (key == Key::kDown) ++selected_;
    if (key == Key::kPageDown) selected_ += places_;
    if (key == Key::kEnd) selected_ = kEndOfAll;
}

std::vector<WatchedRow> WatchView::Chosen(std::vector<WatchedRow> rows) const {
    const std::u16string part = UpperCase(FromUtf8(filter_));
    std::erase_if(rows, [&](const WatchedRow& row) { return UpperCase(FromUtf8(row.name)).find(part) == part.npos; });
    Sort(rows, order_);
    return rows;
}

std::vector<ScreenText> WatchView::Draw(const WatchedLook& look, ConsoleSize size) {
    const bool hinted = size.rows >= kLeastForHints;
    std::vector<ScreenText> picture;
    DrawHead(picture, look, size.columns);
    ConsoleSize room{size.columns, size.rows - (hinted ? 2 : 1)};
    if (room.rows > 0) {
        const bool beside = !look.remotes.empty() && size.columns >= kNarrowTable + kBetween + kSmallDisplayWidth;
        if (beside) room.columns = TableWidthBeside(size.columns);
        const int right = size.columns - room.columns - kBetween, below = room.rows / 2;
        DisplaysPicture displays;
        if (beside) displays = DrawDisplays(look.remotes, {right, room.rows});
        if (!beside && below > 0) displays = DrawDisplays(look.remotes, {size.columns, below});
        if (!beside) room.rows -= displays.rows;
        const int ofDisplays = 1 + room.rows;
        room.rows -= DrawExplained(picture, look, room);
        DrawTable(picture, look, room);
        Append(picture, displays.texts, beside ? 1 : ofDisplays, beside ? room.columns + kBetween : 0);
    }
    if (hinted) picture.push_back({size.rows - 1, 0, Hints(), typing_ ? Look::kBold : Look::kFaint});
    return picture;
}

// At the foot of the room, its lines broken where they are too long; at most half of it. Returns its rows.
int WatchView::DrawExplained(std::vector<ScreenText>& picture, const WatchedLook& look, ConsoleSize room) const {
    const auto width = static_cast<std::size_t>(room.columns), most = static_cast<std::size_t>(room.rows / 2);
    if (!explains_ || most < 2) return 0;
    std::vector<std::string> lines;
    for (std::string line : look.explained) {
        for (; WidthOf(line) > width; line.erase(0, Cut(line, width).size())) lines.push_back(Cut(line, width));
        lines.push_back(line);
    }
    lines.resize(std::min(lines.size(), most - 1));
    const int rows = static_cast<int>(lines.size()) + 1;
    int row = 1 + room.rows - rows;
    picture.push_back({row++, 0, std::string(width, '-'), Look::kFaint});
    for (const std::string& line : lines) picture.push_back({row++, 0, line, Look::kPlain});
    return rows;
}

void WatchView::DrawTable(std::vector<ScreenText>& picture, const WatchedLook& look, ConsoleSize room) {
    const std::vector<WatchedRow> rows = Chosen(look.rows);
    const int top = room.rows >= kLeastForHeading ? 2 : 1;
    places_ = static_cast<std::size_t>(std::max(1, room.rows + 1 - top));
    count_ = rows.size();
    selected_ = std::min(selected_, count_ - std::min<std::size_t>(count_, 1));
    first_ = std::clamp(first_, selected_ + 1 - std::min(selected_ + 1, places_), selected_);
    first_ = std::min(first_, count_ - std::min(count_, places_));
    if (count_ > 0) selectedChannel_ = rows[selected_].id;
    if (top == 2) Append(picture, {DrawTableHeading(room.columns)}, 1, 0);
    for (std::size_t i = first_; i < std::min(count_, first_ + places_); ++i) {
        Append(picture, DrawTableRow(rows[i], room.columns, i == selected_), top + static_cast<int>(i - first_), 0);
    }
    if (rows.empty())
        picture.push_back({top, 0, filter_.empty() ? kNothingToShow : "No channel's name contains this.", Look::kPlain});
}

std::string WatchView::Hints() const {
    if (typing_) return "/" + filter_ + "_  Enter Keep  Esc Clear";
    std::string hints;
    if (count_ > places_)
        hints = std::to_string(first_ + 1) + "-" + std::to_string(first_ + places_) + " of " + std::to_string(count_) + "  ";
    if (!filter_.empty()) hints += "/" + filter_ + "  Esc Clear  ";
    return hints + "q End  Enter " + (explains_ ? "Close" : "Explain") + "  / Filter  s Sort (" + WordOf(order_) +
           ")  Arrows Scroll";
}

}  // namespace twr
