// SPDX-License-Identifier: MIT
// The live view of watch: what its user has chosen to see by keys, and its pictures.
#pragma once
#include <string>
#include <vector>

#include "halyrigctl/commands.h"
#include "halyrigctl/watch/displays_picture.h"
#include "halyrigctl/watch/watched_channels.h"
#include "platform/console_screen.h"

namespace twr {

// What a look has found.
struct WatchedLook {
    std::string clock, bridge;  // the time of day, and how the bridge is
    bool bridgeWorks = false;
    std::vector<WatchedRow> rows;
    std::vector<RemoteLine> remotes;
};

// Instead of rows.
inline constexpr const char* kNothingToShow = "Nothing has been published yet.";

class WatchView {
public:
    explicit WatchView(RowOrder order) : order_(order) {}

    // False if the user ends the view by it.
    bool OnKey(char32_t key);

    // The displays are on the right of the table, or below it in a narrow window.
    std::vector<ScreenText> Draw(const WatchedLook& look, ConsoleSize size);

private:
    void OnFilterKey(char32_t key);
    void Scroll(char32_t key);
    std::vector<WatchedRow> Chosen(std::vector<WatchedRow> rows) const;
    void DrawTable(std::vector<ScreenText>& picture, const WatchedLook& look, ConsoleSize room);
    std::string Hints() const;

    RowOrder order_;
    std::string filter_;
    bool typing_ = false;                 // the filter
    std::size_t first_ = 0;               // the row at the table's top
    std::size_t places_ = 1, count_ = 0;  // for rows, and of chosen ones, in the last picture
};

}  // namespace twr
