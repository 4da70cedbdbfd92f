// SPDX-License-Identifier: MIT
// What the mast displays show: the texts that were last sent to each remote, kept in shared memory so that another process can read
// them.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/shared_memory.h"

namespace twr {

inline constexpr std::int32_t kRemoteCount = 32;     // remotes are numbered from 1
inline constexpr std::size_t kDisplayTextRoom = 16;  // bytes, the terminating zero included

// A text that one process writes while others read. Touched through atomic words only.
struct DisplayText {
    std::uint32_t sequence;  // odd while the words are being written; half of it counts the updates
    std::uint32_t words[kDisplayTextRoom / 4];
};

struct RemoteDisplay {
    DisplayText value;
    DisplayText name;
};

struct DisplayBlock {
    RemoteDisplay remotes[kRemoteCount];
};
static_assert(sizeof(DisplayBlock) == 1280 && offsetof(RemoteDisplay, name) == 20);

// The block's name: "ShDfW2_" and 16 hexadecimal digits of the 64-bit FNV-1a of the library folder's path, taken over the UTF-16
// units, low byte first. A separator at the end of the path is left out.
std::u16string DisplayBlockName(std::u16string_view libraryFolder);

// The one writer of a block, which shows nothing at first. Without a block it does nothing.
class DisplayWriter {
public:
    DisplayWriter(SharedMemory& memory, std::u16string_view libraryFolder);

    // Shows the text's first 15 bytes. A remote without a display is ignored.
    void ShowValue(std::int32_t remote, std::string_view text);
    void ShowName(std::int32_t remote, std::string_view text);

private:
    RemoteDisplay* Find(std::int32_t remote) const;

    std::unique_ptr<SharedBlock> block_;
};

struct DisplayedText {
    std::string text;           // at most 15 bytes
    std::uint32_t updates = 0;  // texts sent, repeated ones included
};

class DisplayReader {
public:
    // Looks for the block of the library in this folder.
    DisplayReader(SharedMemory& memory, std::u16string_view libraryFolder);

    // Whether a process uses the library. If not, all texts are empty.
    bool Found() const;

    DisplayedText Value(std::int32_t remote) const;
    DisplayedText Name(std::int32_t remote) const;

private:
    std::unique_ptr<SharedBlock> block_;
};

}  // namespace twr
