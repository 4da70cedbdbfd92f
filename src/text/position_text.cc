// SPDX-License-Identifier: MIT
#include <cmath>

#include "base/no_value.h"
#include "base/numbers.h"
#include "base/wide_text.h"
#include "text/texts.h"

namespace twr {
namespace {

// Degrees are truncated and only the printing rounds the minutes, so 60.0000 is possible.
struct Parts {
    int degrees;
    double minutes;
};

Parts PartsOf(double angle) {
    const int degrees = static_cast<int>(angle);
    return {degrees, (angle - degrees) * 60};
}

}  // namespace

std::u16string LatitudeText(double degrees) {
    const double angle = std::fabs(degrees);
    if (!(angle <= 90.0)) return {};  // NaN too
    const Parts parts = PartsOf(angle);
    return FromBytes(Printed("%02d %07.4lf%c", parts.degrees, parts.minutes, degrees < 0.0 ? 's' : 'n'));
}

std::u16string LongitudeText(double degrees) {
    if (degrees == kNoValue) return {};
    if (degrees > 180.0) {
        degrees -= 360.0;
    } else if (degrees < -180.0) {
        degrees += 360.0;
    }
    const double angle = std::fabs(degrees);
    if (!(angle <= 180.0)) return {};
    const Parts parts = PartsOf(angle);
    return FromBytes(Printed("%03d %07.4lf%c", parts.degrees, parts.minutes, degrees < 0.0 ? 'w' : 'e'));
}

}  // namespace twr
