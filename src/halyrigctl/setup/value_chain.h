// SPDX-License-Identifier: MIT
// The way of a value, link by link: from Deckman through the bridge into the record, and on to its user.
#pragma once
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/core.h"
#include "core/record_access.h"
#include "halyrigctl/setup/circumstances.h"
#include "halyrigctl/setup/reasons.h"

namespace twr {

enum class LinkState {
    kHolds,
    kBroken,  // the first one; it is the reason
    kBehind,  // not judged: behind the broken one
};

struct Link {
    LinkName name;
    LinkState state;
    Fault says;  // without a reason if it holds
};

class Links {
public:
    void Hold(LinkName name, std::string says) {
        Fault held;
        held.what = std::move(says);
        Add(name, LinkState::kHolds, std::move(held));
    }
    // Breaks the link of the fault, if there is one; else `name` holds.
    void Judge(LinkName name, Fault fault, std::string elseSays) {
        if (!fault) return Hold(name, std::move(elseSays));
        Add(name, LinkState::kBroken, fault);
        if (!fault_) broken_ = name, fault_ = std::move(fault);
    }

    const std::vector<Link>& All() const { return all_; }
    // What the broken link says; nothing if all hold.
    const Fault& Broken() const { return fault_; }
    LinkName BrokenLink() const { return broken_; }  // while there is one

private:
    void Add(LinkName name, LinkState state, Fault says) {
        all_.push_back({name, fault_ ? LinkState::kBehind : state, std::move(says)});
    }

    std::vector<Link> all_;
    Fault fault_;
    LinkName broken_ = LinkName::kAlternates;
};

// One channel of one boat, as it stands in the record.
struct Subject {
    Subject(CCore& ofRecord, ChannelId itsChannel, BoatSlot itsBoat, double now);

    CCore& core;
    CoreRecord& record;
    ChannelId channel;  // not an alternating one
    BoatSlot boat;
    Entry entry;
    double stored = kNoValue;   // fresh or not
    std::optional<double> age;  // seconds since the last publication; nullopt if it was never published
    std::int16_t limit;         // seconds after which a value is stale; 0 or less for never
    bool stale = false;         // published, but too long ago
};

// The links up to the value in the user's unit. An alternating channel's are those of the channel that it stands for.
Links ValueChain(CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances);

// Adds a link for each of Deckman's displays that shows the channel.
void AddRemoteLinks(Links& links, CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances);

// "HDG (13)", "HDG (13) of boat 2"
std::string ChannelInWords(CCore& core, ChannelId channel, BoatSlot boat = 0);

}  // namespace twr
