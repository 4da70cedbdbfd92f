#include "halyrigctl/mapping_faults.h"

#include "core/record_access.h"
#include "halyrigctl/finding_words.h"
#include "halyrigctl/say.h"
#include "mapping/mapping_file.h"
#include "mapping/variable_file.h"
#include "platform/paths.h"

namespace twr {

std::string MappingFaults(const CoreServices& services, const CoreRecord& record, const BridgeStatus& bridge) {
    // Deckman's list is not copied if it is locked: only the bridge may write to the data folder.
    const DeckmanCatalogue variables = FindVariableFile(services.files, bridge.settings.dfwFolder, {});
    const std::u16string path = JoinPath(JoinPath(FieldText(record.dataFolder), u"instruments"), u"halyrig.xml");
    CollectedFindings faults;
    LoadMapping(services.xml, path, variables.rows, &faults);
    if (faults.found.empty()) return {};
    const std::size_t more = faults.found.size() - 1;
    const Finding& first = faults.found.front();
    return Harmless(path) + ":" + std::to_string(first.line) + ": " + Words(first) +
           (more ? ", and " + std::to_string(more) + (more == 1 ? " more fault" : " more faults") : "");
}

}  // namespace twr
