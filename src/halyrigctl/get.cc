#include <cmath>
#include <cstdio>
#include <string>

#include "core/days.h"
#include "core/shared_field.h"
#include "core/store.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/guest.h"
#include "platform/wide_text.h"

namespace twr {
namespace {

// Why a channel has no value to show.
std::string Missing(const CoreRecord& record, BoatSlot boat, const Entry& entry) {
    if (!entry) return "boat " + std::to_string(boat) + " has no place for this channel";
    if (Load(*entry.time) == 0.0) return "never published";
    if (boat >= Load(record.boatCount)) return "no boat up to this one has ever received a real value";
    return "published without a value: the source has none, or it was out of range";
}

}  // namespace

int GetChannelValue(System& system, ChannelId channel, BoatSlot boat) {
    Guest guest(system);
    if (!guest) return 1;
    const Entry entry = EntryOf(guest.Record(), channel, boat);
    const double value = entry ? Load(*entry.value) : kNoValue;
    const std::string name = ToUtf8(ChannelCatalogue()[channel].name);
    if (value == kNoValue) {
        std::fprintf(stderr, "halyrigctl: %s: %s\n", name.c_str(), Missing(guest.Record(), boat, entry).c_str());
        return 1;
    }
    char line[128];
    const double age = (UtcNowDays(system.Core().clock) - Load(*entry.time)) * kSecondsPerDay;
    std::snprintf(line, sizeof line, "%s\t%.10g\t%.1f s ago\n", name.c_str(), value, age);
    return system.GetConsole().Write(line) ? 0 : 1;
}

}  // namespace twr
