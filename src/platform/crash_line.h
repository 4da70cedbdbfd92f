// SPDX-License-Identifier: MIT
// The line that tells of a crash. It is put together when nothing may be relied on any more, so it takes no memory and no lock.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace twr {

// What is known before. Texts are in UTF-8 and outlive the process's faults.
struct Crash {
    std::int64_t seconds = 0;                     // since 1970, UTC
    std::string_view what = {};                   // such as "SIGSEGV"
    bool fault = true;                            // else a call or the like has ended the process
    std::uint32_t code = 0;                       // the system's number for it; 0 if the name is enough
    std::optional<std::uint64_t> data = {};       // the address that could not be accessed
    std::optional<std::string_view> module = {};  // path of the program or library; empty if the processor was in none
    std::uint64_t offset = 0;                     // in that
    bool unloaded = false;                        // before
    std::string_view calling = {};
};

class CrashLine {
public:
    explicit CrashLine(const Crash& crash);

    // With its end. Paths that don't fit are cut.
    std::string_view Text() const { return {text_.data(), size_}; }

private:
    void Add(std::string_view text);
    void AddPlace(std::string_view module, std::uint64_t offset);
    void AddHex(std::string_view before, std::uint64_t number);
    void AddNumber(std::uint64_t number, unsigned base, std::size_t digits);
    void AddTime(std::int64_t seconds);

    std::array<char, 2048> text_;
    std::size_t size_ = 0;
};

}  // namespace twr
