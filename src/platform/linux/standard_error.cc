#include "platform/linux/standard_error.h"

#include <signal.h>

#include <cstdio>

#include "base/wide_text.h"

namespace twr {

void IgnoreBrokenPipes() { signal(SIGPIPE, SIG_IGN); }

void ShowOnStandardError(std::u16string_view text, std::u16string_view caption) {
    IgnoreBrokenPipes();
    std::fprintf(stderr, "%s: %s\n", ToUtf8(caption).c_str(), ToUtf8(text).c_str());
}

}  // namespace twr
