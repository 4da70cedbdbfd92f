// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/day_files.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "base/wide_text.h"
#include "core/days.h"
#include "halyrigctl/recordings/recorded_files.h"
#include "streams/iso_time.h"

namespace twr {
namespace {

constexpr std::uint64_t kLeastRoom = 1ULL << 30;  // bytes
constexpr double kBreak = 10.0 / kSecondsPerDay;  // days
constexpr std::string_view kBegin = "halyrig-", kEnd = ".jsonl.gz";

struct DayFile {
    std::int64_t day;
    int number;  // among those of the day
    std::u16string path;
    std::uint64_t size;
};

// By its name alone, which nothing else is likely to have: halyrig-20261125.jsonl.gz, halyrig-20261125-2.jsonl.gz.
std::optional<std::pair<std::int64_t, int>> DayOf(std::string name) {
    if (!name.starts_with(kBegin) || !name.ends_with(kEnd) || name.size() < kBegin.size() + 8 + kEnd.size()) return std::nullopt;
    name = name.substr(kBegin.size(), name.size() - kBegin.size() - kEnd.size());
    const auto day = ParseIsoTime(name.substr(0, 4) + "-" + name.substr(4, 2) + "-" + name.substr(6, 2) + "T00:00:00Z");
    int number = 1;
    const char* const end = name.data() + name.size();
    const bool counted = name.size() > 9 && name[8] == '-' && std::from_chars(name.data() + 9, end, number).ptr == end;
    if (!day || (name.size() > 8 && !counted)) return std::nullopt;
    return std::pair{static_cast<std::int64_t>(*day), number};
}

// The oldest first.
std::vector<DayFile> Listed(Files& files, const std::u16string& folder) {
    std::vector<DayFile> all;
    for (const std::u16string& path : files.List(folder, u"halyrig-*.jsonl.gz")) {
        if (const auto day = DayOf(ToUtf8(path.substr(path.find_last_of(u"/\\") + 1))))
            all.push_back({day->first, day->second, path, files.SizeOf(path).value_or(0)});
    }
    std::ranges::sort(all,
                      [](const DayFile& a, const DayFile& b) { return std::pair(a.day, a.number) < std::pair(b.day, b.number); });
    return all;
}

std::optional<double> BegunAt(Files& files, const std::u16string& path) {
    RecordedFile file{path};
    const auto source = OpenRecorded(files, file, [] { return true; });
    const auto first = source ? source->Next() : std::nullopt;
    return first ? std::optional(first->time) : std::nullopt;
}

std::optional<double> GrownAt(const Files& files, const std::u16string& path) {
    const auto ticks = files.ChangedAt(path);
    return ticks ? std::optional(DaysFromTicks(*ticks)) : std::nullopt;
}

bool IsTooLittle(std::optional<std::uint64_t> room) { return room.value_or(kLeastRoom) < kLeastRoom; }

}  // namespace

std::u16string RecordingsFolder(std::u16string_view dataFolder) { return JoinPath(dataFolder, u"recordings"); }

std::unique_ptr<FileLock> TakeDays(Files& files, const std::u16string& folder) { return files.Lock(JoinPath(folder, u"halyrig")); }

DaysKept LookAtDays(Files& files, const std::u16string& folder) {
    DaysKept days{.room = files.RoomIn(folder)};
    if (!days.room) return days;
    days.isFull = IsTooLittle(days.room);
    days.runs = !TakeDays(files, folder);
    const std::vector<DayFile> all = Listed(files, folder);
    if (!all.empty()) days.newest = all.back().path;
    for (auto file = all.rbegin(); file != all.rend(); ++file) {
        const auto begun = BegunAt(files, file->path), grown = GrownAt(files, file->path);
        if (!begun || !grown || (days.since && *days.since - *grown > kBreak)) break;
        if (!days.since) days.until = grown;
        days.since = begun;
    }
    return days;
}

std::optional<KeptDays> ParseKeep(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || number == 0 || number > 100'000) return std::nullopt;
    const std::string_view unit = text.substr(static_cast<std::size_t>(end - text.data()));
    if (unit.empty() || unit == "d") return KeptDays{.days = static_cast<std::int64_t>(number)};
    constexpr std::pair<char, int> kUnits[] = {{'M', 20}, {'G', 30}, {'T', 40}};
    for (const auto& [letter, bits] : kUnits) {
        if (unit == std::string_view(&letter, 1)) return KeptDays{.bytes = number << bits};
    }
    return std::nullopt;
}

std::u16string DayFiles::Name() const {
    std::u16string folder;
    for (const char16_t c : folder_) folder.append(c == u'%' ? 2 : 1, c);  // which stands for a field elsewhere
    return JoinPath(folder, u"halyrig-%Y%m%d.jsonl.gz");
}

std::string DayFiles::Tend(std::u16string_view current, std::int64_t today) {
    const std::vector<DayFile> all = Listed(files_, folder_);
    std::uint64_t total = 0;
    for (const DayFile& file : all) total += file.size;
    for (const DayFile& file : all) {
        const bool tooOld = keep_.days > 0 && file.day <= today - keep_.days;
        const bool tooMuch = keep_.bytes > 0 && total > keep_.bytes;
        if (file.path == current || !(tooOld || tooMuch)) continue;
        files_.Remove(file.path);
        if (!files_.Exists(file.path)) total -= file.size;
    }
    return IsTooLittle(files_.RoomIn(folder_))
               ? "ended, since its disk has less than 1 GiB of room left; make room, or keep less by --keep."
               : "";
}

}  // namespace twr
