// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/channel_reading.h"

#include <cmath>

#include "core/days.h"
#include "core/record_access.h"
#include "core/units.h"
#include "halyrigctl/setup/value_chain.h"

namespace twr {
namespace {

ChannelState StateWithoutValue(const Subject& subject, Reason reason) {
    if (!subject.entry) return ChannelState::kMissing;
    if (reason != Reason::kNone && (LinkOf(reason) == LinkName::kSuite || LinkOf(reason) == LinkName::kRange))
        return ChannelState::kRefused;
    return subject.stored != kNoValue && subject.stale ? ChannelState::kStale : ChannelState::kMissing;
}

// The unit behind a value's text; empty if there is none, or the text contains it.
std::u16string_view TextUnit(const CCore& core, ChannelId source, std::u16string_view text) {
    return text.find(u'°') != text.npos ? std::u16string_view()
                                        : UnitLabel(core.ChannelTypeOf(source), UnitSettingsOf(*core.View()));
}

// A fresh value in the user's units; kNoValue if there is none. `source`: what the channel stands for.
double ShownValue(const CCore& core, ChannelId channel, ChannelId source, BoatSlot boat, bool damped) {
    double shown = kNoValue;
    const Entry entry = EntryOf(*core.View(), source, boat);
    if (entry && IsLostDepth(source, Load(*entry.value))) return shown;
    core.GetFreshChannel(channel, shown, boat, damped, Load(core.View()->sysFlag[kFlagMagnetic]) != 0, kNoValue);
    return shown;
}

}  // namespace

std::u16string LiveText(CCore& core, ChannelId channel, BoatSlot boat, bool damped) {
    const ChannelId resolved = core.ResolveAlternate(channel, true);
    const ChannelId source = core.SourceOf(channel);
    if (source >= kChannelCount) return u"- -";
    const double shown = ShownValue(core, resolved, source, boat, damped);
    const std::u16string text = core.ChannelText(resolved, shown);
    const std::u16string_view unit = shown == kNoValue ? std::u16string_view() : TextUnit(core, source, text);
    return unit.empty() ? text : text + u" " + std::u16string(unit);
}

std::string_view StateWord(ChannelState state) {
    static constexpr std::string_view kWords[] = {"fresh", "stale", "refused", "missing"};
    return kWords[static_cast<std::size_t>(state)];
}

ChannelReading ReadChannel(CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances) {
    CoreRecord& record = *core.View();
    ChannelReading reading;
    const ChannelId resolved = core.ResolveAlternate(channel, true);
    const ChannelId source = core.SourceOf(channel);
    if (source >= kChannelCount) {
        reading.text = u"- -";
        reading.missing = ValueChain(core, channel, boat, circumstances).Broken();
        return reading;
    }
    const Entry entry = EntryOf(record, source, boat);
    const double time = entry ? Load(*entry.time) : 0.0;
    if (time != 0.0) reading.age = std::fabs(circumstances.now - time) * kSecondsPerDay;
    reading.limit = core.StaleSeconds(source, boat);
    reading.valueUnit = InternalUnit(core.ChannelTypeOf(source));
    const double shown = ShownValue(core, resolved, source, boat, false);
    reading.text = core.ChannelText(resolved, shown);
    const bool textless = core.ChannelTypeOf(source) == kTypeDateTime && reading.text.empty();
    if (shown == kNoValue || !std::isfinite(shown) || !entry || textless) {
        reading.missing = ValueChain(core, channel, boat, circumstances).Broken();
        reading.state = StateWithoutValue({core, source, boat, circumstances.now}, reading.missing.reason);
        return reading;
    }
    reading.state = ChannelState::kFresh;
    reading.value = Load(*entry.value);
    reading.shown = shown;
    reading.textUnit = TextUnit(core, source, reading.text);
    return reading;
}

}  // namespace twr
