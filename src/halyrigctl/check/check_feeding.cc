// SPDX-License-Identifier: MIT
// Whether what is shown, and what the boxes ask for, is fed by anything.
#include <algorithm>

#include "core/record_access.h"
#include "deckman/instrument_value.h"
#include "halyrigctl/check/check_setup.h"
#include "halyrigctl/setup/channel_reading.h"
#include "halyrigctl/setup/dry_run.h"
#include "halyrigctl/setup/value_chain.h"
#include "mapping/mapping_rows.h"

namespace twr {
namespace {

constexpr double kBefore = 1.0 / kSecondsPerDay;  // rates need two values at different times

// Twice, as different values within the channel's range.
void Publish(CCore& core, ChannelId channel, BoatSlot boat, double now) {
    const ChannelInfo& info = ChannelCatalogue()[channel];
    const double middle = info.min == info.max ? 1.0 : (info.min + info.max) / 2.0;
    core.SetChannel(channel, boat, middle, now - kBefore);
    core.SetChannel(channel, boat, middle + 0.5, now);
}

bool HasValue(CoreRecord& record, ChannelId channel, BoatSlot boat) {
    const Entry entry = EntryOf(record, channel, boat);
    return entry && Load(*entry.value) != kNoValue;
}

// Which channels get a value once the bridge runs with a mapping.
class FedChannels {
public:
    // Publishes every row in a record of its own, so that what the core derives from it is there as well. `inForce` has the
    // settings and the alternates, and what other programs publish.
    FedChannels(const CoreServices& services, const Mapping& mapping, CoreRecord& inForce);

    // An alternating channel is fed if one of those for which it may stand is.
    bool Feeds(ChannelId channel, BoatSlot boat) const;

private:
    bool FeedsItself(ChannelId channel, BoatSlot boat) const;

    DryRun trial_;
    CoreRecord& inForce_;
};

FedChannels::FedChannels(const CoreServices& services, const Mapping& mapping, CoreRecord& inForce)
    : trial_(services), inForce_(inForce) {
    CCore& core = trial_.Core();
    for (std::size_t flag = 0; flag < kSysFlagCount; ++flag) {
        if (flag != kFlagHoldActive) Put(core.View()->sysFlag[flag], Load(inForce.sysFlag[flag]));
    }
    const double now = UtcNowDays(services.clock);
    const bool position = PositionFromDeckman(inForce);
    for (const ChannelId channel : {kLat, kLon}) {
        if (position) Publish(core, channel, 0, now);
    }
    // The order matters for what is derived from two of them.
    for (int time = 0; time < 2; ++time) {
        for (const MappingVar& row : mapping.varRows) {
            const auto channel = static_cast<ChannelId>(row.channel);
            if (position || !FollowsPositionSource(channel)) Publish(core, channel, static_cast<BoatSlot>(row.boat), now);
        }
    }
}

bool FedChannels::FeedsItself(ChannelId channel, BoatSlot boat) const {
    return channel == kTime || HasValue(*trial_.Core().View(), channel, boat) || HasValue(inForce_, channel, boat);
}

bool FedChannels::Feeds(ChannelId channel, BoatSlot boat) const {
    if (!IsAlternating(channel)) return FeedsItself(channel, boat);
    // One that stands for another alternating channel is followed as often as there are of them.
    std::array<bool, kAlternateCount> seen{};
    std::vector<ChannelId> open{channel};
    while (!open.empty()) {
        const ChannelId next = open.back();
        open.pop_back();
        if (!IsAlternating(next)) {
            if (next < kChannelCount && FeedsItself(next, boat)) return true;
        } else if (!seen[next - kAlt0]) {
            seen[next - kAlt0] = true;
            for (const std::int32_t& slot : inForce_.alternates[next - kAlt0].slot)
                open.push_back(static_cast<ChannelId>(Load(slot)));
        }
    }
    return false;
}

// Remotes that show alternating channels which stand for nothing, since alternate.csv names nothing.
void CheckAlternates(const CheckedSetup& setup, const std::vector<std::size_t>& remotes, Weight weight) {
    if (remotes.empty()) return;
    Fault fault = setup.now.AlternatesFault();
    const std::u16string path = setup.now.ConfigPath(u"alternate.csv");
    if (!fault && !setup.services.files.Exists(path)) {
        const bool one = remotes.size() == 1;
        std::string which = one ? "remote" : "remotes";
        for (const std::size_t remote : remotes) which += (remote == remotes.front() ? " " : ", ") + std::to_string(remote);
        fault = Fault(Reason::kAlternatesMissing, {which + (one ? " shows" : " show")});
    }
    if (fault.reason == Reason::kAlternatesMissing) setup.Add(weight, path, 0, fault);
}

// Without a program that damps a damped remote shows nothing.
void CheckDamping(const CheckedSetup& setup, const MappingRemote& row) {
    if (row.damp == 0) return;
    const std::u16string& path = setup.now.TheMapping().path;
    const auto channel = static_cast<ChannelId>(row.channel);
    const auto boat = static_cast<BoatSlot>(row.boat);
    if (!setup.live || !setup.now.bridge)
        return setup.Add(Weight::kNote, path, row.line, Fault(Reason::kDampedElsewhere, {std::to_string(row.remote)}));
    const auto isShown = [&](bool damped) { return LiveText(setup.core, channel, boat, damped) != u"- -"; };
    if (isShown(false) && !isShown(true))
        setup.Add(Weight::kLine, path, row.line, Fault(Reason::kNotDamped, {"remote " + std::to_string(row.remote)}));
}

}  // namespace

// While the suite does not run, another program may still come to feed a channel.
void CheckFeeding(const CheckedSetup& setup) {
    if (setup.now.Variables().rows.empty() || setup.now.ListCutShort()) return;
    const MappingLook& look = setup.now.TheMapping();
    const FedChannels fed(setup.services, look.mapping, *setup.core.View());
    const Weight weight = setup.live && setup.now.bridge ? Weight::kLine : Weight::kNote;
    const bool position = PositionFromDeckman(*setup.core.View());
    const bool alternates = setup.now.AlternatesFault() || !setup.services.files.Exists(setup.now.ConfigPath(u"alternate.csv"));
    std::vector<std::size_t> ofNothing;
    for (const MappingRemote& row : look.mapping.remoteRows) {
        CheckDamping(setup, row);
        const auto channel = static_cast<ChannelId>(row.channel);
        if (fed.Feeds(channel, static_cast<BoatSlot>(row.boat))) continue;
        if (IsAlternating(channel) && alternates) {
            ofNothing.push_back(static_cast<std::size_t>(row.remote));
            continue;
        }
        const std::string todo =
            FollowsPositionSource(channel) && !position ? std::string("Deckman does ") + kWhilePositionSource : "";
        setup.Add(weight, look.path, row.line,
                  Fault(Reason::kNotFed,
                        {std::to_string(row.remote), ChannelInWords(setup.core, channel, static_cast<BoatSlot>(row.boat)),
                         setup.live ? "" : " yet"},
                        todo));
    }
    CheckAlternates(setup, ofNothing, weight);
    const auto isBearing = [](const MappingVar& row) { return IsInstrumentBearing(static_cast<ChannelId>(row.channel)); };
    if (setup.now.settings.degreesTrue && std::ranges::any_of(look.mapping.varRows, isBearing) && !fed.Feeds(kMagVar, 0))
        setup.Add(weight, look.path, 0, Fault(Reason::kNoVariationForBox, {"them"}));
}

}  // namespace twr
