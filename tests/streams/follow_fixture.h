// SPDX-License-Identifier: MIT
// A follower over a machine of fakes.
#pragma once
#include <optional>
#include <vector>

#include "streams/follower.h"
#include "support/core_fixture.h"

namespace twr::testing {

struct FollowTest : CoreTest {
    FollowTest() { Follow(); }

    void Follow(const FollowOptions& options = {}) { follower.emplace(*core, machine.clock, options); }
    std::vector<Change> Look() {
        const auto changes = follower->Look();
        return {changes.begin(), changes.end()};
    }
    // Other programs go on, and time passes.
    void Pass(double seconds) { machine.clock.AdvanceMs(static_cast<std::int64_t>(seconds * 1000)); }
    double Now() const { return machine.clock.Days(); }

    std::optional<Follower> follower;
};

}  // namespace twr::testing
