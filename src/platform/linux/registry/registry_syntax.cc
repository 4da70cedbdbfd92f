// SPDX-License-Identifier: MIT
#include "platform/linux/registry/registry_syntax.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <optional>

#include "base/wide_text.h"

namespace twr {
namespace {

constexpr std::size_t kLongestLine = 80;           // of the bytes of a binary value
constexpr std::string_view kNextDefault = "\n@=";  // the value without a name, on the next line

class Scanner {
public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    std::string_view Rest() const { return rest_; }

    bool Take(std::string_view word) {
        if (!rest_.starts_with(word)) return false;
        rest_.remove_prefix(word.size());
        return true;
    }

    void SkipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t"), rest_.size())); }

    bool TakeLineEnd() { return Take("\n") || Take("\r\n"); }

    // Blanks, and the rest of the line after a semicolon.
    std::string_view TakeRemark() {
        const std::string_view from = rest_;
        SkipBlanks();
        if (rest_.starts_with(';')) rest_.remove_prefix(std::min(rest_.find_first_of("\r\n"), rest_.size()));
        return from.substr(0, from.size() - rest_.size());
    }

    // Up to `most` hexadecimal digits, at least one.
    bool TakeNumber(std::size_t most, std::uint32_t& number) {
        const auto* begin = rest_.data();
        const auto [end, error] = std::from_chars(begin, begin + std::min(most, rest_.size()), number, 16);
        if (error != std::errc()) return false;
        rest_.remove_prefix(static_cast<std::size_t>(end - begin));
        return true;
    }

    // A text in quotation marks, over several lines if it contains line ends. One that isn't closed
    // ends at the next entry: at its quotation mark, or here where that has none.
    bool TakeQuoted(std::u16string& text) {
        if (!rest_.starts_with('"')) return false;
        std::string bytes;
        for (std::size_t i = 1; i < rest_.size(); ++i) {
            if (rest_[i] == '"') {
                text = FromUtf8(bytes);
                rest_.remove_prefix(i + 1);
                return true;
            }
            if (rest_.substr(i).starts_with(kNextDefault)) return false;
            if (rest_[i] == '\\' && i + 1 < rest_.size() && (rest_[i + 1] == '\\' || rest_[i + 1] == '"')) ++i;
            bytes.push_back(rest_[i]);
        }
        return false;
    }

    bool TakeBytes(std::vector<std::uint8_t>& data) {
        for (;;) {
            SkipBlanks();
            if (Take("\\")) {
                SkipBlanks();
                if (!TakeLineEnd()) return false;
                continue;
            }
            std::uint32_t byte = 0;
            if (!TakeNumber(2, byte)) return true;
            data.push_back(static_cast<std::uint8_t>(byte));
            SkipBlanks();
            if (!Take(",")) return true;
        }
    }

private:
    std::string_view rest_;
};

std::optional<RegistryValue> TakeValue(Scanner& scanner) {
    std::u16string text;
    std::uint32_t number = 0;
    if (scanner.TakeQuoted(text)) return StringValue(text);
    if (scanner.Take("dword:")) {
        scanner.SkipBlanks();
        if (!scanner.TakeNumber(8, number)) return std::nullopt;
        return DwordValue(number);
    }
    RegistryValue value{kRegistryBinary, {}};
    if (scanner.Take("hex(")) {
        if (!scanner.TakeNumber(8, value.type) || !scanner.Take("):")) return std::nullopt;
    } else if (!scanner.Take("hex:")) {
        return std::nullopt;
    }
    if (!scanner.TakeBytes(value.data)) return std::nullopt;
    return value;
}

struct AfterEntry {
    std::string_view remark, rest;
};

// Returns what follows the entry; nullopt if the text doesn't start with an entry of a value.
std::optional<AfterEntry> ReadValueEntry(std::string_view text, RegistryEntry& entry) {
    Scanner scanner(text);
    scanner.SkipBlanks();
    if (!scanner.Take("@") && !scanner.TakeQuoted(entry.name)) return std::nullopt;
    scanner.SkipBlanks();
    if (!scanner.Take("=")) return std::nullopt;
    scanner.SkipBlanks();
    if (scanner.Take("-")) {
        entry.kind = RegistryEntryKind::kValueDeletion;
    } else if (auto value = TakeValue(scanner)) {
        entry.kind = RegistryEntryKind::kValue;
        entry.value = std::move(*value);
    } else {
        return std::nullopt;
    }
    const std::string_view remark = scanner.TakeRemark();
    if (!scanner.Rest().empty() && !scanner.TakeLineEnd()) return std::nullopt;
    return AfterEntry{remark, scanner.Rest()};
}

// The value for which an unreadable line is meant: the name in quotation marks at its start, else the text before a "=".
std::optional<std::u16string> ValueMeant(std::string_view line) {
    std::u16string name;
    if (Scanner(line).TakeQuoted(name)) return name;
    const std::size_t equals = line.find('=');
    if (line.starts_with(';') || equals == line.npos) return std::nullopt;
    return FromUtf8(Trimmed(line.substr(0, equals)));
}

// A key's line without a remark: up to the first bracket that nothing else follows.
std::string_view WithoutRemark(std::string_view line) {
    for (std::size_t at = line.find(']'); at != line.npos; at = line.find(']', at + 1)) {
        if (Trimmed(line.substr(at + 1)).starts_with(';')) return line.substr(0, at + 1);
    }
    return line;
}

// A key that can't be read still ends the key before it: what follows does not belong to that key.
void ReadKeyEntry(std::string_view line, RegistryEntry& entry) {
    entry.kind = RegistryEntryKind::kKey;
    line = WithoutRemark(line);
    if (line.size() < 2 || line.back() != ']') return;
    line = line.substr(1, line.size() - 2);
    if (line.starts_with('-')) {
        entry.kind = RegistryEntryKind::kKeyDeletion;
        line.remove_prefix(1);
    }
    entry.name = FromUtf8(line);
}

void AppendEscaped(std::string& to, std::u16string_view text) {
    to += '"';
    for (const char c : ToUtf8(text)) {
        if (c == '"' || c == '\\') to += '\\';
        to += c;
    }
    to += '"';
}

// The text of a string that reads back from its quoted form as the same bytes.
std::optional<std::u16string> QuotableText(const RegistryValue& value) {
    if (value.type != kRegistryString || value.data.size() < 2 || value.data.size() % 2 != 0) return std::nullopt;
    std::u16string text;
    for (std::size_t i = 0; i < value.data.size(); i += 2) {
        text.push_back(static_cast<char16_t>(value.data[i] | value.data[i + 1] << 8));
    }
    text.pop_back();
    const std::string utf8 = ToUtf8(text);
    if (StringValue(FromUtf8(utf8)) != value || text.find(u'\0') != text.npos) return std::nullopt;
    if (utf8.find(kNextDefault) != utf8.npos) return std::nullopt;
    return text;
}

void AppendBytes(std::string& to, const std::vector<std::uint8_t>& data, std::string_view lineEnd) {
    std::size_t lineStart = 0;
    for (std::size_t i = 0; i < data.size(); ++i) {
        char byte[3];
        std::snprintf(byte, sizeof byte, "%02x", data[i]);
        to += byte;
        if (i + 1 == data.size()) break;
        to += ',';
        if (to.size() - lineStart + sizeof "00,\\" <= kLongestLine) continue;
        to += '\\';
        to += lineEnd;
        lineStart = to.size();
        to += "  ";
    }
}

}  // namespace

RegistryEntry TakeRegistryEntry(std::string_view& text) {
    RegistryEntry entry;
    std::size_t length = 0;
    if (const auto behind = ReadValueEntry(text, entry)) {
        length = text.size() - behind->rest.size();
    } else {
        length = std::min(text.find('\n'), text.size() - 1) + 1;
        entry = {};
        const std::string_view line = Trimmed(text.substr(0, length));
        if (line.starts_with('[')) {
            ReadKeyEntry(line, entry);
        } else if (auto name = ValueMeant(line)) {
            entry.kind = RegistryEntryKind::kDamagedValue;
            entry.name = std::move(*name);
        }
    }
    entry.raw = text.substr(0, length);
    text.remove_prefix(length);
    return entry;
}

std::string_view RemarkOf(const RegistryEntry& entry) {
    RegistryEntry same;
    const auto behind = ReadValueEntry(entry.raw, same);
    return behind && behind->remark.find(';') != std::string_view::npos ? behind->remark : std::string_view();
}

std::string FormatRegistryKey(std::u16string_view key, std::string_view lineEnd) {
    std::string text = "[";
    text += ToUtf8(key);
    text += ']';
    text += lineEnd;
    return text;
}

std::string FormatRegistryValue(std::u16string_view name, const RegistryValue& value, std::string_view lineEnd) {
    std::string text;
    if (name.empty()) {
        text += '@';
    } else {
        AppendEscaped(text, name);
    }
    text += '=';
    char type[16];
    if (const auto string = QuotableText(value)) {
        AppendEscaped(text, *string);
    } else if (const auto number = DwordOf(value)) {
        std::snprintf(type, sizeof type, "dword:%08x", static_cast<unsigned>(*number));
        text += type;
    } else {
        std::snprintf(type, sizeof type, "hex(%x):", static_cast<unsigned>(value.type));
        text += value.type == kRegistryBinary ? "hex:" : type;
        AppendBytes(text, value.data, lineEnd);
    }
    text += lineEnd;
    return text;
}

}  // namespace twr
