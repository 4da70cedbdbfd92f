// SPDX-License-Identifier: MIT
#include "platform/clock.h"

#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>
#include <string_view>

#include "platform/linux/services.h"

namespace twr {
namespace {

class SystemClock final : public Clock {
public:
    std::int64_t Ticks() const override {
        timespec now;
        clock_gettime(CLOCK_REALTIME, &now);
        return std::int64_t{now.tv_sec} * 10'000'000 + static_cast<std::uint32_t>(now.tv_nsec) / 100;
    }
    std::int64_t SteadyMs() const override {
        timespec now;
        clock_gettime(CLOCK_MONOTONIC, &now);
        return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
    }
};

constexpr std::time_t kDay = 86400, kMonth = 30 * kDay;

// "CET-1CEST,M3.5.0,M10.5.0/3" and "<+0330>-3:30": a name of three or more characters and an offset.
bool IsRule(std::string_view text) {
    std::size_t at = 0;
    if (text.starts_with('<')) {
        at = text.find('>');
        if (at == text.npos) return false;
        ++at;
    } else {
        while (at < text.size() && std::isalpha(static_cast<unsigned char>(text[at]))) ++at;
        if (at < 3) return false;
    }
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
    return at < text.size() && std::isdigit(static_cast<unsigned char>(text[at]));
}

bool IsZoneFile(const std::string& path) {
    char magic[4] = {};
    std::ifstream file(path, std::ios::binary);
    file.read(magic, sizeof magic);
    return file && std::string_view(magic, sizeof magic) == "TZif";
}

// The C library silently uses UTC for a zone that it doesn't find.
bool IsKnown(std::string name) {
    if (name.starts_with(':')) name.erase(0, 1);
    if (name.empty() || name == "UTC" || name == "GMT" || IsRule(name)) return true;
    if (name.front() == '/') return IsZoneFile(name);
    const char* folder = std::getenv("TZDIR");
    return IsZoneFile((folder ? std::string(folder) : "/usr/share/zoneinfo") + '/' + name);
}

std::int32_t BiasOf(const std::tm& local) { return static_cast<std::int32_t>(-local.tm_gmtoff / 60); }

class SystemZone final : public Zone {
public:
    std::optional<ZoneState> Now() const override {
        if (!NameIsKnown()) return std::nullopt;
        tzset();
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        if (!localtime_r(&now, &local)) return std::nullopt;
        const bool daylight = local.tm_isdst > 0;
        const std::int32_t bias = BiasOf(local);
        const auto other = OtherHalf(now, daylight);
        if (!daylight) return ZoneState{bias, other.value_or(bias) - bias, false};
        const std::int32_t standard = other.value_or(static_cast<std::int32_t>(timezone / 60));
        return ZoneState{standard, bias - standard, true};
    }

    std::optional<std::int32_t> BiasAt(std::int64_t ticks) const override {
        if (!NameIsKnown()) return std::nullopt;
        tzset();
        const std::time_t then = ticks / 10'000'000;
        std::tm local{};
        return localtime_r(&then, &local) ? std::optional(BiasOf(local)) : std::nullopt;
    }

private:
    bool NameIsKnown() const {
        const char* name = std::getenv("TZ");
        if (!name) return true;
        if (name_ != name) {
            name_ = name;
            known_ = IsKnown(name);
        }
        return known_;
    }

    // The bias in the next part of the coming year in which daylight time is the opposite; nullopt in a zone without such a part.
    static std::optional<std::int32_t> OtherHalf(std::time_t now, bool daylight) {
        for (int month = 1; month <= 12; ++month) {
            const std::time_t then = now + month * kMonth;
            std::tm local{};
            if (localtime_r(&then, &local) && (local.tm_isdst > 0) != daylight) return BiasOf(local);
        }
        return std::nullopt;
    }

    // The last name of a zone that has been looked up, to avoid a look-up at every call.
    mutable std::string name_;
    mutable bool known_ = true;
};

}  // namespace

std::unique_ptr<Clock> MakeClock() { return std::make_unique<SystemClock>(); }

std::unique_ptr<Zone> MakeZone() { return std::make_unique<SystemZone>(); }

}  // namespace twr
