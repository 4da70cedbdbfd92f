// SPDX-License-Identifier: MIT
#include "reading_model.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "core/channel_catalogue.h"

namespace twr::testing {
namespace {

constexpr double kNone = 32767.0;

std::uint32_t ShortIndex(std::uint32_t channel) { return ChannelCatalogue()[channel].shortIndex; }

bool HasEntry(std::uint32_t channel, std::uint32_t boat) {
    return channel < 414 && boat < 100 && (boat < 2 || ShortIndex(channel) < 34);
}

double TurnedToBearing(double value) { return value >= 360.0 ? value - 360.0 : value < 0.0 ? value + 360.0 : value; }
double TurnedToAngle(double value) { return value > 180.0 ? value - 360.0 : value < -180.0 ? value + 360.0 : value; }

double Times(double value, std::span<const double> factors, std::int32_t selector, double otherwise) {
    const auto row = static_cast<std::uint32_t>(selector);
    return row < factors.size() ? value * factors[row] : otherwise;
}

constexpr double kDepth[] = {1.0, 0.5468, 3.2808};
constexpr double kDistance[] = {1.0, 1852.0, 1852.0, 1.852, 2025.3718285214347, 6076.115485564304};
constexpr double kSpeed[] = {1.0, 0.5144444704055786, 1.852};
constexpr double kPressure[] = {1.0, 0.001, 0.00014504, 0.00001, 0.00029529983071445};

}  // namespace

double ReadingModel::OwnValue(std::uint32_t channel) const {
    return Boats() == 0 ? kNone : record_.F64(RecordBytes::Value(0, channel));
}

std::int16_t ReadingModel::Type(std::uint32_t channel) const {
    const bool isUsers = channel >= 172 && channel <= 202;
    return isUsers ? record_.Get<std::int16_t>(RecordBytes::Channel(channel) + 10)
                   : static_cast<std::int16_t>(ChannelCatalogue()[channel].type);
}

std::int32_t ReadingModel::TakenSlot(std::size_t row) const {
    const auto slot = [&](std::size_t i) { return record_.I32(5080 + 36 * row + 4 * i); };
    const auto filled = [&](std::size_t i) { return slot(i) != 32767; };
    const double toGun = OwnValue(204);
    const double twa = OwnValue(4);
    const double target = OwnValue(237);

    if (Flag(46) && filled(8)) return slot(8);
    if (toGun != kNone && toGun >= 0.0 && filled(5)) return slot(5);
    if (Flag(36) && filled(0)) return slot(0);
    if (!Flag(36) && filled(1)) return slot(1);
    if (twa != kNone) {
        const double a = std::abs(twa);
        if (target != kNone) {
            const double b = std::abs(target);
            const double d = std::abs(record_.F64(RecordBytes::SysValue(7)));
            if (a < 90.0 && filled(2) && d + b > a) return slot(2);
            if (a > 90.0 && filled(4) && a > b - d) return slot(4);
            if (filled(3)) return slot(3);
        }
        if (twa < 0.0 && filled(6)) return slot(6);
        if (twa >= 0.0 && filled(7)) return slot(7);
        if (a < 90.0 && filled(2)) return slot(2);
        if (a >= 90.0 && filled(4)) return slot(4);
    }
    std::size_t i = 0;
    while (i < 8 && !filled(i)) ++i;
    return slot(i);
}

// Whatever else another program may have put into a slot is no channel.
std::uint32_t ReadingModel::Resolved(std::uint32_t channel, bool recurse) const {
    if (channel < 117 || channel > 126) return channel < 414 ? channel : 32767;
    const auto taken = static_cast<std::uint32_t>(TakenSlot(channel - 117));
    if (recurse && taken >= 117 && taken <= 126) return Resolved(taken, false);
    return taken < 414 ? taken : 32767;
}

double ReadingModel::Channel(std::uint32_t channel, std::uint32_t boat, bool damped, bool angleFlag, bool convert) const {
    if (channel >= 414 || boat >= 100) return kNone;
    const std::uint32_t c = Resolved(channel, true);
    if (c >= 414 || boat >= Boats() || !HasEntry(c, boat)) return kNone;
    if (boat >= 2 && damped && c >= 34) return kNone;
    const double read =
        boat < 2 ? record_.F64(damped ? RecordBytes::Damped(boat, c) : RecordBytes::Value(boat, c))
                 : record_.F64(damped ? RecordBytes::FarDamped(boat, ShortIndex(c)) : RecordBytes::FarValue(boat, ShortIndex(c)));
    if (read == kNone) return kNone;
    if (!angleFlag && Type(c) == 6) return WithVariation(read, boat);
    return convert ? InUserUnit(c, read, kNone) : read;
}

std::int16_t ReadingModel::StaleSeconds(std::uint32_t channel, std::uint32_t boat) const {
    if (channel >= 414) return 10;
    std::uint32_t limit = ChannelCatalogue()[channel].staleSeconds;
    if (boat >= 1 && boat <= 99 && boat < Boats() && record_.I32(RecordBytes::Boat(boat) + 72) != 0) {
        limit = std::max(limit, record_.Get<std::uint32_t>(RecordBytes::Boat(boat)));
    }
    return static_cast<std::int16_t>(limit);
}

double ReadingModel::FreshChannel(std::uint32_t channel, std::uint32_t boat, bool damped, bool angleFlag, double maxAge,
                                  double now) const {
    const std::uint32_t c = Resolved(channel, true);
    const std::int16_t limit = StaleSeconds(c, boat);
    if (limit > 0) {
        if (maxAge == kNone) maxAge = limit / 60.0 / 60.0 / 24.0;
        if (boat >= Boats() || !HasEntry(c, boat)) return kNone;
        const double time = record_.F64(boat < 2 ? RecordBytes::Time(boat, c) : RecordBytes::FarTime(boat, ShortIndex(c)));
        if (time == 0.0 || std::abs(now - time) > maxAge) return kNone;
    }
    return Channel(c, boat, damped, angleFlag, true);
}

double ReadingModel::WithVariation(double value, std::uint32_t boat) const {
    if (value == kNone) return kNone;
    double m = kNone;
    if (boat < Boats() && HasEntry(93, boat)) {
        m = record_.F64(boat < 2 ? RecordBytes::Value(boat, 93) : RecordBytes::FarValue(boat, ShortIndex(93)));
    }
    if (m == kNone) m = OwnValue(93);
    if (m == kNone || value + m == kNone) return kNone;
    return TurnedToBearing(value + m);
}

double ReadingModel::InDistanceUnit(double value, std::int32_t selector) const {
    const double length = record_.F64(RecordBytes::SysValue(0));
    if (selector != 1) return Times(value, kDistance, selector, value);
    return length == kNone || length == 0.0 ? value : value * (1852.0 / length);
}

double ReadingModel::InUserUnit(std::uint32_t channel, double value, double variation) const {
    if (value == kNone || channel >= 414) return value;
    switch (Type(channel)) {
        case 3:
            return Times(value, kDepth, Int(1), kNone);
        case 4:
            return InDistanceUnit(value, Int(3));
        case 5:
            return InDistanceUnit(value, Int(4));
        case 6:
            if (Flag(3)) return TurnedToBearing(value);
            if (variation == kNone) variation = OwnValue(93);
            return variation == kNone ? kNone : TurnedToBearing(value + variation);
        case 7:
        case 13:
            return TurnedToAngle(value);
        case 12:
        case 21:
            return Times(value, kSpeed, Int(2), value);
        case 14:
            return Flag(4) ? value * 9.0 / 5.0 + 32.0 : value;
        case 23:
            return Times(value, kPressure, Int(9), value);
        default:
            return value;
    }
}

bool ReadingModel::Stores(std::uint32_t channel, std::uint32_t boat) const {
    if (channel == 0 || !HasEntry(channel, boat)) return false;
    const std::size_t row = RecordBytes::Channel(channel);
    return record_.U8(row + 1) == 0 && (!Flag(52) || record_.U8(row + 4) == 0);
}

}  // namespace twr::testing
