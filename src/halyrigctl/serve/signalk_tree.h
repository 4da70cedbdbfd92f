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

namespace twr {

struct SignalKLeaf {
    BoatSlot boat;
    const SignalKPath* path;
    std::string value = {};     // JSON; "null" once it has ended
    double time = 0.0;          // of the value, days
    std::uint64_t changes = 0;  // publications of it
};

class SignalKTree {
public:
    explicit SignalKTree(const Lookout& lookout) : lookout_(lookout) {}

    // Takes what the lookout's last look has found.
    void Take();

    // In the order in which they came; none ever goes, nor moves.
    const std::deque<SignalKLeaf>& Leaves() const { return leaves_; }

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
};

// The server and its addresses, at this host.
std::string SignalKDiscovery(std::string_view host);

}  // namespace twr
