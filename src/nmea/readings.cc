// SPDX-License-Identifier: MIT
#include "nmea/readings.h"

#include <cmath>
#include <utility>

#include "base/angles.h"
#include "base/calendar.h"

namespace twr {
namespace {

using Known = std::optional<double>;

constexpr double kFeetPerMetre = 3.2808;
constexpr double kFirstShortYear = 80.0;  // of two digits: the satellites' time begins in 1980

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
    {Reading::kLog, 0, 1e6},
    {Reading::kTrip, 0, 1e6},
    {Reading::kHdop, 0, 100},
    {Reading::kPdop, 0, 100},
    {Reading::kVdop, 0, 100},
    {Reading::kSatellites, 0, 50},
    {Reading::kFixQuality, 0, 8},
    {Reading::kAltitude, -500, 9000},
    {Reading::kGeoidSeparation, -200, 200},
    {Reading::kDifferentialAge, 0, 3600},
    {Reading::kDifferentialStation, 0, 1023},
};

constexpr bool InOrder() {
    std::size_t index = 0;
    for (const Limits& limits : kLimits) {
        if (static_cast<std::size_t>(limits.reading) != index++) return false;
    }
    return index == static_cast<std::size_t>(Reading::kCount);
}
static_assert(InOrder());

// What follows from nothing else.
constexpr std::pair<Quantity, Reading> kAsRead[] = {
    {Quantity::kHeel, Reading::kHeel},       {Quantity::kTrim, Reading::kTrim},
    {Quantity::kRudder, Reading::kRudder},   {Quantity::kRateOfTurn, Reading::kRateOfTurn},
    {Quantity::kSog, Reading::kSog},         {Quantity::kDrift, Reading::kDrift},
    {Quantity::kSeaTemp, Reading::kSeaTemp}, {Quantity::kAirTemp, Reading::kAirTemp},
    {Quantity::kBaro, Reading::kBaro},       {Quantity::kLat, Reading::kLat},
    {Quantity::kLon, Reading::kLon},         {Quantity::kVolts, Reading::kVolts},
};

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

Known Readings::Variation(double time) const {
    const Known variation = Get(Reading::kVariation, time);
    return variation ? variation : Get(Reading::kCourseVariation, time);
}

Known Readings::MagneticBearing(Quantity quantity, const Moment& moment, double time) const {
    using enum Reading;
    const Known variation = Variation(time);
    const auto magnetic = [&](Reading trueBearing, Reading itself) {
        const Known given = Get(trueBearing, time);
        return given && variation ? Known(WrappedBearing(*given - *variation)) : Get(itself, time);
    };
    switch (quantity) {
        case Quantity::kHdg:
            return magnetic(kHeadingTrue, kHeadingMagnetic);
        case Quantity::kCog:
            return magnetic(kCogTrue, kCogMagnetic);
        case Quantity::kSet:
            return magnetic(kSetTrue, kSetMagnetic);
        case Quantity::kTwd: {
            const Known given = magnetic(kTwdTrue, kTwdMagnetic), heading = magnetic(kHeadingTrue, kHeadingMagnetic);
            const float angle = moment[Quantity::kTwa];
            return given || !heading || angle == kAbsent ? given : Known(WrappedBearing(*heading + angle));
        }
        default:
            return std::nullopt;
    }
}

Moment Readings::At(double time) const {
    using enum Reading;
    const auto get = [&](Reading reading) { return Get(reading, time); };
    const Known variation = Variation(time);
    const Known heading = TrueBearing(get(kHeadingTrue), get(kHeadingMagnetic), variation);
    const Known bsp = get(kBsp);
    Known twd = TrueBearing(get(kTwdTrue), get(kTwdMagnetic), variation);
    WindTriangle trueWind{get(kTwa), get(kTws)};
    WindTriangle apparent{get(kAwa), get(kAws)};
    if (!trueWind.angle && twd && heading) trueWind.angle = WrappedAngle(*twd - *heading);
    if (!trueWind.angle && get(kTwdMagnetic) && get(kHeadingMagnetic))
        trueWind.angle = WrappedAngle(*get(kTwdMagnetic) - *get(kHeadingMagnetic));
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
    for (const auto& [quantity, reading] : kAsRead) set(quantity, get(reading));
    set(Quantity::kBsp, bsp);
    set(Quantity::kAwa, apparent.angle);
    set(Quantity::kAws, apparent.speed);
    set(Quantity::kTwa, trueWind.angle);
    set(Quantity::kTws, trueWind.speed);
    set(Quantity::kTwd, twd);
    set(Quantity::kHdg, heading);
    set(Quantity::kCog, TrueBearing(get(kCogTrue), get(kCogMagnetic), variation));
    set(Quantity::kSet, TrueBearing(get(kSetTrue), get(kSetMagnetic), variation));
    set(Quantity::kVmg, vmg);
    if (depth) moment.Set(Quantity::kDepth, *depth * kFeetPerMetre);
    set(Quantity::kVariation, variation);
    return moment;
}

std::optional<double> TimeOfDayOf(const NmeaSentence& sentence) {
    const bool first = sentence.type == "RMC" || sentence.type == "GGA" || sentence.type == "ZDA";
    if (!first && sentence.type != "GLL") return std::nullopt;
    return ParseTimeOfDay(sentence.Field(first ? 1 : 5));
}

std::optional<double> DateOf(const NmeaSentence& sentence) {
    std::array<Known, 3> parts;  // day, month, year
    if (sentence.type == "ZDA") {
        parts = {sentence.Number(2), sentence.Number(3), sentence.Number(4)};
    } else if (const std::string_view date = sentence.Field(9); sentence.type == "RMC" && date.size() == 6) {
        parts = {ParseDecimal(date.substr(0, 2)), ParseDecimal(date.substr(2, 2)), ParseDecimal(date.substr(4))};
        if (parts[2]) *parts[2] += *parts[2] < kFirstShortYear ? 2000 : 1900;
    }
    constexpr std::pair<double, double> kBounds[] = {{1, 31}, {1, 12}, {1980, 9998}};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (!parts[i] || *parts[i] < kBounds[i].first || *parts[i] > kBounds[i].second) return std::nullopt;
    }
    const std::chrono::year_month_day day{std::chrono::year(static_cast<int>(*parts[2])),
                                          std::chrono::month(static_cast<unsigned>(*parts[1])),
                                          std::chrono::day(static_cast<unsigned>(*parts[0]))};
    if (!day.ok()) return std::nullopt;
    return static_cast<double>((std::chrono::sys_days(day) - kDayZero).count());
}

}  // namespace twr
