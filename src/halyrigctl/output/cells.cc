// SPDX-License-Identifier: MIT
#include "halyrigctl/output/cells.h"

#include <algorithm>

namespace twr {
namespace {

bool BeginsCharacter(char byte) { return (byte & 0xC0) != 0x80; }

std::string Blanks(const std::string& text, std::size_t width) { return std::string(width - std::min(width, WidthOf(text)), ' '); }

}  // namespace

std::size_t WidthOf(std::string_view text) { return static_cast<std::size_t>(std::ranges::count_if(text, BeginsCharacter)); }

std::string Cut(std::string_view text, std::size_t width) {
    const auto beyond = std::ranges::find_if(text, [&](char byte) { return BeginsCharacter(byte) && width-- == 0; });
    return {text.begin(), beyond};
}

std::string Padded(const std::string& text, std::size_t width) { return text + Blanks(text, width); }

std::string PaddedLeft(const std::string& text, std::size_t width) { return Blanks(text, width) + text; }

std::string Centred(const std::string& text, std::size_t width) {
    const std::string blanks = Blanks(text, width);
    return blanks.substr(0, blanks.size() / 2) + text + blanks.substr(blanks.size() / 2);
}

}  // namespace twr
