// A library crashes in a process of its own: what is left to read names it, and the process ends as by the crash alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "base/wide_text.h"
#include "platform/crash_line.h"
#include "platform/paths.h"
#include "support/child_process.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

const int inThisProgram = 0;

const Role crash("crash", [](const std::vector<std::string>& arguments) {
    const auto system = SystemOf(arguments);
    CrashReports& crashes = system->GetCrashReports();
    const std::u16string path = JoinPath(ModuleFolder(&inThisProgram), u"loadable" + std::u16string(kLibrarySuffix));
    const auto library = system->GetLibraries().Load(path);
    crashes.Prepare(JoinPath(JoinPath(FromUtf8(arguments[1]), u"log"), u"crash.log"), u"while it called it");
    crashes.Calling(arguments[3] == "called");
    return reinterpret_cast<int (*)(const char*)>(library->Find("Crash"))(arguments[2].c_str());
});

TEST(Crash, NamesTheLibraryInALineAndEndsAsItWould) {
    const TestSystem test;
    const std::string module = "loadable" + ToUtf8(kLibrarySuffix) + "+0x";
    // the status on Linux, by a signal, and on Windows
    const std::tuple<const char*, int, unsigned, const char*> rows[] = {{"access", 128 + 11, 0xC0000005, "0x10, in "},
                                                                        {"stack", 128 + 11, 0xC00000FD, " 0x"},
                                                                        {"instruction", 128 + 4, 0xC000001D, " 0x"}};
    std::string before;
    for (const auto& [how, status, exception, told] : rows) {
        SCOPED_TRACE(how);
        const bool called = how[0] == 's';
        auto arguments = test.Arguments();
        arguments.insert(arguments.end(), {how, called ? "called" : "not"});
        EXPECT_EQ(kLibrarySuffix == u".so" ? status : static_cast<int>(exception), StartRole("crash", arguments)->Wait());
        const std::string all = test.folder.Read("log/crash.log");
        ASSERT_TRUE(all.starts_with(before) && all.ends_with('\n')) << all;
        const std::string line = all.substr(before.size());
        EXPECT_TRUE(line.starts_with("20") && std::ranges::count(line, '\n') == 1) << line;
        EXPECT_TRUE(line.find(told) != line.npos && line.find(module) != line.npos) << line;
        EXPECT_EQ(called, line.find("while it called it") != line.npos) << line;
        before = all;
    }
}

TEST(CrashLine, IsOneLineOfTextWhateverThePath) {
    const std::string path = "/a\nb\033[2J/" + std::string(5000, 'x');
    const CrashLine line({.seconds = 4102444799, .what = "SIGBUS", .data = 0, .module = path, .offset = 1, .calling = "late"});
    const std::string_view text = line.Text();
    EXPECT_TRUE(text.starts_with("2099-12-31 23:59:59 UTC : Halyrig has crashed by SIGBUS at address 0x0, in /a?b?[2J/x")) << text;
    EXPECT_TRUE(text.ends_with("xx" + std::string(kLineEnd)) && std::ranges::count(text, '\n') == 1) << text;
}

}  // namespace
}  // namespace twr::testing
