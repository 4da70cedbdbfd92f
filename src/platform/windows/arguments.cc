#include "platform/arguments.h"

#include "base/wide_text.h"
#include "platform/windows/wide.h"
#include "platform/windows/win32.h"

namespace twr {

std::vector<std::string> Arguments(int, char**) {
    std::vector<std::string> arguments;
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; wide && i < count; ++i) arguments.push_back(ToUtf8(FromWide(wide[i])));
    LocalFree(wide);
    return arguments;
}

}  // namespace twr
