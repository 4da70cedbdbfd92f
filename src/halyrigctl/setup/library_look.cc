// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/library_look.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "config/bridge_settings.h"
#include "deckman/deckman_library.h"
#include "halyrigctl/setup/file_faults.h"
#include "platform/files.h"

namespace twr {
namespace {

constexpr const char* kFunctions[] = {kUsrRead, kUsrGetPosition, kUsrSetData, kUsrSetName};

// The first bytes of a file; those behind its end are zero.
class Header {
public:
    explicit Header(ByteSource& file) {
        std::size_t filled = 0;
        while (const std::size_t got = file.Read(bytes_.data() + filled, bytes_.size() - filled)) filled += got;
    }

    bool Holds(std::size_t at, std::string_view text) const {
        return at + text.size() <= bytes_.size() && std::string_view(bytes_.data() + at, text.size()) == text;
    }
    // Little-endian; 0 behind the end.
    std::uint32_t Word(std::size_t at, std::size_t size) const {
        std::uint32_t word = 0;
        for (std::size_t i = size; i-- > 0;)
            word = word << 8 | (at + i < bytes_.size() ? static_cast<std::uint8_t>(bytes_[at + i]) : 0u);
        return word;
    }

private:
    std::array<char, 4096> bytes_{};
};

// What a program file is, as far as its header tells; bits 0 for none.
struct Kind {
    bool windows = false;
    int bits = 0;
    bool library = false;
};

Kind KindOf(const Header& header) {
    if (header.Holds(0,
                     "\x7f"
                     "ELF")) {
        constexpr std::uint32_t kSharedObject = 3;
        const std::uint32_t word = header.Word(4, 1);
        return {.windows = false, .bits = word == 1 ? 32 : word == 2 ? 64 : 0, .library = header.Word(16, 2) == kSharedObject};
    }
    const std::size_t start = header.Word(0x3C, 4);
    if (!header.Holds(0, "MZ") || !header.Holds(start, {"PE\0\0", 4})) return {};
    constexpr std::uint32_t kI386 = 0x14C, kAmd64 = 0x8664, kDll = 0x2000;
    const std::uint32_t machine = header.Word(start + 4, 2);
    return {.windows = true,
            .bits = machine == kI386    ? 32
                    : machine == kAmd64 ? 64
                                        : 0,
            .library = (header.Word(start + 22, 2) & kDll) != 0};
}

// The bridge's own, which came with this program.
constexpr int kBits = 8 * sizeof(void*);
bool OnWindows() { return kPathSeparator == u'\\'; }

std::string SystemOf(const Kind& kind) { return (kind.windows ? "Windows, " : "Linux, ") + std::to_string(kind.bits) + " bits"; }

bool IsAbsolute(std::u16string_view path) {
    return path.starts_with(u'/') || path.starts_with(u'\\') || path.substr(1).starts_with(u':');
}

Fault FolderFault(Files& files, std::u16string_view folder) {
    const auto fault = [&](Reason reason) { return Fault(reason, {Harmless(folder)}); };
    const bool isDefault = !OnWindows() && folder == Settings().dfwFolder;  // of the other system
    if (folder.empty() || isDefault) return fault(Reason::kNoFolderChosen);
    if (folder.starts_with(u'~')) return fault(Reason::kFolderOfAShell);
    if (!IsAbsolute(folder)) return fault(Reason::kFolderNotWhole);
    if (Fault onTheWay = FaultOnTheWay(files, folder)) return onTheWay;
    if (!files.Exists(folder)) return fault(Reason::kFolderMissing);
    return files.Open(folder) ? fault(Reason::kFolderIsFile) : Fault();
}

Fault AbsentFault(Files& files, std::u16string_view folder, const std::u16string& library) {
    const auto fault = [&](Reason reason, const std::u16string& other = {}) {
        return Fault(reason, {Harmless(folder), Harmless(library), Harmless(other)});
    };
    const auto parent = folder.substr(0, std::min(folder.size(), folder.find_last_of(u"/\\")));
    if (Fault onTheWay = FaultOnTheWay(files, JoinPath(folder, library))) return onTheWay;
    if (files.Exists(JoinPath(parent, library))) return fault(Reason::kLibraryAbove);
    const auto others = files.List(folder, std::u16string(kDeckmanLibrary).append(u".*"));
    if (others.empty()) return fault(Reason::kLibraryMissing);
    return fault(Reason::kOtherLibrary, others.front().substr(others.front().find_last_of(u"/\\") + 1));
}

Fault KindFault(const Kind& kind, const std::string& path) {
    if (kind.bits == 0) return Fault(Reason::kNotALibrary, {path});
    const Kind own{.windows = OnWindows(), .bits = kBits};
    if (kind.windows != own.windows || kind.bits != own.bits)
        return Fault(Reason::kOtherProgram, {path, SystemOf(kind), SystemOf(own)});
    return kind.library ? Fault() : Fault(Reason::kProgram, {path});
}

// The library itself, where it could be loaded.
std::unique_ptr<Library> Loaded(Files& files, Libraries& libraries, std::u16string_view folder, Fault& fault) {
    fault = FolderFault(files, folder);
    if (fault) return nullptr;
    const std::u16string name = std::u16string(kDeckmanLibrary).append(kLibrarySuffix);
    const std::u16string path = JoinPath(folder, name);
    const std::string shown = Harmless(path);
    const auto file = files.Open(path);
    if (!file) {
        fault = AbsentFault(files, folder, name);
        if (files.Exists(path) && fault.reason != Reason::kNotPermitted) fault = Fault(Reason::kLibraryUnreadable, {shown});
        return nullptr;
    }
    const Header header(*file);
    const std::string failure = file->Failure();
    fault = failure.empty() ? KindFault(KindOf(header), shown) : Fault(Reason::kLibraryReadFails, {shown, failure});
    if (fault) return nullptr;
    auto library = libraries.Load(path);
    if (!library) fault = Fault(Reason::kLibraryDamaged, {shown});
    return library;
}

}  // namespace

bool LibraryLook::Lacks(std::string_view name) const { return std::ranges::find(missing, name) != missing.end(); }

LibraryLook LookAtLibrary(Files& files, Libraries& libraries, std::u16string_view dfwFolder) {
    LibraryLook look;
    if (const auto library = Loaded(files, libraries, dfwFolder, look.fault)) {
        for (const char* function : kFunctions) {
            if (!library->Find(function)) look.missing.emplace_back(function);
        }
    }
    return look;
}

}  // namespace twr
