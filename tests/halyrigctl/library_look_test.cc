// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/library_look.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>

#include "platform/files.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

// A library's header says for which machine it is, and that it is no program.
struct Header {
    explicit Header(std::string& library) : bytes(library) {
        const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
        const bool windows = bytes.starts_with("MZ");
        const std::size_t start = windows ? byte(0x3C) | byte(0x3D) << 8 : 0;
        machine = windows ? start + 4 : 4;
        kind = windows ? start + 23 : 16;
    }
    std::string With(std::size_t at, int flipped) const {
        std::string changed = bytes;
        changed[at] = static_cast<char>(changed[at] ^ flipped);
        return changed;
    }
    std::string& bytes;
    std::size_t machine, kind;
};

TEST(LibraryLookTest, NamesWhatKeepsTheBridgeFromLoadingIt) {
    const TestSystem test;
    const std::string suffix(kLibrarySuffix.begin(), kLibrarySuffix.end());
    std::string standIn = BytesOf(STAND_IN_LIBRARY), machine;
    const Header header(standIn);
    const bool elf = standIn.starts_with("\x7f");
    // 0x14C and 0x8664, or class 1 and 2
    const std::string otherMachine =
        elf ? header.With(header.machine, 3) : Header(machine = header.With(header.machine, 0x28)).With(header.machine + 1, 0x87);
    const std::string program = elf ? header.With(header.kind, 1) : header.With(header.kind, 0x20);
    const auto install = [&](const std::string& folder, const std::string& bytes) {
        test.folder.Write(folder + "/ShDfW2" + suffix, bytes);
    };
    install("right", standIn);
    install("text", "Read me\n");
    install("empty", "");
    install("machine", otherMachine);
    install("program", program);
    install("cut", standIn.substr(0, 4096));
    install("foreign", BytesOf(LOADABLE));
    install("stub", elf ? "MZ"
                        : "\x7f"
                          "ELF");
    install("other system",
            elf ? std::string("MZ").append(58, '\0') + std::string("\x40\0\0\0PE\0\0\x4c\x01", 10) + std::string(30, '\0')
                : "\x7f"
                  "ELF\1" +
                      std::string(30, '\0'));
    test.folder.Write("right/Data/J_vars06.d", "");
    test.folder.Write("other/ShDfW2.lib", "");
    test.folder.Write("none/x", "");
    const std::pair<std::u16string, const char*> rows[] = {
        {u"", "no Dfw folder is chosen"},
        {u"~/Deckman", "only a shell understands"},
        {u"Deckman", "is not a whole path"},
        {test.folder.File("nowhere"), "does not exist; choose Deckman's own folder"},
        {test.folder.File("right/ShDfW2" + suffix), "is a file, not a folder"},
        {test.folder.File("none"), "holds no ShDfW2"},
        {test.folder.File("right/Data"), "but the folder above it does"},
        {test.folder.File("other"), "only ShDfW2.lib; choose"},
        {test.folder.File("text"), "is no library but another kind of file"},
        {test.folder.File("empty"), "is no library but another kind of file"},
        {test.folder.File("stub"), "is no library but another kind of file"},
        {test.folder.File("other system"), "is for another kind of program"},
        {test.folder.File("machine"), "is for another kind of program"},
        {test.folder.File("program"), "is a program, not a library"},
        {test.folder.File("cut"), "can't be loaded: it is damaged"}};
    for (const auto& [folder, said] : rows) {
        const LibraryLook look = LookAtLibrary(test.system->Core().files, test.system->GetLibraries(), folder);
        EXPECT_NE(std::string::npos, look.fault.Line().find(said)) << look.fault.Line() << "\ndoes not say\n" << said;
        EXPECT_TRUE(look.missing.empty());
    }
    const auto missing = [&](const char* folder) {
        const LibraryLook look = LookAtLibrary(test.system->Core().files, test.system->GetLibraries(), test.folder.File(folder));
        EXPECT_EQ("", look.fault.Line());
        return look.missing.size();
    };
    EXPECT_EQ(0u, missing("right"));
    EXPECT_EQ(4u, missing("foreign"));
}

}  // namespace
}  // namespace twr::testing
