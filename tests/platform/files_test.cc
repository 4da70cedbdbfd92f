// SPDX-License-Identifier: MIT
#include "platform/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "base/wide_text.h"
#include "support/test_system.h"

namespace twr {
namespace {

struct FilesTest : ::testing::Test {
    testing::TestSystem test_;
    Files& files_ = test_.system->Core().files;
};

TEST_F(FilesTest, AreReadWrittenCopiedRenamedAndRemoved) {
    const std::string bytes = std::string("a\0b\r\n\x1A\xFF", 7) + std::string(40000, 'x'), older(90000, 'y');
    const std::u16string from = test_.folder.File("M\xC3\xA4rz \xE2\x82\xAC"), to = test_.folder.Write("to", older);
    const auto content = [&](const std::u16string& path) {
        return files_.Exists(path) ? ReadWhole(files_, path).value_or("unreadable") : "none";
    };
    std::unique_ptr<ByteSource> reader;
    const std::tuple<const char*, std::function<bool()>, std::string, std::string, bool> rows[] = {
        {"append to none", [&] { return files_.Append(from, bytes); }, bytes, older, true},
        {"open", [&] { return (reader = files_.Open(from)) != nullptr; }, bytes, older, true},
        {"append while it is read", [&] { return files_.Append(from, "tail"); }, bytes + "tail", older, true},
        {"copy over itself", [&] { return files_.Copy(from, from); }, bytes + "tail", older, false},
        {"copy over an older one", [&] { return files_.Copy(from, to); }, bytes + "tail", bytes + "tail", true},
        {"append to the copy", [&] { return files_.Append(to, "x"); }, bytes + "tail", bytes + "tailx", true},
        {"rename to nowhere", [&] { return files_.Rename(to, to + u"/no/to"); }, bytes + "tail", bytes + "tailx", false},
        {"rename over an older one", [&] { return files_.Rename(from, to); }, "none", bytes + "tail", true},
        {"rename none", [&] { return files_.Rename(from, to); }, "none", bytes + "tail", false},
        {"remove", [&] { return reader.reset(), files_.Remove(to), files_.Exists(to); }, "none", "none", false},
        {"remove none", [&] { return files_.Remove(to), files_.Exists(to); }, "none", "none", false}};
    for (const auto& [what, action, inFrom, inTo, succeeds] : rows) {
        SCOPED_TRACE(what);
        EXPECT_EQ(succeeds, action());
        EXPECT_TRUE(inFrom == content(from) && inTo == content(to));
    }
}

TEST_F(FilesTest, ANewFileGrowsWhileItIsReadAndNeverReplacesAnother) {
    const std::u16string path = test_.folder.File("n\xC3\xA4");
    const auto writer = files_.Create(path);
    ASSERT_TRUE(writer && writer->Write("a\n") && writer->Flush());
    EXPECT_EQ("a\n", test_.folder.Read("n\xC3\xA4"));
    EXPECT_TRUE(writer->Write(std::string(90000, 'b')) && writer->Write("c") && writer->Flush());
    EXPECT_EQ("a\n" + std::string(90000, 'b') + "c", test_.folder.Read("n\xC3\xA4"));
    for (const auto& taken : {path, test_.folder.Text(), test_.folder.File("missing/file"), std::u16string()})
        EXPECT_EQ(nullptr, files_.Create(taken)) << ::testing::PrintToString(taken);
}

TEST_F(FilesTest, ANewFileBesideAnotherHasANameOfItsOwn) {
    const std::u16string path = test_.folder.Write("a.xml", "old"), link = test_.folder.File("link");
    const auto first = files_.WriteBeside(path, "1", path), second = files_.WriteBeside(path, "2", path);
    EXPECT_NE(first, second);
    for (const auto& [file, bytes] : {std::pair(first, "1"), std::pair(second, "2")}) {
        EXPECT_TRUE(file.starts_with(path + u'.') && file.ends_with(u".new") && file.size() == path.size() + 11);
        EXPECT_EQ(bytes, testing::BytesOf(file));
    }
    EXPECT_EQ(u"", files_.WriteBeside(test_.folder.File("missing/a"), "1", path));
    std::error_code none;
    std::filesystem::create_symlink(std::filesystem::path(path), std::filesystem::path(link), none);
    if (!none) {
        EXPECT_TRUE(files_.Target(link).ends_with(path)) << ToUtf8(files_.Target(link));
        std::filesystem::create_symlink("link", test_.folder.Path() / "relative");
        EXPECT_TRUE(files_.Target(test_.folder.File("relative")).ends_with(path)) << ToUtf8(files_.Target(link));
    }
    EXPECT_EQ(path, files_.Target(path));
    EXPECT_EQ(test_.folder.File("none"), files_.Target(test_.folder.File("none")));
}

TEST_F(FilesTest, ALockIsForOneAtATime) {
    const std::u16string path = test_.folder.File("a.xml");
    auto lock = files_.Lock(path);
    ASSERT_NE(nullptr, lock);
    EXPECT_EQ(nullptr, files_.Lock(path));
    lock.reset();
    EXPECT_NE(nullptr, files_.Lock(path));
    EXPECT_TRUE(std::filesystem::is_empty(test_.folder.Path())) << "litter";
}

// Windows does not let it go meanwhile.
TEST_F(FilesTest, ANewFileKnowsWhetherItsNameLeadsToIt) {
    const auto path = test_.folder.File("one"), other = test_.folder.File("other");
    const auto first = files_.Create(path);
    EXPECT_TRUE(first->HasItsName());
    const bool renamed = files_.Rename(path, other);
    EXPECT_NE(renamed, first->HasItsName());
    const auto second = files_.Create(path);
    EXPECT_EQ(renamed, second != nullptr);
    EXPECT_NE(renamed, first->HasItsName()) << "the name of another";
    if (!second) return;
    files_.Remove(path);
    EXPECT_EQ(files_.Exists(path), second->HasItsName());
}

TEST_F(FilesTest, NoFolderAndNothingThatIsMissingIsAFile) {
    const std::u16string plain = test_.folder.Write("plain", "x");
    for (const auto& path : {test_.folder.Text(), test_.folder.File("missing/file"), std::u16string()}) {
        SCOPED_TRACE(::testing::PrintToString(path));
        EXPECT_EQ(nullptr, files_.Open(path));
        EXPECT_FALSE(files_.Append(path, "x") || files_.Copy(path, plain) || files_.Copy(plain, path));
    }
    EXPECT_EQ("x", test_.folder.Read("plain"));
    EXPECT_TRUE(files_.List(test_.folder.File("missing"), u"*").empty());
}

TEST_F(FilesTest, MakesOneLevelOfFolders) {
    const std::u16string one = test_.folder.File("one"), two = JoinPath(one, u"two");
    EXPECT_EQ(test_.folder.File("one/two"), two);
    files_.MakeFolder(two);
    EXPECT_FALSE(files_.Exists(one));
    for (const auto& folder : {one, two, one}) files_.MakeFolder(folder);
    EXPECT_TRUE(files_.Exists(two));
    EXPECT_EQ(test_.folder.File("ProgramData"), files_.ProgramDataFolder());
}

TEST_F(FilesTest, KnowsWhenAFileChanged) {
    const Clock& clock = test_.system->Core().clock;
    constexpr std::int64_t kCoarse = 20'000'000;  // 2 s: file systems round
    const std::int64_t before = clock.Ticks() - kCoarse;
    const auto changed = files_.ChangedAt(test_.folder.Write("x", ""));
    ASSERT_TRUE(changed);
    EXPECT_TRUE(before < *changed && *changed < clock.Ticks() + kCoarse) << *changed;
    EXPECT_EQ(std::nullopt, files_.ChangedAt(test_.folder.File("y")));
}

TEST_F(FilesTest, ListsTheFilesThatFitAPattern) {
    for (const char* name : {"J_vars06.d", "j_VARS7.D", "J_vars.d", "J_vars06.dx", "xJ_vars06.d", "[1].txt", "J_varsfolder.d/x"})
        test_.folder.Write("d/" + std::string(name), "");
    const std::pair<std::u16string_view, std::vector<std::u16string_view>> rows[] = {
        {u"J_vars*.d", {u"J_vars.d", u"J_vars06.d", u"j_VARS7.D"}},
        {u"J_vars?.d", {u"j_VARS7.D"}},
        {u"J_*6*.d", {u"J_vars06.d"}},
        {u"[1].txt", {u"[1].txt"}},
        {u"nothing*", {}}};
    for (const auto& [pattern, names] : rows) {
        auto files = files_.List(test_.folder.File("d"), pattern);
        std::ranges::sort(files);
        std::vector<std::u16string> expected;
        for (const auto& name : names) expected.push_back(JoinPath(test_.folder.File("d"), name));
        EXPECT_EQ(expected, files) << ::testing::PrintToString(pattern);
    }
}

}  // namespace
}  // namespace twr
