// SPDX-License-Identifier: MIT
// Bytes that are read from start to end.
#pragma once
#include <cstddef>
#include <string>

namespace twr {

// A file of settings or lists beyond these is damaged or malicious, and is read no further. Recordings may be larger.
inline constexpr std::size_t kLongestLine = 1 << 20;   // bytes
inline constexpr std::size_t kLargestFile = 64 << 20;  // bytes

// The bytes of an open file, from its start.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    // Reads up to `room` bytes and returns their number; 0 at the end, or when reading fails, as Failure then says.
    virtual std::size_t Read(char* to, std::size_t room) = 0;

    // Why the last reading failed, in the system's words, in UTF-8; empty if it did not.
    virtual std::string Failure() const { return {}; }
};

}  // namespace twr
