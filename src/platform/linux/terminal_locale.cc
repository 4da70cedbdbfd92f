#include "platform/linux/terminal_locale.h"

#include <cstdlib>
#include <string_view>

namespace twr {
namespace {

// By the variables' own order of precedence.
std::string_view NamedLocale() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value) return value;
    }
    return {};
}

locale_t CharactersOfTheEnvironment() {
    const locale_t base = newlocale(LC_ALL_MASK, "C", nullptr);
    if (const locale_t own = newlocale(LC_CTYPE_MASK, "", base)) return own;
    // Named, but not installed here: what matters of it is the encoding.
    const std::string_view name = NamedLocale();
    if (name.find("UTF-8") == name.npos && name.find("utf8") == name.npos) return base;
    const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", base);
    return unicode ? unicode : base;
}

locale_t Shared() {
    static const locale_t shared = CharactersOfTheEnvironment();
    return shared;
}

}  // namespace

TerminalLocale::TerminalLocale() : before_(uselocale(Shared())) {}

TerminalLocale::~TerminalLocale() { uselocale(before_); }

}  // namespace twr
