// SPDX-License-Identifier: MIT
#include "nmea/readings.h"

#include <cmath>

#include "base/angles.h"

namespace twr {
namespace {

using Known = std::optional<double>;

constexpr double kFeetPerMetre = 3.2808;

struct Limits {
    Reading reading;
    double least, most;
};

// A reading beyond these is treated as a transmission fault.
constexpr Limits kLimits[] = {
    {Reading::kBsp, 0, 100},
    {Reading::kHeadingTrue, 0, 360},
    {Reading::kHeadingMagnetic, 0, 360},
    {Reading::kVariation, -180, 180},
    {Reading::kCourseVariation, -180, 180},
    {Reading::kAwa, -180, 180},
    {Reading::kAws, 0, 200},
    {Reading::kTwa, -180, 180},
    {Reading::kTws, 0, 200},
    {Reading::kTwdTrue, 0, 360},
    {Reading::kTwdMagnetic, 0, 360},
    {Reading::kCogTrue, 0, 360},
    {Reading::kCogMagnetic, 0, 360},
    {Reading::kSog, 0, 200},
    {Reading::kSetTrue, 0, 360},
    {Reading::kSetMagnetic, 0, 360},
    {Reading::kDrift, 0, 30},
    {Reading::kLat, -90, 90},
    {Reading::kLon, -180, 180},
    {Reading::kDepthBelowSurface, 0, 9900},  // so that even in feet it stays a depth and never kAbsent
    {Reading::kDepthBelowTransducer, 0, 9900},
    {Reading::kSeaTemp, -10, 60},
    {Reading::kAirTemp, -80, 80},
    {Reading::kBaro, 800, 1200},
    {Reading::kVmg, -100, 100},
    {Reading::kRateOfTurn, -360, 360},
    {Reading::kRudder, -180, 180},
    {Reading::kHeel, -180, 180},
    {Reading::kTrim, -180, 180},
    {Reading::kVolts, 0, 500},
};

constexpr bool InOrder() {
    std::size_t index = 0;
    for (const Limits& limits : kLimits) {
        if (static_cast<std::size_t>(limits.reading) != index++) return false;
    }
    return index == static_cast<std::size_t>(Reading::kCount);
}
static_assert(InOrder());

struct WindTriangle {
    Known angle, speed;
};

// The other wind of the two, from one of them and the boat speed along the bow: true from apparent with `ahead` -bsp, apparent from
// true with +bsp.
WindTriangle OtherWind(Known angle, Known speed, double ahead) {
    if (!angle || !speed) return {};
    const Vector wind = Towards(*angle, *speed) + Vector{0.0, ahead};
    return {WrappedAngle(BearingOf(wind)), Length(wind)};
}

// A true bearing, from itself or from the magnetic one.
Known TrueBearing(Known trueBearing, Known magnetic, Known variation) {
    if (trueBearing) return WrappedBearing(*trueBearing);
    if (magnetic && variation) return WrappedBearing(*magnetic + *variation);
    return std::nullopt;
}

}  // namespace

bool Readings::Take(const NmeaSentence& sentence, double time) {
    const SentenceReadings held = ReadSentence(sentence);
    bool any = false;
    for (const auto& [reading, value] : held.All()) {
        const auto index = static_cast<std::size_t>(reading);
        if (value < kLimits[index].least || value > kLimits[index].most) continue;
        heard_[index] = {value, time};
        any = true;
    }
    return any;
}

std::optional<double> Readings::Get(Reading reading, double time) const {
    const Heard& heard = heard_[static_cast<std::size_t>(reading)];
    if (time - heard.time > kLife) return std::nullopt;
    return heard.value;
}

Moment Readings::At(double time) const {
    using enum Reading;
    const auto get = [&](Reading reading) { return Get(reading, time); };
    Known variation = get(kVariation);
    if (!variation) variation = get(kCourseVariation);
    const Known heading = TrueBearing(get(kHeadingTrue), get(kHeadingMagnetic), variation);
    const Known bsp = get(kBsp);
    Known twd = TrueBearing(get(kTwdTrue), get(kTwdMagnetic), variation);
    WindTriangle trueWind{get(kTwa), get(kTws)};
    WindTriangle apparent{get(kAwa), get(kAws)};
    if (!trueWind.angle && twd && heading) trueWind.angle = WrappedAngle(*twd - *heading);
    if (!trueWind.angle && bsp) {
        const WindTriangle other = OtherWind(apparent.angle, apparent.speed, -*bsp);
        trueWind.angle = other.angle;
        if (!trueWind.speed) trueWind.speed = other.speed;
    }
    if (!apparent.angle && !apparent.speed && bsp) apparent = OtherWind(trueWind.angle, trueWind.speed, *bsp);
    if (!twd && heading && trueWind.angle) twd = WrappedBearing(*heading + *trueWind.angle);
    Known vmg = get(kVmg);
    if (!vmg && bsp && trueWind.angle) vmg = *bsp * CosDegrees(*trueWind.angle);
    Known depth = get(kDepthBelowSurface);
    if (!depth) depth = get(kDepthBelowTransducer);

    Moment moment;
    const auto set = [&](Quantity quantity, Known value) {
        if (value) moment.Set(quantity, *value);
    };
    set(Quantity::kBsp, bsp);
    set(Quantity::kAwa, apparent.angle);
    set(Quantity::kAws, apparent.speed);
    set(Quantity::kTwa, trueWind.angle);
    set(Quantity::kTws, trueWind.speed);
    set(Quantity::kTwd, twd);
    set(Quantity::kHdg, heading);
    set(Quantity::kHeel, get(kHeel));
    set(Quantity::kTrim, get(kTrim));
    set(Quantity::kRudder, get(kRudder));
    set(Quantity::kRateOfTurn, get(kRateOfTurn));
    set(Quantity::kCog, TrueBearing(get(kCogTrue), get(kCogMagnetic), variation));
    set(Quantity::kSog, get(kSog));
    set(Quantity::kSet, TrueBearing(get(kSetTrue), get(kSetMagnetic), variation));
    set(Quantity::kDrift, get(kDrift));
    set(Quantity::kVmg, vmg);
    if (depth) moment.Set(Quantity::kDepth, *depth * kFeetPerMetre);
    set(Quantity::kSeaTemp, get(kSeaTemp));
    set(Quantity::kAirTemp, get(kAirTemp));
    set(Quantity::kBaro, get(kBaro));
    set(Quantity::kVariation, variation);
    set(Quantity::kLat, get(kLat));
    set(Quantity::kLon, get(kLon));
    set(Quantity::kVolts, get(kVolts));
    return moment;
}

std::optional<double> TimeOfDayOf(const NmeaSentence& sentence) {
    const bool first = sentence.type == "RMC" || sentence.type == "GGA" || sentence.type == "ZDA";
    if (!first && sentence.type != "GLL") return std::nullopt;
    return ParseTimeOfDay(sentence.Field(first ? 1 : 5));
}

}  // namespace twr
