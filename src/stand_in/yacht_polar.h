// SPDX-License-Identifier: MIT
// The speed that the simulated yacht, 16 m long and light, can reach.
#pragma once
#include <array>
#include <cstddef>

namespace twr {

// True wind angles, without sign, at which the yacht makes the best way against and before the wind.
struct BestAngles {
    double upwind, downwind;
};

class YachtPolar {
public:
    YachtPolar();

    // Knots through the water, for a true wind in knots and its angle in degrees with any sign.
    double Speed(double tws, double twa) const;

    BestAngles Best(double tws) const;

    // Seconds to a point that lies `distance` nautical miles off and would be reached at the angle `twa`, in two boards where it
    // lies closer to the wind, or squarer before it, than the yacht can sail well.
    double SailingTime(double tws, double twa, double distance) const;

private:
    std::array<BestAngles, 31> best_;  // by whole knots
};

}  // namespace twr
