// SPDX-License-Identifier: MIT
#include "platform/linux/standard_error.h"

#include <errno.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

#include "base/wide_text.h"

namespace twr {
namespace {

bool waits = false;
std::string waiting;

void Tell(const std::string& line) {
    if (waits) {
        if (!waiting.ends_with(line)) waiting += line;
    } else {
        IgnoreBrokenPipes();
        std::fputs(line.c_str(), stderr);
    }
}

}  // namespace

void IgnoreBrokenPipes() { signal(SIGPIPE, SIG_IGN); }

void ShowOnStandardError(std::u16string_view text, std::u16string_view caption) {
    Tell(ToUtf8(caption) + ": " + ToUtf8(text) + '\n');
}

void TellUser(const std::string& text) { Tell(std::string(program_invocation_short_name) + ": " + text + '\n'); }

ToldLater::ToldLater() { waits = isatty(STDERR_FILENO); }

ToldLater::~ToldLater() {
    waits = false;
    std::fputs(std::exchange(waiting, {}).c_str(), stderr);
}

}  // namespace twr
