#include "stand_in/stand_in_settings.h"

#include <charconv>

#include "base/bounded_lines.h"
#include "base/wide_text.h"
#include "nmea/sentence.h"

namespace twr {
namespace {

constexpr double kSlowest = 0.1;
constexpr double kFastest = 100.0;
constexpr std::int32_t kShortestLead = 10;
constexpr std::int32_t kLongestLead = 3600;
constexpr int kMostLines = 1000;

template <class Number>
bool ParseWhole(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

void TakeSetting(std::string_view key, std::string_view value, StandInSettings& settings) {
    std::uint64_t seed = 0;
    std::int32_t lead = 0;
    if (key == "seed" && ParseWhole(value, seed)) settings.seed = seed;
    if (key == "start_lead" && ParseWhole(value, lead) && lead >= kShortestLead && lead <= kLongestLead) settings.startLead = lead;
    if (key == "speed") {
        const auto speed = ParseDecimal(value);
        if (speed && *speed >= kSlowest && *speed <= kFastest) settings.speed = *speed;
    }
}

}  // namespace

StandInSettings ReadStandInSettings(Files& files, std::u16string_view path) {
    StandInSettings settings;
    const auto source = files.Open(path);
    if (!source) return settings;
    BoundedLines lines(*source);
    std::string_view line;
    for (int i = 0; i < kMostLines && lines.Next(line); ++i) {
        const std::size_t equals = line.find('=');
        if (equals != std::string_view::npos)
            TakeSetting(Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1)), settings);
    }
    return settings;
}

}  // namespace twr
