// SPDX-License-Identifier: MIT
// Named blocks of memory that several processes hold at once.
#pragma once
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace twr {

// One process's hold on a block. The block lives as long as one process holds it, killed holders not counted.
class SharedBlock {
public:
    virtual ~SharedBlock() = default;

    // The first byte, aligned to a page and constant while the block is held; nullptr if the block could not be mapped.
    virtual void* Data() const = 0;

    // Whether another process already held the block. If not, this one has created it, filled with zeros.
    virtual bool Existed() const = 0;

    // Whether the block's name has been taken from it, on systems where that can be, so that no other process will find it. The
    // user is told once what has happened, and the program's exit status is not 0.
    virtual bool IsLost() { return false; }
};

// What is wrong, and what the user can do, in UTF-8; nothing is wrong while the first is empty.
struct MemoryFault {
    std::string what = {}, todo = {};
};

class SharedMemory {
public:
    virtual ~SharedMemory() = default;

    // Creates the block, or opens it when another process holds it. Of several processes that start at once exactly one creates.
    // nullptr if neither can be done.
    virtual std::unique_ptr<SharedBlock> CreateOrOpen(std::u16string_view name, std::size_t size) = 0;

    // Opens a block that another process holds; nullptr if no process does or its size differs. Nobody is told why.
    virtual std::unique_ptr<SharedBlock> OpenExisting(std::u16string_view name, std::size_t size) = 0;

    // Why CreateOrOpen would fail. A look: nothing of it stays. Nothing too if it can't be told.
    virtual MemoryFault FaultOf(std::u16string_view /*name*/, std::size_t /*size*/) const { return {}; }

    // Whether a block can be found by this name, if it is held at all: false only where a name can be taken from a held block.
    virtual bool HasName(std::u16string_view /*name*/) const { return true; }
};

// Blocks in which a running program tells other programs of the same user about itself. They are an aid: nothing waits for one, and
// nobody is told why one can't be had.
class StatusBoard {
public:
    virtual ~StatusBoard() = default;

    // The block of this program, filled with zeros, in place of whatever an earlier run has left. Removed with the object.
    virtual std::unique_ptr<SharedBlock> Post(std::u16string_view program, std::size_t size) = 0;

    // The block that a running program has posted, only to be read; nullptr if there is none of this size.
    virtual std::unique_ptr<SharedBlock> See(std::u16string_view program, std::size_t size) const = 0;
};

}  // namespace twr
