#include "halyrigctl/channel_reading.h"

#include <cmath>

#include "core/days.h"
#include "core/record_access.h"
#include "core/units.h"
#include "halyrigctl/value_chain.h"

namespace twr {
namespace {

// The unit in which the record keeps a type; empty if the type has none.
std::u16string_view InternalUnit(std::int16_t type) {
    UnitSettings internal{};
    internal.magnetic = true;
    switch (type) {
        case kTypeDateTime:
        case kTypeDuration:
            return u"days";
        case kTypeLatitude:
        case kTypeLongitude:
            return u"°";
        default:
            return UnitLabel(type, internal);
    }
}

bool SaysItsUnit(std::u16string_view text) { return text.find(u'°') != std::u16string_view::npos; }

}  // namespace

ChannelReading ReadChannel(CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances) {
    CoreRecord& record = *core.View();
    ChannelReading reading;
    const ChannelId resolved = core.ResolveAlternate(channel, true);
    const ChannelId source = core.ResolveAlternate(resolved, true);  // a longer chain is followed when its value is read
    if (source >= kChannelCount) {
        reading.text = u"- -";
        reading.missing = ValueChain(core, channel, boat, circumstances).Fault();
        return reading;
    }
    const Entry entry = EntryOf(record, source, boat);
    const double time = entry ? Load(*entry.time) : 0.0;
    if (time != 0.0) reading.age = std::fabs(circumstances.now - time) * kSecondsPerDay;
    reading.limit = core.StaleSeconds(source, boat);
    reading.valueUnit = InternalUnit(core.ChannelTypeOf(source));
    double shown = kNoValue;
    core.GetFreshChannel(resolved, shown, boat, false, Load(record.sysFlag[kFlagMagnetic]) != 0, kNoValue);
    reading.text = core.ChannelText(resolved, shown);
    if (shown == kNoValue) {
        reading.missing = ValueChain(core, channel, boat, circumstances).Fault();
        return reading;
    }
    reading.value = Load(*entry.value);
    if (!SaysItsUnit(reading.text)) reading.textUnit = UnitLabel(core.ChannelTypeOf(source), UnitSettingsOf(record));
    return reading;
}

}  // namespace twr
