// A second model of everything between the record and a text, written plainly from the meaning of each channel, against the real
// one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "platform/wide_text.h"
#include "support/fakes.h"
#include "support/record_writer.h"

namespace twr {
namespace {

constexpr double X = 32767.0;

// Type, decimals and name of each channel.
// clang-format off
const struct { int type, prec; const char* name; } kModel[414] = {
    {1,255,""}, {12,2,"BSP"}, {13,0,"AWA"}, {21,1,"AWS"}, {13,0,"TWA"}, {21,1,"TWS"}, {6,0,"TWD"}, {7,1,"RudderFwd"},
    {12,2,"dTargBsp"}, {6,0,"Course"}, {7,1,"Leeway"}, {6,0,"Set"}, {21,1,"Drift"}, {6,0,"HDG"}, {14,1,"AirTemp"},
    {14,1,"SeaTemp"}, {15,2,"Baro"}, {3,1,"Depth"}, {7,1,"Heel"}, {7,1,"Trim"}, {7,1,"Rudder"}, {7,1,"Tab"}, {0,2,"Forestay"},
    {0,2,"Downhaul"}, {0,1,"MastAng"}, {18,2,"FStayLen"}, {18,2,"MastButt"}, {0,2,"Load S"}, {0,2,"Load P"}, {7,2,"Rake"},
    {16,1,"Volts"}, {12,1,"VMG"}, {19,1,"ROT"}, {4,2,"Dt on S"}, {2,255,"Tm on S"}, {6,0,"Brg on P"}, {4,2,"Dt on P"},
    {2,255,"Tm on P"}, {6,0,"Brg on S"}, {0,0,"GpsMethod"}, {0,1,"HDOP"}, {0,1,"PDOP"}, {0,1,"VDOP"}, {0,0,"GpsNum"},
    {0,255,"GpsAge"}, {3,1,"Altitude"}, {3,1,"GeoSep"}, {0,1,"GpsMode"}, {8,255,"Lat"}, {9,255,"Lon"}, {6,0,"COG"}, {12,2,"SOG"},
    {0,0,"DiffStn"}, {13,0,"TargTwaN"}, {12,2,"TargBspN"}, {12,1,"TargVmg"}, {7,1,"TargHeel"}, {12,2,"PolBsp"}, {10,1,"PolBsp%"},
    {7,1,"PolHeel"}, {0,2,"Error"}, {0,2,"RunnerS"}, {0,2,"RunnerP"}, {12,2,"PolBspN"}, {10,1,"PolBspN%"}, {7,0,"TrgTwa-L"},
    {10,1,"VMG%"}, {0,2,"Vang"}, {0,2,"Trav"}, {0,2,"Main"}, {12,1,"VmcPolMk"}, {7,1,"KeelAng"}, {17,2,"KeelHt"}, {0,2,"Board"},
    {23,2,"EngOilPres"}, {0,1,"RPM 1"}, {0,1,"RPM 2"}, {0,2,"Board P"}, {0,2,"Board S"}, {6,0,"OppTrack"}, {4,2,"d Finish"},
    {2,255,"StTmToP"}, {2,255,"StTmToS"}, {6,0,"LnSqWind"}, {5,2,"DistToLn"}, {2,255,"RchTmToLn"}, {5,2,"RchDtToLn"},
    {12,2,"RchBsToLn"}, {2,255,"Mark Tm"}, {2,255,"TmNxMk P"}, {2,255,"TmNxMk S"}, {4,2,"XTE"}, {12,1,"VMC"}, {7,2,"MagVar"},
    {6,0,"GWD"}, {21,1,"GWS"}, {4,2,"LayDist"}, {2,255,"LayTime"}, {6,0,"LayBrg"}, {10,1,"VMC%"}, {12,1,"VmcPol"},
    {12,1,"VmcOpt"}, {6,0,"VmcOptHdg"}, {13,0,"VmcOptTwa"}, {13,0,"dTargTwa"}, {4,2,"MkRng"}, {6,0,"MkBrg"}, {2,255,"MkGpsTime"},
    {13,0,"MkTwa"}, {6,0,"PredSet"}, {21,1,"PredDrift"}, {4,2,"NxtMkRng"}, {6,0,"NxtMkBrg"}, {13,0,"NxtMkTwa"}, {4,2,"RadarRng"},
    {6,0,"RadarBrg"}, {5,2,"BlwLnStrn"}, {0,0,"Alt 0"}, {0,255,"Alt 1"}, {0,255,"Alt 2"}, {0,255,"Alt 3"}, {0,255,"Alt 4"},
    {0,255,"Alt 5"}, {0,255,"Alt 6"}, {0,255,"Alt 7"}, {0,255,"Alt 8"}, {0,255,"Alt 9"}, {2,255,"NxMkPolTm"}, {13,0,"Bias ang"},
    {5,2,"BiasL"}, {6,0,"St lay P"}, {6,0,"St lay S"}, {13,0,"NxtMkAwa"}, {21,1,"NxtMkAws"}, {2,255,"StbdTurnR"},
    {2,255,"PortTurnR"}, {2,255,"StbdTurnL"}, {2,255,"PortTurnL"}, {4,2,"Dt note"}, {2,255,"Tm note"}, {4,3,"Log Bsp"},
    {4,3,"Log Sog"}, {2,255,"GpsTmToLn"}, {2,255,"GpsTmToBn"}, {13,0,"TargTwaS"}, {12,2,"TargBspS"}, {1,255,"GPS time"},
    {6,0,"TWD+90"}, {6,0,"TWD-90"}, {6,0,"Shadow"}, {6,0,"ShadowOpp"}, {0,2,"Downhaul2"}, {7,0,"Tack Ang"}, {7,0,"TackAngPl"},
    {13,0,"TargAwa"}, {2,255,"Px burn"}, {2,255,"Sx burn"}, {2,255,"StTmLayP"}, {2,255,"StTmLayS"}, {6,0,"Mk Set"},
    {21,2,"Mk Drift"}, {8,255,"Mk Lat"}, {9,255,"Mk Lon"}, {8,255,"Port lat"}, {9,255,"Port lon"}, {8,255,"Stbd lat"},
    {9,255,"Stbd lon"}, {17,1,"HPE"}, {10,0,"RH"}, {0,2,"Lead P"}, {0,2,"Lead S"}, {0,2,"BackStay"}, {0,255,"User 0"},
    {0,255,"User 1"}, {0,255,"User 2"}, {0,255,"User 3"}, {0,255,"User 4"}, {0,255,"User 5"}, {0,255,"User 6"}, {0,255,"User 7"},
    {0,255,"User 8"}, {0,255,"User 9"}, {0,255,"User 10"}, {0,255,"User 11"}, {0,255,"User 12"}, {0,255,"User 13"},
    {0,255,"User 14"}, {0,255,"User 15"}, {0,255,"User 16"}, {0,255,"User 17"}, {0,255,"User 18"}, {0,255,"User 19"},
    {0,255,"User 20"}, {0,255,"User 21"}, {0,255,"User 22"}, {0,255,"User 23"}, {0,255,"User 24"}, {0,255,"User 25"},
    {0,255,"User 26"}, {0,255,"User 27"}, {0,255,"User 28"}, {0,255,"User 29"}, {0,255,"User 30"}, {0,255,"User 31"},
    {2,255,"TmToGun"}, {2,255,"TmToLn"}, {2,255,"Burn"}, {5,2,"BelowLn"}, {5,2,"GunBlwLn"}, {2,255,"GtTmOnPt"}, {4,2,"GtDtOnSt"},
    {2,255,"GtTmOnSt"}, {4,2,"GtDtOnPt"}, {2,255,"GSTmOnSb"}, {2,255,"GSTmOnPt"}, {6,0,"PrtUpBrg"}, {6,0,"StbUpBrg"},
    {6,0,"PrtDnBrg"}, {6,0,"StbDnBrg"}, {2,255,"Td L Pt"}, {2,255,"Td L Stb"}, {2,255,"Td R Prt"}, {2,255,"Td R Stb"},
    {2,255,"Td L Tm"}, {2,255,"Td R Tm"}, {6,0,"PrtBrgMax"}, {6,0,"PrtBrgMin"}, {6,0,"StbBrgMax"}, {6,0,"StbBrgMin"},
    {6,0,"MkLyTwd"}, {6,0,"MkLyTwdOp"}, {12,2,"dBspSog"}, {7,1,"dHdgCog"}, {0,1,"rTmOnPrt"}, {0,1,"rTmOnStb"},
    {2,255,"TWDPeriod"}, {2,255,"TWSPeriod"}, {13,0,"Targ Twa"}, {12,2,"Targ Bsp"}, {3,2,"Tide"}, {0,2,"Pol 0"}, {0,2,"Pol 1"},
    {0,2,"Pol 2"}, {0,2,"Pol 3"}, {10,1,"Pol 0%"}, {10,1,"Pol 1%"}, {10,1,"Pol 2%"}, {10,1,"Pol 3%"}, {0,1,"Pol0Targ"},
    {0,1,"Pol1Targ"}, {0,1,"Pol2Targ"}, {0,1,"Pol3Targ"}, {0,1,"WvSigHt"}, {0,1,"WvSigPd"}, {0,1,"WvMaxHt"}, {0,1,"WvMaxPd"},
    {2,255,"GPS tOffset"}, {0,1,"Heave"}, {13,0,"MWA"}, {21,1,"MWS"}, {0,2,"Boom"}, {10,1,"TargBsp%"}, {6,0,"Hdg2St"},
    {6,0,"Hdg2StPol"}, {12,2,"StBsToP"}, {12,2,"StBsToS"}, {12,2,"StBsOnP"}, {12,2,"StBsOnS"}, {7,0,"Twist"}, {11,0,"Sail"},
    {11,0,"SailMark"}, {11,0,"SailNext"}, {6,0,"TWDTwisted"}, {2,255,"TackLossT"}, {17,1,"TackLossD"}, {4,2,"TripLog"},
    {7,0,"dMkBrgCog"}, {0,1,"TrimRate"}, {0,1,"HeelRate"}, {12,2,"dPolBsp"}, {7,1,"dTargHeel"}, {0,2,"DeflectorP"},
    {7,1,"RudderP"}, {7,1,"RudderS"}, {7,1,"RudderToe"}, {12,2,"BspTr"}, {0,2,"FStayInner"}, {2,255,"GateTime"}, {5,2,"Ahead"},
    {6,0,"Brg"}, {4,3,"Rng"}, {0,2,"DeflectorS"}, {0,2,"Bobstay"}, {0,2,"Outhaul"}, {0,2,"D0 P"}, {0,2,"D0 S"}, {0,2,"D1 P"},
    {0,2,"D1 S"}, {0,2,"V0 P"}, {0,2,"V0 S"}, {0,2,"V1 P"}, {0,2,"V1 S"}, {2,255,"StTmPsimple"}, {2,255,"StTmSsimple"},
    {6,0,"TargTWD"}, {7,0,"TargTWDDelta"}, {21,1,"PolTWS"}, {21,1,"PolTWSDelta"}, {10,1,"PolTWS%"}, {6,0,"OppTrkCog"},
    {2,255,"StPinchP"}, {2,255,"StPinchS"}, {6,0,"PredTWD"}, {21,1,"PredTWS"}, {15,2,"PredMSLP"}, {8,255,"NxMk Lat"},
    {9,255,"NxMk Lon"}, {7,1,"BoomAng"}, {0,2,"Cunningham"}, {0,2,"FStayInHal"}, {0,2,"JibFurl"}, {0,2,"JibH"}, {7,1,"MastCant"},
    {0,2,"J1"}, {0,2,"J2"}, {0,2,"J3"}, {0,2,"J4"}, {7,2,"Foil P"}, {7,2,"Foil S"}, {0,2,"Reacher"}, {0,2,"Blade"},
    {0,2,"Staysail"}, {0,2,"Solent"}, {0,2,"Tack"}, {0,2,"TackP"}, {0,2,"TackS"}, {0,2,"DeflectU"}, {0,2,"DeflectL"},
    {0,2,"WinchP"}, {0,2,"WinchS"}, {0,2,"SpinP"}, {0,2,"SpinS"}, {0,2,"MainH"}, {0,2,"Mast2"}, {7,1,"dPolHeel"},
    {6,0,"PrtBrgMean"}, {6,0,"StbBrgMean"}, {7,1,"PrtBrgSD"}, {7,1,"StbBrgSD"}, {2,255,"P burn"}, {2,255,"S burn"},
    {3,1,"DepthAft"}, {10,1,"Burn%"}, {12,2,"PolBspS"}, {10,2,"GunBspTarg%"}, {10,2,"GunBspPol%"}, {2,255,"LineTime"},
    {7,1,"dCrsCog"}, {2,255,"LayTimeGPS"}, {14,1,"EngTemp"}, {14,1,"EngOilTemp"}, {14,1,"TranOilTemp"}, {23,2,"TranOilPres"},
    {10,1,"FuelLev"}, {22,1,"Current"}, {10,1,"Charge%"}, {4,2,"GtRng"}, {6,0,"GtBrg"}, {21,1,"TWG"}, {6,0,"TWDG"},
    {14,1,"DewPt"}, {0,2,"FStay+Tack"}, {21,1,"Gradient"}, {21,1,"TWSGradient"}, {7,2,"Rud Ptch P"}, {7,2,"Rud Ptch S"},
    {2,255,"Test time"}, {6,0,"GateSqWind"}, {5,2,"GateBiasL"}, {10,1,"WaterLev"}, {10,1,"WaterLev2"}, {10,1,"FuelLev2"},
    {10,0,"CANLoad%"}, {0,0,"FastPkErr"}, {10,1,"PolBspS%"}, {10,1,"TargBspS%"}, {7,0,"OppTrkMk"}, {0,2,"AirDen"},
    {0,2,"AirDenPred"}, {16,1,"Volt 1"}, {16,1,"Volt 2"}, {16,1,"Volt 3"}, {16,1,"Volt 4"}, {22,1,"Current1"}, {22,1,"Current2"},
    {22,1,"Current3"}, {22,1,"Current4"}, {10,1,"Charge1%"}, {10,1,"Charge2%"}, {10,1,"Charge3%"}, {10,1,"Charge4%"},
    {19,1,"CalROT"}, {0,1,"CalBrake"}, {0,2,"CalAccel"}, {11,0,"SailEvt"}, {2,255,"MouseTm"}, {2,255,"MouseTmPol"},
    {10,1,"PortFwd%"}, {10,1,"PortAft%"}, {10,1,"StbdFwd%"}, {10,1,"StbdAft%"}, {6,0,"TWDmin"}, {6,0,"TWDmax"},
    {14,1,"PredSeaTemp"},
};
const int kShort[34] = {0, 93, 17, 48, 49, 6, 5, 4, 2, 3, 1, 13, 50, 51, 11, 12, 14, 15, 16, 288, 289, 290, 106, 105, 18, 19, 20, 22,
                        26, 30, 31, 73, 282, 283};
// clang-format on

int Pick(std::mt19937& random, int from, int to) {
    return from + static_cast<int>(random() % static_cast<unsigned>(to - from + 1));
}

// The settings that a text depends on, as one state of the suite.
struct Scene {
    int depth, speed, far, near, pressure;
    bool local, magnetic, fahrenheit;
    double length, ownVariation, farVariation;
    int bias;
    std::vector<int> types = std::vector<int>(414), precs = std::vector<int>(414);
    std::vector<std::string> userNames = std::vector<std::string>(414);
    std::vector<int> standsFor = std::vector<int>(10);
};

std::string Print(const char* format, double a) {
    char text[1024];
    std::snprintf(text, sizeof text, format, a);
    return text;
}

std::string Fixed(double value, int decimals, int width = 0) {
    char text[1024];
    std::snprintf(text, sizeof text, "%0*.*f", width, decimals, value);
    return text;
}

double ModelLength(int selector, double miles, double length) {
    if (selector == 1) return length == 0.0 || length == X ? miles : miles * (1852.0 / length);
    if (selector == 2) return miles * 1852.0;
    if (selector == 3) return miles * 1.852;
    if (selector == 4) return miles * 2025.3718285214347;
    if (selector == 5) return miles * 6076.115485564304;
    return miles;
}

double ModelUnit(const Scene& s, int type, double value) {
    if (type == 3) return s.depth == 0 ? value : s.depth == 1 ? value * 0.5468 : s.depth == 2 ? value * 3.2808 : X;
    if (type == 4) return ModelLength(s.far, value, s.length);
    if (type == 5) return ModelLength(s.near, value, s.length);
    if (type == 7 || type == 13) return value > 180 ? value - 360 : value < -180 ? value + 360 : value;
    if (type == 12 || type == 21) return s.speed == 1 ? value * 0.5144444704055786 : s.speed == 2 ? value * 1.852 : value;
    if (type == 14) return s.fahrenheit ? value * 9 / 5 + 32 : value;
    if (type != 23) return value;
    const double factors[] = {1.0, 0.001, 0.00014504, 0.00001, 0.00029529983071445};
    return s.pressure >= 0 && s.pressure < 5 ? value * factors[s.pressure] : value;
}

double ModelRead(const Scene& s, int type, double value, bool ownBoat) {
    if (type != 6) return ModelUnit(s, type, value);
    if (!s.magnetic) {
        const double variation = !ownBoat && s.farVariation != X ? s.farVariation : s.ownVariation;
        if (variation == X) return X;
        value += variation;
    }
    return value >= 360 ? value - 360 : value < 0 ? value + 360 : value;
}

std::string ModelPosition(double value, bool latitude) {
    if (!latitude && value > 180) value -= 360;
    const double angle = value < 0 ? -value : value;
    if (angle > (latitude ? 90 : 180)) return "";
    const double whole = std::floor(angle);
    return Fixed(whole, 0, latitude ? 2 : 3) + " " + Fixed((angle - whole) * 60, 4, 7) +
           (latitude    ? value < 0 ? "s" : "n"
            : value < 0 ? "w"
                        : "e");
}

std::string ModelMoment(double day) {
    const auto time = static_cast<std::time_t>(std::floor((day - 25569.0) * 86400.0 + 0.5));
    char text[64];
    std::strftime(text, sizeof text, "%d-%b-%Y %H:%M:%S", std::gmtime(&time));
    return text;
}

std::string ModelDuration(double days) {
    if (days < 0) return "-" + ModelDuration(-days);
    if (days < 10.0 / 86400.0) return Print("%.1fs", days * 86400.0);
    const long long all = std::llround(days * 86400.0);
    const double d = static_cast<double>(all / 86400), h = static_cast<double>(all / 3600 % 24);
    const double m = static_cast<double>(all / 60 % 60), s = static_cast<double>(all % 60);
    if (d > 0) return Fixed(d, 0) + "d " + Fixed(h, 0, 2) + "h";
    if (h > 0) return Fixed(h, 0, 2) + "h " + Fixed(m, 0, 2) + "m";
    if (m > 0) return Fixed(m, 0, 2) + "m " + Fixed(s, 0, 2) + "s";
    return Fixed(s, 0, 2) + "s";
}

std::string ModelText(const Scene& s, int channel, int type, double value) {
    if (value == X) return "- -";
    if (channel == 269) return "Sail now";
    if (channel == 270 || channel == 271 || channel == 404) return "";
    if (channel == 39 || channel == 47) {
        const char* const methods[] = {"No GPS", "GPS", "DGPS", "PGPS", "RTK", "RTK", "DR", "Manual", "Simulate"};
        const char* const modes[] = {"1D", "2D", "3D", "Auto", "4", "5", "Error", "Null"};
        const long number = std::lround(value);
        if (number < 0 || number >= (channel == 39 ? 9 : 8)) return std::to_string(number);
        return (channel == 39 ? methods : modes)[number];
    }
    if (type == 1) return ModelMoment(s.local ? value - s.bias / 1440.0 : value);
    if (type == 2) return ModelDuration(value);
    if (type == 8 || type == 9) return ModelPosition(value, type == 8);
    std::string side;
    if (channel == 93) side = value > 0 ? "°e" : "°w";
    if (channel == 128) side = value > 0 ? "°s" : "°p";
    if (channel == 129 || channel == 378) side = value > 0 ? "s" : "p";
    if (channel == 276) side = value >= 0 ? "R" : "L";
    if (!side.empty()) value = std::abs(value);
    const int prec = s.precs[static_cast<std::size_t>(channel)];
    if (type == 6) return Fixed(value, prec, prec == 0 ? 3 : prec + 4) + side;
    return Fixed(value, prec == 255 ? 6 : prec) + side;
}

class Suite {
public:
    explicit Suite(unsigned seed) : random_(seed) { NewScene(); }

    void Check(int channel, int boat) {
        const int real = channel >= 117 && channel <= 126 ? scene_.standsFor[static_cast<std::size_t>(channel - 117)] : channel;
        const int type = real >= 172 && real <= 202 ? scene_.types[static_cast<std::size_t>(real)] : kModel[real].type;
        const double stored = real == 93 ? (boat == 0 ? scene_.ownVariation : scene_.farVariation) : RandomValue(type);
        const bool held = Hold(real, boat, stored);
        const double expected = held && stored != X ? ModelRead(scene_, type, stored, boat == 0) : X;

        double value = 0.0;
        const bool damped = random_() % 2 && boat < 2;
        core_.GetFreshChannel(static_cast<ChannelId>(channel), value, static_cast<BoatSlot>(boat), damped, scene_.magnetic, X);
        ASSERT_DOUBLE_EQ(expected, value) << "channel " << channel << " of type " << type << ", boat " << boat << ", " << stored;
        ASSERT_EQ(ModelText(scene_, real, type, expected), ToUtf8(core_.ChannelText(static_cast<ChannelId>(channel), value)))
            << "channel " << channel << " of type " << type << ", " << expected;
        const std::string& own = scene_.userNames[static_cast<std::size_t>(real)];
        ASSERT_EQ(own.empty() ? kModel[real].name : own, ToUtf8(core_.ChannelName(static_cast<ChannelId>(channel))));
    }

    void NewScene() {
        scene_ = {Pick(random_, -1, 4),
                  Pick(random_, -1, 4),
                  Pick(random_, -1, 6),
                  Pick(random_, -1, 6),
                  Pick(random_, -1, 5),
                  Coin(),
                  Coin(),
                  Coin(),
                  Coin()   ? 15.85
                  : Coin() ? 0.0
                           : X,
                  Coin() ? Real(-90, 90) : X,
                  Coin() ? Real(-90, 90) : X,
                  Pick(random_, -720, 720)};
        record_.SetInt(1, scene_.depth), record_.SetInt(2, scene_.speed), record_.SetInt(3, scene_.far);
        record_.SetInt(4, scene_.near), record_.SetInt(9, scene_.pressure);
        record_.SetFlag(1, scene_.local), record_.SetFlag(3, scene_.magnetic), record_.SetFlag(4, scene_.fahrenheit);
        record_.SetValue(0, scene_.length);
        record_.SetBoatCount(8);
        Hold(93, 0, scene_.ownVariation), Hold(93, 1, scene_.farVariation), Hold(93, 7, scene_.farVariation);
        record_.SetText(1780, u"Sail now");
        machine_.zone.state = ZoneState{scene_.bias, -60, false};
        for (std::size_t c = 0; c < 414; ++c) {
            scene_.types[c] = Pick(random_, -1, 24);
            scene_.precs[c] = Coin() ? kModel[c].prec : Coin() ? Pick(random_, 0, 9) : 255;
            scene_.userNames[c] = random_() % 4 ? "" : "own " + std::to_string(c);
            record_.Set(6300 + 108 * c + 6, static_cast<std::uint16_t>(scene_.precs[c]));
            record_.Set(6300 + 108 * c + 10, static_cast<std::int16_t>(scene_.types[c]));
            record_.SetText(6300 + 108 * c + 76, FromUtf8(scene_.userNames[c]));
        }
        for (std::size_t row = 0; row < 10; ++row) {
            scene_.standsFor[row] = Pick(random_, 127, 413);
            for (std::size_t slot = 0; slot < 9; ++slot) record_.SetSlot(row, slot, scene_.standsFor[row]);
        }
    }

private:
    bool Coin() { return random_() % 2 != 0; }
    double Real(double from, double to) { return from + (to - from) * static_cast<double>(random_()) / 4294967296.0; }

    double RandomValue(int type) {
        if (random_() % 10 == 0) return X;
        if (type == 1) return Real(26000, 50000);  // within what gmtime can split on every system
        if (random_() % 10 == 0) return 0.0;
        if (type == 2) return Coin() ? Real(-3, 3) : Real(-0.002, 0.002);
        if (type == 8) return Real(-95, 95);
        if (type == 9 || type == 7 || type == 13) return Real(-180, 360);
        if (type == 6) return Real(0, 360);
        return Coin() ? Real(-10, 10) : Real(-3000, 3000);
    }

    bool Hold(int channel, int boat, double value) {
        const double now = machine_.clock.Days();
        const auto slot = static_cast<std::size_t>(boat);
        if (boat < 2) {
            record_.SetEntry(slot, static_cast<std::size_t>(channel), value, now, value);
            return true;
        }
        const auto* const place = std::find(std::begin(kShort), std::end(kShort), channel);
        if (place == std::end(kShort)) return false;
        record_.SetFarEntry(slot, static_cast<std::size_t>(place - kShort), value, now, X);
        return true;
    }

    std::mt19937 random_;
    testing::FakeMachine machine_;
    CCore core_{machine_.Services()};
    testing::RecordWriter record_{core_};
    Scene scene_{};
};

TEST(ChannelModel, GivesTheSameTextAndNameForEveryChannel) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        Suite suite(seed);
        for (int channel = 0; channel < 414; ++channel) {
            for (const int boat : {0, 1, 7}) {
                suite.Check(channel, boat);
                if (HasFatalFailure()) return;
            }
        }
    }
}

}  // namespace
}  // namespace twr
