#include "halyrigctl/setup/library_look.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "halyrigctl/output/say.h"
#include "platform/files.h"

namespace twr {
namespace {

constexpr std::u16string_view kName = u"ShDfW2";
constexpr const char* kFunctions[] = {"Usr_Read", "Usr_GetPosition", "Usr_SetISData", "Usr_SetISName"};
constexpr const char* kChoose = "choose Deckman's own folder in the dialog";

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

Advice FolderFault(Files& files, std::u16string_view folder) {
    const std::string name = "the Dfw folder " + Harmless(folder);
    if (folder.empty()) return {"no Dfw folder is chosen", kChoose};
    if (folder.starts_with(u'~')) return {name + " begins with ~, which only a shell understands", "write the whole path"};
    if (!IsAbsolute(folder)) return {name + " is not a whole path", "write it from the root on"};
    if (!files.Exists(folder)) return {name + " does not exist", kChoose};
    if (files.Open(folder)) return {name + " is a file, not a folder", kChoose};
    return {};
}

Advice AbsentFault(Files& files, std::u16string_view folder, const std::u16string& library) {
    const std::string none = "the Dfw folder " + Harmless(folder) + " holds no " + Harmless(library);
    const auto parent = folder.substr(0, std::min(folder.size(), folder.find_last_of(u"/\\")));
    if (files.Exists(JoinPath(parent, library))) return {none + ", but the folder above it does", "choose that one"};
    const auto others = files.List(folder, std::u16string(kName).append(u".*"));
    if (others.empty()) return {none, kChoose};
    const std::u16string other = others.front().substr(others.front().find_last_of(u"/\\") + 1);
    return {none + ", only " + Harmless(other), "choose a folder with a library for this system"};
}

Advice KindFault(const Kind& kind, const std::string& path) {
    const std::string remedy = std::string("put Deckman's own there, or ") + kChoose;
    if (kind.bits == 0) return {path + " is no library but another kind of file", remedy};
    const Kind own{.windows = OnWindows(), .bits = kBits};
    if (kind.windows != own.windows || kind.bits != own.bits)
        return {path + " is for another kind of program (" + SystemOf(kind) + "), and the bridge is for " + SystemOf(own),
                "put the library for that there"};
    if (!kind.library) return {path + " is a program, not a library", remedy};
    return {};
}

// The library itself, where it could be loaded.
std::unique_ptr<Library> Loaded(Files& files, Libraries& libraries, std::u16string_view folder, Advice& fault) {
    fault = FolderFault(files, folder);
    if (fault) return nullptr;
    const std::u16string name = std::u16string(kName).append(kLibrarySuffix);
    const std::u16string path = JoinPath(folder, name);
    const std::string shown = Harmless(path);
    const auto file = files.Open(path);
    if (!file) {
        fault = files.Exists(path) ? Advice{shown + " can't be read", "let this user read it"} : AbsentFault(files, folder, name);
        return nullptr;
    }
    const Header header(*file);
    const std::string failure = file->Failure();
    fault = failure.empty() ? KindFault(KindOf(header), shown)
                            : Advice{shown + " can't be read: " + failure, "see whether the disk is sound"};
    if (fault) return nullptr;
    auto library = libraries.Load(path);
    if (!library)
        fault = {shown + " can't be loaded: it is damaged, or a library that it needs is missing", "install Deckman again"};
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
