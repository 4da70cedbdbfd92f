#include "platform/files.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/paths.h"
#include "support/test_system.h"

namespace twr {
namespace {

class FilesTest : public ::testing::Test {
protected:
    std::string ReadAll(const std::u16string& path) {
        std::string bytes;
        const auto source = files_.Open(path);
        char chunk[7];
        while (const std::size_t got = source ? source->Read(chunk, sizeof chunk) : 0) bytes.append(chunk, got);
        return bytes;
    }

    std::vector<std::u16string> NamesIn(std::string_view folder, std::u16string_view pattern) {
        std::vector<std::u16string> names;
        const std::u16string path = test_.folder.File(folder);
        for (const auto& file : files_.List(path, pattern)) {
            EXPECT_TRUE(file.starts_with(path + kPathSeparator)) << "not a full path";
            names.push_back(file.substr(path.size() + 1));
        }
        std::ranges::sort(names);
        return names;
    }

    testing::TestSystem test_;
    Files& files_ = test_.system->Core().files;
};

TEST_F(FilesTest, ReadsBytesToTheEnd) {
    const std::string bytes("a\0b\r\n\x1A\xFF tail", 12);
    EXPECT_EQ(bytes, ReadAll(test_.folder.Write("some.bin", bytes)));
    EXPECT_EQ(bytes, ReadAll(test_.folder.Write("M\xC3\xA4rz \xE2\x82\xAC.bin", bytes)));
}

TEST_F(FilesTest, OpensNoFolderAndNothingThatIsMissing) {
    EXPECT_EQ(nullptr, files_.Open(test_.folder.Text()));
    EXPECT_EQ(nullptr, files_.Open(test_.folder.File("missing")));
    EXPECT_EQ(nullptr, files_.Open(u""));
}

TEST_F(FilesTest, MakesOneLevelOfFolders) {
    files_.MakeFolder(test_.folder.File("one/two"));
    EXPECT_FALSE(files_.Exists(test_.folder.File("one")));
    files_.MakeFolder(test_.folder.File("one"));
    files_.MakeFolder(test_.folder.File("one/two"));
    EXPECT_TRUE(files_.Exists(test_.folder.File("one/two")));
    files_.MakeFolder(test_.folder.File("one"));
    EXPECT_TRUE(files_.Exists(test_.folder.File("one/two")));
}

TEST_F(FilesTest, AppendsToNewAndOldFiles) {
    const std::u16string log = test_.folder.File("log");
    EXPECT_TRUE(files_.Append(log, "one\n"));
    const auto reader = files_.Open(log);
    EXPECT_TRUE(files_.Append(log, "two\n"));
    EXPECT_EQ("one\ntwo\n", ReadAll(log));
    EXPECT_FALSE(files_.Append(test_.folder.Text(), "x"));
    EXPECT_FALSE(files_.Append(test_.folder.File("missing/log"), "x"));
}

TEST_F(FilesTest, CopiesOverAnOlderFile) {
    const std::u16string from = test_.folder.Write("from", std::string(40000, 'x'));
    const std::u16string to = test_.folder.Write("to", std::string(90000, 'y'));
    EXPECT_TRUE(files_.Copy(from, to));
    EXPECT_EQ(std::string(40000, 'x'), ReadAll(to));
    EXPECT_FALSE(files_.Copy(test_.folder.File("missing"), to));
    EXPECT_FALSE(files_.Copy(from, test_.folder.File("missing/to")));
    EXPECT_FALSE(files_.Copy(from, from));
    EXPECT_EQ(std::string(40000, 'x'), ReadAll(from));
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
    const struct {
        std::u16string_view pattern;
        std::vector<std::u16string> names;
    } rows[] = {
        {u"J_vars*.d", {u"J_vars.d", u"J_vars06.d", u"j_VARS7.D"}},
        {u"J_vars?.d", {u"j_VARS7.D"}},
        {u"J_*6*.d", {u"J_vars06.d"}},
        {u"[1].txt", {u"[1].txt"}},
        {u"nothing*", {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.pattern));
        EXPECT_EQ(row.names, NamesIn("d", row.pattern));
    }
    EXPECT_TRUE(files_.List(test_.folder.File("missing"), u"*").empty());
}

TEST_F(FilesTest, JoinsPathsAsTheSystemDoes) {
    EXPECT_EQ(test_.folder.File("one"), JoinPath(test_.folder.Text(), u"one"));
    EXPECT_EQ(test_.folder.File("ProgramData"), files_.ProgramDataFolder());
}

}  // namespace
}  // namespace twr
