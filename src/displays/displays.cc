// SPDX-License-Identifier: MIT
#include "displays/displays.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>

namespace twr {
namespace {

constexpr std::uint64_t kFnvOffset = 0xCBF29CE484222325U;
constexpr std::uint64_t kFnvPrime = 0x100000001B3U;
constexpr int kMostTries = 100;  // to read a text that is being written; its writer may have been killed

using AtomicWord = std::atomic_ref<std::uint32_t>;
using Words = std::array<std::uint32_t, kDisplayTextRoom / 4>;

RemoteDisplay* DisplayOf(const SharedBlock* block, std::int32_t remote) {
    if (!block || !block->Data() || remote < 1 || remote > kRemoteCount) return nullptr;
    return &static_cast<DisplayBlock*>(block->Data())->remotes[remote - 1];
}

// The sequence is odd before the first word changes and even after the last has, so that a reader that finds the same even number
// before and after has a whole text.
void Write(DisplayText& display, std::string_view text) {
    Words words{};
    text = text.substr(0, std::min(text.find('\0'), kDisplayTextRoom - 1));
    if (!text.empty()) std::memcpy(words.data(), text.data(), text.size());
    AtomicWord sequence(display.sequence);
    const std::uint32_t odd = sequence.load(std::memory_order_relaxed) | 1U;
    sequence.store(odd, std::memory_order_relaxed);
    std::atomic_thread_fence(std::memory_order_release);
    for (std::size_t i = 0; i < words.size(); ++i) AtomicWord(display.words[i]).store(words[i], std::memory_order_relaxed);
    sequence.store(odd + 1U, std::memory_order_release);
}

DisplayedText Read(DisplayText& display) {
    Words words{};
    std::uint32_t before = 0;
    for (int i = 0; i < kMostTries; ++i) {
        before = AtomicWord(display.sequence).load(std::memory_order_acquire);
        for (std::size_t w = 0; w < words.size(); ++w) words[w] = AtomicWord(display.words[w]).load(std::memory_order_relaxed);
        std::atomic_thread_fence(std::memory_order_acquire);
        if (before % 2 == 0 && AtomicWord(display.sequence).load(std::memory_order_relaxed) == before) break;
    }
    std::array<char, kDisplayTextRoom> bytes{};
    std::memcpy(bytes.data(), words.data(), bytes.size() - 1);
    return {bytes.data(), before / 2};
}

}  // namespace

std::u16string DisplayBlockName(std::u16string_view libraryFolder) {
    while (!libraryFolder.empty() && (libraryFolder.back() == u'/' || libraryFolder.back() == u'\\'))
        libraryFolder.remove_suffix(1);
    std::uint64_t hash = kFnvOffset;
    for (const char16_t unit : libraryFolder) {
        hash = (hash ^ (unit & 0xFFU)) * kFnvPrime;
        hash = (hash ^ (unit >> 8U)) * kFnvPrime;
    }
    std::u16string name = u"ShDfW2_";
    for (int shift = 60; shift >= 0; shift -= 4) name.push_back(u"0123456789abcdef"[hash >> shift & 0xFU]);
    return name;
}

DisplayWriter::DisplayWriter(SharedMemory& memory, std::u16string_view libraryFolder)
    : block_(memory.CreateOrOpen(DisplayBlockName(libraryFolder), sizeof(DisplayBlock))) {
    if (!block_ || !block_->Existed()) return;
    // A viewer has kept the block of an earlier run.
    for (std::int32_t remote = 1; remote <= kRemoteCount; ++remote) {
        ShowValue(remote, {});
        ShowName(remote, {});
    }
}

RemoteDisplay* DisplayWriter::Find(std::int32_t remote) const { return DisplayOf(block_.get(), remote); }

void DisplayWriter::ShowValue(std::int32_t remote, std::string_view text) {
    if (RemoteDisplay* display = Find(remote)) Write(display->value, text);
}

void DisplayWriter::ShowName(std::int32_t remote, std::string_view text) {
    if (RemoteDisplay* display = Find(remote)) Write(display->name, text);
}

DisplayReader::DisplayReader(SharedMemory& memory, std::u16string_view libraryFolder)
    : block_(memory.OpenExisting(DisplayBlockName(libraryFolder), sizeof(DisplayBlock))) {}

bool DisplayReader::Found() const { return block_ && block_->Data(); }

DisplayedText DisplayReader::Value(std::int32_t remote) const {
    RemoteDisplay* display = DisplayOf(block_.get(), remote);
    return display ? Read(display->value) : DisplayedText();
}

DisplayedText DisplayReader::Name(std::int32_t remote) const {
    RemoteDisplay* display = DisplayOf(block_.get(), remote);
    return display ? Read(display->name) : DisplayedText();
}

}  // namespace twr
