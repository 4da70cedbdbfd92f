// SPDX-License-Identifier: MIT
#include "bridge/instrument_pass.h"

#include <cmath>

#include "core/days.h"
#include "core/record_access.h"

namespace twr {
namespace {

constexpr double kRepeatAfter = 1.0 / kSecondsPerDay;

}  // namespace

InstrumentPass::InstrumentPass(CCore& core, const Clock& clock, BridgeStatusWriter* status)
    : core_(core), clock_(clock), status_(status) {
    sentTime_.fill(0.0);
    sentValue_.fill(kNoValue);
}

void InstrumentPass::Run(const DeckmanLibrary& library, std::span<const MappingVar> rows, std::int32_t timer,
                         const Settings& settings) {
    CoreRecord& record = *core_.View();
    const bool positionFromDeckman = PositionFromDeckman(record);
    if (library.fnRead) ReadRows(library.fnRead, rows, settings, positionFromDeckman);
    if (positionFromDeckman && library.fnGetPosition) ReadPosition(library.fnGetPosition);
    if (settings.useTimer && timer >= 0 && library.fnRead) ReadTimer(library.fnRead, timer);
    Put(record.sysFlag[kFlagDataPublished], std::uint8_t{1});
}

void InstrumentPass::ReadRows(UsrRead read, std::span<const MappingVar> rows, const Settings& settings, bool positionFromDeckman) {
    ReadingUnits units = {.degreesTrue = settings.degreesTrue, .depthInFeet = settings.depthInFeet, .variation = kNoValue};
    const double now = UtcNowDays(clock_);
    for (const MappingVar& row : rows) {
        const auto channel = static_cast<ChannelId>(row.channel);
        if (row.dfwId == kNoInt || channel == kTime || channel >= kChannelCount) continue;
        if (!positionFromDeckman && FollowsPositionSource(channel)) continue;
        float reading = 0.0f;
        read(row.dfwId, &reading);
        if (status_) status_->Noted(static_cast<std::size_t>(&row - rows.data()), reading);
        units.variation = OwnVariation(*core_.View());  // an earlier row may have published it
        const double value = InstrumentValue(channel, reading, units);
        if (value == sentValue_[channel] && std::fabs(now - sentTime_[channel]) <= kRepeatAfter) continue;
        sentTime_[channel] = now;
        sentValue_[channel] = value;
        core_.SetChannel(channel, static_cast<BoatSlot>(row.boat), value, 0.0);
    }
}

void InstrumentPass::ReadPosition(UsrGetPosition getPosition) {
    float latitude = 0.0f, longitude = 0.0f;
    getPosition(&latitude, &longitude);
    core_.SetChannel(kLat, 0, latitude, 0.0);
    core_.SetChannel(kLon, 0, longitude, 0.0);
}

void InstrumentPass::ReadTimer(UsrRead read, std::int32_t timer) {
    float reading = 0.0f;
    read(timer, &reading);
    const double seconds = reading;
    if (seconds != 0.0 && lastTimer_ > seconds) core_.SetSystemValue(kValueGun, seconds / 60.0 / 60.0 / 24.0 + UtcNowDays(clock_));
    lastTimer_ = seconds;
}

}  // namespace twr
