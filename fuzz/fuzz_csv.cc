// SPDX-License-Identifier: MIT
#include "kept_core.h"
#include "mapping/legacy_import.h"

// The files of commas: the alternates of a new record, and the two of the legacy import.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static twr::testing::KeptCore kept;
    kept.Reset();
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    twr::testing::FakeFiles& files = kept.machine.files;
    files.files = {{u"/data/Tidewright/config/alternate.csv", bytes}, {u"/legacy.csv", bytes}};
    kept.core.LoadAlternatesFile();
    for (const twr::AlternateRow& row : kept.core.View()->alternates) {
        for (const std::int32_t slot : row.slot) {
            if (slot != twr::kNoInt && (slot < 1 || slot > 413)) __builtin_trap();
        }
    }
    std::vector<twr::DeckmanVariable> catalogue(1);
    catalogue[0].dfwId = 1;
    twr::ImportLegacyVars(files, u"/legacy.csv", catalogue, &kept.heard);
    twr::ImportLegacyRemotes(files, u"/legacy.csv", &kept.heard);
    return 0;
}
