// What characters the terminal takes. The process itself keeps the C locale: only this thread, and only for the life of a
// TerminalLocale, tells characters apart as the user's environment says, so that numbers and names of months stay as they are.
#pragma once
#include <locale.h>

namespace twr {

class TerminalLocale {
public:
    TerminalLocale();
    ~TerminalLocale();
    TerminalLocale(const TerminalLocale&) = delete;
    TerminalLocale& operator=(const TerminalLocale&) = delete;

private:
    const locale_t before_;
};

}  // namespace twr
