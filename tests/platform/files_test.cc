#include "platform/files.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/paths.h"
#include "support/test_system.h"

namespace twr {
namespace {

class FilesTest : public ::testing::Test {
protected:
    testing::TestSystem test_;
    Files& files_ = test_.system->Core().files;
};

TEST_F(FilesTest, ReadsBytesToTheEnd) {
    const std::string bytes("a\0b\r\n\x1A\xFF tail", 12);
    for (const char* name : {"some.bin", "M\xC3\xA4rz \xE2\x82\xAC.bin"}) {
        const auto source = files_.Open(test_.folder.Write(name, bytes));
        ASSERT_NE(nullptr, source) << name;
        std::string read;
        char chunk[7];
        while (const std::size_t got = source->Read(chunk, sizeof chunk)) read.append(chunk, got);
        EXPECT_EQ(bytes, read);
    }
}

TEST_F(FilesTest, NoFolderAndNothingThatIsMissingIsAFile) {
    const std::u16string plain = test_.folder.Write("plain", "x");
    for (const auto& path : {test_.folder.Text(), test_.folder.File("missing/file"), std::u16string()}) {
        SCOPED_TRACE(::testing::PrintToString(path));
        EXPECT_EQ(nullptr, files_.Open(path));
        EXPECT_FALSE(files_.Append(path, "x"));
        EXPECT_FALSE(files_.Copy(path, plain));
        EXPECT_FALSE(files_.Copy(plain, path));
    }
    EXPECT_EQ("x", test_.folder.Read("plain"));
    EXPECT_TRUE(files_.List(test_.folder.File("missing"), u"*").empty());
}

TEST_F(FilesTest, MakesOneLevelOfFolders) {
    files_.MakeFolder(test_.folder.File("one/two"));
    EXPECT_FALSE(files_.Exists(test_.folder.File("one")));
    files_.MakeFolder(test_.folder.File("one"));
    files_.MakeFolder(test_.folder.File("one/two"));
    files_.MakeFolder(test_.folder.File("one"));  // it is there
    EXPECT_TRUE(files_.Exists(test_.folder.File("one/two")));
}

TEST_F(FilesTest, AppendsToNewAndOldFiles) {
    const std::u16string log = test_.folder.File("log");
    EXPECT_TRUE(files_.Append(log, "one\n"));
    const auto reader = files_.Open(log);
    EXPECT_TRUE(files_.Append(log, "two\n"));
    EXPECT_EQ("one\ntwo\n", test_.folder.Read("log"));
}

TEST_F(FilesTest, CopiesOverAnOlderFileButNotOverItself) {
    const std::u16string from = test_.folder.Write("from", std::string(40000, 'x'));
    const std::u16string to = test_.folder.Write("to", std::string(90000, 'y'));
    EXPECT_TRUE(files_.Copy(from, to));
    EXPECT_EQ(std::string(40000, 'x'), test_.folder.Read("to"));
    EXPECT_FALSE(files_.Copy(from, from));
    EXPECT_EQ(std::string(40000, 'x'), test_.folder.Read("from"));
}

TEST_F(FilesTest, RenamesOverAnOlderFile) {
    const std::u16string from = test_.folder.Write("from", "new"), to = test_.folder.Write("to", "old");
    const auto reader = files_.Open(from);
    EXPECT_TRUE(files_.Rename(from, to));
    EXPECT_EQ("new", test_.folder.Read("to"));
    EXPECT_FALSE(files_.Exists(from));
    EXPECT_FALSE(files_.Rename(from, to)) << "it is gone";
    EXPECT_FALSE(files_.Rename(to, test_.folder.File("missing/to")));
    EXPECT_EQ("new", test_.folder.Read("to"));
}

TEST_F(FilesTest, RemovesAFile) {
    const std::u16string path = test_.folder.Write("old", "x");
    files_.Remove(path);
    EXPECT_FALSE(files_.Exists(path));
    files_.Remove(path);
}

TEST_F(FilesTest, ListsTheFilesThatFitAPattern) {
    for (const char* name :
         {"d/J_vars06.d", "d/j_VARS7.D", "d/J_vars.d", "d/J_vars06.dx", "d/xJ_vars06.d", "d/[1].txt", "d/J_varsfolder.d/x"}) {
        test_.folder.Write(name, "");
    }
    const std::u16string folder = test_.folder.File("d");
    const struct {
        std::u16string_view pattern;
        std::vector<std::u16string_view> names;
    } rows[] = {
        {u"J_vars*.d", {u"J_vars.d", u"J_vars06.d", u"j_VARS7.D"}},
        {u"J_vars?.d", {u"j_VARS7.D"}},
        {u"J_*6*.d", {u"J_vars06.d"}},
        {u"[1].txt", {u"[1].txt"}},
        {u"nothing*", {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.pattern));
        auto files = files_.List(folder, row.pattern);
        std::ranges::sort(files);
        std::vector<std::u16string> expected;
        for (const auto& name : row.names) expected.push_back(JoinPath(folder, name));
        EXPECT_EQ(expected, files);
    }
}

TEST_F(FilesTest, JoinsPathsAsTheSystemDoes) {
    EXPECT_EQ(test_.folder.File("one"), JoinPath(test_.folder.Text(), u"one"));
    EXPECT_EQ(test_.folder.File("ProgramData"), files_.ProgramDataFolder());
}

}  // namespace
}  // namespace twr
