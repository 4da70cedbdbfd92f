// SPDX-License-Identifier: MIT
#include "platform/system.h"

#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <system_error>

#include "base/version.h"
#include "base/wide_text.h"
#include "platform/console.h"
#include "platform/files.h"
#include "platform/linux/services.h"
#include "platform/linux/standard_error.h"
#include "platform/linux/terminal/screen.h"

namespace twr {
namespace {

class BuiltExecutable final : public Executable {
public:
    std::optional<std::array<std::uint16_t, 4>> FileVersion() const override {
        unsigned major = 0, minor = 0, patch = 0;
        if (std::sscanf(HALYRIG_VERSION, "%u.%u.%u", &major, &minor, &patch) != 3) return std::nullopt;
        return std::array<std::uint16_t, 4>{static_cast<std::uint16_t>(major), static_cast<std::uint16_t>(minor),
                                            static_cast<std::uint16_t>(patch), 0};
    }
    std::vector<std::u16string> StandInFolders() const override {
        std::error_code unknown;
        const std::filesystem::path own = std::filesystem::read_symlink("/proc/self/exe", unknown).parent_path();
        return {FromUtf8(own.native()), u"/usr/lib/halyrig"};
    }
};

}  // namespace

const char16_t kPathSeparator = u'/';
const std::u16string_view kLibrarySuffix = u".so";
const std::string_view kLineEnd = "\n";

std::vector<std::string> Arguments(int argc, char** argv) {
    return argc > 0 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

bool AnswerArguments(int argc, char** argv) {
    if (!isatty(STDIN_FILENO) && !isatty(STDOUT_FILENO)) return false;
    for (const std::string& argument : Arguments(argc, argv)) {
        if (argument == "--version") return std::puts("halyrig32 " HALYRIG_VERSION), true;
        if (argument == "--help" || argument == "-h") {
            std::puts(
                "halyrig32 carries values from Deckman into the Tidewright suite, and back to Deckman's displays. It takes no "
                "options:\n"
                "at a terminal it shows its dialog, without one it runs silently until SIGTERM.\n"
                "'halyrigctl choose FOLDER', 'halyrigctl map suggest --apply' and 'halyrigctl check' set it up; see 'man "
                "halyrig32'.");
            return true;
        }
        TellUser(argument + " is no option and has no effect; see --help");
    }
    return false;
}

void PrepareProcess() {
    // Writes to a closed pipe or beyond the file size limit fail without ending the process.
    for (const int number : {SIGPIPE, SIGXFSZ}) signal(number, SIG_IGN);
}

std::unique_ptr<Desktop> MakeDesktop() {
    const bool atTerminal = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);
    return atTerminal && TerminalCanShowScreens() ? MakeTerminalDesktop() : MakeHeadlessDesktop();
}

std::unique_ptr<Executable> MakeExecutable() { return std::make_unique<BuiltExecutable>(); }

}  // namespace twr
