// SPDX-License-Identifier: MIT
// The boats as Signal K has them: every path with its latest value, for requests and for streams.
#pragma once
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "halyrigctl/serve/lookout.h"
#include "streams/signalk_values.h"
#include "streams/web_server.h"

namespace twr {

struct SignalKLeaf {
    BoatSlot boat;
    const SignalKPath* path;
    std::string value = {};     // JSON; "null" once it has ended
    double time = 0.0;          // of the value, days
    std::uint64_t changes = 0;  // publications of it
};

// The "updates" of a delta, put together leaf by leaf: values of the same millisecond share a timestamp.
class SignalKUpdates {
public:
    void Add(const SignalKLeaf& leaf);
    bool Empty() const { return text_.empty(); }

    // The message, after which it is empty. `meta`: the pairs of paths and what is said of them.
    WebMessage TakeMessage(const std::string& context, const std::string& meta = {});

private:
    std::string text_;
    std::int64_t millisecond_ = 0;
};

class SignalKTree {
public:
    explicit SignalKTree(const Lookout& lookout) : lookout_(lookout) {}

    // Takes what the lookout's last look has found.
    void Take();

    // In the order in which they came; none ever goes, nor moves.
    const std::deque<SignalKLeaf>& Leaves() const { return leaves_; }

    // What has changed of the own boat in the last look, for all who are told each change; nullptr if nothing has.
    const WebMessage& OwnChanges() const { return ownChanges_; }

    // "vessels." and the boat's name in the tree; empty if she can't be named.
    std::string ContextOf(BoatSlot boat) const;
    std::string MetaOf(const SignalKLeaf& leaf) const;  // JSON; empty if there is none

    // What lies at a path of the tree, "vessels/self/navigation", as JSON; nullopt if nothing does.
    std::optional<std::string> At(std::string_view path) const;

private:
    void Take(BoatSlot boat, const SignalKChanges& changes);
    void EndAll();

    const Lookout& lookout_;
    std::deque<SignalKLeaf> leaves_;
    std::map<std::pair<BoatSlot, const SignalKPath*>, SignalKLeaf*> byPlace_;
    std::string value_;
    SignalKUpdates own_;  // of this look
    WebMessage ownChanges_;
};

// The server and its addresses, at this host.
std::string SignalKDiscovery(std::string_view host);

}  // namespace twr
