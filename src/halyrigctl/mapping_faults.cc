#include "halyrigctl/mapping_faults.h"

#include <vector>

#include "core/record_access.h"
#include "halyrigctl/say.h"
#include "mapping/mapping_file.h"
#include "mapping/variable_file.h"
#include "platform/paths.h"

namespace twr {
namespace {

class Collected : public Findings {
public:
    void Add(Finding finding) override { found.push_back(std::move(finding)); }

    std::vector<Finding> found;
};

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

}  // namespace

std::string MappingFaults(const CoreServices& services, const CoreRecord& record, const BridgeStatus& bridge) {
    // Deckman's list is not copied if it is locked: only the bridge may write to the data folder.
    const DeckmanCatalogue variables = FindVariableFile(services.files, bridge.settings.dfwFolder, {});
    const std::u16string path = JoinPath(JoinPath(FieldText(record.dataFolder), u"instruments"), u"halyrig.xml");
    Collected faults;
    LoadMapping(services.xml, path, variables.rows, &faults);
    if (faults.found.empty()) return {};
    const std::size_t more = faults.found.size() - 1;
    const Finding& first = faults.found.front();
    return Harmless(path) + ":" + std::to_string(first.line) + ": " + Words(first) +
           (more ? ", and " + std::to_string(more) + (more == 1 ? " more fault" : " more faults") : "");
}

}  // namespace twr
