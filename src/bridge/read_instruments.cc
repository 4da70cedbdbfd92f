// The first half of a tick: from Deckman into the record.
#include <cmath>

#include "bridge/controls.h"
#include "bridge/instrument_value.h"
#include "bridge/main_dialog.h"
#include "core/days.h"
#include "core/position_source.h"
#include "core/shared_field.h"

namespace twr {
namespace {

constexpr std::uint32_t kGun = 36;  // index into sysValue: the moment at which the start count reaches zero
constexpr double kRepeatAfter = 1.0 / kSecondsPerDay;

}  // namespace

void CHalyrig32Dlg::ReadInstruments() {
    const bool positionFromDeckman = PositionFromDeckman(*core_.View());
    if (library_.fnRead) ReadRows(positionFromDeckman);
    if (positionFromDeckman && library_.fnGetPosition) ReadPosition();
    if (window_->Checked(kTimerCheck) && catalogue_.timerVariableId >= 0 && library_.fnRead) ReadTimer();
    Put(core_.View()->sysFlag[kFlagDataPublished], std::uint8_t{1});
}

void CHalyrig32Dlg::ReadRows(bool positionFromDeckman) {
    ReadingUnits units = {
        .degreesTrue = window_->Checked(kTrueCheck), .depthInFeet = window_->Checked(kDepthCheck), .variation = kNoValue};
    const double now = UtcNowDays(services_.clock);
    for (const MappingVar& row : mapping_.varRows) {
        const auto channel = static_cast<ChannelId>(row.channel);
        if (row.dfwId == kNoInt || channel == kTime || channel >= kChannelCount) continue;
        if (!positionFromDeckman && FollowsPositionSource(channel)) continue;
        float reading = 0.0f;
        library_.fnRead(row.dfwId, &reading);
        units.variation = Variation();  // an earlier row may have published it
        const double value = InstrumentValue(channel, reading, units);
        if (value == sentValue_[channel] && std::fabs(now - sentTime_[channel]) <= kRepeatAfter) continue;
        sentTime_[channel] = now;
        sentValue_[channel] = value;
        core_.SetChannel(channel, static_cast<BoatSlot>(row.boat), value, 0.0);
    }
}

void CHalyrig32Dlg::ReadPosition() {
    float latitude = 0.0f, longitude = 0.0f;
    library_.fnGetPosition(&latitude, &longitude);
    core_.SetChannel(kLat, 0, latitude, 0.0);
    core_.SetChannel(kLon, 0, longitude, 0.0);
}

void CHalyrig32Dlg::ReadTimer() {
    float reading = 0.0f;
    library_.fnRead(catalogue_.timerVariableId, &reading);
    const double seconds = reading;
    if (seconds != 0.0 && lastTimerValue_ > seconds) {
        core_.SetSystemValue(kGun, seconds / 60.0 / 60.0 / 24.0 + UtcNowDays(services_.clock));
    }
    lastTimerValue_ = seconds;
}

double CHalyrig32Dlg::Variation() const {
    const CoreRecord& record = *core_.View();
    return Load(record.boatCount) == 0 ? kNoValue : Load(record.fullBlocks[0].value[kMagVar]);
}

}  // namespace twr
