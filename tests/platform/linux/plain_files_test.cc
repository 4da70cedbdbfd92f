#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "base/wide_text.h"
#include "support/test_system.h"

namespace twr {
namespace {

TEST(PlainFiles, APipeOrDeviceIsNoneAndNeverWaitedFor) {
    const testing::TestSystem test;
    Files& files = test.system->Core().files;
    const std::u16string pipe = test.folder.File("pipe");
    ASSERT_EQ(0, mkfifo(ToUtf8(pipe).c_str(), 0600));
    const std::u16string plain = test.folder.Write("plain", "x");
    for (const auto& path : std::vector<std::u16string>{pipe, u"/dev/null", u"/dev/zero"}) {
        SCOPED_TRACE(ToUtf8(path));
        EXPECT_EQ(nullptr, files.Open(path));
        EXPECT_FALSE(files.Append(path, "x"));
        EXPECT_FALSE(files.Copy(path, plain));
        EXPECT_FALSE(files.Copy(plain, path));
        EXPECT_EQ(nullptr, test.system->Core().xml.OpenReader(path));
        EXPECT_EQ(nullptr, test.system->Core().xml.OpenWriter(path));
    }
}

TEST(PlainFiles, LinksCountForWhatTheyLeadTo) {
    const testing::TestSystem test;
    const std::string folder = ToUtf8(test.folder.Text());
    test.folder.Write("elsewhere/real", "x");
    test.folder.Write("list/plain", "x");
    ASSERT_EQ(0, symlink((folder + "/elsewhere/real").c_str(), (folder + "/list/link").c_str()));
    ASSERT_EQ(0, symlink((folder + "/elsewhere").c_str(), (folder + "/list/folder").c_str()));
    ASSERT_EQ(0, symlink("missing", (folder + "/list/dangling").c_str()));
    auto list = test.system->Core().files.List(test.folder.File("list"), u"*");
    std::ranges::sort(list);
    EXPECT_EQ((std::vector<std::u16string>{test.folder.File("list/link"), test.folder.File("list/plain")}), list);
}

TEST(PlainFiles, TheFolderForAllUsersIsMadeWhereItIsMissing) {
    const testing::TestSystem test;
    EXPECT_TRUE(test.system->Core().files.Exists(test.system->Core().files.ProgramDataFolder()));
}

}  // namespace
}  // namespace twr
