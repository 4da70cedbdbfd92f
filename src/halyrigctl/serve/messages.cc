// SPDX-License-Identifier: MIT
#include "halyrigctl/serve/messages.h"

#include <algorithm>

#include "halyrigctl/output/json.h"

namespace twr {
namespace {

constexpr std::size_t kMostWatched = 2'000;

constexpr int kNotAllowed = 405, kNotImplemented = 501;

std::optional<ChannelPlace> PlaceIn(const Json& pair) {
    if (!pair.is_array() || pair.size() != 2 || !pair[0].is_number_unsigned() || !pair[1].is_number_unsigned()) return std::nullopt;
    const auto channel = pair[0].get<std::uint64_t>(), boat = pair[1].get<std::uint64_t>();
    if (channel >= kChannelCount || boat >= kBoatCount) return std::nullopt;
    return ChannelPlace(static_cast<ChannelId>(channel), static_cast<BoatSlot>(boat));
}

std::string TextIn(const Json& object, const char* member, std::string otherwise) {
    const auto found = object.find(member);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::move(otherwise);
}

// From milliseconds; a day at most.
double SecondsIn(const Json& object, const char* member, double otherwise) {
    const auto found = object.find(member);
    return found != object.end() && found->is_number() ? std::clamp(found->get<double>() / 1000, 0.0, 86'400.0) : otherwise;
}

SignalKPolicy PolicyIn(const Json& object) {
    const std::string policy = TextIn(object, "policy", "ideal");
    return policy == "instant" ? SignalKPolicy::kInstant : policy == "fixed" ? SignalKPolicy::kFixed : SignalKPolicy::kIdeal;
}

// Rows without a path are passed over.
std::vector<SignalKSubscription> RowsIn(const Json& said, const char* member) {
    std::vector<SignalKSubscription> rows;
    const auto found = said.find(member);
    if (found == said.end() || !found->is_array()) return rows;
    const std::string context = TextIn(said, "context", "vessels.self");
    for (const Json& row : *found) {
        std::string path = row.is_object() ? TextIn(row, "path", "") : "";
        if (path.empty()) continue;
        rows.push_back({context, std::move(path), PolicyIn(row), SecondsIn(row, "period", 1.0), SecondsIn(row, "minPeriod", 0.0)});
    }
    return rows;
}

}  // namespace

std::optional<std::vector<ChannelPlace>> ParseWatch(std::string_view message) {
    const Json object = Json::parse(message, nullptr, false);
    if (!object.is_object() || !object.contains("watch") || !object["watch"].is_array()) return std::nullopt;
    const Json& pairs = object["watch"];
    if (pairs.size() > kMostWatched) return std::nullopt;
    std::vector<ChannelPlace> places;
    for (const Json& pair : pairs) {
        const auto place = PlaceIn(pair);
        if (!place) return std::nullopt;
        places.push_back(*place);
    }
    return places;
}

std::optional<SignalKSaid> ParseSignalK(std::string_view message) {
    const Json said = Json::parse(message, nullptr, false);
    if (!said.is_object()) return std::nullopt;
    SignalKSaid parsed{RowsIn(said, "subscribe"), RowsIn(said, "unsubscribe"), TextIn(said, "requestId", "")};
    if (said.contains("put")) parsed.refusal = kNotAllowed;
    if (said.contains("login") || said.contains("validate") || said.contains("logout")) parsed.refusal = kNotImplemented;
    return parsed;
}

// One star is remembered: what it takes grows until the rest fits.
bool MatchesPattern(std::string_view pattern, std::string_view text) {
    std::size_t at = 0, in = 0, star = pattern.npos, from = 0;
    while (in < text.size()) {
        if (at < pattern.size() && pattern[at] == '*') {
            star = at++;
            from = in;
        } else if (at < pattern.size() && pattern[at] == text[in]) {
            ++at;
            ++in;
        } else if (star != pattern.npos) {
            at = star + 1;
            in = ++from;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', at) == pattern.npos;
}

}  // namespace twr
