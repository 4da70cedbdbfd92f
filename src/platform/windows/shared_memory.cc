// SPDX-License-Identifier: MIT
#include "platform/shared_memory.h"

#include <cstring>

#include "platform/services.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/win32.h"

namespace twr {
namespace {

class WindowsSharedMemory final : public SharedMemory {
public:
    explicit WindowsSharedMemory(std::u16string prefix) : prefix_(std::move(prefix)) {}
    std::unique_ptr<SharedBlock> CreateOrOpen(std::u16string_view name, std::size_t size) override;
    std::unique_ptr<SharedBlock> OpenExisting(std::u16string_view name, std::size_t size) override;

private:
    std::u16string prefix_;
};

class Block : public SharedBlock {
public:
    Block(UniqueHandle mapping, UniqueView view, bool existed)
        : mapping_(std::move(mapping)), view_(std::move(view)), existed_(existed) {}
    void* Data() const override { return view_.get(); }
    bool Existed() const override { return existed_; }

private:
    UniqueHandle mapping_;
    UniqueView view_;
    bool existed_;
};

std::size_t WholePages(std::size_t size) {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    return (size + system.dwPageSize - 1) / system.dwPageSize * system.dwPageSize;
}

// Maps the whole block. No view if its size differs, which Windows reports only in whole pages.
UniqueView Mapped(HANDLE mapping, std::size_t size) {
    UniqueView view(MapViewOfFile(mapping, FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, 0));
    MEMORY_BASIC_INFORMATION region;
    if (!view || VirtualQuery(view.get(), &region, sizeof region) == 0) return {};
    return region.RegionSize == WholePages(size) ? std::move(view) : UniqueView();
}

}  // namespace

std::unique_ptr<SharedBlock> WindowsSharedMemory::CreateOrOpen(std::u16string_view name, std::size_t size) {
    const std::wstring fullName = ToWide(prefix_ + std::u16string(name));
    UniqueHandle mapping(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, static_cast<DWORD>(size), fullName.c_str()));
    const bool existed = GetLastError() == ERROR_ALREADY_EXISTS;
    if (!mapping) return nullptr;
    auto view = Mapped(mapping.get(), size);
    return std::make_unique<Block>(std::move(mapping), std::move(view), existed);
}

std::unique_ptr<SharedBlock> WindowsSharedMemory::OpenExisting(std::u16string_view name, std::size_t size) {
    const std::wstring fullName = ToWide(prefix_ + std::u16string(name));
    UniqueHandle mapping(OpenFileMappingW(FILE_MAP_READ | FILE_MAP_WRITE, FALSE, fullName.c_str()));
    if (!mapping) return nullptr;
    auto view = Mapped(mapping.get(), size);
    if (!view) return nullptr;
    return std::make_unique<Block>(std::move(mapping), std::move(view), true);
}

// A named block too, which Windows removes with the last process that has it open.
class WindowsStatusBoard final : public StatusBoard {
public:
    explicit WindowsStatusBoard(const std::u16string& prefix) : memory_(u"Local\\" + prefix) {}

    std::unique_ptr<SharedBlock> Post(std::u16string_view program, std::size_t size) override {
        auto block = memory_.CreateOrOpen(NameOf(program), size);
        if (!block || !block->Data()) return nullptr;
        if (block->Existed()) std::memset(block->Data(), 0, size);  // a look at an earlier run still has it
        return block;
    }

    std::unique_ptr<SharedBlock> See(std::u16string_view program, std::size_t size) const override {
        return memory_.OpenExisting(NameOf(program), size);
    }

private:
    static std::u16string NameOf(std::u16string_view program) { return std::u16string(program) + u"Status"; }

    mutable WindowsSharedMemory memory_;
};

std::unique_ptr<StatusBoard> MakeStatusBoard(const Roots& roots) { return std::make_unique<WindowsStatusBoard>(roots.namePrefix); }

std::unique_ptr<SharedMemory> MakeSharedMemory(const Roots& roots, std::function<void()>) {
    return std::make_unique<WindowsSharedMemory>(roots.namePrefix);
}

}  // namespace twr
