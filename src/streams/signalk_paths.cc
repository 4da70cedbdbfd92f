// SPDX-License-Identifier: MIT
#include "streams/signalk_paths.h"

#include <algorithm>
#include <bitset>
#include <deque>
#include <numbers>
#include <vector>

#include "core/channel_catalogue.h"
#include "core/units.h"

namespace twr {
namespace {

constexpr SiUnit kPlain{"", 1.0};
constexpr SiUnit kRatio{"ratio", 0.01};  // from percent
constexpr SiUnit kMetres{"m", 1.0};
constexpr SiUnit kMiles{"m", kMetresPerNauticalMile};
constexpr SiUnit kKnots{"m/s", kMetresPerNauticalMile / 3600};
constexpr SiUnit kAngle{"rad", std::numbers::pi / 180};
constexpr SiUnit kTurnRate{"rad/s", std::numbers::pi / 180};
constexpr SiUnit kDegrees{"deg", 1.0};  // of positions alone
constexpr SiUnit kCelsius{"K", 1.0, 273.15};
constexpr SiUnit kHectopascals{"Pa", 100.0};
constexpr SiUnit kPascals{"Pa", 1.0};
constexpr SiUnit kDays{"s", 86400.0};
constexpr SiUnit kRpm{"Hz", 1.0 / 60};
constexpr SiUnit kVolt{"V", 1.0};
constexpr SiUnit kAmpere{"A", 1.0};
constexpr SiUnit kDensity{"kg/m3", 1.0};

template <const SiUnit& unit, ChannelId channel, bool trueBearing>
constexpr SignalKPart kNumber[] = {{"", channel, &unit, trueBearing}};

template <const SiUnit& unit, ChannelId channel, bool trueBearing = false>
constexpr SignalKPath Number(const char* path) {
    return {path, kNumber<unit, channel, trueBearing>, true};
}

template <ChannelId latitude, ChannelId longitude>
constexpr SignalKPart kPosition[] = {{"latitude", latitude, &kDegrees}, {"longitude", longitude, &kDegrees}};

template <ChannelId latitude, ChannelId longitude>
constexpr SignalKPath Position(const char* path) {
    return {path, kPosition<latitude, longitude>, true};
}

constexpr SignalKPart kAttitude[] = {{"roll", kHeel, &kAngle}, {"pitch", kTrim, &kAngle}};
constexpr SignalKPart kCurrentFlow[] = {
    {"drift", kDrift, &kKnots}, {"setTrue", kSet, &kAngle, true}, {"setMagnetic", kSet, &kAngle}};

constexpr SignalKPath kPaths[] = {
    Position<kLat, kLon>("navigation.position"),
    Number<kKnots, kBsp>("navigation.speedThroughWater"),
    Number<kKnots, kBspTr>("navigation.speedThroughWaterTransverse"),
    Number<kKnots, kSog>("navigation.speedOverGround"),
    Number<kAngle, kCog, true>("navigation.courseOverGroundTrue"),
    Number<kAngle, kCog>("navigation.courseOverGroundMagnetic"),
    Number<kAngle, kHdg, true>("navigation.headingTrue"),
    Number<kAngle, kHdg>("navigation.headingMagnetic"),
    Number<kAngle, kMagVar>("navigation.magneticVariation"),
    Number<kAngle, kLeeway>("navigation.leewayAngle"),
    Number<kTurnRate, kRot>("navigation.rateOfTurn"),
    {"navigation.attitude", kAttitude, false},
    Number<kMiles, kLogBsp>("navigation.log"),
    Number<kMiles, kTripLog>("navigation.trip.log"),
    Number<kSignalKMoment, kGpsTime>("navigation.datetime"),
    Number<kPlain, kGpsNum>("navigation.gnss.satellites"),
    Number<kPlain, kHdop>("navigation.gnss.horizontalDilution"),
    Number<kPlain, kPdop>("navigation.gnss.positionDilution"),
    Number<kMetres, kAltitude>("navigation.gnss.antennaAltitude"),
    Number<kMetres, kGeoSep>("navigation.gnss.geoidalSeparation"),
    Number<kPlain, kDiffStn>("navigation.gnss.differentialReference"),
    Number<kMiles, kMkRng>("navigation.courseRhumbline.nextPoint.distance"),
    Number<kAngle, kMkBrg, true>("navigation.courseRhumbline.nextPoint.bearingTrue"),
    Number<kAngle, kMkBrg>("navigation.courseRhumbline.nextPoint.bearingMagnetic"),
    Position<kMkLat, kMkLon>("navigation.courseRhumbline.nextPoint.position"),
    Position<kPortLat, kPortLon>("navigation.racing.startLinePort"),
    Position<kStbdLat, kStbdLon>("navigation.racing.startLineStb"),
    Number<kMiles, kDistToLn>("navigation.racing.distanceStartline"),
    Number<kDays, kTmToGun>("navigation.racing.timeToStart"),
    Number<kMiles, kLayDist>("navigation.racing.layline.distance"),
    Number<kDays, kLayTime>("navigation.racing.layline.time"),
    Number<kAngle, kAwa>("environment.wind.angleApparent"),
    Number<kKnots, kAws>("environment.wind.speedApparent"),
    Number<kAngle, kTwa>("environment.wind.angleTrueWater"),
    Number<kKnots, kTws>("environment.wind.speedTrue"),
    Number<kAngle, kTwd, true>("environment.wind.directionTrue"),
    Number<kAngle, kTwd>("environment.wind.directionMagnetic"),
    Number<kKnots, kGws>("environment.wind.speedOverGround"),
    Number<kMetres, kDepth>("environment.depth.belowTransducer"),
    Number<kCelsius, kSeaTemp>("environment.water.temperature"),
    Number<kCelsius, kAirTemp>("environment.outside.temperature"),
    Number<kCelsius, kDewPt>("environment.outside.dewPointTemperature"),
    Number<kHectopascals, kBaro>("environment.outside.pressure"),
    Number<kRatio, kRh>("environment.outside.relativeHumidity"),
    Number<kDensity, kAirDen>("environment.outside.airDensity"),
    {"environment.current", kCurrentFlow, false},
    Number<kMetres, kTide>("environment.tide.heightNow"),
    Number<kAngle, kRudder>("steering.rudderAngle"),
    Number<kKnots, kVmg>("performance.velocityMadeGood"),
    Number<kKnots, kVmc>("performance.velocityMadeGoodToWaypoint"),
    Number<kKnots, kPolBsp>("performance.polarSpeed"),
    Number<kRatio, kPolBspPct>("performance.polarSpeedRatio"),
    Number<kAngle, kTargTwa>("performance.targetAngle"),
    Number<kKnots, kTargBsp>("performance.targetSpeed"),
    Number<kRpm, kRpm1>("propulsion.1.revolutions"),
    Number<kRpm, kRpm2>("propulsion.2.revolutions"),
    Number<kCelsius, kEngTemp>("propulsion.1.temperature"),
    Number<kCelsius, kEngOilTemp>("propulsion.1.oilTemperature"),
    Number<kPascals, kEngOilPres>("propulsion.1.oilPressure"),
    Number<kCelsius, kTranOilTemp>("propulsion.1.transmission.oilTemperature"),
    Number<kPascals, kTranOilPres>("propulsion.1.transmission.oilPressure"),
    Number<kRatio, kFuelLev>("tanks.fuel.1.currentLevel"),
    Number<kRatio, kFuelLev2>("tanks.fuel.2.currentLevel"),
    Number<kRatio, kWaterLev>("tanks.freshWater.1.currentLevel"),
    Number<kRatio, kWaterLev2>("tanks.freshWater.2.currentLevel"),
    Number<kRatio, kPortFwdPct>("tanks.ballast.portForward.currentLevel"),
    Number<kRatio, kPortAftPct>("tanks.ballast.portAft.currentLevel"),
    Number<kRatio, kStbdFwdPct>("tanks.ballast.starboardForward.currentLevel"),
    Number<kRatio, kStbdAftPct>("tanks.ballast.starboardAft.currentLevel"),
    Number<kVolt, kVolts>("electrical.batteries.0.voltage"),
    Number<kVolt, kVolt1>("electrical.batteries.1.voltage"),
    Number<kVolt, kVolt2>("electrical.batteries.2.voltage"),
    Number<kVolt, kVolt3>("electrical.batteries.3.voltage"),
    Number<kVolt, kVolt4>("electrical.batteries.4.voltage"),
    Number<kAmpere, kCurrent>("electrical.batteries.0.current"),
    Number<kAmpere, kCurrent1>("electrical.batteries.1.current"),
    Number<kAmpere, kCurrent2>("electrical.batteries.2.current"),
    Number<kAmpere, kCurrent3>("electrical.batteries.3.current"),
    Number<kAmpere, kCurrent4>("electrical.batteries.4.current"),
    Number<kRatio, kChargePct>("electrical.batteries.0.capacity.stateOfCharge"),
    Number<kRatio, kCharge1Pct>("electrical.batteries.1.capacity.stateOfCharge"),
    Number<kRatio, kCharge2Pct>("electrical.batteries.2.capacity.stateOfCharge"),
    Number<kRatio, kCharge3Pct>("electrical.batteries.3.capacity.stateOfCharge"),
    Number<kRatio, kCharge4Pct>("electrical.batteries.4.capacity.stateOfCharge"),
};

constexpr bool IsLower(char16_t c) { return c >= u'a' && c <= u'z'; }
constexpr bool IsUpper(char16_t c) { return c >= u'A' && c <= u'Z'; }
constexpr bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// All paths: those of Signal K, then one for each channel that has none of them and a value of its own.
class AllPaths {
public:
    AllPaths() : paths_(std::begin(kPaths), std::end(kPaths)) {
        std::bitset<kChannelCount> told;
        for (const SignalKPath& path : kPaths) {
            for (const SignalKPart& part : path.parts) told.set(part.channel);
        }
        for (ChannelId channel = kTime + 1; channel < kChannelCount; ++channel) {
            if (!told[channel] && !IsAlternating(channel)) AddOurs(channel);
        }
    }
    std::span<const SignalKPath> All() const { return paths_; }

private:
    void AddOurs(ChannelId channel) {
        const std::string& path = names_.emplace_back("halyrig." + SignalKName(ChannelCatalogue()[channel].name));
        const SignalKPart& part = parts_.emplace_back(SignalKPart{"", channel, nullptr});
        paths_.push_back({path.c_str(), {&part, 1}, true});
    }

    std::deque<std::string> names_;
    std::deque<SignalKPart> parts_;
    std::vector<SignalKPath> paths_;
};

}  // namespace

std::span<const SignalKPath> SignalKPaths() {
    static const AllPaths kAll;
    return kAll.All();
}

// Capitals at the start are one word, but for the last if a small letter follows: "TWDPeriod" and "FStayLen" begin with "twd" and
// "f".
std::string SignalKName(std::u16string_view shortName) {
    std::string name;
    bool begins = false;  // a word
    const auto addWord = [&](std::string_view word) {
        name += word;
        begins = true;
    };
    std::size_t leading = 0;
    while (leading < shortName.size() && IsUpper(shortName[leading])) ++leading;
    if (leading > 1 && leading < shortName.size() && IsLower(shortName[leading])) --leading;
    for (std::size_t i = 0; i < shortName.size(); ++i) {
        const char16_t c = shortName[i];
        if (c == u'%') addWord("Percent");
        if (c == u'+') addWord("Plus");
        if (c == u'-') addWord("Minus");
        if (!IsLower(c) && !IsUpper(c) && !IsDigit(c)) {
            begins = true;
            continue;
        }
        const char letter = static_cast<char>(c);
        name += i < leading ? static_cast<char>(letter + 32) : begins && IsLower(c) ? static_cast<char>(letter - 32) : letter;
        begins = false;
    }
    return name;
}

const SiUnit& SiUnitOf(std::int16_t type) {
    switch (type) {
        case kTypeDateTime:
            return kSignalKMoment;
        case kTypeDuration:
            return kDays;
        case kTypeDepth:
        case kTypeMetres:
            return kMetres;
        case kTypeDistance:
        case kTypeShortDistance:
            return kMiles;
        case kTypeBearing:
        case kTypeAngle:
        case kTypeWindAngle:
            return kAngle;
        case kTypeLatitude:
        case kTypeLongitude:
            return kDegrees;
        case kTypePercent:
            return kRatio;
        case kTypeSail:
            return kSignalKText;
        case kTypeBoatSpeed:
        case kTypeWindSpeed:
            return kKnots;
        case kTypeTemperature:
            return kCelsius;
        case kTypeBarometer:
            return kHectopascals;
        case kTypeVolts:
            return kVolt;
        case kTypeTurnRate:
            return kTurnRate;
        case kTypeCurrent:
            return kAmpere;
        case kTypePressure:
            return kPascals;
        default:
            return kPlain;
    }
}

const SiUnit& UnitOf(const SignalKPart& part, const CCore& core) {
    return part.unit ? *part.unit : SiUnitOf(core.ChannelTypeOf(part.channel));
}

}  // namespace twr
