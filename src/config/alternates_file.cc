// SPDX-License-Identifier: MIT
// alternate.csv: the channels that each alternating channel may stand for.
#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "base/bounded_lines.h"
#include "base/wide_text.h"
#include "core/core.h"
#include "core/record_access.h"

namespace twr {
namespace {

// A line's fields, in the 64 bits that libraries agree on; each keeps the low bits of its own width.
struct Line {
    unsigned long long row = 0;                     // 32 bits
    std::array<long long, kAlternateSlots> slot{};  // 16 bits
    int filled = 0;                                 // fields found, the row among them
};

constexpr int kFieldsNeeded = 9;  // the last slot may be omitted

// Separated by commas, with blanks before a number; else by any white space.
constexpr char kCommas[] = "%llu,%lld,%lld,%lld,%lld,%lld,%lld,%lld,%lld,%lld";
constexpr char kBlanks[] = "%llu\t%lld\t%lld\t%lld\t%lld\t%lld\t%lld\t%lld\t%lld\t%lld";

template <std::size_t Size>
bool Scan(const std::string& text, const char (&format)[Size], Line& line) {
    auto& s = line.slot;
    line.filled = std::sscanf(text.c_str(), format, &line.row, &s[0], &s[1], &s[2], &s[3], &s[4], &s[5], &s[6], &s[7], &s[8]);
    return line.filled >= kFieldsNeeded;
}

constexpr std::u16string_view kForm = u"row,slot,slot,slot,slot,slot,slot,slot,slot,slot";

Flaw WhyNotRead(const std::string& text) {
    if (text.starts_with("\xEF\xBB\xBF")) return Flaw::kByteOrderMark;
    return text.find(';') != text.npos ? Flaw::kSemicolons : Flaw::kLineNotRead;
}

std::u16string Digits(long long number) { return FromBytes(std::to_string(number)); }

bool MeansEmpty(long long slot) { return slot == 0 || slot == -1 || slot == kNoInt; }

// The last slot may be omitted, but not be anything but a number.
void ReportUnreadEnd(const std::string& text, const Line& line, const Place& place) {
    if (!place.findings || line.filled > kFieldsNeeded || std::ranges::count(text, ',') < kFieldsNeeded) return;
    const std::string_view end = Trimmed(std::string_view(text).substr(text.rfind(',') + 1));
    if (!end.empty()) place.Report(Flaw::kNotANumber, FromBytes(end));
}

void ReadLine(const std::string& text, CoreRecord& record, const Place& place) {
    Line line;
    if (!Scan(text, kCommas, line) && !Scan(text, kBlanks, line)) return static_cast<void>(place.Report(WhyNotRead(text), kForm));
    const auto row = static_cast<std::uint32_t>(line.row);
    if (row >= kAlternateCount) return static_cast<void>(place.Report(Flaw::kNoSuchRow, Digits(static_cast<long long>(line.row))));
    for (std::size_t i = 0; i + 1 < static_cast<std::size_t>(line.filled); ++i) {
        const auto channel = static_cast<std::int16_t>(line.slot[i]);
        const bool exists = channel > 0 && channel < static_cast<std::int16_t>(kChannelCount);
        if (exists) Put(record.alternates[row].slot[i], std::int32_t{channel});
        if (!MeansEmpty(line.slot[i]) && (!exists || channel != line.slot[i]))
            place.Report(Flaw::kNoSuchChannel, Digits(line.slot[i]));
    }
    ReportUnreadEnd(text, line, place);
}

}  // namespace

void CCore::LoadAlternatesFile() {
    if (!view_) return;
    for (AlternateRow& row : view_->alternates) {
        for (std::int32_t& slot : row.slot) Put(slot, kNoInt);
    }
    const std::u16string path = GetDataFile(u"config", u"alternate.csv");
    Place place{services_.findings, path};
    const auto file = services_.files.Open(path);
    if (!file && services_.files.Exists(path)) place.Report(Flaw::kReadFailed, kNotOpened);
    if (!file) return;
    BoundedLines lines(*file, kTextMode);
    while (lines.Next()) {
        const std::string& line = lines.Line();
        ++place.line;
        if (line.empty() || line.front() == '!') continue;
        const std::u16string spelled = services_.findings ? FromBytes(line) : std::u16string();
        ReadLine(line, *view_, place.Of(spelled));
        if (lines.Cut()) place.Report(Flaw::kLineCut);
    }
    lines.ReportEnd(place);
}

}  // namespace twr
