// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/marks.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace twr {
namespace {

constexpr std::size_t kMostMarks = 1000;
constexpr double kPerDegree = 1e6;  // nearer places are the same

// Of the own boat.
struct Place {
    ChannelId latitude, longitude;
    const char* name;
};
constexpr Place kPlaces[] = {
    {kMkLat, kMkLon, "Mark"}, {kPortLat, kPortLon, "Line, port end"}, {kStbdLat, kStbdLon, "Line, starboard end"}};

double Rounded(double degrees) { return std::round(degrees * kPerDegree) / kPerDegree; }

bool IsPlace(double latitude, double longitude) { return std::fabs(latitude) <= 90.0 && std::fabs(longitude) <= 360.0; }

}  // namespace

void MarksSeen::Take(const Recorded& recorded) {
    if (recorded.change.boat != 0) return;
    for (std::size_t i = 0; i < std::size(kPlaces); ++i) {
        const bool isLatitude = recorded.change.channel == kPlaces[i].latitude;
        if (!isLatitude && recorded.change.channel != kPlaces[i].longitude) continue;
        if (recorded.time != look_) EndLook();
        look_ = recorded.time;
        changed_ = true;
        (isLatitude ? latitudes_ : longitudes_)[i] = recorded.change.value;
    }
}

// A place is whole when all of a look is known.
void MarksSeen::EndLook() {
    if (!std::exchange(changed_, false) || !IsPlace(latitudes_[0], longitudes_[0])) return;
    const GpxMark mark{kPlaces[0].name, Rounded(latitudes_[0]), Rounded(longitudes_[0])};
    if (std::ranges::find(marks_, mark) == marks_.end() && marks_.size() < kMostMarks) marks_.push_back(mark);
}

std::vector<GpxMark> MarksSeen::All() {
    EndLook();
    std::vector<GpxMark> all = marks_;
    for (std::size_t i = 0; i < all.size(); ++i) all[i].name += " " + std::to_string(i + 1);
    for (std::size_t i = 1; i < std::size(kPlaces); ++i) {
        if (IsPlace(latitudes_[i], longitudes_[i]))
            all.push_back({kPlaces[i].name, Rounded(latitudes_[i]), Rounded(longitudes_[i])});
    }
    return all;
}

}  // namespace twr
