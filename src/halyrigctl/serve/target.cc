// SPDX-License-Identifier: MIT
#include "halyrigctl/serve/target.h"

#include <algorithm>
#include <charconv>

namespace twr {
namespace {

std::optional<std::string> Decoded(std::string_view coded, bool plusIsBlank) {
    std::string text;
    for (std::size_t i = 0; i < coded.size(); ++i) {
        if (coded[i] != '%') {
            text += plusIsBlank && coded[i] == '+' ? ' ' : coded[i];
            continue;
        }
        unsigned char byte = 0;
        const std::string_view digits = coded.substr(i + 1, 2);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
        if (digits.size() < 2 || error != std::errc() || end != digits.data() + 2) return std::nullopt;
        text += static_cast<char>(byte);
        i += 2;
    }
    return text;
}

}  // namespace

std::optional<unsigned> Target::Number(const std::string& name, unsigned bound, std::optional<unsigned> otherwise) const {
    const auto found = parameters.find(name);
    if (found == parameters.end()) return otherwise;
    unsigned number = 0;
    const std::string& text = found->second;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole && number < bound ? std::optional(number) : std::nullopt;
}

std::string Target::Text(const std::string& name, std::string otherwise) const {
    const auto found = parameters.find(name);
    return found == parameters.end() ? std::move(otherwise) : found->second;
}

std::optional<Target> ParseTarget(std::string_view target) {
    if (!target.starts_with('/')) return std::nullopt;
    const std::size_t question = std::min(target.find('?'), target.size());
    auto path = Decoded(target.substr(0, question), false);
    if (!path) return std::nullopt;
    Target parsed{std::move(*path), {}};
    std::string_view rest = target.substr(std::min(question + 1, target.size()));
    while (!rest.empty()) {
        const std::string_view pair = rest.substr(0, rest.find('&'));
        rest.remove_prefix(std::min(pair.size() + 1, rest.size()));
        const std::size_t equals = std::min(pair.find('='), pair.size());
        auto name = Decoded(pair.substr(0, equals), true), text = Decoded(pair.substr(std::min(equals + 1, pair.size())), true);
        if (!name || !text) return std::nullopt;
        parsed.parameters[std::move(*name)] = std::move(*text);
    }
    return parsed;
}

}  // namespace twr
