#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "base/wide_text.h"
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

TEST_F(RegistryFileTest, CantBeWrittenWhereNoPlainFileCanBe) {
    Roots nowhere = testing::TestRoots(test_.name, test_.folder.Text());
    for (const auto& path :
         std::vector<std::u16string>{test_.folder.Text(), u"", u"nowhere.reg", u"nowhere/x", u"/dev/null", u"/dev/null/x"}) {
        SCOPED_TRACE(ToUtf8(path));
        nowhere.registry = path;
        const auto system = MakeSystem(nowhere);
        Registry& registry = system->Core().registry;
        EXPECT_FALSE(registry.OpenOrCreate(kKey) || registry.Write(kKey, u"a", DwordValue(1)));
        EXPECT_EQ(std::nullopt, registry.Read(kKey, u"a"));
    }
    for (const char* name : {"nowhere.reg", "nowhere"}) EXPECT_FALSE(std::filesystem::exists(name)) << name;
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
