// SPDX-License-Identifier: MIT
#include "platform/linux/registry/registry_text.h"

#include <algorithm>

#include "base/wide_text.h"

namespace twr {
namespace {

using Kind = RegistryEntryKind;

constexpr std::size_t kBetweenStops = 1 << 20;  // bytes
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

bool IsSameOrBelow(std::u16string_view key, std::u16string_view top) {
    return EqualsIgnoringCase(key.substr(0, top.size()), top) && (key.size() == top.size() || key[top.size()] == u'\\');
}

// nullopt if the bytes don't start with a UTF-16 mark.
std::optional<std::u16string> FromMarkedUtf16(std::string_view bytes) {
    const bool little = bytes.starts_with("\xFF\xFE");
    if (!little && !bytes.starts_with("\xFE\xFF")) return std::nullopt;
    std::u16string text;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        text.push_back(static_cast<char16_t>(little ? first | second << 8 : first << 8 | second));
    }
    return text;
}

std::size_t LinesIn(const RegistryEntry& entry) { return static_cast<std::size_t>(std::ranges::count(entry.raw, '\n')); }

// Empty lines, remarks and the line that begins a registry file may stand between the entries.
bool MayStand(std::string_view line) {
    return line.empty() || line.starts_with(';') || line.starts_with("Windows Registry Editor") || line == "REGEDIT4";
}

void CheckOther(std::string_view lines, Place place) {
    if (lines.starts_with(kUtf8Mark)) lines.remove_prefix(kUtf8Mark.size());
    for (; !lines.empty(); ++place.line) {
        const std::string_view whole = lines.substr(0, lines.find('\n'));
        lines.remove_prefix(std::min(whole.size() + 1, lines.size()));
        const std::string_view line = Trimmed(whole);
        const std::u16string spelled = FromUtf8(line);
        if (!MayStand(line)) place.Of(spelled).Report(Flaw::kLineNotRead, u"\"name\"=value");
    }
}

// What stands below another root may be right but for that root, which is often given in short.
void CheckKey(std::u16string_view key, std::u16string_view root, const Place& place) {
    if (key.empty()) return static_cast<void>(place.Report(Flaw::kKeyNotRead));
    if (IsSameOrBelow(key, root)) return;
    const std::size_t first = key.find(u'\\');
    place.Report(Flaw::kOtherKey, std::u16string(root).append(first == key.npos ? u"" : key.substr(first)));
}

bool EndsWithBlankLine(std::string_view text) {
    if (text.ends_with('\n')) text.remove_suffix(1);
    return Trimmed(text.substr(text.rfind('\n') + 1)).empty();
}

}  // namespace

RegistryText::RegistryText(std::string_view bytes, bool (*stop)()) {
    if (const auto wide = FromMarkedUtf16(bytes)) {
        Read(ToUtf8(*wide), stop);
    } else {
        Read(bytes, stop);
    }
    if (entries_.empty()) Read("Windows Registry Editor Version 5.00" + lineEnd_, nullptr);
}

void RegistryText::Read(std::string_view utf8, bool (*stop)()) {
    const std::size_t firstEnd = utf8.find('\n');
    if (firstEnd != utf8.npos) lineEnd_ = firstEnd > 0 && utf8[firstEnd - 1] == '\r' ? "\r\n" : "\n";
    if (utf8.starts_with(kUtf8Mark)) {
        entries_.emplace_back().raw = kUtf8Mark;
        utf8.remove_prefix(kUtf8Mark.size());
    }
    for (std::size_t left = utf8.size(); !utf8.empty();) {
        if (stop && left - utf8.size() > kBetweenStops) {
            if (stop()) return static_cast<void>(stopped_ = true);
            left = utf8.size();
        }
        RegistryEntry entry = TakeRegistryEntry(utf8);
        if (entry.kind == Kind::kOther && !entries_.empty() && entries_.back().kind == Kind::kOther) {
            entries_.back().raw += entry.raw;
        } else {
            entries_.push_back(std::move(entry));
        }
    }
}

std::string RegistryText::Bytes() const {
    std::string bytes;
    for (const RegistryEntry& entry : entries_) bytes += entry.raw;
    return bytes;
}

RegistryText::Spot RegistryText::Locate(std::u16string_view key, std::u16string_view name) const {
    Spot place;
    bool inKey = false;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        const RegistryEntry& entry = entries_[i];
        switch (entry.kind) {
            case Kind::kOther:
                continue;
            case Kind::kKey:
                inKey = EqualsIgnoringCase(entry.name, key);
                if (IsSameOrBelow(entry.name, key)) place.keyPresent = true;
                break;
            case Kind::kKeyDeletion:
                inKey = false;
                if (IsSameOrBelow(key, entry.name)) place = {};
                break;
            case Kind::kValue:
            case Kind::kValueDeletion:
                if (!inKey || !EqualsIgnoringCase(entry.name, name)) break;
                place.valueAt.reset();
                place.damagedAt.reset();
                if (entry.kind == Kind::kValue) place.valueAt = i;
                break;
            case Kind::kDamagedValue:
                if (inKey && EqualsIgnoringCase(entry.name, name)) place.damagedAt = i;
                break;
        }
        if (inKey) place.keyEnd = i + 1;
    }
    return place;
}

bool RegistryText::HasKey(std::u16string_view key) const { return Locate(key, {}).keyPresent; }

std::optional<RegistryValue> RegistryText::Find(std::u16string_view key, std::u16string_view name) const {
    const auto at = Locate(key, name).valueAt;
    if (!at) return std::nullopt;
    return entries_[*at].value;
}

std::optional<std::size_t> RegistryText::DamagedLine(std::u16string_view key, std::u16string_view name) const {
    const auto at = Locate(key, name).damagedAt;
    return at ? std::optional(LineAt(*at)) : std::nullopt;
}

std::size_t RegistryText::LineAt(std::size_t index) const {
    std::size_t line = 1;
    for (std::size_t i = 0; i < index; ++i) line += LinesIn(entries_[i]);
    return line;
}

std::vector<std::u16string> RegistryText::Names(std::u16string_view key) const {
    std::vector<std::u16string> names;
    bool inKey = false;
    for (const RegistryEntry& entry : entries_) {
        if (entry.kind == Kind::kKey || entry.kind == Kind::kKeyDeletion) {
            inKey = entry.kind == Kind::kKey && EqualsIgnoringCase(entry.name, key);
        } else if (inKey && entry.kind == Kind::kValue && Find(key, entry.name) &&
                   std::ranges::find(names, entry.name) == names.end()) {
            names.push_back(entry.name);
        }
    }
    return names;
}

std::size_t RegistryText::LineOf(std::u16string_view key, std::u16string_view name) const {
    const auto at = Locate(key, name).valueAt;
    return at ? LineAt(*at) : 0;
}

void RegistryText::Check(std::u16string_view root, const Place& file) const {
    std::size_t line = 1;
    for (const RegistryEntry& entry : entries_) {
        const std::u16string spelled = FromUtf8(Trimmed(entry.raw));
        const Place place = file.At(line).Of(spelled);
        switch (entry.kind) {
            case Kind::kOther:
                CheckOther(entry.raw, file.At(line));
                break;
            case Kind::kDamagedValue:
                place.Report(Flaw::kValueNotRead);
                break;
            case Kind::kKey:
                CheckKey(entry.name, root, place);
                break;
            default:
                break;
        }
        line += LinesIn(entry);
    }
}

void RegistryText::AddKey(std::u16string_view key) {
    if (!HasKey(key)) Append(FormatRegistryKey(key, lineEnd_));
}

void RegistryText::Set(std::u16string_view key, std::u16string_view name, const RegistryValue& value) {
    const Spot place = Locate(key, name);
    std::string entry = FormatRegistryValue(name, value, lineEnd_);
    if (place.valueAt) {
        entry.insert(entry.size() - lineEnd_.size(), RemarkOf(entries_[*place.valueAt]));
        std::string_view text = entry;
        entries_[*place.valueAt] = TakeRegistryEntry(text);
    } else if (place.keyEnd) {
        Insert(*place.keyEnd, entry);
    } else {
        Append(FormatRegistryKey(key, lineEnd_) + entry);
    }
}

void RegistryText::Insert(std::size_t at, std::string_view entries) {
    if (at > 0 && !entries_[at - 1].raw.ends_with('\n')) entries_[at - 1].raw += lineEnd_;
    for (; !entries.empty(); ++at) {
        entries_.insert(entries_.begin() + static_cast<std::ptrdiff_t>(at), TakeRegistryEntry(entries));
    }
}

void RegistryText::Append(std::string_view entries) {
    const bool blank = EndsWithBlankLine(entries_.back().raw);
    Insert(entries_.size(), blank ? std::string(entries) : lineEnd_ + std::string(entries));
}

}  // namespace twr
