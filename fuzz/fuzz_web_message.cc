// SPDX-License-Identifier: MIT
#include <string>

#include "halyrigctl/serve/messages.h"

// What a client says over a WebSocket: of what is understood, every place exists, and a pattern matches itself.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto places = twr::ParseWatch(text)) {
        for (const auto& [channel, boat] : *places) {
            if (channel >= twr::kChannelCount || boat >= twr::kBoatCount) __builtin_trap();
        }
    }
    if (const auto said = twr::ParseSignalK(text)) {
        for (const twr::SignalKSubscription& row : said->subscribe) {
            if (row.path.empty() || !(row.period >= 0.0) || !(row.minPeriod >= 0.0)) __builtin_trap();
            if (!twr::MatchesPattern(row.path, row.path)) __builtin_trap();
        }
    }
    return 0;
}
