// SPDX-License-Identifier: MIT
#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "base/wide_text.h"
#include "platform/windows/win32.h"
#include "platform/windows/xml/xml.h"

namespace twr {
namespace {

constexpr UINT kAscii = 20127;
constexpr UINT kUnknown = 0;

// The place of `encoding="NAME"` in a document that begins with a declaration, the white space before it included.
template <class Text>
struct DeclaredEncoding {
    std::size_t begin = 0;
    std::size_t end = 0;
    Text name;
};

template <class Char>
std::optional<DeclaredEncoding<std::basic_string_view<Char>>> FindEncoding(std::basic_string_view<Char> document) {
    const auto is = [&](std::size_t at, std::string_view word) {
        return at <= document.size() && std::ranges::equal(document.substr(at, word.size()), word);
    };
    const auto space = [&](std::size_t at) {
        return at < document.size() &&
               (document[at] == ' ' || document[at] == '\t' || document[at] == '\r' || document[at] == '\n');
    };
    if (!is(0, "<?xml") || !space(5)) return std::nullopt;
    for (std::size_t begin = 5; begin < document.size() && !is(begin, "?>"); ++begin) {
        std::size_t at = begin;
        while (space(at)) ++at;
        if (at == begin || !is(at, "encoding")) continue;
        at += 8;
        while (space(at)) ++at;
        if (!is(at, "=")) return std::nullopt;
        ++at;
        while (space(at)) ++at;
        if (!is(at, "\"") && !is(at, "'")) return std::nullopt;
        const std::size_t close = document.find(document[at], at + 1);
        if (close == document.npos) return std::nullopt;
        return DeclaredEncoding<std::basic_string_view<Char>>{begin, close + 1, document.substr(at + 1, close - at - 1)};
    }
    return std::nullopt;
}

constexpr std::pair<std::u16string_view, UINT> kNamed[] = {
    {u"utf-8", CP_UTF8}, {u"utf8", CP_UTF8}, {u"us-ascii", kAscii}, {u"ascii", kAscii},  {u"latin1", 28591},
    {u"big5", 950},      {u"euc-jp", 20932}, {u"euc-kr", 51949},    {u"gb18030", 54936}, {u"gb2312", 936},
    {u"gbk", 936},       {u"koi8-r", 20866}, {u"koi8-u", 21866},    {u"shift_jis", 932}, {u"tis-620", 874},
};

UINT CodePage(std::string_view name) {
    const auto numbered = [&](std::string_view prefix) {
        UINT number = 0;
        if (!EqualsIgnoringCase(FromBytes(name.substr(0, prefix.size())), FromBytes(prefix))) return number;
        std::from_chars(name.data() + prefix.size(), name.data() + name.size(), number);
        return number;
    };
    const auto valid = [](UINT codePage) { return IsValidCodePage(codePage) ? codePage : kUnknown; };
    for (const auto& [known, codePage] : kNamed) {
        if (EqualsIgnoringCase(FromBytes(name), known)) return valid(codePage);
    }
    if (const UINT part = numbered("iso-8859-")) return valid(28590 + part);
    for (const char* prefix : {"windows-", "cp", "ibm"}) {
        if (const UINT codePage = numbered(prefix)) return valid(codePage);
    }
    return kUnknown;
}

std::u16string DecodeUtf8(std::string_view bytes) {
    std::u16string text = FromUtf8(bytes);
    // A replaced character doesn't come back as it was.
    const std::string back = ToUtf8(text);
    const auto fault = std::ranges::mismatch(bytes, back).in1;
    return fault == bytes.end() ? text : FromUtf8(bytes.substr(0, static_cast<std::size_t>(fault - bytes.begin())));
}

std::u16string DecodeUtf16(std::string_view bytes, bool bigEndian) {
    std::u16string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        text.push_back(static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first));
    }
    return text;
}

std::u16string DecodeCodePage(std::string_view bytes, UINT codePage) {
    if (codePage == CP_UTF8) return DecodeUtf8(bytes);
    if (codePage == kAscii) {
        const auto high = std::ranges::find_if(bytes, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
        return FromBytes({bytes.begin(), high});
    }
    std::wstring wide(bytes.size() * 2, L'\0');
    const int length =
        MultiByteToWideChar(codePage, 0, bytes.data(), static_cast<int>(bytes.size()), wide.data(), static_cast<int>(wide.size()));
    return {wide.begin(), wide.begin() + length};
}

}  // namespace

std::u16string DecodeXml(std::string_view bytes) {
    using namespace std::string_view_literals;
    std::u16string text;
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        text = DecodeUtf8(bytes.substr(3));
    } else if (bytes.starts_with("\xFF\xFE")) {
        text = DecodeUtf16(bytes.substr(2), false);
    } else if (bytes.starts_with("\xFE\xFF")) {
        text = DecodeUtf16(bytes.substr(2), true);
    } else if (bytes.starts_with("<\0"sv)) {
        text = DecodeUtf16(bytes, false);
    } else if (bytes.starts_with("\0<"sv)) {
        text = DecodeUtf16(bytes, true);
    } else {
        const auto declared = FindEncoding(bytes);
        const UINT codePage = declared ? CodePage(declared->name) : CP_UTF8;
        if (codePage == kUnknown) return {};
        text = DecodeCodePage(bytes, codePage);
    }
    if (const auto declared = FindEncoding(std::u16string_view(text))) text.erase(declared->begin, declared->end - declared->begin);
    return text;
}

}  // namespace twr
