// SPDX-License-Identifier: MIT
// What clients say to the server, none of which can be trusted.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/channel_ids.h"

namespace twr {

// One channel of one boat.
using ChannelPlace = std::pair<ChannelId, BoatSlot>;

// The places in {"watch":[[id,boat],...]}; nullopt if the message isn't that, or a place does not exist.
std::optional<std::vector<ChannelPlace>> ParseWatch(std::string_view message);

enum class SignalKPolicy : std::uint8_t {
    kInstant,  // what changes, but not sooner than minPeriod after the last time
    kIdeal,    // the same, and what doesn't change once in a period
    kFixed,    // once in a period
};

struct SignalKSubscription {
    std::string context, path;  // with * for any text
    SignalKPolicy policy = SignalKPolicy::kIdeal;
    double period = 1.0, minPeriod = 0.0;  // seconds

    bool operator==(const SignalKSubscription&) const = default;
};

// What a client says. What it asks for in vain, and what makes no sense, is in neither list.
struct SignalKSaid {
    std::vector<SignalKSubscription> subscribe = {};
    std::vector<SignalKSubscription> unsubscribe = {};  // only the context and the path count
    std::string requestId = {};                         // of a request, which is refused
    int refusal = 0;                                    // with this status; 0 for none
};

// nullopt if it is no JSON object.
std::optional<SignalKSaid> ParseSignalK(std::string_view message);

// Whether a text is what a pattern with * means.
bool MatchesPattern(std::string_view pattern, std::string_view text);

}  // namespace twr
