#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>

#include "base/wide_text.h"
#include "platform/linux/descriptor.h"
#include "platform/paths.h"
#include "support/test_system.h"

namespace twr {
namespace {

constexpr std::u16string_view kKey = u"Software\\Tidewright\\core";
constexpr const char* kFile = "config/registry.reg";

class RegistryFileTest : public ::testing::Test {
protected:
    std::string Path(const char* name = kFile) const { return ToUtf8(test_.folder.File(name)); }
    unsigned ModeOf(const char* name) const {
        struct stat status {};
        EXPECT_EQ(0, lstat(Path(name).c_str(), &status));
        return status.st_mode & 0777;
    }

    testing::TestSystem test_;
    Registry& registry_ = test_.system->Core().registry;
};

TEST_F(RegistryFileTest, BeginsAsTheRegistryEditorsExportDoes) {
    ASSERT_TRUE(registry_.Write(kKey, u"Sys_v0", StringValue(u"15.85")) && registry_.Write(kKey, u"Sys_b3", DwordValue(1)));
    EXPECT_EQ(
        "Windows Registry Editor Version 5.00\r\n\r\n"
        "[HKEY_CURRENT_USER\\Software\\Tidewright\\core]\r\n"
        "\"Sys_v0\"=\"15.85\"\r\n"
        "\"Sys_b3\"=dword:00000001\r\n",
        test_.folder.Read(kFile));
    EXPECT_EQ(0600u, ModeOf(kFile));
    EXPECT_EQ(0700u, ModeOf("config"));
}

TEST_F(RegistryFileTest, SeesWhatOthersWriteMeanwhile) {
    const auto system = testing::SystemOf(test_.Arguments());
    Registry& other = system->Core().registry;
    ASSERT_TRUE(registry_.Write(kKey, u"a", DwordValue(1)));
    ASSERT_TRUE(other.Write(kKey, u"a", DwordValue(2)) && other.Write(kKey, u"b", DwordValue(3)));
    EXPECT_EQ(DwordValue(2), registry_.Read(kKey, u"a"));
    ASSERT_TRUE(registry_.Write(kKey, u"c", DwordValue(4)));
    EXPECT_EQ(DwordValue(3), other.Read(kKey, u"b"));
}

TEST_F(RegistryFileTest, WritesThroughALinkKeepsTheModeAndLeavesNothingBesideTheFile) {
    test_.folder.Write("elsewhere/real.reg", "");
    chmod(Path("elsewhere/real.reg").c_str(), 0640);
    test_.folder.Write("config/other", "");
    ASSERT_EQ(0, symlink("../elsewhere/real.reg", Path().c_str()));
    ASSERT_TRUE(registry_.Write(kKey, u"a", DwordValue(1)));
    EXPECT_EQ(DwordValue(1), registry_.Read(kKey, u"a"));
    EXPECT_NE("", test_.folder.Read("elsewhere/real.reg"));
    EXPECT_EQ(0640u, ModeOf("elsewhere/real.reg"));
    EXPECT_EQ(1u, test_.system->Core().files.List(test_.folder.File("elsewhere"), u"*").size());
}

TEST_F(RegistryFileTest, WhereItCantBeReadOrWrittenThatIsToldOnce) {
    const std::string none = "there is no folder for the settings: set HOME or XDG_CONFIG_HOME\n";
    const std::string noFile = ": the settings can't be read: it is no plain file\n";
    const auto longLine = test_.folder.Write("long", '"' + std::string(kLongestLine, 'x')), large = test_.folder.Write("large", "");
    ASSERT_EQ(0, truncate(ToUtf8(large).c_str(), kLargestFile + 1));
    const struct {
        std::u16string path;
        std::string told;
    } rows[] = {
        {test_.folder.Text(), noFile},
        {u"/dev/null", noFile},
        {u"/dev/null/x", ": the settings can't be read: Not a directory\n"},
        {u"/proc/x", ": a new key can't be saved: No such file or directory\n"},
        {longLine, ": the settings can't be read: it has a line longer than 1 MiB\n"},
        {large, ": the settings can't be read: it is larger than 64 MiB\n"},
        {u"", none},
        {u"nowhere.reg", none},
        {u"nowhere/x", none},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(ToUtf8(row.path));
        Roots roots = testing::TestRoots(test_.name, test_.folder.Text());
        roots.registry = row.path;
        const auto system = MakeSystem(roots);
        Registry& registry = system->Core().registry;
        ::testing::internal::CaptureStderr();
        EXPECT_FALSE(registry.OpenOrCreate(kKey) || registry.OpenOrCreate(kKey));
        EXPECT_EQ(std::nullopt, registry.Read(kKey, u"a"));
        const std::string told = ::testing::internal::GetCapturedStderr();
        EXPECT_EQ("platform_test: " + (row.told == none ? "" : ToUtf8(row.path)) + row.told, told);
        EXPECT_FALSE(registry.Write(kKey, u"a", DwordValue(1)));
    }
    for (const char* name : {"nowhere.reg", "nowhere"}) EXPECT_FALSE(std::filesystem::exists(name)) << name;
}

TEST_F(RegistryFileTest, TellsOnceEachTimeThatSettingsAreLost) {
    test_.folder.Write(kFile, ';' + std::string(5000, 'x') + '\n');
    rlimit all{};
    ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &all));
    const rlimit full{4096, all.rlim_max};
    for (const std::uint32_t time : {1u, 2u}) {
        ::testing::internal::CaptureStderr();
        setrlimit(RLIMIT_FSIZE, &full);
        EXPECT_FALSE(registry_.Write(kKey, u"a", DwordValue(time)) || registry_.Write(kKey, u"b", DwordValue(time)));
        setrlimit(RLIMIT_FSIZE, &all);
        EXPECT_EQ("platform_test: " + Path() + ": the settings can't be saved: File too large\n",
                  ::testing::internal::GetCapturedStderr());
        EXPECT_TRUE(registry_.Write(kKey, u"a", DwordValue(time)));
    }
}

TEST_F(RegistryFileTest, NamesTheLineOfAValueThatCantBeRead) {
    test_.folder.Write(kFile, "\n[HKEY_CURRENT_USER\\Software\\Tidewright\\core]\n\"a\"=dword:x\n\"b\"=x\n");
    ::testing::internal::CaptureStderr();
    for (int time = 0; time < 2; ++time) EXPECT_EQ(std::nullopt, registry_.Read(kKey, u"a"));
    EXPECT_EQ("platform_test: " + Path() + ":3: the value of a can't be read and does not count\n",
              ::testing::internal::GetCapturedStderr());
}

TEST_F(RegistryFileTest, WaitsForAnotherProgramThatIsWritingButNotForEver) {
    ASSERT_TRUE(registry_.Write(kKey, u"a", DwordValue(1)));
    const Descriptor folder(open(Path("config").c_str(), O_RDONLY | O_DIRECTORY));
    ASSERT_EQ(0, flock(folder.Get(), LOCK_EX));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(registry_.Write(kKey, u"a", DwordValue(2)));
    EXPECT_LE(std::chrono::milliseconds(500), std::chrono::steady_clock::now() - begin);
}

TEST_F(RegistryFileTest, AFileNotToBeWrittenStaysAsItIs) {
    if (geteuid() == 0) GTEST_SKIP() << "this user may write everything";
    test_.folder.Write(kFile, "[HKEY_CURRENT_USER\\Software\\Tidewright\\core]\n\"a\"=dword:1\n");
    chmod(Path().c_str(), 0400);
    EXPECT_TRUE(registry_.OpenOrCreate(kKey));
    EXPECT_EQ(DwordValue(1), registry_.Read(kKey, u"a"));
    EXPECT_FALSE(registry_.Write(kKey, u"a", DwordValue(2)));
    EXPECT_EQ(DwordValue(1), registry_.Read(kKey, u"a"));
}

}  // namespace
}  // namespace twr
