// Named blocks of memory that several processes hold at once.
#pragma once
#include <cstddef>
#include <memory>
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
};

class SharedMemory {
public:
    virtual ~SharedMemory() = default;

    // Creates the block, or opens it when another process holds it. Of several processes that start at once exactly one creates.
    // nullptr if neither can be done.
    virtual std::unique_ptr<SharedBlock> CreateOrOpen(std::u16string_view name, std::size_t size) = 0;

    // Opens a block that another process holds; nullptr if no process does or its size differs.
    virtual std::unique_ptr<SharedBlock> OpenExisting(std::u16string_view name, std::size_t size) = 0;
};

}  // namespace twr
