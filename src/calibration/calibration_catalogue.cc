#include "calibration/calibration_catalogue.h"

#include <array>

#include "base/channel_ids.h"

namespace twr {
namespace {

constexpr std::uint16_t kNone = kNoChannel;

// clang-format off
constexpr std::array<CalibrationInfo, kCalibrationCount> kRows = {{
    {kNone, kBsp, kNone, 7, 1, 15, 0, 0, 5, 0, {1, 1}, 1, 0, u"\u00B0/s", u"Rate of turn", 1},
    {kNone, kTws, kTwa, 7, 1, 10, 0, 0, 5, 45, {1, 1}, 1, 0, u"kt/min", u"Acceleration", 2},
    {kBsp, kBsp, kHeel, 7, 1, 0, 0, 0, 5, 0, {1, 0}, 0, 0, u"kt", u"Bsp", 3},
    {kAws, kAwa, kAws, 5, 7, 0, 0, 0, 45, 5, {1, 0}, 0, 0, u"kt", u"Aws", 4},
    {kAwa, kAwa, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"AwaOffset", 5},
    {kAwa, kAwa, kAws, 5, 7, 0, 0, 0, 45, 5, {1, 0}, 0, 0, u"\u00B0", u"Awa", 6},
    {kTws, kTwa, kTws, 10, 7, 0, 0, 0, 45, 5, {0, 0}, 0, 0, u"kt", u"Tws", 7},
    {kTwa, kTwa, kTws, 10, 7, 0, 0, 0, 45, 5, {0, 0}, 0, 0, u"\u00B0", u"Twa", 8},
    {kHdg, kHdg, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"Hdg", 9},
    {kTwd, kTwd, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"Twd", 10},
    {kLeeway, kTwa, kTws, 1, 1, 13, 0, 0, 45, 5, {1, 1}, 1, 0, u"", u"Leeway", 11},
    {kHeel, kHeel, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"Heel", 12},
    {kTrim, kTrim, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"Trim", 13},
    {kMastAng, kMastAng, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"MastAngle", 14},
    {kRudder, kRudder, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"RudderAngle", 15},
    {kNone, kNone, kNone, 1, 1, 1, 0, 0, 0, 0, {1, 0}, 0, 0, u"", u"Wind weight", 16},
    {kNone, kNone, kNone, 1, 1, 10, 0, 0, 0, 0, {1, 1}, 1, 0, u"", u"Mast height", 17},
    {kSeaTemp, kSeaTemp, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"SeaTemp", 18},
    {kNone, kRot, kNone, 5, 1, 100, 0, 0, 30, 0, {1, 0}, 0, 0, u"s to stop", u"Brake", 19},
    {kBaro, kBaro, kNone, 6, 1, 0, 900, 0, 50, 0, {1, 0}, 0, 0, u"mb", u"Baro", 0},
}};
// clang-format on

}  // namespace

std::span<const CalibrationInfo, kCalibrationCount> CalibrationCatalogue() { return kRows; }

}  // namespace twr
