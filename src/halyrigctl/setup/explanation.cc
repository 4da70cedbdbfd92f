// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/explanation.h"

#include "halyrigctl/output/cells.h"
#include "halyrigctl/setup/names.h"

namespace twr {

Explained ExplainChannel(CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances) {
    Explained one{channel, boat, ChannelInWords(core, channel, boat), NameForPeople(core, channel),
                  ValueChain(core, channel, boat, circumstances)};
    AddRemoteLinks(one.links, core, channel, boat, circumstances);
    return one;
}

std::string AsText(const Explained& one) {
    constexpr std::size_t kNameWidth = 12;
    const Fault& fault = one.links.Broken();
    std::string text = one.title + ": " + (fault ? fault.what : "all is well") + "\n";
    if (!fault.todo.empty()) text += "  " + Padded("to do", kNameWidth) + fault.todo + "\n";
    for (const Link& link : one.links.All()) {
        const char* mark = link.state == LinkState::kHolds ? "  " : link.state == LinkState::kBroken ? "x " : "- ";
        text += mark + Padded(std::string(WordFor(link.name)), kNameWidth) + link.says.what + "\n";
    }
    return text;
}

}  // namespace twr
