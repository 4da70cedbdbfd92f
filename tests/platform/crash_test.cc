// SPDX-License-Identifier: MIT
// A library crashes in a process of its own: what is left to read names it, and the process ends as by the crash alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "base/wide_text.h"
#include "platform/crash_line.h"
#include "platform/files.h"
#include "support/child_process.h"
#include "support/scripted_dialog.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

const int inThisProgram = 0;
std::u16string Loadable() { return JoinPath(ModuleFolder(&inThisProgram), u"loadable" + std::u16string(kLibrarySuffix)); }

const Role crash("crash", [](const std::vector<std::string>& arguments) {
    const auto system = SystemOf(arguments);
    CrashReports& crashes = system->GetCrashReports();
    const auto library = system->GetLibraries().Load(Loadable());
    crashes.Prepare(JoinPath(JoinPath(FromUtf8(arguments[1]), u"log"), u"crash.log"), u"while it called it");
    const auto call = [&] {
        crashes.Calling(true);
        reinterpret_cast<int (*)(const char*)>(library->Find("Crash"))(arguments[2].c_str());
        crashes.Calling(false);
    };
    if (arguments[2] != "close") return call(), 0;
    ScriptedDialog dialog;  // what the library has closed shows itself while it waits for the next tick
    dialog.onInit = [&] {
        call();
        dialog.window->StartTimer(1, 1);
    };
    dialog.onTimer = [&] { dialog.window->End(DialogResult::kOk); };
    system->Core().desktop.RunDialog({1, u"Test", 0, 0, {}}, dialog);
    return 0;
});

TEST(Crash, NamesTheLibraryInALineAndEndsAsItWouldButNeverAsIfAllWereWell) {
    const TestSystem test;
    const std::string module = "loadable" + ToUtf8(kLibrarySuffix) + "+0x";
    const bool linux = kLibrarySuffix == u".so";
    // the status on Linux, by a signal, and on Windows; 0 for what that has not
    const std::tuple<const char*, int, unsigned, const char*, bool> rows[] = {
        {"access", 128 + 11, 0xC0000005, "0x10, in ", true},
        {"stack", 128 + 11, 0xC00000FD, " at address 0x", true},
        {"stack of a thread", 128 + 11, 0, "SIGSEGV at address 0x", true},
        {"instruction", 128 + 4, 0xC000001D, " 0x", true},
        {"abort", 128 + 6, 3, linux ? "crashed by SIGABRT, in " : "crashed by abort, while", false},
        {"raise", 128 + 5, 0, "crashed by SIGTRAP, in ", false},
        {"exit", 1, 1, "ended by a call of exit, while", false},
        {"quick_exit", 1, 0, "ended by a call of quick_exit, while", false},
        {"_exit", 1, 0, "ended by a call of _exit, in ", true},
        {"pthread_exit", 1, 0, "ended by a call of pthread_exit, in ", true},
        {"close", 1, 0, "ended by the closing of its descriptors, while", false}};
    std::string before;
    for (const auto& [how, status, exception, told, placed] : rows) {
        SCOPED_TRACE(how);
        if (!linux && exception == 0) continue;
        auto arguments = test.Arguments();
        arguments.push_back(how);
        EXPECT_EQ(linux ? status : static_cast<int>(exception), StartRole("crash", arguments)->Wait());
        const std::string all = test.folder.Read("log/crash.log");
        ASSERT_TRUE(all.starts_with(before) && all.ends_with('\n')) << all;
        const std::string line = all.substr(before.size());
        EXPECT_TRUE(line.starts_with("20") && std::ranges::count(line, '\n') == 1) << line;
        EXPECT_TRUE(line.find(told) != line.npos && line.find(", while it called it") != line.npos) << line;
        EXPECT_EQ(placed, line.find(module) != line.npos) << line;
        if (placed) {
            const long long offset = std::stoll(line.substr(line.find(module) + module.size()), nullptr, 16);
            EXPECT_GT(1 << 20, offset) << line << "no address";
        }
        before = all;
    }
}

const Role runsOn("runs on", [](const std::vector<std::string>& arguments) {
    static std::atomic<int> steps = 0;
    const auto system = SystemOf(arguments);
    auto library = system->GetLibraries().Load(Loadable());
    system->GetCrashReports().Prepare(JoinPath(FromUtf8(arguments[1]), u"crash.log"), u"");
    reinterpret_cast<void (*)(std::atomic<int>*)>(library->Find("RunOn"))(&steps);
    while (steps == 0) std::this_thread::yield();
    library.reset();
    for (const int released = steps; steps - released < 1000;) std::this_thread::yield();
    return 0;
});

TEST(Crash, ComesOfNoReleaseOfALibraryWithAThreadOnLinuxAndNamesItOnWindows) {
    const TestSystem test;
    const bool linux = kLibrarySuffix == u".so";
    EXPECT_EQ(linux ? 0 : static_cast<int>(0xC0000005), StartRole("runs on", test.Arguments())->Wait());
    const std::string line = test.folder.Read("crash.log");
    EXPECT_EQ(linux, line.empty()) << line;
    EXPECT_TRUE(linux || (line.find("loadable.dll+0x") != line.npos && line.find("had been unloaded") != line.npos)) << line;
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
