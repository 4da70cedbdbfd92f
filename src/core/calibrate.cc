// Calibration: the correction of a raw value on its way into the record.
#include <algorithm>
#include <array>
#include <cmath>

#include "core/core.h"
#include "core/shared_field.h"

namespace twr {
namespace {

struct Correction {
    ChannelId channel;
    std::size_t calibration;  // index in the catalogue of calibrations
};

// In the order of application: the second correction of a channel sees what the first has made of the value.
constexpr Correction kCorrections[] = {
    {kBsp, 2}, {kAwa, 4},      {kAwa, 5},   {kAws, 3},   {kTwa, 7},   {kTws, 6},     {kTwd, 9},
    {kHdg, 8}, {kSeaTemp, 17}, {kBaro, 19}, {kHeel, 11}, {kTrim, 12}, {kRudder, 14}, {kMastAng, 13},
};

// A positive correction of the true wind angle widens it on either side of the bow.
double Corrected(ChannelId channel, double value, double correction) {
    return channel == kTwa && value < 0.0 ? value - correction : value + correction;
}

// One step only: what a correction has moved further stays where it is.
double InRange(std::int16_t type, double value) {
    switch (type) {
        case kTypeBearing:
            return value >= 360.0 ? value - 360.0 : value < 0.0 ? value + 360.0 : value;
        case kTypeAngle:
        case kTypeWindAngle:
            return value > 180.0 ? value - 360.0 : value < -180.0 ? value + 360.0 : value;
        case kTypeBoatSpeed:
        case kTypeWindSpeed:
            return value < 0.0 ? 0.0 : value;
        default:
            return value;
    }
}

}  // namespace

double CCore::ApplyCalibration(ChannelId channel, double raw) {
    if (!view_ || Load(view_->channels[channel].calibrated) == 0 || raw == kNoValue) return raw;
    double value = raw;
    for (const Correction& row : kCorrections) {
        double correction = kNoValue;
        if (row.channel == channel && CalibrationLookup(row.calibration, correction, value)) {
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
        const std::int16_t type = ChannelTypeOf(channel);  // the channel's own, not that of what it stands for
        return type == kTypeAngle || type == kTypeWindAngle ? std::abs(value) : value;
    };
    return object.Evaluate(out, input(object.inputX), input(object.inputY));
}

double CCore::LiveValue(ChannelId channel) {
    if (channel >= kChannelCount || !view_) return kNoValue;
    const ChannelId resolved = ResolveAlternate(channel, true);
    if (resolved >= kChannelCount || Load(view_->boatCount) == 0) return kNoValue;
    return Load(view_->fullBlocks[0].value[resolved]);
}

}  // namespace twr
