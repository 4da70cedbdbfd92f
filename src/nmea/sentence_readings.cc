// SPDX-License-Identifier: MIT
// Which readings a sentence holds.
#include <algorithm>
#include <initializer_list>
#include <iterator>

#include "base/angles.h"
#include "nmea/readings.h"

namespace twr {
namespace {

using enum Reading;

constexpr double kKnotsPerMetreASecond = 3600.0 / 1852.0;
constexpr double kKnotsPerKilometreAnHour = 1.0 / 1.852;
constexpr double kMetresPerFoot = 0.3048;
constexpr double kMetresPerFathom = 1.8288;
constexpr double kHectopascalsPerBar = 1000.0;
constexpr double kHectopascalsPerPascal = 0.01;

std::optional<double> Times(std::optional<double> value, double factor) {
    if (!value) return std::nullopt;
    return *value * factor;
}

// The number of a field that is followed by its unit's letter.
std::optional<double> With(const NmeaSentence& s, std::size_t field, std::string_view unit) {
    if (s.Field(field + 1) != unit) return std::nullopt;
    return s.Number(field);
}

std::optional<double> SpeedOf(std::optional<double> value, std::string_view unit) {
    if (unit == "N") return value;
    if (unit == "K") return Times(value, kKnotsPerKilometreAnHour);
    if (unit == "M") return Times(value, kKnotsPerMetreASecond);
    return std::nullopt;
}

// The first of several pairs of a speed and its unit that is filled.
std::optional<double> Speed(const NmeaSentence& s, std::initializer_list<std::size_t> fields) {
    for (const std::size_t field : fields) {
        if (const auto speed = SpeedOf(s.Number(field), s.Field(field + 1))) return speed;
    }
    return std::nullopt;
}

std::optional<double> Lettered(const NmeaSentence& s, std::size_t field, std::string_view positive, std::string_view negative) {
    const auto value = s.Number(field);
    if (s.Field(field + 1) == positive) return value;
    if (s.Field(field + 1) == negative) return Times(value, -1.0);
    return std::nullopt;
}

std::optional<double> Wrapped(std::optional<double> angle) {
    if (!angle || *angle < -180.0 || *angle > 360.0) return std::nullopt;
    return WrappedAngle(*angle);
}

bool IsBearing(std::optional<double> angle) { return angle && *angle >= 0.0 && *angle <= 360.0; }

void PutPosition(const NmeaSentence& s, std::size_t field, SentenceReadings& held) {
    const auto latitude = ParseLatitude(s.Field(field), s.Field(field + 1));
    const auto longitude = ParseLongitude(s.Field(field + 2), s.Field(field + 3));
    if (!latitude || !longitude) return;
    held.Put(kLat, latitude);
    held.Put(kLon, longitude);
}

void ReadRmc(const NmeaSentence& s, SentenceReadings& held) {
    if (s.Field(2) != "A") return;
    PutPosition(s, 3, held);
    held.Put(kSog, s.Number(7));
    held.Put(kCogTrue, s.Number(8));
    held.Put(kVariation, Lettered(s, 10, "E", "W"));
}

void ReadGga(const NmeaSentence& s, SentenceReadings& held) {
    held.Put(kFixQuality, s.Number(6));
    if (s.Number(6).value_or(0.0) <= 0.0) return;
    PutPosition(s, 2, held);
    held.Put(kSatellites, s.Number(7));
    held.Put(kHdop, s.Number(8));
    held.Put(kAltitude, With(s, 9, "M"));
    held.Put(kGeoidSeparation, With(s, 11, "M"));
    held.Put(kDifferentialAge, s.Number(13));
    held.Put(kDifferentialStation, s.Number(14));
}

// Without a fix the dilutions are made up.
void ReadGsa(const NmeaSentence& s, SentenceReadings& held) {
    if (s.Number(2).value_or(0.0) < 2.0) return;
    held.Put(kPdop, s.Number(15));
    held.Put(kHdop, s.Number(16));
    held.Put(kVdop, s.Number(17));
}

// The oldest form ends before the status.
void ReadGll(const NmeaSentence& s, SentenceReadings& held) {
    if (s.count < 6 || s.Field(6) == "A") PutPosition(s, 1, held);
}

void ReadVtg(const NmeaSentence& s, SentenceReadings& held) {
    if (s.Field(9) == "N") return;
    const auto trueCourse = With(s, 1, "T");
    const auto magneticCourse = With(s, 3, "M");
    held.Put(kCogTrue, trueCourse);
    held.Put(kCogMagnetic, magneticCourse);
    if (IsBearing(trueCourse) && IsBearing(magneticCourse)) held.Put(kCourseVariation, WrappedAngle(*trueCourse - *magneticCourse));
    held.Put(kSog, Speed(s, {5, 7}));
}

void ReadHdg(const NmeaSentence& s, SentenceReadings& held) {
    if (const auto heading = s.Number(1))
        held.Put(kHeadingMagnetic, WrappedBearing(*heading + Lettered(s, 2, "E", "W").value_or(0.0)));
    held.Put(kVariation, Lettered(s, 4, "E", "W"));
}

void ReadHdt(const NmeaSentence& s, SentenceReadings& held) { held.Put(kHeadingTrue, With(s, 1, "T")); }

void ReadHdm(const NmeaSentence& s, SentenceReadings& held) { held.Put(kHeadingMagnetic, With(s, 1, "M")); }

void ReadVhw(const NmeaSentence& s, SentenceReadings& held) {
    held.Put(kHeadingTrue, With(s, 1, "T"));
    held.Put(kHeadingMagnetic, With(s, 3, "M"));
    held.Put(kBsp, Speed(s, {5, 7}));
}

void ReadMwv(const NmeaSentence& s, SentenceReadings& held) {
    if (s.Field(5) != "A") return;
    const bool relative = s.Field(2) == "R";
    if (!relative && s.Field(2) != "T") return;
    held.Put(relative ? kAwa : kTwa, Wrapped(s.Number(1)));
    held.Put(relative ? kAws : kTws, Speed(s, {3}));
}

void ReadVwr(const NmeaSentence& s, SentenceReadings& held) {
    held.Put(kAwa, Wrapped(Lettered(s, 1, "R", "L")));
    held.Put(kAws, Speed(s, {3, 5, 7}));
}

void ReadVwt(const NmeaSentence& s, SentenceReadings& held) {
    held.Put(kTwa, Wrapped(Lettered(s, 1, "R", "L")));
    held.Put(kTws, Speed(s, {3, 5, 7}));
}

void ReadMwd(const NmeaSentence& s, SentenceReadings& held) {
    held.Put(kTwdTrue, With(s, 1, "T"));
    held.Put(kTwdMagnetic, With(s, 3, "M"));
    held.Put(kTws, Speed(s, {5, 7}));
}

// A positive offset leads from the transducer up to the surface; a negative one, down to the keel, is not used.
void ReadDpt(const NmeaSentence& s, SentenceReadings& held) {
    const auto depth = s.Number(1);
    const auto offset = s.Number(2);
    if (depth && offset && *offset > 0.0) held.Put(kDepthBelowSurface, *depth + *offset);
    held.Put(kDepthBelowTransducer, depth);
}

void ReadDbt(const NmeaSentence& s, SentenceReadings& held) {
    auto depth = With(s, 3, "M");
    if (!depth) depth = Times(With(s, 1, "f"), kMetresPerFoot);
    if (!depth) depth = Times(With(s, 5, "F"), kMetresPerFathom);
    held.Put(kDepthBelowTransducer, depth);
}

void ReadMtw(const NmeaSentence& s, SentenceReadings& held) { held.Put(kSeaTemp, With(s, 1, "C")); }

void ReadVdr(const NmeaSentence& s, SentenceReadings& held) {
    held.Put(kSetTrue, With(s, 1, "T"));
    held.Put(kSetMagnetic, With(s, 3, "M"));
    held.Put(kDrift, With(s, 5, "N"));
}

// The distances through the water; those over ground that newer devices add are another's.
void ReadVlw(const NmeaSentence& s, SentenceReadings& held) {
    held.Put(kLog, With(s, 1, "N"));
    held.Put(kTrip, With(s, 3, "N"));
}

void ReadVpw(const NmeaSentence& s, SentenceReadings& held) { held.Put(kVmg, Speed(s, {1, 3})); }

void ReadRot(const NmeaSentence& s, SentenceReadings& held) {
    if (s.Field(2) == "A") held.Put(kRateOfTurn, Times(s.Number(1), 1.0 / 60.0));  // from degrees per minute
}

// A single rudder is in the starboard field.
void ReadRsa(const NmeaSentence& s, SentenceReadings& held) {
    if (s.Field(2) == "A") held.Put(kRudder, s.Number(1));
}

// Whatever the case of its letters, which each maker chooses.
bool Holds(std::string_view name, std::initializer_list<std::string_view> capitals) {
    const auto same = [](char c, char capital) { return (c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c) == capital; };
    return std::ranges::any_of(capitals, [&](std::string_view word) {
        return std::search(name.begin(), name.end(), word.begin(), word.end(), same) != name.end();
    });
}

void ReadTransducer(char kind, std::optional<double> value, std::string_view unit, std::string_view name, SentenceReadings& held) {
    if (kind == 'A' && unit == "D") {
        // Transducers count a heel to starboard as positive.
        if (Holds(name, {"HEEL", "ROLL"})) held.Put(kHeel, Times(value, -1.0));
        if (Holds(name, {"PITCH", "PTCH", "TRIM"})) held.Put(kTrim, value);
        if (Holds(name, {"RUDDER"})) held.Put(kRudder, value);
    } else if (kind == 'C' && unit == "C" && Holds(name, {"AIR", "OUTSIDE"})) {
        held.Put(kAirTemp, value);
    } else if (kind == 'P' && (unit == "B" || unit == "P") && Holds(name, {"BARO"})) {
        held.Put(kBaro, Times(value, unit == "B" ? kHectopascalsPerBar : kHectopascalsPerPascal));
    } else if (kind == 'U' && unit == "V" && Holds(name, {"BATT", "VOLT"})) {
        held.Put(kVolts, value);
    }
}

// Any number of transducers, each as kind, value, unit and name.
void ReadXdr(const NmeaSentence& s, SentenceReadings& held) {
    for (std::size_t at = 1; at + 3 <= s.count; at += 4) {
        if (s.Field(at).size() == 1) ReadTransducer(s.Field(at)[0], s.Number(at + 1), s.Field(at + 2), s.Field(at + 3), held);
    }
}

struct Reader {
    std::string_view type;
    void (*read)(const NmeaSentence& sentence, SentenceReadings& held);
};

constexpr Reader kReaders[] = {
    {"RMC", ReadRmc}, {"GGA", ReadGga}, {"GLL", ReadGll}, {"GSA", ReadGsa}, {"VTG", ReadVtg}, {"VLW", ReadVlw},
    {"HDG", ReadHdg}, {"HDT", ReadHdt}, {"HDM", ReadHdm}, {"VHW", ReadVhw}, {"MWV", ReadMwv}, {"VWR", ReadVwr},
    {"VWT", ReadVwt}, {"MWD", ReadMwd}, {"DPT", ReadDpt}, {"DBT", ReadDbt}, {"MTW", ReadMtw}, {"VDR", ReadVdr},
    {"VPW", ReadVpw}, {"ROT", ReadRot}, {"RSA", ReadRsa}, {"XDR", ReadXdr},
};

}  // namespace

SentenceReadings ReadSentence(const NmeaSentence& sentence) {
    SentenceReadings held;
    const auto* const reader = std::ranges::find(kReaders, sentence.type, &Reader::type);
    if (reader != std::end(kReaders)) reader->read(sentence, held);
    return held;
}

}  // namespace twr
