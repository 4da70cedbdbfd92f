// Changes as delta messages of Signal K 1.7, one JSON object a line.
#pragma once
#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/core_record.h"
#include "streams/follower.h"
#include "streams/signalk_paths.h"

namespace twr {

// Appends what a client is told first: who speaks, and that the own boat is vessels.self. `now` in days.
void AppendSignalKHello(std::string& out, double now);

// Tells the own boat as vessels.self, the others by their MMSI, and boats without one not at all. What has no path is left out, and
// so are directions from true north while the variation is unknown. The unit of a path goes with its first value.
class SignalKDeltas {
public:
    // Of a message, in bytes: a datagram holds it, and a reader that gives up on longer lines is not met.
    static constexpr std::size_t kLongestMessage = 1400;

    SignalKDeltas() : state_(kBoatCount * SignalKPaths().size()) {}

    // Appends messages for each boat of which there is something to tell. `changes` as the follower has just given them.
    void Append(std::string& out, std::span<const Change> changes, const Follower& follower, const CoreRecord& record);

private:
    struct State {
        bool hasValue = false;  // the last that was told is no null
        bool hasMeta = false;   // its unit has been told
    };

    void AppendBoat(std::string& out, std::span<const Change> changes, const Follower& follower);
    void CloseMessage(std::string& out);
    std::optional<double> ChangedAt(const SignalKPath& path) const;
    void Collect(std::size_t index, BoatSlot boat, const Follower& follower);
    void CollectMeta(const SignalKPath& path);
    void OpenUpdate(double time);

    std::vector<State> state_;  // of each boat and path
    std::bitset<kChannelCount> changed_;
    std::array<double, kChannelCount> times_{};  // of those that have changed
    std::string updates_, meta_, value_, context_;
    std::int64_t updateTime_ = -1;  // milliseconds; -1 while none is open
};

}  // namespace twr
