// SPDX-License-Identifier: MIT
// A boat's values as sentences of NMEA 0183, for plotters and displays.
#include <charconv>
#include <chrono>
#include <cmath>
#include <optional>

#include "base/angles.h"
#include "base/calendar.h"
#include "base/numbers.h"
#include "core/units.h"
#include "streams/iso_time.h"
#include "streams/stream_format.h"

namespace twr {
namespace {

using Known = std::optional<double>;

constexpr double kGreatest = 1e6;          // what is beyond is no measurement, and no sentence of 82 characters has room for it
constexpr double kFarthestMark = 10000.0;  // nautical miles; a sentence has room for no more digits
constexpr double kMetresPerFoot = 0.3048, kMetresPerFathom = 1.8288;
constexpr double kHectopascalsPerBar = 1000.0;
constexpr double kKmhPerKnot = kMetresPerNauticalMile / 1000;
constexpr double kMsPerKnot = kMetresPerNauticalMile / 3600;
constexpr std::int64_t kPerDegree = 6000000;  // hundred-thousandths of a minute
constexpr std::int64_t kHundredthsPerDay = 8640000;

// Hundredths of a second, so that day and time are rounded as one.
std::int64_t Hundredths(double days) { return std::llround(days * static_cast<double>(kHundredthsPerDay)); }

std::chrono::year_month_day DateOf(double days) { return kDayZero + std::chrono::days(Hundredths(days) / kHundredthsPerDay); }

// One sentence as it grows, field by field.
class NmeaLine {
public:
    // Begins a sentence at the end of a text.
    NmeaLine(std::string& out, const std::string& talker, const char* formatter);

    // The next field; empty without a number. Numbers are below a million.
    void Number(std::optional<double> value, int decimals);
    void Text(const char* text);

    // A number and its fixed unit in the next field; both empty without a number.
    void WithUnit(std::optional<double> value, int decimals, const char* unit);

    // A whole number of at least so many digits in the next field.
    void Whole(std::optional<double> value, int digits);

    // The size of a number and its side in the next field, "W" for negative ones.
    void WithSide(std::optional<double> value, int decimals, const char* positive, const char* negative);

    // Degrees as ddmm.mmmmm with as many digits of degrees as given, and the side in the next field.
    void Coordinate(std::optional<double> degrees, int digits, const char* positive, const char* negative);

    // Of a moment that ISO 8601 has a text for: hhmmss.ss; ddmmyy; dd, mm and yyyy in three fields.
    void TimeOfDay(double days);
    void Date(double days);
    void FullDate(double days);

    // Ends the sentence, or takes it back if it says nothing.
    void End(bool saysSomething);

private:
    std::string& out_;
    const std::size_t start_;
};

NmeaLine::NmeaLine(std::string& out, const std::string& talker, const char* formatter) : out_(out), start_(out.size()) {
    ((out_ += '$') += talker) += formatter;
}

void NmeaLine::Number(std::optional<double> value, int decimals) {
    out_ += ',';
    if (!value) return;
    char digits[32];
    out_.append(digits, std::to_chars(digits, digits + sizeof digits, *value, std::chars_format::fixed, decimals).ptr);
}

void NmeaLine::Text(const char* text) { (out_ += ',') += text; }

void NmeaLine::WithUnit(std::optional<double> value, int decimals, const char* unit) {
    Number(value, decimals);
    Text(value ? unit : "");
}

void NmeaLine::Whole(std::optional<double> value, int digits) {
    out_ += value ? Printed(",%0*d", digits, WholeNumber<std::int32_t>(std::round(*value))) : ",";
}

void NmeaLine::WithSide(std::optional<double> value, int decimals, const char* positive, const char* negative) {
    Number(value ? std::optional(std::fabs(*value)) : std::nullopt, decimals);
    Text(!value ? "" : *value < 0.0 ? negative : positive);
}

void NmeaLine::Coordinate(std::optional<double> degrees, int digits, const char* positive, const char* negative) {
    out_ += ',';
    if (degrees) {
        const std::int64_t size = std::llround(std::fabs(*degrees) * static_cast<double>(kPerDegree));
        out_ += Printed("%0*d%02d.%05d", digits, static_cast<int>(size / kPerDegree), static_cast<int>(size % kPerDegree / 100000),
                        static_cast<int>(size % 100000));
    }
    Text(!degrees ? "" : *degrees < 0.0 ? negative : positive);
}

void NmeaLine::TimeOfDay(double days) {
    const int ofDay = static_cast<int>(Hundredths(days) % kHundredthsPerDay);
    out_ += Printed(",%02d%02d%02d.%02d", ofDay / 360000, ofDay / 6000 % 60, ofDay / 100 % 60, ofDay % 100);
}

void NmeaLine::Date(double days) {
    const std::chrono::year_month_day date = DateOf(days);
    out_ += Printed(",%02u%02u%02d", static_cast<unsigned>(date.day()), static_cast<unsigned>(date.month()),
                    static_cast<int>(date.year()) % 100);
}

void NmeaLine::FullDate(double days) {
    const std::chrono::year_month_day date = DateOf(days);
    out_ += Printed(",%02u,%02u,%04d", static_cast<unsigned>(date.day()), static_cast<unsigned>(date.month()),
                    static_cast<int>(date.year()));
}

void NmeaLine::End(bool saysSomething) {
    if (!saysSomething) return out_.resize(start_);
    unsigned char sum = 0;
    for (std::size_t i = start_ + 1; i < out_.size(); ++i) sum ^= static_cast<unsigned char>(out_[i]);
    out_ += Printed("*%02X\r\n", sum);
}

// What the sentences tell of one boat.
struct Told {
    const Follower& follower;
    BoatSlot boat;
    const Talkers& talkers;

    Known operator()(ChannelId channel) const {
        const double value = follower.Value(channel, boat);
        return follower.Tells(channel) && std::fabs(value) < kGreatest && value != kNoValue ? Known(value) : std::nullopt;
    }
    // It goes with every direction, whether its channel was chosen or not.
    Known Variation() const {
        const double variation = follower.Variation(boat);
        return variation == kNoValue ? std::nullopt : Known(variation);
    }
    Known True(ChannelId channel) const {
        const Known magnetic = (*this)(channel), variation = Variation();
        return magnetic && variation ? Known(TurnedBearing(*magnetic + *variation)) : std::nullopt;
    }
    // From 0 to 360, as sentences count from the bow over starboard.
    Known FromBow(ChannelId channel) const {
        const Known angle = (*this)(channel);
        return angle ? Known(TurnedBearing(*angle)) : std::nullopt;
    }
    // By the satellites, or else when the position was published.
    double FixTime() const {
        const double gps = (*this)(kGpsTime).value_or(-1.0);
        return HasIsoTime(gps) ? gps : follower.Time(kLat, boat);
    }
};

Known Times(Known value, double factor) { return value ? Known(*value * factor) : std::nullopt; }

// By the GPS method, which counts as the sentences do; a position without one is taken for an ordinary fix.
const char* ModeOf(Known method) {
    constexpr const char* kModes[] = {"N", "A", "D", "P", "R", "F", "E", "M", "S"};
    const int number = method ? WholeNumber<std::int32_t>(std::round(*method)) : 1;
    return number >= 0 && number < 9 ? kModes[number] : "N";
}

// Only what was measured counts as valid.
const char* StatusOf(const char* mode) { return *mode == 'N' || *mode == 'E' || *mode == 'M' || *mode == 'S' ? "V" : "A"; }

void AppendPosition(NmeaLine& line, const Told& told) {
    const Known longitude = told(kLon);
    line.Coordinate(told(kLat), 2, "N", "S");
    line.Coordinate(longitude ? Known(TurnedAngle(*longitude)) : std::nullopt, 3, "E", "W");
}

void AppendFix(std::string& out, const Told& told) {
    if (!told(kLat) || !told(kLon)) return;
    const char* mode = ModeOf(told(kGpsMethod));
    NmeaLine rmc(out, told.talkers.Gps(), "RMC");
    rmc.TimeOfDay(told.FixTime());
    rmc.Text(StatusOf(mode));
    AppendPosition(rmc, told);
    rmc.Number(told(kSog), 2);
    rmc.Number(told.True(kCog), 1);
    rmc.Date(told.FixTime());
    rmc.WithSide(told.Variation(), 1, "E", "W");
    rmc.Text(mode);
    rmc.End(true);

    NmeaLine gll(out, told.talkers.Gps(), "GLL");
    AppendPosition(gll, told);
    gll.TimeOfDay(told.FixTime());
    gll.Text(StatusOf(mode));
    gll.Text(mode);
    gll.End(true);
}

// Its readers take any quality but 0 for a fix, so only what was measured is sent.
void AppendSatellites(std::string& out, const Told& told) {
    const Known method = told(kGpsMethod);
    const bool measured = told(kLat) && told(kLon) && *StatusOf(ModeOf(method)) == 'A';
    NmeaLine gga(out, told.talkers.Gps(), "GGA");
    gga.TimeOfDay(told.FixTime());
    AppendPosition(gga, told);
    gga.Whole(method ? method : Known(1), 1);
    gga.Whole(told(kGpsNum), 2);
    gga.Number(told(kHdop), 1);
    gga.WithUnit(told(kAltitude), 1, "M");
    gga.WithUnit(told(kGeoSep), 1, "M");
    gga.Number(told(kGpsAge), 1);
    gga.Whole(told(kDiffStn), 4);
    gga.End(measured);

    NmeaLine gsa(out, told.talkers.Gps(), "GSA");
    gsa.Text("A");
    gsa.Text(told(kAltitude) ? "3" : "2");
    gsa.Text(",,,,,,,,,,,");  // which satellites is not known
    gsa.Number(told(kPdop), 1);
    gsa.Number(told(kHdop), 1);
    gsa.Number(told(kVdop), 1);
    gsa.End(measured && (told(kPdop) || told(kHdop) || told(kVdop)));
}

void AppendTrack(std::string& out, const Told& told) {
    NmeaLine vtg(out, told.talkers.Gps(), "VTG");
    vtg.WithUnit(told.True(kCog), 1, "T");
    vtg.WithUnit(told(kCog), 1, "M");
    vtg.WithUnit(told(kSog), 2, "N");
    vtg.WithUnit(Times(told(kSog), kKmhPerKnot), 2, "K");
    vtg.Text(ModeOf(told(kGpsMethod)));
    vtg.End(told(kCog) || told(kSog));
}

void AppendHeading(std::string& out, const Told& told) {
    NmeaLine hdg(out, told.talkers.all, "HDG");
    hdg.Number(told(kHdg), 1);
    hdg.Text("");  // the deviation is corrected in the heading already
    hdg.Text("");
    hdg.WithSide(told.Variation(), 1, "E", "W");
    hdg.End(told(kHdg).has_value());

    NmeaLine hdm(out, told.talkers.all, "HDM");
    hdm.WithUnit(told(kHdg), 1, "M");
    hdm.End(told(kHdg).has_value());

    NmeaLine hdt(out, told.talkers.all, "HDT");
    hdt.WithUnit(told.True(kHdg), 1, "T");
    hdt.End(told.True(kHdg).has_value());

    NmeaLine vhw(out, told.talkers.all, "VHW");
    vhw.WithUnit(told.True(kHdg), 1, "T");
    vhw.WithUnit(told(kHdg), 1, "M");
    vhw.WithUnit(told(kBsp), 2, "N");
    vhw.WithUnit(Times(told(kBsp), kKmhPerKnot), 2, "K");
    vhw.End(told(kHdg) || told(kBsp));
}

void AppendWindFromBow(std::string& out, const Told& told, ChannelId angleChannel, ChannelId speedChannel, const char* reference) {
    const Known angle = told.FromBow(angleChannel), speed = told(speedChannel);
    NmeaLine mwv(out, told.talkers.all, "MWV");
    mwv.Number(angle, 1);
    mwv.Text(reference);
    mwv.WithUnit(speed, 1, "N");
    mwv.Text("A");
    mwv.End(angle || speed);
}

void AppendWind(std::string& out, const Told& told) {
    AppendWindFromBow(out, told, kAwa, kAws, "R");
    AppendWindFromBow(out, told, kTwa, kTws, "T");

    NmeaLine mwd(out, told.talkers.all, "MWD");
    mwd.WithUnit(told.True(kTwd), 1, "T");
    mwd.WithUnit(told(kTwd), 1, "M");
    mwd.WithUnit(told(kTws), 1, "N");
    mwd.WithUnit(Times(told(kTws), kMsPerKnot), 1, "M");
    mwd.End(told(kTwd).has_value());

    NmeaLine vpw(out, told.talkers.all, "VPW");
    vpw.WithUnit(told(kVmg), 2, "N");
    vpw.WithUnit(Times(told(kVmg), kMsPerKnot), 2, "M");
    vpw.End(told(kVmg).has_value());
}

void AppendWater(std::string& out, const Told& told) {
    NmeaLine dpt(out, told.talkers.all, "DPT");
    dpt.Number(told(kDepth), 1);
    dpt.Text("");  // what the depth counts from is not known
    dpt.End(told(kDepth).has_value());

    NmeaLine dbt(out, told.talkers.all, "DBT");
    dbt.WithUnit(Times(told(kDepth), 1 / kMetresPerFoot), 1, "f");
    dbt.WithUnit(told(kDepth), 1, "M");
    dbt.WithUnit(Times(told(kDepth), 1 / kMetresPerFathom), 1, "F");
    dbt.End(told(kDepth).has_value());

    NmeaLine mtw(out, told.talkers.all, "MTW");
    mtw.WithUnit(told(kSeaTemp), 1, "C");
    mtw.End(told(kSeaTemp).has_value());

    NmeaLine vlw(out, told.talkers.all, "VLW");
    vlw.WithUnit(told(kLogBsp), 2, "N");
    if (told(kTripLog)) vlw.WithUnit(told(kTripLog), 2, "N");  // an empty one is taken for 0 by some
    vlw.End(told(kLogBsp) || told(kTripLog));

    NmeaLine vdr(out, told.talkers.all, "VDR");
    vdr.WithUnit(told.True(kSet), 1, "T");
    vdr.WithUnit(told(kSet), 1, "M");
    vdr.WithUnit(told(kDrift), 2, "N");
    vdr.End(told(kSet) || told(kDrift));
}

void AppendTransducer(NmeaLine& line, const char* kind, Known value, int decimals, const char* unit, const char* name) {
    if (!value) return;
    line.Text(kind);
    line.WithUnit(value, decimals, unit);
    line.Text(name);
}

// Heel to starboard and the bow up are positive, as in the record.
void AppendMotion(std::string& out, const Told& told) {
    NmeaLine rot(out, told.talkers.all, "ROT");
    rot.Number(Times(told(kRot), 60), 1);  // degrees a minute, to starboard positive
    rot.Text("A");
    rot.End(told(kRot).has_value());

    NmeaLine rsa(out, told.talkers.all, "RSA");
    rsa.Number(told(kRudder), 1);
    rsa.Text("A,,V");  // there is no second one
    rsa.End(told(kRudder).has_value());

    NmeaLine angles(out, told.talkers.all, "XDR");
    AppendTransducer(angles, "A", told(kHeel), 1, "D", "ROLL");
    AppendTransducer(angles, "A", told(kTrim), 1, "D", "PTCH");
    angles.End(told(kHeel) || told(kTrim));
}

void AppendWeather(std::string& out, const Told& told) {
    NmeaLine air(out, told.talkers.all, "XDR");
    AppendTransducer(air, "C", told(kAirTemp), 1, "C", "TempAir");
    AppendTransducer(air, "P", Times(told(kBaro), 1 / kHectopascalsPerBar), 5, "B", "Barometer");
    air.End(told(kAirTemp) || told(kBaro));
}

void AppendEngines(std::string& out, const Told& told) {
    for (const ChannelId channel : {kRpm1, kRpm2}) {
        NmeaLine rpm(out, told.talkers.all, "RPM");
        rpm.Text("E");
        rpm.Text(channel == kRpm1 ? "1" : "2");
        rpm.Number(told(channel), 1);
        rpm.Text("");  // the pitch of the propeller
        rpm.Text("A");
        rpm.End(told(channel).has_value());
    }
}

void AppendMarkPosition(NmeaLine& line, const Told& told) {
    const Known longitude = told(kMkLon);
    line.Coordinate(told(kMkLat), 2, "N", "S");
    line.Coordinate(longitude ? Known(TurnedAngle(*longitude)) : std::nullopt, 3, "E", "W");
}

// The mark that is sailed to. How far off the course is to which side the record does not say.
void AppendMark(std::string& out, const Told& told) {
    const double range = told(kMkRng).value_or(kFarthestMark);
    const bool known = range < kFarthestMark && told(kMkBrg);
    const bool placed = told(kLat) && told(kLon);
    const char* const mode = placed ? ModeOf(told(kGpsMethod)) : "N";
    NmeaLine bwc(out, told.talkers.all, "BWC");
    placed ? bwc.TimeOfDay(told.FixTime()) : bwc.Text("");
    AppendMarkPosition(bwc, told);
    bwc.WithUnit(told.True(kMkBrg), 1, "T");
    bwc.WithUnit(told(kMkBrg), 1, "M");
    bwc.WithUnit(range, 2, "N");
    bwc.Text("MARK");
    bwc.Text(mode);
    bwc.End(known);

    NmeaLine rmb(out, told.talkers.all, "RMB");
    rmb.Text(StatusOf(mode));
    rmb.Text(",,,MARK");
    AppendMarkPosition(rmb, told);
    rmb.Number(range, 2);
    rmb.Number(told.True(kMkBrg), 1);
    rmb.Number(told(kVmc), 1);
    rmb.Text("V");  // it has not arrived
    rmb.Text(mode);
    rmb.End(known);
}

void AppendTime(std::string& out, const Told& told) {
    const Known time = told(kGpsTime);
    if (!time || !HasIsoTime(*time)) return;
    NmeaLine zda(out, told.talkers.Gps(), "ZDA");
    zda.TimeOfDay(*time);
    zda.FullDate(*time);
    zda.Text("00,00");  // UTC
    zda.End(true);
}

// Checksum, CR LF. Each sentence is made from fresh values of channels that the follower tells; a field without one is empty, and a
// sentence with nothing to say is left out. Directions from true north need the variation.
class Sentences final : public StreamFormat {
public:
    void SetTalkers(const Talkers& talkers) override { talkers_ = talkers; }

    void Append(std::string& out, std::span<const Change>, const Follower& follower) override {
        const Told told{follower, follower.Boat(), talkers_};
        AppendTime(out, told);
        AppendFix(out, told);
        AppendSatellites(out, told);
        AppendTrack(out, told);
        AppendHeading(out, told);
        AppendWind(out, told);
        AppendWater(out, told);
        AppendMotion(out, told);
        AppendWeather(out, told);
        AppendEngines(out, told);
        AppendMark(out, told);
    }

private:
    Talkers talkers_;
};

}  // namespace

std::unique_ptr<StreamFormat> MakeSentences() { return std::make_unique<Sentences>(); }

}  // namespace twr
