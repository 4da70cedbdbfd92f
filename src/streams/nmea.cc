// SPDX-License-Identifier: MIT
// A boat's values as sentences of NMEA 0183, for plotters and displays.
#include <charconv>
#include <chrono>
#include <cmath>
#include <optional>

#include "base/angles.h"
#include "base/numbers.h"
#include "core/units.h"
#include "streams/iso_time.h"
#include "streams/stream_format.h"

namespace twr {
namespace {

using Known = std::optional<double>;

constexpr double kGreatest = 1e6;  // what is beyond is no measurement, and no sentence of 82 characters has room for it
constexpr double kKmhPerKnot = kMetresPerNauticalMile / 1000;
constexpr double kMsPerKnot = kMetresPerNauticalMile / 3600;
constexpr std::chrono::sys_days kDayZero = std::chrono::year(1899) / 12 / 30;
constexpr std::int64_t kPerDegree = 6000000;  // hundred-thousandths of a minute
constexpr std::int64_t kHundredthsPerDay = 8640000;

// Hundredths of a second, so that day and time are rounded as one.
std::int64_t Hundredths(double days) { return std::llround(days * static_cast<double>(kHundredthsPerDay)); }

std::chrono::year_month_day DateOf(double days) { return kDayZero + std::chrono::days(Hundredths(days) / kHundredthsPerDay); }

// One sentence as it grows, field by field.
class NmeaLine {
public:
    // Begins a sentence of talker II at the end of a text.
    NmeaLine(std::string& out, const char* formatter);

    // The next field; empty without a number. Numbers are below a million.
    void Number(std::optional<double> value, int decimals);
    void Text(const char* text);

    // A number and its fixed unit in the next field; both empty without a number.
    void WithUnit(std::optional<double> value, int decimals, const char* unit);

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

NmeaLine::NmeaLine(std::string& out, const char* formatter) : out_(out), start_(out.size()) { (out_ += "$II") += formatter; }

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
    NmeaLine rmc(out, "RMC");
    rmc.TimeOfDay(told.FixTime());
    rmc.Text(StatusOf(mode));
    AppendPosition(rmc, told);
    rmc.Number(told(kSog), 2);
    rmc.Number(told.True(kCog), 1);
    rmc.Date(told.FixTime());
    rmc.WithSide(told.Variation(), 1, "E", "W");
    rmc.Text(mode);
    rmc.End(true);

    NmeaLine gll(out, "GLL");
    AppendPosition(gll, told);
    gll.TimeOfDay(told.FixTime());
    gll.Text(StatusOf(mode));
    gll.Text(mode);
    gll.End(true);
}

void AppendTrack(std::string& out, const Told& told) {
    NmeaLine vtg(out, "VTG");
    vtg.WithUnit(told.True(kCog), 1, "T");
    vtg.WithUnit(told(kCog), 1, "M");
    vtg.WithUnit(told(kSog), 2, "N");
    vtg.WithUnit(Times(told(kSog), kKmhPerKnot), 2, "K");
    vtg.Text(ModeOf(told(kGpsMethod)));
    vtg.End(told(kCog) || told(kSog));
}

void AppendHeading(std::string& out, const Told& told) {
    NmeaLine hdg(out, "HDG");
    hdg.Number(told(kHdg), 1);
    hdg.Text("");  // the deviation is corrected in the heading already
    hdg.Text("");
    hdg.WithSide(told.Variation(), 1, "E", "W");
    hdg.End(told(kHdg).has_value());

    NmeaLine hdt(out, "HDT");
    hdt.WithUnit(told.True(kHdg), 1, "T");
    hdt.End(told.True(kHdg).has_value());

    NmeaLine vhw(out, "VHW");
    vhw.WithUnit(told.True(kHdg), 1, "T");
    vhw.WithUnit(told(kHdg), 1, "M");
    vhw.WithUnit(told(kBsp), 2, "N");
    vhw.WithUnit(Times(told(kBsp), kKmhPerKnot), 2, "K");
    vhw.End(told(kHdg) || told(kBsp));
}

void AppendWindFromBow(std::string& out, Known angle, Known speed, const char* reference) {
    NmeaLine mwv(out, "MWV");
    mwv.Number(angle, 1);
    mwv.Text(reference);
    mwv.WithUnit(speed, 1, "N");
    mwv.Text("A");
    mwv.End(angle || speed);
}

void AppendWind(std::string& out, const Told& told) {
    AppendWindFromBow(out, told.FromBow(kAwa), told(kAws), "R");
    AppendWindFromBow(out, told.FromBow(kTwa), told(kTws), "T");

    NmeaLine mwd(out, "MWD");
    mwd.WithUnit(told.True(kTwd), 1, "T");
    mwd.WithUnit(told(kTwd), 1, "M");
    mwd.WithUnit(told(kTws), 1, "N");
    mwd.WithUnit(Times(told(kTws), kMsPerKnot), 1, "M");
    mwd.End(told(kTwd).has_value());
}

void AppendWater(std::string& out, const Told& told) {
    NmeaLine dpt(out, "DPT");
    dpt.Number(told(kDepth), 1);
    dpt.Text("");  // what the depth counts from is not known
    dpt.End(told(kDepth).has_value());

    NmeaLine mtw(out, "MTW");
    mtw.WithUnit(told(kSeaTemp), 1, "C");
    mtw.End(told(kSeaTemp).has_value());

    NmeaLine vlw(out, "VLW");
    vlw.WithUnit(told(kLogBsp), 2, "N");
    vlw.WithUnit(told(kTripLog), 2, "N");
    vlw.End(told(kLogBsp) || told(kTripLog));
}

// Heel to starboard and the bow up are positive, as in the record.
void AppendMotion(std::string& out, const Told& told) {
    NmeaLine rot(out, "ROT");
    rot.Number(Times(told(kRot), 60), 1);  // degrees a minute, to starboard positive
    rot.Text("A");
    rot.End(told(kRot).has_value());

    NmeaLine xdr(out, "XDR");
    const auto transducer = [&](Known angle, const char* name) {
        if (!angle) return;
        xdr.Text("A");
        xdr.WithUnit(angle, 1, "D");
        xdr.Text(name);
    };
    transducer(told(kHeel), "ROLL");
    transducer(told(kTrim), "PTCH");
    xdr.End(told(kHeel) || told(kTrim));
}

void AppendTime(std::string& out, const Told& told) {
    const Known time = told(kGpsTime);
    if (!time || !HasIsoTime(*time)) return;
    NmeaLine zda(out, "ZDA");
    zda.TimeOfDay(*time);
    zda.FullDate(*time);
    zda.Text("00,00");  // UTC
    zda.End(true);
}

// Talker II, checksum, CR LF. Each sentence is made from fresh values of channels that the follower tells; a field without one is
// empty, and a sentence with nothing to say is left out. Directions from true north need the variation.
class Sentences final : public StreamFormat {
    void Append(std::string& out, std::span<const Change>, const Follower& follower) override {
        const Told told{follower, follower.Boat()};
        AppendTime(out, told);
        AppendFix(out, told);
        AppendTrack(out, told);
        AppendHeading(out, told);
        AppendWind(out, told);
        AppendWater(out, told);
        AppendMotion(out, told);
    }
};

}  // namespace

std::unique_ptr<StreamFormat> MakeSentences() { return std::make_unique<Sentences>(); }

}  // namespace twr
