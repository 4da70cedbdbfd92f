#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "base/wide_text.h"
#include "platform/linux/signal_queue.h"
#include "platform/paths.h"
#include "support/test_system.h"
#include "support/xml_outline.h"

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

// The signals wait while the program starts, and its dialog, which takes them, comes behind all files.
TEST(PlainFiles, AHugeOneEndsWhereTheProgramIsToldToEnd) {
    const testing::TestSystem test;
    const auto path = test.folder.Write("huge", std::string(3 << 20, '\n'));
    const SignalQueue waiting;
    for (const bool told : {false, true}) {
        if (told) raise(SIGTERM);
        const auto file = test.system->Core().files.Open(path);
        ASSERT_NE(nullptr, file);
        std::size_t size = 0;
        std::array<char, 4096> part;
        while (const std::size_t got = file->Read(part.data(), part.size())) size += got;
        EXPECT_EQ(told, size < (2 << 20)) << size;
        EXPECT_LE(std::size_t{1 << 20}, size) << "no honest one is cut";
    }
}

// The reader keeps what has no end yet.
TEST(PlainFiles, XmlIsReadUpToAPieceThatNoHonestFileHas) {
    const testing::TestSystem test;
    for (const std::size_t size : {kLongestLine / 2, 2 * kLongestLine}) {
        const auto path = test.folder.Write("long.xml", "<a><b/><!--" + std::string(size, 'x') + "--><c/></a>");
        EXPECT_EQ(size < kLongestLine ? "a() b() c()" : "a() b()", testing::Outline(*test.system->Core().xml.OpenReader(path)));
    }
}

TEST(PlainFiles, FoldersAreMadeForTheirUserAlone) {
    const testing::TestSystem test;
    Files& files = test.system->Core().files;
    const std::u16string shared = files.ProgramDataFolder(), own = JoinPath(shared, u"Tidewright");
    files.MakeFolder(own);
    for (const auto& folder : {shared, own}) {
        struct stat status {};
        EXPECT_EQ(0, stat(ToUtf8(folder).c_str(), &status));
        EXPECT_EQ(0700u, status.st_mode & 0777) << ToUtf8(folder);
    }
}

}  // namespace
}  // namespace twr
