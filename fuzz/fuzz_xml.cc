#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

#include "mapping/mapping_file.h"
#include "platform/system.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const auto system = twr::MakeSystem({});
    static const auto path = std::filesystem::temp_directory_path() / ("halyrig-fuzz-" + std::to_string(std::rand()) + ".xml");
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    std::vector<twr::MappingVar> catalogue(1);
    catalogue[0].dfwId = 1;
    catalogue[0].dfwName = u"BSP";
    for (const twr::MappingVar& row : twr::LoadMapping(system->Core().xml, path.u16string(), catalogue).varRows) {
        if (row.channel < 0 || row.channel > 413 || row.boat < 0 || row.boat > 99) __builtin_trap();
    }
    return 0;
}
