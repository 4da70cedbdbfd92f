#include "core/core.h"
#include "mapping/legacy_import.h"
#include "support/fakes.h"

// The files of commas: the alternates of a new record, and the two of the legacy import.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    twr::testing::FakeMachine machine;
    machine.files.files = {{u"/data/Tidewright/config/alternate.csv", bytes}, {u"/legacy.csv", bytes}};
    twr::CollectedFindings heard;
    twr::CoreServices services = machine.Services();
    services.findings = &heard;
    const twr::CCore core(services);
    for (const twr::AlternateRow& row : core.View()->alternates) {
        for (const std::int32_t slot : row.slot) {
            if (slot != twr::kNoInt && (slot < 1 || slot > 413)) __builtin_trap();
        }
    }
    std::vector<twr::MappingVar> catalogue(1);
    catalogue[0].dfwId = 1;
    twr::ImportLegacyVars(machine.files, u"/legacy.csv", catalogue, &heard);
    twr::ImportLegacyRemotes(machine.files, u"/legacy.csv", &heard);
    return 0;
}
