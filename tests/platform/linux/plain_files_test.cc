// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "base/wide_text.h"
#include "platform/files.h"
#include "platform/linux/signal_queue.h"
#include "platform/linux/xml/xml.h"
#include "support/fakes.h"
#include "support/linux/signals.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

namespace fs = std::filesystem;

struct PlainFilesTest : ::testing::Test {
    testing::TestSystem test_;
    Files& files_ = test_.system->Core().files;
};

TEST_F(PlainFilesTest, APipeOrDeviceIsNoneAndNeverWaitedFor) {
    const std::u16string pipe = test_.folder.File("pipe");
    ASSERT_EQ(0, mkfifo(ToUtf8(pipe).c_str(), 0600));
    const std::u16string plain = test_.folder.Write("plain", "x");
    for (const auto& path : std::vector<std::u16string>{pipe, u"/dev/null", u"/dev/zero"}) {
        SCOPED_TRACE(ToUtf8(path));
        EXPECT_FALSE(files_.Open(path) || files_.Append(path, "x") || files_.Copy(path, plain) || files_.Copy(plain, path));
        EXPECT_EQ(nullptr, test_.system->Core().xml.OpenWriter(path));
        EXPECT_EQ(Flaw::kReadFailed, test_.system->Core().xml.OpenReader(path)->Fault()->flaw);
    }
}

// The kernel has a plain file whose start can't be read.
TEST_F(PlainFilesTest, AReadErrorIsNotTheEnd) {
    constexpr const char16_t* kUnreadable = u"/proc/self/mem";
    EXPECT_EQ(std::nullopt, ReadWhole(files_, kUnreadable));
    const auto reader = test_.system->Core().xml.OpenReader(kUnreadable);
    EXPECT_EQ("", Outline(*reader));
    EXPECT_TRUE(reader->Fault() && reader->Fault()->flaw == Flaw::kReadFailed && reader->Fault()->text == u"Input/output error");
    EXPECT_FALSE(files_.Copy(kUnreadable, test_.folder.File("copy")));
    const auto cut = ReadXml(std::make_unique<Broken>(std::make_unique<TextSource>("<a>\n<b/>\n<c/></a>"), 11));
    EXPECT_EQ("a() b()", Outline(*cut));
    EXPECT_TRUE(cut->Fault() && cut->Fault()->line == 3 && cut->Fault()->text == u"broken disk");
}

TEST_F(PlainFilesTest, AReplacementKeepsOwnerAndRights) {
    const auto path = test_.folder.Write("a", "x");
    const std::string native = ToUtf8(path);
    for (const mode_t mode : {0640u, 0600u, 0666u}) {
        ASSERT_EQ(0, chmod(native.c_str(), mode));
        const bool root = geteuid() == 0;
        ASSERT_TRUE(!root || chown(native.c_str(), 12, 34) == 0);
        const std::u16string fresh = files_.WriteBeside(path, "y", path);
        struct stat status {};
        ASSERT_EQ(0, stat(ToUtf8(fresh).c_str(), &status));
        EXPECT_EQ(mode, status.st_mode & 07777);
        EXPECT_TRUE(!root || (status.st_uid == 12 && status.st_gid == 34));
    }
    ASSERT_EQ(0, chmod(native.c_str(), 0400));
    EXPECT_EQ(geteuid() != 0, files_.WriteBeside(path, "y", path).empty()) << "write-protected, which does not bind root";
}

TEST_F(PlainFilesTest, AChangeIsKnownToTheHundredNanoseconds) {
    const auto path = test_.folder.Write("a", "x");
    const timespec times[] = {{1, 0}, {1'800'000'000, 123'456'789}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, ToUtf8(path).c_str(), times, 0));
    EXPECT_EQ(18'000'000'001'234'567, files_.ChangedAt(path));
}

TEST_F(PlainFilesTest, LinksCountForWhatTheyLeadTo) {
    const std::string folder = ToUtf8(test_.folder.Text());
    test_.folder.Write("elsewhere/real", "x");
    test_.folder.Write("list/plain", "x");
    ASSERT_EQ(0, symlink((folder + "/elsewhere/real").c_str(), (folder + "/list/link").c_str()));
    ASSERT_EQ(0, symlink((folder + "/elsewhere").c_str(), (folder + "/list/folder").c_str()));
    ASSERT_EQ(0, symlink("missing", (folder + "/list/dangling").c_str()));
    auto list = files_.List(test_.folder.File("list"), u"*");
    std::ranges::sort(list);
    EXPECT_EQ((std::vector<std::u16string>{test_.folder.File("list/link"), test_.folder.File("list/plain")}), list);
}

TEST_F(PlainFilesTest, WhatAFullDiskHasNotTakenStaysAFailure) {
    rlimit all{};
    ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &all));
    const rlimit full{4096, all.rlim_max};
    const auto writer = test_.system->Core().xml.OpenWriter(test_.folder.File("a.xml"));
    setrlimit(RLIMIT_FSIZE, &full);
    bool taken = writer->StartElement(u"a");
    for (int i = 0; i < 10000; ++i) taken = writer->StartElement(u"b") && writer->EndElement() && taken;
    setrlimit(RLIMIT_FSIZE, &all);
    EXPECT_FALSE(taken || writer->Finish());
}

// The signals wait while the program starts, and its dialog, which takes them, comes after all files.
TEST_F(PlainFilesTest, AHugeOneEndsWhereTheProgramIsToldToEnd) {
    const auto path = test_.folder.Write("huge", std::string(3 << 20, '\n'));
    const SignalQueue waiting;
    for (const bool told : {false, true}) {
        if (told) testing::SendFromOutside(SIGTERM);
        const std::size_t size = ReadWhole(files_, path).value_or("").size();
        EXPECT_EQ(told, size < (2 << 20)) << size;
        EXPECT_LE(std::size_t{1 << 20}, size) << "no honest one is cut";
    }
}

TEST_F(PlainFilesTest, FoldersAreMadeForTheirUserAlone) {
    const std::u16string shared = files_.ProgramDataFolder(), own = JoinPath(shared, u"Tidewright");
    files_.MakeFolder(own);
    for (const fs::path folder : {shared, own}) EXPECT_EQ(fs::perms::owner_all, fs::status(folder).permissions()) << folder;
}

}  // namespace
}  // namespace twr::testing
