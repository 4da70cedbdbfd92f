#include "halyrigctl/watch/remotes.h"

#include "base/wide_text.h"
#include "displays/displays.h"
#include "halyrigctl/output/say.h"

namespace twr {

std::vector<RemoteLine> ReadRemotes(SharedMemory& memory, std::u16string_view dfwFolder) {
    const auto shown = [](const DisplayedText& text) { return Harmless(FromBytes(text.text)); };
    const DisplayReader displays(memory, Trimmed(dfwFolder));
    std::vector<RemoteLine> lines;
    for (int remote = 1; remote <= kRemoteCount; ++remote) {
        const DisplayedText value = displays.Value(remote);
        if (value.updates > 0) lines.push_back({remote, shown(value), shown(displays.Name(remote))});
    }
    return lines;
}

}  // namespace twr
