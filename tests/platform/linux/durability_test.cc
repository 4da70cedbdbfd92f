// SPDX-License-Identifier: MIT
// What a power cut leaves: the system's flushes and renames are watched on their way, and made to fail. And what a thousand uses
// leave of a process's descriptors and mappings.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "base/wide_text.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

namespace fs = std::filesystem;

struct Watch {
    fs::path folder;
    std::vector<std::string> steps = {};  // with paths below the folder, without what is random in a name
    std::string fails = {};               // the steps that begin so fail
};
Watch* watch = nullptr;

bool Step(const char* what, const fs::path& path, const fs::path& to = {}) {
    if (!watch) return true;
    static const std::regex random("\\.[A-Za-z0-9]{6}(?=\\.new$|$)");
    const auto below = [](const fs::path& file) {
        return std::regex_replace(file.lexically_relative(watch->folder).string(), random, ".*");
    };
    watch->steps.push_back(std::string(what) + ' ' + below(path) + (to.empty() ? "" : ' ' + below(to)));
    return watch->fails.empty() || !watch->steps.back().starts_with(watch->fails);
}

int Flush(long call, int file) {
    if (Step("flush", fs::read_symlink("/proc/self/fd/" + std::to_string(file)))) return static_cast<int>(syscall(call, file));
    errno = EIO;
    return -1;
}

// Each name is on the disk only after the bytes behind it, and counts only after its folder is.
TEST(Durability, BytesAreFlushedBeforeTheirNameAndTheNameBeforeItCounts) {
    const TestSystem test;
    const CoreServices core = test.system->Core();
    const std::u16string a = test.folder.Write("a.xml", "old"), log = test.folder.File("log");
    test.folder.Write("config/registry.reg", "");
    std::unique_ptr<FileWriter> writer;
    std::u16string fresh;
    const auto setting = [&] { return core.registry.Write(u"Software\\x", u"a", DwordValue(1)); };
    using Steps = std::vector<std::string>;
    const Steps saved = {"flush config/registry.reg.*", "rename config/registry.reg.* config/registry.reg", "flush config"};
    const std::tuple<const char*, std::function<bool()>, const char*, Steps> rows[] = {
        {"a new file", [&] { return (writer = core.files.Create(log)) != nullptr; }, "", {"flush ."}},
        {"more of it", [&] { return writer->Write("x") && writer->Flush(); }, "", {"flush log"}},
        {"on a bad disk", [&] { return !writer->Flush(); }, "flush", {"flush log"}},
        {"beside", [&] { return !(fresh = core.files.WriteBeside(a, "new", a)).empty(); }, "", {"flush a.xml.*.new"}},
        {"in its place", [&] { return core.files.Rename(fresh, a); }, "", {"rename a.xml.*.new a.xml", "flush ."}},
        {"beside, on a bad disk", [&] { return core.files.WriteBeside(a, "x", a).empty(); }, "flush", {"flush a.xml.*.new"}},
        {"settings on a bad disk", [&] { return !setting(); }, "flush config/r", {saved.begin(), saved.begin() + 1}},
        {"settings that get no name", [&] { return !setting(); }, "rename", {saved.begin(), saved.begin() + 2}},
        {"settings", setting, "", saved}};
    for (const auto& [what, work, fails, steps] : rows) {
        SCOPED_TRACE(what);
        Watch own{fs::path(test.folder.Path()), {}, fails};
        watch = &own;
        ::testing::internal::CaptureStderr();
        EXPECT_TRUE(work());
        watch = nullptr;
        ::testing::internal::GetCapturedStderr();
        EXPECT_EQ(steps, own.steps);
        EXPECT_EQ(1, std::distance(fs::directory_iterator(test.folder.Path() / "config"), {})) << "nothing is left beside it";
    }
    EXPECT_EQ("new", BytesOf(a));
}

// Descriptors, and mappings of files and shared memory.
std::pair<std::ptrdiff_t, int> Held() {
    int mapped = 0;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) mapped += line.find('/') != line.npos;
    return {std::distance(fs::directory_iterator("/proc/self/fd"), {}), mapped};
}

TEST(Leaks, AHundredOfEachLeaveNothing) {
    const TestSystem test;
    const CoreServices core = test.system->Core();
    const std::u16string file = test.folder.Write("a.xml", "<a/>");
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"a folder's list", [&] { core.files.List(test.folder.Text(), u"*"); }},
        {"a file read", [&] { core.files.Open(file); }},
        {"a copy", [&] { core.files.Copy(file, test.folder.File("copy")); }},
        {"a lock", [&] { core.files.Lock(file); }},
        {"a new file in another's place", [&] { core.files.Rename(core.files.WriteBeside(file, "<a/>", file), file); }},
        {"XML read", [&] { core.xml.OpenReader(file); }},
        {"XML written", [&] { core.xml.OpenWriter(test.folder.File("b.xml"))->Finish(); }},
        {"settings", [&, i = 0u]() mutable { core.registry.Write(u"x", u"a", DwordValue(++i)); }},
        {"a block and a guest", [&] { core.memory.CreateOrOpen(u"Leak", 5000), core.memory.OpenExisting(u"Leak", 5000); }},
        {"a block of another size", [&] { core.memory.CreateOrOpen(u"Leak", 5000), core.memory.OpenExisting(u"Leak", 1); }},
        {"the status and a look",
         [&] {
             const auto posted = test.system->GetStatusBoard().Post(u"Leak", 64);
             test.system->GetStatusBoard().See(u"Leak", 64);
         }},
        {"a look at the name", [&] { test.system->GetInstance().Look(u"Leak"); }},
        {"no library", [&] { test.system->GetLibraries().Load(file); }}};
    for (const auto& [what, work] : rows) {
        work();
        const auto before = Held();
        for (int time = 0; time < 100; ++time) work();
        EXPECT_EQ(before, Held()) << what;
    }
}

}  // namespace
}  // namespace twr::testing

// In place of the C library's, for this program.
extern "C" int fsync(int file) { return twr::testing::Flush(SYS_fsync, file); }
extern "C" int fdatasync(int file) { return twr::testing::Flush(SYS_fdatasync, file); }
extern "C" int rename(const char* from, const char* to) noexcept {
    if (twr::testing::Step("rename", from, to)) return renameat(AT_FDCWD, from, AT_FDCWD, to);
    errno = EIO;
    return -1;
}
