// SPDX-License-Identifier: MIT
// The watched channels as lines: of a table on a screen, and of plain text.
#pragma once
#include <span>
#include <string>
#include <vector>

#include "halyrigctl/watch/watched_channels.h"
#include "platform/console_screen.h"

namespace twr {

// From here on a table has room for a Sparkline, and below that for the reasons to be of use.
inline constexpr int kNarrowTable = 56, kFullTable = 79;

// The table's heading and rows, from row and column 0 to this width, which is at least 1. A row without a fresh value shows the
// reason instead. In a narrow table the state's word shrinks to its first letter.
ScreenText DrawTableHeading(int width);
// The one that is selected has a mark before its name.
std::vector<ScreenText> DrawTableRow(const WatchedRow& row, int width, bool selected);

// Lines that end in a line feed.
std::string PlainTableHeading();
std::string PlainTableRow(const WatchedRow& row);

}  // namespace twr
