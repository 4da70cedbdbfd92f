// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cctype>
#include <string>

#include "base/channel_ids.h"
#include "halyrigctl/serve/target.h"
#include "streams/web_server.h"

// A request's path, or its host and origin in the lines of one: a number that is taken is below its bound, and no host is taken
// that could say more than itself in a header.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(text.find('\n'), size), next = std::min(end + 1, size);
    if (const auto target = twr::ParseTarget(std::string_view(text).substr(0, end))) {
        if (!target->path.starts_with('/')) __builtin_trap();
        const auto channel = target->Number("channel", twr::kChannelCount);
        if (channel && *channel >= twr::kChannelCount) __builtin_trap();
    }
    const twr::WebGuard guard("nav.boat", std::nullopt);
    const std::string host = text.substr(0, end), origin = text.substr(next);
    const auto plain = [](unsigned char c) {
        return std::isxdigit(c) != 0 || (c != 0 && std::string_view(".:[]%").find(static_cast<char>(c)) != std::string_view::npos);
    };
    const bool named = std::ranges::any_of(host, [](unsigned char c) { return std::isalpha(c) != 0; });
    if (guard.Admits({.host = host, .origin = origin}) && !named && !std::ranges::all_of(host, plain)) __builtin_trap();
    return 0;
}
