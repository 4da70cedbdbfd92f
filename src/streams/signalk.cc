// SPDX-License-Identifier: MIT
// Changes as delta messages of Signal K 1.7, one JSON object a line.
#include <algorithm>
#include <array>
#include <bitset>
#include <charconv>
#include <cmath>
#include <utility>

#include "base/angles.h"
#include "base/numbers.h"
#include "base/wide_text.h"
#include "core/record_access.h"
#include "streams/iso_time.h"
#include "streams/signalk_paths.h"
#include "streams/stream_format.h"

namespace twr {
namespace {

constexpr std::uint32_t kHighestMmsi = 999999999;
constexpr std::size_t kLongestMessage = 1400;  // bytes: a datagram holds it, and a reader that gives up on longer lines is not met
constexpr std::size_t kRoomForOne = 600;       // bytes: one path with its unit, and the frame of a message

// Empty if the boat can't be named.
void SetContext(std::string& context, const CoreRecord& record, BoatSlot boat) {
    context.clear();
    if (boat == 0) {
        context = "vessels.self";
    } else if (const std::uint32_t mmsi = Load(record.boats[boat].mmsi); mmsi != 0 && mmsi <= kHighestMmsi) {
        context = Printed("vessels.urn:mrn:imo:mmsi:%09u", mmsi);
    }
}

std::optional<double> InPathUnit(const SignalKPart& part, BoatSlot boat, const Follower& follower) {
    double value = follower.Tells(part.channel) ? follower.Value(part.channel, boat) : kNoValue;
    if (value == kNoValue) return std::nullopt;
    if (part.trueBearing) {
        const double variation = follower.Variation(boat);
        if (variation == kNoValue) return std::nullopt;
        value = TurnedBearing(value + variation);
    }
    if (part.unit == &kSignalKMoment && !HasIsoTime(value)) return std::nullopt;
    value = value * part.unit->factor + part.unit->offset;
    return std::isfinite(value) ? std::optional(value) : std::nullopt;  // JSON has no infinities
}

void AppendValue(std::string& out, const SignalKPart& part, double value) {
    if (part.unit == &kSignalKMoment) {
        out += '"';
        AppendIsoTime(out, value);
        out += '"';
    } else {
        char digits[32];
        out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    }
}

bool IsObject(const SignalKPath& path) { return *path.parts.front().member != 0; }

// Empty if there is none.
void SetValue(std::string& value, const SignalKPath& path, BoatSlot boat, const Follower& follower) {
    value.clear();
    for (const SignalKPart& part : path.parts) {
        const std::optional<double> number = InPathUnit(part, boat, follower);
        if (!number && path.whole) return value.clear();
        if (!number) continue;
        if (IsObject(path)) (((value += value.empty() ? "{\"" : ",\"") += part.member) += "\":");
        AppendValue(value, part, *number);
    }
    if (IsObject(path) && !value.empty()) value += '}';
}

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

// Who speaks, and that the own boat is vessels.self.
void SignalKDeltas::Greet(std::string& out, double now) const {
    out += R"({"name":"halyrig","version":"1.7.0","timestamp":")";
    AppendIsoTime(out, now);
    out += R"(","self":"vessels.self","roles":["master","main"]})"
           "\n";
}

void SignalKDeltas::Append(std::string& out, std::span<const Change> changes, const Follower& follower) {
    while (!changes.empty()) {
        const BoatSlot boat = changes.front().boat;
        const auto next = std::ranges::find_if(changes, [&](const Change& change) { return change.boat != boat; });
        const auto count = static_cast<std::size_t>(next - changes.begin());
        SetContext(context_, *follower.Core().View(), boat);
        if (!context_.empty()) AppendBoat(out, changes.first(count), follower);
        changes = changes.subspan(count);
    }
}

void SignalKDeltas::AppendBoat(std::string& out, std::span<const Change> changes, const Follower& follower) {
    changed_.reset();
    for (const Change& change : changes) {
        changed_.set(change.channel);
        times_[change.channel] = change.time;
    }
    for (std::size_t path = 0; path < SignalKPaths().size(); ++path) {
        Collect(path, changes.front().boat, follower);
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

// The time of the latest part that has changed; nullopt if none has.
std::optional<double> SignalKDeltas::ChangedAt(const SignalKPath& path) const {
    std::optional<double> latest;
    const auto count = [&](ChannelId channel) {
        if (changed_[channel]) latest = std::max(latest.value_or(0.0), times_[channel]);
    };
    for (const SignalKPart& part : path.parts) {
        count(part.channel);
        if (part.trueBearing) count(kMagVar);
    }
    return latest;
}

void SignalKDeltas::Collect(std::size_t index, BoatSlot boat, const Follower& follower) {
    const SignalKPath& path = SignalKPaths()[index];
    const std::optional<double> time = ChangedAt(path);
    if (!time) return;
    State& state = state_[boat * SignalKPaths().size() + index];
    SetValue(value_, path, boat, follower);
    if (value_.empty() && !state.hasValue) return;
    state.hasValue = !value_.empty();
    if (!std::exchange(state.hasMeta, true)) CollectMeta(path);
    OpenUpdate(*time);
    (((updates_ += R"({"path":")") += path.path) += R"(","value":)") += value_.empty() ? "null" : value_;
    updates_ += '}';
}

// The description is required beside the unit.
void SignalKDeltas::CollectMeta(const SignalKPath& path) {
    const SignalKPart& part = path.parts.front();
    if (IsObject(path) || *part.unit->name == 0) return;
    meta_ += meta_.empty() ? R"({"path":")" : R"(,{"path":")";
    ((meta_ += path.path) += R"(","value":{"units":")") += part.unit->name;
    (meta_ += R"(","description":")") += ToUtf8(ChannelCatalogue()[part.channel].longName);
    meta_ += part.trueBearing ? ", true\"}}" : "\"}}";
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
