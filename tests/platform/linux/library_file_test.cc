#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "platform/paths.h"
#include "platform/wide_text.h"
#include "support/test_system.h"

namespace twr {
namespace {

const int inThisProgram = 0;

TEST(LibraryFile, ATruncatedOneIsRefusedAndHarmsNothing) {
    const testing::TestSystem test;
    std::ifstream file(ToUtf8(JoinPath(ModuleFolder(&inThisProgram), u"loadable.so")), std::ios::binary);
    const std::string whole{std::istreambuf_iterator<char>(file), {}};
    ASSERT_FALSE(whole.empty());
    Libraries& libraries = test.system->GetLibraries();
    for (std::size_t length = 0; length < whole.size(); length += 97) {
        SCOPED_TRACE(length);
        // What is cut may be no more than what only a debugger reads, so some of these do load.
        const auto library = libraries.Load(test.folder.Write("cut" + std::to_string(length) + ".so", whole.substr(0, length)));
        EXPECT_TRUE(!library || (length > whole.size() / 2 && library->Find("Answer")));
    }
    EXPECT_NE(nullptr, libraries.Load(test.folder.Write("whole.so", whole)));
}

TEST(LibraryFile, IsNotSearchedForInTheSystem) {
    const testing::TestSystem test;
    EXPECT_EQ(nullptr, test.system->GetLibraries().Load(u"libc.so.6"));
}

}  // namespace
}  // namespace twr
