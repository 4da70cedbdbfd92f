#include "platform/library.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/paths.h"
#include "support/test_system.h"

namespace twr {
namespace {

const int inThisProgram = 0;

std::u16string Loadable() { return JoinPath(ModuleFolder(&inThisProgram), u"loadable" + std::u16string(kLibrarySuffix)); }

TEST(Library, FindsItsExportsAndNothingElse) {
    const testing::TestSystem test;
    const auto library = test.system->GetLibraries().Load(Loadable());
    ASSERT_NE(nullptr, library);
    void* const found = library->Find("Answer");
    ASSERT_NE(nullptr, found);
    EXPECT_EQ(42, reinterpret_cast<int (*)()>(found)());
    EXPECT_EQ(nullptr, library->Find("answer"));
    EXPECT_EQ(ModuleFolder(&inThisProgram), ModuleFolder(found));
    EXPECT_EQ(u"", ModuleFolder(nullptr)) << "an address in no module";
}

TEST(Library, IsNoneWhereNothingCanBeLoaded) {
    const testing::TestSystem test;
    const std::u16string paths[] = {
        u"",
        u"libc.so.6",  // where the system would search for it
        test.folder.Text(),
        test.folder.File("missing.so"),
        test.folder.Write("empty.so", ""),
        test.folder.Write("text.so", "not a library\n"),
    };
    for (const auto& path : paths) {
        EXPECT_EQ(nullptr, test.system->GetLibraries().Load(path)) << ::testing::PrintToString(path);
    }
}

TEST(Library, ATruncatedOneIsRefusedAndHarmsNothing) {
    const testing::TestSystem test;
    std::ifstream file(std::filesystem::path(Loadable()), std::ios::binary);
    const std::string whole{std::istreambuf_iterator<char>(file), {}};
    ASSERT_FALSE(whole.empty());
    for (std::size_t part = 0; part < 160; ++part) {
        const std::size_t length = whole.size() * part / 160;
        // What is cut may be no more than what only a debugger reads, so some of these do load.
        const auto path = test.folder.Write("cut" + std::to_string(part), whole.substr(0, length));
        const auto library = test.system->GetLibraries().Load(path);
        EXPECT_TRUE(!library || (part > 80 && library->Find("Answer"))) << length << " bytes";
    }
}

}  // namespace
}  // namespace twr
