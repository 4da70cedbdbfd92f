// SPDX-License-Identifier: MIT
#include "halyrigctl/serve/lookout.h"

#include <cmath>

#include "base/numbers.h"
#include "core/days.h"
#include "core/record_access.h"
#include "core/units.h"
#include "halyrigctl/output/json.h"
#include "halyrigctl/setup/channel_reading.h"

namespace twr {
namespace {

constexpr double kSecond = 0.95 / kSecondsPerDay;  // for a look that comes a little early

bool HasPassed(double now, double since, double days) { return !(std::fabs(now - since) < days); }

bool Turns(std::int16_t type) { return type == kTypeBearing || type == kTypeAngle || type == kTypeWindAngle; }

void SetMissing(Tile& tile) {
    constexpr const char* kMissing = "\"missing\"";
    if (tile.state == kMissing && tile.readAt == 0.0) return;
    const std::uint64_t changes = tile.changes + 1;
    tile = Tile{};
    tile.changes = changes;
    tile.state = kMissing;
    tile.text = tile.unit = tile.value = "null";
}

}  // namespace

std::string InJson(std::u16string_view text) { return JsonLine(TextOrNull(text)); }

std::string InJson(double number) { return std::isfinite(number) && number != kNoValue ? Printed("%.10g", number) : "null"; }

Lookout::Lookout(System& system) : system_(system), guest_(system) {}

double SecondsSince1970(double days) { return (days - kDaysTo1970) * kSecondsPerDay; }

void Lookout::Look() {
    if (const char* why = guest_.WhyLeave()) {
        Forget();
        guest_.Leave(why);
    }
    now_ = UtcNowDays(system_.Core().clock);
    changes_ = {};
    const bool asks = HasPassed(now_, askedAt_, kSecond / 2);
    if (asks) askedAt_ = now_;
    if (!Core() && asks) Join();
    if (asks) replays_ = system_.GetInstance().Look(kReplayName).state == NameLook::kTaken;
    if (Core()) {
        circumstances_->LookAgain();
        changes_ = follower_->Look();
        history_.Add(*follower_, now_);
    }
    LookAtBridge();
    std::erase_if(tiles_, [](const auto& tile) { return tile.second.use_count() == 1; });
    for (auto& [place, tile] : tiles_) Refresh(place, *tile);
}

void Lookout::Join() {
    if (!guest_.Join()) return guest_.SayThatItWaits();
    circumstances_.emplace(system_, *Core());
    follower_.emplace(*Core(), system_.Core().clock, FollowOptions{});
    guest_.Welcome();
}

void Lookout::Forget() {
    changes_ = {};
    circumstances_.reset();
    follower_.reset();
}

void Lookout::LookAtBridge() {
    bridge_ = !Core()                         ? "none"
              : !circumstances_->BridgeRuns() ? "stopped"
              : circumstances_->StandsStill() ? "stands-still"
                                              : "running";
}

std::shared_ptr<const Tile> Lookout::Watch(ChannelPlace place) {
    auto& tile = tiles_[place];
    if (!tile) {
        tile = std::make_shared<Tile>();
        Refresh(place, *tile);
    }
    return tile;
}

// What is stored tells whether there is anything new to read. The rest, such as the user's units, may change at any time, but
// seldom does.
bool Lookout::IsDue(ChannelPlace place, const Tile& tile) const {
    if (HasPassed(now_, tile.readAt, kSecond)) return true;
    const ChannelId source = Core()->SourceOf(place.first);
    const Entry entry = source < kChannelCount ? EntryOf(*Core()->View(), source, place.second) : Entry{};
    if (!entry) return tile.fresh;
    const double time = Load(*entry.time), value = Load(*entry.value);
    return time != tile.published || value != tile.stored ||
           (tile.fresh && IsStale(time, now_, Core()->StaleSeconds(source, place.second)));
}

// A value now is lower or higher than what the spark tells. A direction may also be within by another turn.
bool Lookout::IsBeyond(const Tile& tile) {
    const auto within = [&](double value) { return tile.lowest <= value && value <= tile.highest; };
    return tile.fresh && !within(tile.stored) && !within(tile.stored + 360.0) && !within(tile.stored - 360.0);
}

void Lookout::Refresh(ChannelPlace place, Tile& tile) {
    if (!Core()) {
        SetMissing(tile);
    } else if (IsDue(place, tile)) {
        Read(place, tile);
    }
    if (Core() && (HasPassed(now_, tile.sparkAt, kSecond) || IsBeyond(tile))) Spark(place, tile);
    const double age = std::fabs(now_ - tile.published) * kSecondsPerDay;
    tile.json = Printed("{\"id\":%u,\"boat\":%u,\"value\":", unsigned{place.first}, unsigned{place.second});
    for (const std::string* part : {&tile.value, &tile.text, &tile.unit, &tile.state, &tile.spark}) {
        if (part == &tile.text) tile.json += ",\"text\":";
        if (part == &tile.unit) tile.json += ",\"unit\":";
        if (part == &tile.state) tile.json += ",\"state\":";
        if (part == &tile.spark) tile.json += ",\"spark\":";
        tile.json += *part;
    }
    tile.json += ",\"age\":" + (tile.published == 0.0 ? "null" : Printed("%.3f", age)) + "}";
}

void Lookout::Read(ChannelPlace place, Tile& tile) {
    const auto& [channel, boat] = place;
    const ChannelReading reading = ReadChannel(*Core(), channel, boat, *circumstances_);
    const ChannelId source = Core()->SourceOf(channel);
    const Entry entry = source < kChannelCount ? EntryOf(*Core()->View(), source, boat) : Entry{};
    tile.published = entry ? Load(*entry.time) : 0.0;
    tile.stored = entry ? Load(*entry.value) : kNoValue;
    tile.readAt = now_;
    tile.fresh = reading.state == ChannelState::kFresh;
    const std::int16_t type = source < kChannelCount ? Core()->ChannelTypeOf(source) : std::int16_t{kTypeNumber};
    const std::string state = "\"" + std::string(StateWord(reading.state)) + "\"";
    const std::string text = tile.fresh ? InJson(reading.text) : "null";
    const std::string unit = InJson(tile.fresh ? reading.textUnit : UnitLabel(type, UnitSettingsOf(*Core()->View())));
    if (state != tile.state || text != tile.text || unit != tile.unit) ++tile.changes;
    tile.state = state;
    tile.text = text;
    tile.unit = unit;
    tile.value = tile.fresh ? InJson(ForPage({source, boat}, *reading.value)) : "null";
}

void Lookout::Spark(ChannelPlace place, Tile& tile) {
    tile.sparkAt = now_;
    tile.spark = "null";
    const ChannelPlace source(Core()->SourceOf(place.first), place.second);
    if (source.first >= kChannelCount) return;
    const bool turns = Turns(Core()->ChannelTypeOf(source.first));
    const auto extremes = history_.ExtremesOf(source, tile.fresh ? tile.stored : kNoValue, turns);
    if (!extremes) return;
    tile.lowest = extremes->lowest, tile.highest = extremes->highest;
    const auto text = [&](double value) {
        const double once = turns ? std::remainder(value, 360.0) : value;
        return InJson(Core()->ChannelText(source.first, InUserUnits(source, once)));
    };
    tile.spark = "[" + text(extremes->lowest) + "," + text(extremes->highest) + "]";
}

double Lookout::InUserUnits(ChannelPlace place, double value) const {
    const auto& [channel, boat] = place;
    const bool trueBearing = Core()->ChannelTypeOf(channel) == kTypeBearing && Load(Core()->View()->sysFlag[kFlagMagnetic]) == 0;
    return trueBearing ? Core()->ApplyVariation(value, boat) : Core()->ToDisplayUnits(channel, value, kNoValue);
}

double Lookout::ForPage(ChannelPlace place, double value) const {
    const double shown = InUserUnits(place, value);
    return shown != kNoValue && Core()->ChannelTypeOf(place.first) == kTypeDuration ? shown * kSecondsPerDay : shown;
}

}  // namespace twr
