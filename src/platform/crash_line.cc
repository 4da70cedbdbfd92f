// SPDX-License-Identifier: MIT
#include "platform/crash_line.h"

#include <algorithm>
#include <chrono>

#include "platform/files.h"

namespace twr {

CrashLine::CrashLine(const Crash& crash) {
    AddTime(crash.seconds);
    Add(crash.fault ? " : Halyrig has crashed by " : " : Halyrig has been ended by ");
    Add(crash.what);
    if (crash.code != 0) AddHex(" 0x", crash.code);
    if (crash.data) AddHex(" at address 0x", *crash.data);
    if (crash.module) AddPlace(*crash.module, crash.offset);
    if (crash.unloaded) Add(", which had been unloaded");
    if (!crash.calling.empty()) Add(", ");
    Add(crash.calling);
    size_ = std::min(size_, text_.size() - kLineEnd.size());
    size_ += kLineEnd.copy(text_.data() + size_, kLineEnd.size());
}

// A path may hold anything; what is no text must not reach a terminal.
void CrashLine::Add(std::string_view text) {
    for (const char c : text.substr(0, text_.size() - size_)) {
        const auto byte = static_cast<unsigned char>(c);
        text_[size_++] = byte < ' ' || byte == 0x7F ? '?' : c;
    }
}

void CrashLine::AddPlace(std::string_view module, std::uint64_t offset) {
    Add(module.empty() ? ", outside of any program or library" : ", in ");
    Add(module);
    if (!module.empty()) AddHex("+0x", offset);
}

void CrashLine::AddHex(std::string_view before, std::uint64_t number) {
    Add(before);
    AddNumber(number, 16, 1);
}

void CrashLine::AddNumber(std::uint64_t number, unsigned base, std::size_t digits) {
    std::array<char, 20> text;
    std::size_t first = text.size();
    for (; number != 0 || text.size() - first < digits; number /= base) text[--first] = "0123456789abcdef"[number % base];
    Add({text.data() + first, text.size() - first});
}

void CrashLine::AddTime(std::int64_t seconds) {
    using namespace std::chrono;
    const sys_seconds time{std::chrono::seconds(seconds)};
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    const auto add = [this](auto number, std::size_t digits, std::string_view after) {
        AddNumber(static_cast<std::uint64_t>(number), 10, digits);
        Add(after);
    };
    add(static_cast<int>(date.year()), 4, "-");
    add(static_cast<unsigned>(date.month()), 2, "-");
    add(static_cast<unsigned>(date.day()), 2, " ");
    add(clock.hours().count(), 2, ":");
    add(clock.minutes().count(), 2, ":");
    add(clock.seconds().count(), 2, " UTC");
}

}  // namespace twr
