// SPDX-License-Identifier: MIT
#include "halyrigctl/serve/page_talk.h"

#include <cmath>

#include "base/numbers.h"
#include "core/days.h"
#include "halyrigctl/serve/messages.h"

namespace twr {
namespace {

// The page takes a longer silence for the loss of the server. Less by half a beat, so that a look that comes late is none.
constexpr double kLongestSilence = 0.45 / kSecondsPerDay;
constexpr double kTellAgain = 0.95 / kSecondsPerDay;

}  // namespace

bool PageTalk::Hear(std::string_view message) {
    const auto places = ParseWatch(message);
    if (!places) return false;
    watched_.clear();
    for (const ChannelPlace& place : *places) watched_.push_back({.tile = lookout_.Watch(place)});
    all_ = true;
    return true;
}

// An age is right for a second, and must be so: what was published before the bridge's end doesn't count any more.
bool PageTalk::Tell(Watched& watched) const {
    const Tile& tile = *watched.tile;
    const double now = lookout_.Time();
    const bool again = tile.published != watched.published && !(std::fabs(now - watched.toldAt) < kTellAgain);
    if (!all_ && tile.changes == watched.changes && !again) return false;
    watched.changes = tile.changes;
    watched.published = tile.published;
    watched.toldAt = now;
    return true;
}

void PageTalk::Say(std::vector<WebMessage>& messages) {
    std::string values;
    for (Watched& watched : watched_) {
        if (Tell(watched)) (values += values.empty() ? "" : ",") += watched.tile->json;
    }
    const bool silent = std::fabs(lookout_.Time() - saidAt_) < kLongestSilence;
    const bool same = bridge_ == lookout_.BridgeWord() && replays_ == lookout_.Replays();
    if (values.empty() && silent && same && !all_) return;
    all_ = false;
    saidAt_ = lookout_.Time();
    bridge_ = lookout_.BridgeWord();
    replays_ = lookout_.Replays();
    messages.push_back(std::make_shared<const std::string>(Printed("{\"t\":%.3f,\"bridge\":\"", SecondsSince1970(lookout_.Time())) +
                                                           std::string(bridge_) + "\",\"replay\":" + (replays_ ? "true" : "false") +
                                                           ",\"values\":[" + values + "]}"));
}

}  // namespace twr
