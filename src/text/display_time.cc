// Times of day in the zone that the user wants to see.
#include <optional>

#include "core/core.h"
#include "core/shared_field.h"
#include "base/calendar.h"

namespace twr {
namespace {

bool ShowsLocalTime(const CoreRecord* record) { return record && Load(record->sysFlag[kFlagLocalTime]) != 0; }

double Days(std::int32_t minutes) { return static_cast<double>(minutes) / 60 / 24; }

// Nothing when the zone can't be told. Standard time has no bias of its own.
std::optional<double> LocalTime(const Zone& zone, double day) {
    const std::optional<ZoneState> state = zone.Now();
    if (!state) return std::nullopt;
    return day - (state->daylight ? Days(state->daylightBias) + Days(state->bias) : Days(state->bias));
}

}  // namespace

double CCore::ToDisplayTime(double day) { return ShowsLocalTime(view_) ? LocalTime(services_.zone, day).value_or(day) : day; }

std::u16string CCore::TimeText(double day) {
    const std::optional<double> shown = ShowsLocalTime(view_) ? LocalTime(services_.zone, day) : day;
    return shown ? DateTimeFormat(*shown, u"%d-%b-%Y %H:%M:%S") : std::u16string();
}

}  // namespace twr
