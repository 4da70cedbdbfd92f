// SPDX-License-Identifier: MIT
// What a power cut leaves: the system's flushes and renames are watched on their way, and made to fail, and the power is cut ahead
// of each and behind it. And what a thousand uses leave of a process's descriptors and mappings.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "base/wide_text.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

namespace fs = std::filesystem;

struct Watch {
    fs::path folder;
    std::string fails;               // the steps that begin so fail
    std::vector<std::string> steps;  // with paths below the folder, without what is random in a name

    // What the disk has for certain: the bytes of a file, and the names in a folder, as they were flushed last.
    std::map<ino_t, std::string> bytes;
    std::map<fs::path, ino_t> names;
    std::map<fs::path, std::set<std::string>> left;  // in a file, by a power cut at any step

    // All that is there has been flushed.
    Watch(const fs::path& in, const char* failing) : folder(in), fails(failing), names(NamesIn(in)) {
        for (const auto& [path, number] : names) Flushed(path);
    }
    static ino_t Number(const fs::path& path) {
        struct stat found {};
        return stat(path.c_str(), &found) == 0 ? found.st_ino : 0;
    }
    static std::map<fs::path, ino_t> NamesIn(const fs::path& in) {
        std::map<fs::path, ino_t> all;
        for (const auto& entry : fs::recursive_directory_iterator(in)) all[entry.path()] = Number(entry.path());
        return all;
    }
    void Flushed(const fs::path& path) {
        if (!fs::is_directory(path)) return void(bytes[Number(path)] = BytesOf(path));
        std::erase_if(names, [&](const auto& name) { return name.first.parent_path() == path; });
        for (const auto& entry : fs::directory_iterator(path)) names[entry.path()] = Number(entry.path());
    }
    // Names may be on the disk sooner, the bytes of a file that was never flushed are not.
    void CutPower() {
        for (const auto& onDisk : {names, NamesIn(folder)}) {
            for (auto& [path, contents] : left) {
                const auto name = onDisk.find(path);
                const auto kept = name == onDisk.end() ? bytes.end() : bytes.find(name->second);
                contents.insert(kept != bytes.end() ? kept->second : name == onDisk.end() || BytesOf(path).empty() ? "" : "lost");
            }
        }
    }
};
Watch* watch = nullptr;

bool Step(const char* what, const fs::path& path, const fs::path& to = {}) {
    if (!watch) return true;
    watch->CutPower();
    static const std::regex random("\\.[A-Za-z0-9]{6}(?=\\.new$|$)");
    const auto below = [](const fs::path& file) {
        return std::regex_replace(file.lexically_relative(watch->folder).string(), random, ".*");
    };
    watch->steps.push_back(std::string(what) + ' ' + below(path) + (to.empty() ? "" : ' ' + below(to)));
    return watch->fails.empty() || !watch->steps.back().starts_with(watch->fails);
}

int Flush(long call, int file) {
    const fs::path path = fs::read_symlink("/proc/self/fd/" + std::to_string(file));
    if (!Step("flush", path)) return errno = EIO, -1;
    const auto result = static_cast<int>(syscall(call, file));
    if (watch && result == 0) watch->Flushed(path), watch->CutPower();
    return result;
}

// Each name is on the disk only after the bytes behind it, and counts only after its folder is.
TEST(Durability, BytesAreFlushedBeforeTheirNameAndTheNameBeforeItCounts) {
    const TestSystem test;
    const CoreServices core = test.system->Core();
    const std::u16string a = test.folder.Write("a.xml", "old"), log = test.folder.File("log");
    test.folder.Write("config/registry.reg", "");
    std::unique_ptr<FileWriter> writer;
    const auto setting = [&] { return core.registry.Write(u"Software\\x", u"a", DwordValue(1)); };
    using Steps = std::vector<std::string>;
    const Steps saved = {"flush config/registry.reg.*", "rename config/registry.reg.* config/registry.reg", "flush config"};
    const std::tuple<const char*, std::function<bool()>, const char*, Steps> rows[] = {
        {"a new file", [&] { return (writer = core.files.Create(log)) != nullptr; }, "", {"flush ."}},
        {"more of it", [&] { return writer->Write("x") && writer->Flush(); }, "", {"flush log"}},
        {"on a bad disk", [&] { return !writer->Flush(); }, "flush", {"flush log"}},
        {"a file in another's place",
         [&] { return core.files.Rename(core.files.WriteBeside(a, "new", a), a); },
         "",
         {"flush a.xml.*.new", "rename a.xml.*.new a.xml", "flush ."}},
        {"beside, on a bad disk", [&] { return core.files.WriteBeside(a, "x", a).empty(); }, "flush", {"flush a.xml.*.new"}},
        {"settings on a bad disk", [&] { return !setting(); }, "flush config/r", {saved.begin(), saved.begin() + 1}},
        {"settings that get no name", [&] { return !setting(); }, "rename", {saved.begin(), saved.begin() + 2}},
        {"settings", setting, "", saved}};
    for (const auto& [what, work, fails, steps] : rows) {
        SCOPED_TRACE(what);
        Watch own(test.folder.Path(), fails);
        std::map<fs::path, std::string> before;
        for (const char* file : {"a.xml", "log", "config/registry.reg"})
            own.left[own.folder / file] = {before[own.folder / file] = BytesOf(own.folder / file)};
        watch = &own;
        ::testing::internal::CaptureStderr();
        EXPECT_TRUE(work());
        watch = nullptr;
        ::testing::internal::GetCapturedStderr();
        EXPECT_EQ(steps, own.steps);
        for (const auto& [path, old] : before) {
            const std::string now = BytesOf(path);
            own.left[path].insert(now);
            EXPECT_EQ((std::set<std::string>{old, now}), own.left[path]) << path << ", which a power cut would leave";
            EXPECT_EQ(now, own.bytes[own.names[path]]) << path << " afterwards";
        }
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
    if (!twr::testing::Step("rename", from, to)) return errno = EIO, -1;
    const int result = renameat(AT_FDCWD, from, AT_FDCWD, to);
    if (twr::testing::watch) twr::testing::watch->CutPower();
    return result;
}
