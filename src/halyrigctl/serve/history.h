// SPDX-License-Identifier: MIT
// The last ten minutes of every value that came, one a second.
#pragma once
#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <vector>

#include "halyrigctl/serve/messages.h"
#include "streams/follower.h"

namespace twr {

class History {
public:
    static constexpr std::size_t kLength = 600;

    // Keeps the fresh values of a look; `now` in days. At most one look a second is kept.
    void Add(const Follower& follower, double now);

    struct Point {
        double time;   // days
        double value;  // in the internal unit; kNoValue in a gap
    };
    // From the first value on, the oldest first.
    std::vector<Point> Of(ChannelPlace place) const;

    struct Extremes {
        double lowest, highest;  // in the internal unit
    };
    // With the value of `now`, kNoValue for none. nullopt without a value. Of a `turning` one, in degrees, as one turns: from 350
    // to 10 the lowest is 350 and the highest 370.
    std::optional<Extremes> ExtremesOf(ChannelPlace place, double now, bool turning) const;

private:
    using Ring = std::array<double, kLength>;

    std::array<double, kLength> times_{};
    std::size_t next_ = 0, count_ = 0;
    std::map<ChannelPlace, Ring> values_;
};

}  // namespace twr
