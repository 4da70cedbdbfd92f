#include "mapping/variable_file.h"
#include "support/fakes.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    twr::testing::FakeFiles files;
    files.files.push_back({u"/J_vars06.d", "[variables]\n" + std::string(reinterpret_cast<const char*>(data), size)});
    std::int32_t before = 0;
    for (const twr::MappingVar& row : twr::ParseVariableFile(files, u"/J_vars06.d", u"/copy").rows) {
        if (row.dfwId < before || row.dfwName.empty() || row.dfwName.size() > 15) __builtin_trap();
        before = row.dfwId;
    }
    return 0;
}
