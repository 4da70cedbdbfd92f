// SPDX-License-Identifier: MIT
// The live view of watch: what its user has chosen to see by keys, and its pictures.
#pragma once
#include <optional>
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
    std::vector<std::string> explained = {};  // lines about the channel that the view asks for
};

// Instead of rows.
inline constexpr const char* kNothingToShow = "Nothing has been published yet.";

class WatchView {
public:
    explicit WatchView(RowOrder order) : order_(order) {}

    // False if the user ends the view by it.
    bool OnKey(char32_t key);

    // The channel of which the way of its value is to be shown; nullopt for none.
    std::optional<ChannelId> Explains() const { return explains_; }

    // The displays are on the right of the table, or below it in a narrow window.
    std::vector<ScreenText> Draw(const WatchedLook& look, ConsoleSize size);

private:
    void OnFilterKey(char32_t key);
    void Move(char32_t key);
    int DrawExplained(std::vector<ScreenText>& picture, const WatchedLook& look, ConsoleSize room) const;
    std::vector<WatchedRow> Chosen(std::vector<WatchedRow> rows) const;
    void DrawTable(std::vector<ScreenText>& picture, const WatchedLook& look, ConsoleSize room);
    std::string Hints() const;

    RowOrder order_;
    std::string filter_;
    bool typing_ = false;                     // the filter
    std::size_t first_ = 0, selected_ = 0;    // rows: at the table's top, and that of which Enter explains
    std::size_t places_ = 1, count_ = 0;      // for rows, and of chosen ones, in the last picture
    ChannelId selectedChannel_ = kNoChannel;  // in the last picture
    std::optional<ChannelId> explains_;
};

}  // namespace twr
