// SPDX-License-Identifier: MIT
#include "platform/registry.h"

namespace twr {

RegistryValue DwordValue(std::uint32_t number) {
    RegistryValue value{kRegistryDword, {}};
    for (int shift = 0; shift < 32; shift += 8) value.data.push_back(static_cast<std::uint8_t>(number >> shift));
    return value;
}

RegistryValue StringValue(std::u16string_view text) {
    RegistryValue value{kRegistryString, {}};
    const auto append = [&](char16_t c) {
        value.data.push_back(static_cast<std::uint8_t>(c));
        value.data.push_back(static_cast<std::uint8_t>(c >> 8));
    };
    for (const char16_t c : text) append(c);
    append(0);
    return value;
}

std::optional<std::uint32_t> DwordOf(const std::optional<RegistryValue>& value) {
    if (!value || value->type != kRegistryDword || value->data.size() != 4) return std::nullopt;
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) number |= static_cast<std::uint32_t>(value->data[i]) << (8 * i);
    return number;
}

std::optional<std::u16string> TextOf(const std::optional<RegistryValue>& value, std::size_t longest) {
    if (!value || (value->type != kRegistryString && value->type != kRegistryExpandString)) return std::nullopt;
    const auto& data = value->data;
    if (data.size() > longest || data.size() % 2 != 0) return std::nullopt;
    std::u16string text;
    for (std::size_t i = 0; i < data.size(); i += 2) {
        text.push_back(static_cast<char16_t>(data[i] | data[i + 1] << 8));
    }
    if (!text.empty() && text.back() != 0) return std::nullopt;
    return text.substr(0, text.find(u'\0'));
}

}  // namespace twr
