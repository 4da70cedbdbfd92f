#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/paths.h"
#include "platform/wide_text.h"
#include "support/test_system.h"

namespace twr {
namespace {

constexpr std::u16string_view kKey = u"Software\\Tidewright\\core";
constexpr const char* kFile = "config/registry.reg";

class RegistryFileTest : public ::testing::Test {
protected:
    std::string Path() const { return ToUtf8(test_.folder.File(kFile)); }
    unsigned ModeOf(const std::string& path) const {
        struct stat status {};
        EXPECT_EQ(0, lstat(path.c_str(), &status));
        return status.st_mode & 0777;
    }

    testing::TestSystem test_;
    Registry& registry_ = test_.system->Core().registry;
};

TEST_F(RegistryFileTest, BeginsAsTheRegistryEditorsExportDoes) {
    ASSERT_TRUE(registry_.OpenOrCreate(kKey));
    ASSERT_TRUE(registry_.Write(kKey, u"Sys_v0", StringValue(u"15.85")));
    ASSERT_TRUE(registry_.Write(kKey, u"Sys_b3", DwordValue(1)));
    EXPECT_EQ(
        "Windows Registry Editor Version 5.00\r\n\r\n"
        "[HKEY_CURRENT_USER\\Software\\Tidewright\\core]\r\n"
        "\"Sys_v0\"=\"15.85\"\r\n"
        "\"Sys_b3\"=dword:00000001\r\n",
        test_.folder.Read(kFile));
    EXPECT_EQ(0600u, ModeOf(Path()));
    EXPECT_EQ(0700u, ModeOf(ToUtf8(test_.folder.File("config"))));
}

TEST_F(RegistryFileTest, SeesWhatOthersWriteMeanwhile) {
    ASSERT_TRUE(registry_.Write(kKey, u"Sys_v0", StringValue(u"1")));
    const auto other = MakeSystem(testing::TestRoots(test_.name, test_.folder.Text()));
    ASSERT_TRUE(other->Core().registry.Write(kKey, u"Sys_v0", StringValue(u"2")));
    ASSERT_TRUE(other->Core().registry.Write(kKey, u"Sys_v1", StringValue(u"3")));
    EXPECT_EQ(StringValue(u"2"), registry_.Read(kKey, u"Sys_v0"));
    ASSERT_TRUE(registry_.Write(kKey, u"Sys_v2", StringValue(u"4")));
    EXPECT_EQ(StringValue(u"3"), other->Core().registry.Read(kKey, u"Sys_v1"));
}

TEST_F(RegistryFileTest, LeavesNothingBesideTheFileAndKeepsItsMode) {
    test_.folder.Write(kFile, "");
    chmod(Path().c_str(), 0640);
    ASSERT_TRUE(registry_.Write(kKey, u"a", DwordValue(1)));
    EXPECT_EQ(0640u, ModeOf(Path()));
    EXPECT_EQ(1u, test_.system->Core().files.List(test_.folder.File("config"), u"*").size());
}

TEST_F(RegistryFileTest, WritesThroughALink) {
    const std::u16string real = test_.folder.Write("elsewhere.reg", "");
    test_.folder.Write("config/other", "");
    ASSERT_EQ(0, symlink(ToUtf8(real).c_str(), Path().c_str()));
    ASSERT_TRUE(registry_.Write(kKey, u"a", DwordValue(1)));
    EXPECT_EQ(DwordValue(1), registry_.Read(kKey, u"a"));
    EXPECT_NE("", test_.folder.Read("elsewhere.reg"));
}

TEST_F(RegistryFileTest, CantBeWrittenWhereNoPlainFileCanBe) {
    test_.folder.Write("config/registry.reg/in the way", "x");
    EXPECT_FALSE(registry_.OpenOrCreate(kKey));
    EXPECT_FALSE(registry_.Write(kKey, u"a", DwordValue(1)));
    EXPECT_EQ(std::nullopt, registry_.Read(kKey, u"a"));
    EXPECT_EQ("x", test_.folder.Read("config/registry.reg/in the way"));

    Roots nowhere = testing::TestRoots(test_.name, test_.folder.Text());
    for (const std::u16string_view path : {u"", u"relative.reg", u"/dev/null", u"/dev/null/registry.reg"}) {
        SCOPED_TRACE(ToUtf8(path));
        nowhere.registry = path;
        const auto system = MakeSystem(nowhere);
        EXPECT_FALSE(system->Core().registry.OpenOrCreate(kKey));
        EXPECT_FALSE(system->Core().registry.Write(kKey, u"a", DwordValue(1)));
        EXPECT_EQ(std::nullopt, system->Core().registry.Read(kKey, u"a"));
    }
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
