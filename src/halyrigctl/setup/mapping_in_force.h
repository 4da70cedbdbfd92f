// Which files of the user's the bridge takes the mapping from: those of the running one, else those that it would choose at its
// start. Nothing is written.
#pragma once
#include <string>

#include "core/core.h"
#include "deckman/variable_file.h"

namespace twr {

struct MappingInForce {
    bool bridgeRuns = false;
    std::u16string dfwFolder;
    DeckmanCatalogue variables;  // without rows if that folder has none
    CollectedFindings ofList;    // what was passed over on the way to them
    std::u16string dataFolder;   // empty if it is unknown; it may not exist yet
    std::u16string path;         // of the mapping file; empty if the data folder is unknown
};

// The record's data folder is used if the core is attached.
MappingInForce FindMappingInForce(System& system, const CCore& core);

// What to do about a list of variables without rows.
std::string NoVariables(const MappingInForce& inForce);

// The folder of the mapping file.
std::u16string InstrumentsFolder(const MappingInForce& inForce);

}  // namespace twr
