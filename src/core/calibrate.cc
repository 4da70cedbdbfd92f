// SPDX-License-Identifier: MIT
// Calibration: the correction of a raw value on its way into the record.
#include <algorithm>
#include <cmath>

#include "base/angles.h"
#include "core/core.h"
#include "core/record_access.h"

namespace twr {
namespace {

// A positive correction of the true wind angle widens it on either side of the bow.
double Corrected(ChannelId channel, double value, double correction) {
    return channel == kTwa && value < 0.0 ? value - correction : value + correction;
}

// One step only: a value that a correction moved further stays out of range.
double InRange(std::int16_t type, double value) {
    switch (type) {
        case kTypeBearing:
            return TurnedBearing(value);
        case kTypeAngle:
        case kTypeWindAngle:
            return TurnedAngle(value);
        case kTypeBoatSpeed:
        case kTypeWindSpeed:
            return value < 0.0 ? 0.0 : value;
        default:
            return value;
    }
}

}  // namespace

// Not within SetChannel, most of whose calls do without it but would save registers for it.
[[gnu::noinline]] double CCore::ApplyCalibration(ChannelId channel, double raw) {
    if (!view_ || Load(view_->channels[channel].calibrated) == 0 || raw == kNoValue) return raw;
    double value = raw;
    // In the catalogue's order: the second correction of a channel applies to the result of the first. A calibration that is always
    // in force gives a value of its own and corrects no channel.
    for (std::size_t index = 0; index < kCalibrationCount; ++index) {
        const CalibrationInfo& info = CalibrationCatalogue()[index];
        double correction = kNoValue;
        if (info.corrected == channel && info.always == 0 && CalibrationLookup(index, correction, value)) {
            value = Corrected(channel, value, correction);
        }
    }
    return value == kNoValue ? value : InRange(ChannelTypeOf(channel), value);
}

bool CCore::CalibrationLookup(std::size_t index, double& out, double raw) {
    out = kNoValue;
    if (index >= kCalibrationCount) return false;
    CalibrationObject& object = calibrations_[index];
    if (CalibrationCatalogue()[index].always == 0 && !object.active) return false;
    if (object.inputX == CalibrationObject::kNoInput && object.inputY == CalibrationObject::kNoInput) {
        if (object.curves.empty() || object.curves.front().points.empty()) return false;
        out = object.curves.front().points.front().y;
        return out != kNoValue;
    }
    const auto input = [&](ChannelId channel) {
        const double value = channel == object.self ? raw : LiveValue(channel);
        if (value == kNoValue || !view_ || channel >= kChannelCount) return value;
        const std::int16_t type = ChannelTypeOf(channel);  // the channel's own, not that of the channel it stands for
        return type == kTypeAngle || type == kTypeWindAngle ? std::abs(value) : value;
    };
    return object.Evaluate(out, input(object.inputX), input(object.inputY));
}

double CCore::LiveValue(ChannelId channel) const {
    if (channel >= kChannelCount || !view_) return kNoValue;
    const ChannelId resolved = ResolveAlternate(channel, true);
    if (resolved >= kChannelCount || Load(view_->boatCount) == 0) return kNoValue;
    return Load(view_->fullBlocks[0].value[resolved]);
}

}  // namespace twr
