// SPDX-License-Identifier: MIT
#include "halyrigctl/watch/watch_table.h"

#include <algorithm>

#include "base/numbers.h"
#include "halyrigctl/output/cells.h"

namespace twr {
namespace {

std::string AgeText(const WatchedRow& row) { return row.age ? Printed("%.1f s", *row.age) : "-"; }

// --- On a screen ---

constexpr std::size_t kWidestValue = 13, kUnitWidth = 6, kAgeWidth = 9, kGap = 2;

// Where the columns of a table are; a width of 0 leaves one out.
struct Columns {
    explicit Columns(int tableWidth)
        : width(static_cast<std::size_t>(tableWidth)),
          state(width >= 50 ? kStateWidth : 1),
          id(width >= 30 ? 4 : 0),
          name(width >= static_cast<std::size_t>(kFullTable) ? 15
               : width >= 40                                 ? 12
                                                             : 8),
          nameAt(state + id + 1),
          restAt(nameAt + name + 1),
          rest(width - std::min(width, restAt)) {}

    std::size_t width, state, id, name, nameAt, restAt, rest;
};

std::string IdText(const std::string& id, const Columns& columns) { return columns.id == 0 ? "" : PaddedLeft(id, columns.id); }

std::string ValueText(const std::string& value, const std::string& unit, const std::string& age, const std::string& course,
                      const std::string& scale, const Columns& columns) {
    const std::string figure = PaddedLeft(value, std::min(columns.rest, kWidestValue)) + " " + unit;
    const std::string text = Padded(figure, kWidestValue + 1 + kUnitWidth) + PaddedLeft(age, kAgeWidth);
    const bool roomForCourse = columns.rest >= WidthOf(text) + kGap + Sparkline::kWidth;
    const bool roomForScale = columns.rest >= WidthOf(text) + kGap + Sparkline::kWidth + 1 + Sparkline::kScaleWidth;
    return Cut(text + (roomForCourse ? std::string(kGap, ' ') + course : "") + (roomForScale ? " " + scale : ""), columns.rest);
}

Look LookOf(ChannelState state) {
    switch (state) {
        case ChannelState::kFresh:
            return Look::kGreen;
        case ChannelState::kStale:
            return Look::kYellow;
        case ChannelState::kRefused:
            return Look::kRed;
        default:
            return Look::kFaint;
    }
}

// --- Plain ---

std::string PlainLine(const std::string& id, const std::string& name, const std::string& text, const std::string& unit,
                      const std::string& age, const std::string& state) {
    const std::string label = Padded(name, 12);  // a user's own can be longer
    const std::size_t room = 32 - std::min<std::size_t>(32, WidthOf(label));
    return PaddedLeft(id, 4) + "  " + label + PaddedLeft(text, room) + " " + Padded(unit, 6) + PaddedLeft(age, 10) + "  " + state +
           "\n";
}

}  // namespace

ScreenText DrawTableHeading(int width) {
    const Columns columns(width);
    const std::string text = Padded(Padded(Cut("state", columns.state), columns.state) + IdText("id", columns), columns.nameAt) +
                             Padded(Cut("channel", columns.name), columns.name) + " " +
                             ValueText("value", "", "age", "last minute         ", "low..high", columns);
    return {0, 0, Padded(Cut(text, columns.width), columns.width), Look::kReversed};
}

// The name and what follows have places of their own, so that characters of double width in a name shift nothing.
std::vector<ScreenText> DrawTableRow(const WatchedRow& row, int width, bool selected) {
    const Columns columns(width);
    const std::string state(StateWord(row.state));
    const Look look = LookOf(row.state);
    const bool fresh = row.state == ChannelState::kFresh;
    const std::string rest =
        fresh ? ValueText(row.text, row.unit, AgeText(row), row.course, row.scale, columns) : Cut(row.reason, columns.rest);
    const std::string mark = selected && columns.nameAt < columns.width ? ">" : "";
    return {{0, 0, Padded(Cut(state, columns.state), columns.state) + IdText(std::to_string(row.id), columns) + mark, look},
            {0, static_cast<int>(columns.nameAt), Cut(row.name, columns.name), look},
            {0, static_cast<int>(columns.restAt), rest, look}};
}

std::string PlainTableHeading() { return PlainLine("id", "channel", "value", "", "age", "state"); }

std::string PlainTableRow(const WatchedRow& row) {
    const std::string state = std::string(StateWord(row.state)) + (row.reason.empty() ? "" : ": " + row.reason);
    return PlainLine(std::to_string(row.id), row.name, row.text, row.unit, AgeText(row), state);
}

}  // namespace twr
