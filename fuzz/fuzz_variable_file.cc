// SPDX-License-Identifier: MIT
#include "deckman/variable_file.h"
#include "support/fakes.h"

namespace {

void Check(const std::vector<twr::DeckmanVariable>& rows) {
    std::int32_t before = 0;
    for (const twr::DeckmanVariable& row : rows) {
        if (row.dfwId < before || row.dfwName.empty() || row.dfwName.size() > 15) __builtin_trap();
        before = row.dfwId;
    }
}

}  // namespace

// Deckman's list of variables, open and while Deckman holds it.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    twr::testing::FakeFiles files;
    files.files.push_back({u"/J_vars06.d", "[variables]\n" + std::string(reinterpret_cast<const char*>(data), size)});
    Check(twr::ParseVariableFile(files, u"/J_vars06.d", u"/copy").rows);
    files.files.front() = {u"/dfw/Data/J_vars07.d", std::string(reinterpret_cast<const char*>(data), size), true};
    Check(twr::FindVariableFile(files, u"/dfw", u"/copy").rows);
    return 0;
}
