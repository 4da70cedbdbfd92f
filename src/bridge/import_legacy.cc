// SPDX-License-Identifier: MIT
// The Import button: takes over the mapping of an older installation and writes it to the mapping file.
#include "bridge/controls.h"
#include "bridge/main_dialog.h"
#include "mapping/legacy_import.h"
#include "mapping/mapping_file.h"

namespace twr {

// Ticks go on while a box is open, so a pass may use the mapping as it is at that moment.
void CHalyrig32Dlg::OnImportLegacy() {
    const BoxAnswer answer =
        services_.desktop.ShowBox(u"Import legacy Halyrig mappings?", kProgramName, BoxButtons::kYesNo, BoxIcon::kQuestion);
    if (answer != BoxAnswer::kYes) return;
    if (ImportLegacyVars()) {
        ImportLegacyRemotes();
        NoteMapping();
        SaveMapping(services_.files, services_.xml, MappingPath(), mapping_);
        return;
    }
    services_.desktop.ShowBox(u"Unable to import legacy mappings.\n\nAttempting to load halyrig.xml.", kProgramName,
                              BoxButtons::kOk, BoxIcon::kNone);
    FindVariableFile();
    LoadMapping();
}

bool CHalyrig32Dlg::ImportLegacyVars() {
    const std::u16string path = core_.GetDataFile(u"halyrig", u"halyrig.csv");
    mapping_.varRows.clear();
    FindVariableFile();  // so that the import uses Deckman's current files
    auto rows = twr::ImportLegacyVars(services_.files, path, catalogue_.rows, services_.findings);
    if (rows) mapping_.varRows = std::move(*rows);
    return rows.has_value();
}

void CHalyrig32Dlg::ImportLegacyRemotes() {
    mapping_.remoteRows =
        twr::ImportLegacyRemotes(services_.files, core_.GetDataFile(u"halyrig", u"halyrigremotes.csv"), services_.findings);
}

}  // namespace twr
