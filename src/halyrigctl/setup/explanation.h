// SPDX-License-Identifier: MIT
// The way of one channel's value for its user, and as text.
#pragma once
#include <string>

#include "halyrigctl/setup/value_chain.h"

namespace twr {

struct Explained {
    ChannelId channel;
    BoatSlot boat;
    std::string title;  // for people
    std::u16string name;
    Links links;
};

// The displays that show it included.
Explained ExplainChannel(CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances);

// What is wrong and what to do, then each link, a line each.
std::string AsText(const Explained& one);

}  // namespace twr
