#include "text/remote_field.h"

#include <algorithm>
#include <string>

#include "platform/wide_text.h"

namespace twr {
namespace {

// Bytes 0x80 to 0x9F of code page 1252, the only ones that differ from their characters. 0 where the page holds none of its own.
constexpr char16_t kPage1252[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0, 0x017D, 0,
    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0, 0x017E, 0x0178,
};

char InPage1252(char16_t c) {
    const bool moved = c >= 0x80 && c < 0xA0 && kPage1252[c - 0x80] != 0;  // its byte is another character's
    if (c <= 0xFF && !moved) return static_cast<char>(c);
    const auto* const place = std::ranges::find(kPage1252, c);
    return place == std::end(kPage1252) ? '?' : static_cast<char>(0x80 + (place - kPage1252));
}

std::string ToPage1252(std::u16string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        bytes.push_back(InPage1252(text[i]));
        const bool pair = (text[i] & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
        if (pair) ++i;
    }
    return bytes;
}

}  // namespace

RemoteField ToRemoteField(std::u16string_view text) {
    text = text.substr(0, text.find(u'\0'));
    const bool wide = std::ranges::any_of(text, [](char16_t c) { return c > 0xFF; });
    const std::string bytes = wide ? ToPage1252(text) : ToBytes(text);
    RemoteField field{};
    std::copy_n(bytes.data(), std::min(bytes.size(), field.size() - 1), field.begin());
    return field;
}

}  // namespace twr
