#include "halyrigctl/finding_words.h"

#include "halyrigctl/say.h"

namespace twr {

std::string Words(const Finding& finding) {
    const std::string text = Harmless(finding.text);
    switch (finding.flaw) {
        case Flaw::kNotWellFormed:
            return "from column " + std::to_string(finding.column) + " on it is not XML, and nothing behind is read" +
                   (text.empty() ? "" : " (" + text + ")");
        case Flaw::kUnknownElement:
            return "there is no element " + text + ", only var and remote";
        case Flaw::kUnknownAttribute:
            return "there is no attribute " + text;
        case Flaw::kNotANumber:
            return text + " is not a number";
        case Flaw::kChannelMissing:
            return "it names no channel; give its number as twr";
        case Flaw::kNoSuchChannel:
            return "there is no channel " + text;
        case Flaw::kNoSuchBoat:
            return "there is no boat " + text;
        case Flaw::kVariableMissing:
            return "it names no variable of Deckman; give its name as dfw";
        case Flaw::kNoSuchVariable:
            return "Deckman's list has no variable " + text + "; capitals count";
        case Flaw::kRemoteMissing:
            return "it names no remote; give its number as remote";
        case Flaw::kNoSuchRemote:
            return "there is no remote " + text;
    }
    return {};
}

}  // namespace twr
