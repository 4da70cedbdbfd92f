#include "platform/library.h"

#include <gtest/gtest.h>

#include "platform/paths.h"
#include "support/test_system.h"

namespace twr {
namespace {

using AnswerFunction = int();

const int inThisProgram = 0;

std::u16string Loadable() { return JoinPath(ModuleFolder(&inThisProgram), std::u16string(u"loadable").append(kLibrarySuffix)); }

TEST(Library, FindsItsExportsAndNothingElse) {
    const testing::TestSystem test;
    const auto library = test.system->GetLibraries().Load(Loadable());
    ASSERT_NE(nullptr, library);
    void* const found = library->Find("Answer");
    ASSERT_NE(nullptr, found);
    EXPECT_EQ(42, reinterpret_cast<AnswerFunction*>(found)());
    EXPECT_EQ(nullptr, library->Find("answer"));
    EXPECT_EQ(Loadable().substr(0, Loadable().rfind(kPathSeparator)), ModuleFolder(found));
}

TEST(Library, IsNoneWhereNothingCanBeLoaded) {
    const testing::TestSystem test;
    Libraries& libraries = test.system->GetLibraries();
    const std::u16string paths[] = {
        u"",
        test.folder.Text(),
        test.folder.File("missing.so"),
        test.folder.Write("empty.so", ""),
        test.folder.Write("text.so", "not a library\n"),
        test.folder.Write("magic.so",
                          "\x7F"
                          "ELF"),
    };
    for (const auto& path : paths) {
        SCOPED_TRACE(::testing::PrintToString(path));
        EXPECT_EQ(nullptr, libraries.Load(path));
    }
}

TEST(Library, HasNoFolderForAnAddressInNoModule) { EXPECT_EQ(u"", ModuleFolder(nullptr)); }

}  // namespace
}  // namespace twr
