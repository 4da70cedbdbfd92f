// SPDX-License-Identifier: MIT
// Changes as delta messages of Signal K 1.7, one JSON object a line.
#include <utility>

#include "streams/iso_time.h"
#include "streams/signalk_values.h"
#include "streams/stream_format.h"

namespace twr {
namespace {

constexpr std::size_t kLongestMessage = 1400;  // bytes: a datagram holds it, and a reader that gives up on longer lines is not met
constexpr std::size_t kRoomForOne = 600;       // bytes: one path with its unit, and the frame of a message

// Tells the own boat as vessels.self, the others by their MMSI, and boats without one not at all. What has no path is left out, and
// so are directions from true north while the variation is unknown. The unit of a path goes with its first value.
class SignalKDeltas final : public StreamFormat {
public:
    SignalKDeltas() : state_(kBoatCount * SignalKPaths().size()) {}

    void Greet(std::string& out, double now) const override;
    void Append(std::string& out, std::span<const Change> changes, const Follower& follower) override;

private:
    struct State {
        bool hasValue = false;  // the last that was told is no null
        bool hasMeta = false;   // its unit has been told
    };

    void AppendBoat(std::string& out, std::span<const Change> ofBoat, const Follower& follower);
    void CloseMessage(std::string& out);
    void Collect(std::size_t index, double time, BoatSlot boat, const Follower& follower);
    void CollectMeta(const SignalKPath& path, const CCore& core);
    void OpenUpdate(double time);

    std::vector<State> state_;  // of each boat and path
    std::string updates_, meta_, value_, context_;
    std::int64_t updateTime_ = -1;  // milliseconds; -1 while none is open
};

// Who speaks, and that the own boat is vessels.self.
void SignalKDeltas::Greet(std::string& out, double now) const {
    out += R"({"name":"halyrig","version":"1.7.0","timestamp":")";
    AppendIsoTime(out, now);
    out += R"(","self":"vessels.self","roles":["master","main"]})"
           "\n";
}

void SignalKDeltas::Append(std::string& out, std::span<const Change> changes, const Follower& follower) {
    while (!changes.empty()) {
        const auto ofBoat = TakeBoat(changes);
        context_ = SignalKContext(*follower.Core().View(), ofBoat.front().boat);
        if (!context_.empty()) AppendBoat(out, ofBoat, follower);
    }
}

void SignalKDeltas::AppendBoat(std::string& out, std::span<const Change> ofBoat, const Follower& follower) {
    const SignalKChanges changes(ofBoat);
    for (std::size_t path = 0; path < SignalKPaths().size(); ++path) {
        const std::optional<double> time = changes.TimeOf(SignalKPaths()[path]);
        if (!time) continue;
        Collect(path, *time, ofBoat.front().boat, follower);
        if (updates_.size() + meta_.size() > kLongestMessage - kRoomForOne) CloseMessage(out);
    }
    if (!updates_.empty()) CloseMessage(out);
}

void SignalKDeltas::CloseMessage(std::string& out) {
    ((out += R"({"context":")") += context_) += R"(","updates":[)";
    if (!meta_.empty()) ((out += R"({"$source":"halyrig","meta":[)") += meta_) += "]},";
    (out += updates_) += "]}]}\n";
    updates_.clear();
    meta_.clear();
    updateTime_ = -1;
}

void SignalKDeltas::Collect(std::size_t index, double time, BoatSlot boat, const Follower& follower) {
    const SignalKPath& path = SignalKPaths()[index];
    State& state = state_[boat * SignalKPaths().size() + index];
    SetSignalKValue(value_, path, boat, follower);
    if (value_.empty() && !state.hasValue) return;
    state.hasValue = !value_.empty();
    if (!std::exchange(state.hasMeta, true)) CollectMeta(path, follower.Core());
    OpenUpdate(time);
    (((updates_ += R"({"path":")") += path.path) += R"(","value":)") += value_.empty() ? "null" : value_;
    updates_ += '}';
}

void SignalKDeltas::CollectMeta(const SignalKPath& path, const CCore& core) {
    const std::string meta = SignalKMeta(path, core);
    if (meta.empty()) return;
    meta_ += meta_.empty() ? R"({"path":")" : R"(,{"path":")";
    (((meta_ += path.path) += R"(","value":)") += meta) += '}';
}

// Values of the same millisecond share one timestamp.
void SignalKDeltas::OpenUpdate(double time) {
    const std::int64_t millisecond = ToMillisecond(time);
    if (millisecond == updateTime_) {
        updates_ += ',';
        return;
    }
    updates_ += updateTime_ < 0 ? R"({"$source":"halyrig","timestamp":")" : R"(]},{"$source":"halyrig","timestamp":")";
    AppendIsoTime(updates_, time);
    updates_ += R"(","values":[)";
    updateTime_ = millisecond;
}

}  // namespace

std::unique_ptr<StreamFormat> MakeSignalKDeltas() { return std::make_unique<SignalKDeltas>(); }

}  // namespace twr
