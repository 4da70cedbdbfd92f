// Bytes that are read from start to end.
#pragma once
#include <cstddef>

namespace twr {

// A file of settings or lists beyond these is damaged or malicious, and is read no further. Recordings may be larger.
inline constexpr std::size_t kLongestLine = 1 << 20;   // bytes
inline constexpr std::size_t kLargestFile = 64 << 20;  // bytes

// The bytes of an open file, from its start.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    // Reads up to `room` bytes and returns their number; 0 at the end or when reading fails.
    virtual std::size_t Read(char* to, std::size_t room) = 0;
};

}  // namespace twr
