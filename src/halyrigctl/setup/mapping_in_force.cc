#include "halyrigctl/setup/mapping_in_force.h"

#include "base/wide_text.h"
#include "core/record_access.h"
#include "halyrigctl/output/say.h"
#include "halyrigctl/setup/dry_run.h"
#include "platform/files.h"
#include "status/bridge_status.h"

namespace twr {
namespace {

// That of the record, or of the one that a start would make.
std::u16string DataFolder(const CoreServices& services, const CCore& core) {
    if (core.View()) {
        if (std::u16string folder = FieldText(core.View()->dataFolder); !folder.empty()) return folder;
    }
    return FieldText(DryRun(services).Record().dataFolder);
}

}  // namespace

MappingInForce FindMappingInForce(System& system, const CCore& core) {
    const CoreServices services = system.Core();
    MappingInForce inForce;
    const auto bridge = ReadBridgeStatus(system);
    inForce.bridgeRuns = bridge || LookForBridge(system).state == NameLook::kTaken;
    const Settings settings = bridge ? bridge->settings : ReadSettings(services.registry);
    inForce.dfwFolder = Trimmed(std::u16string_view(settings.dfwFolder));
    // Deckman's list is not copied if it is locked: only the bridge may write to the data folder.
    inForce.variables = FindVariableFile(services.files, inForce.dfwFolder, {}, &inForce.ofList);
    inForce.dataFolder = DataFolder(services, core);
    if (!inForce.dataFolder.empty()) inForce.path = JoinPath(InstrumentsFolder(inForce), u"halyrig.xml");
    return inForce;
}

std::string NoVariables(const MappingInForce& inForce) {
    return "there is no list of Deckman's variables in the Dfw folder, " + Harmless(inForce.dfwFolder) +
           "; in the dialog of " HALYRIG_PROGRAM " choose the folder in which Data has J_vars06.d";
}

std::u16string InstrumentsFolder(const MappingInForce& inForce) { return JoinPath(inForce.dataFolder, u"instruments"); }

}  // namespace twr
