#include "streams/nmea.h"

#include <cmath>
#include <optional>

#include "base/angles.h"
#include "base/numbers.h"
#include "core/units.h"
#include "streams/iso_time.h"
#include "streams/nmea_line.h"

namespace twr {
namespace {

using Known = std::optional<double>;

constexpr double kGreatest = 1e6;  // what is beyond is no measurement, and no sentence of 82 characters has room for it
constexpr double kKmhPerKnot = kMetresPerNauticalMile / 1000;
constexpr double kMsPerKnot = kMetresPerNauticalMile / 3600;

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

}  // namespace

void AppendSentences(std::string& out, const Follower& follower, BoatSlot boat) {
    const Told told{follower, boat};
    AppendTime(out, told);
    AppendFix(out, told);
    AppendTrack(out, told);
    AppendHeading(out, told);
    AppendWind(out, told);
    AppendWater(out, told);
    AppendMotion(out, told);
}

}  // namespace twr
