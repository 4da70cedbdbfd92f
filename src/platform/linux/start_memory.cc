#include "platform/linux/start_memory.h"

#include <sys/mman.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace twr {
namespace {

struct Mapping {
    unsigned long begin, end;
    bool unchanged;  // it holds what a file does, and nothing else
};

// From lines like "7f1200001000-7f1200002000 r-xp 00001000 08:01 1234    /usr/lib/x.so", each with more lines about it below.
std::vector<Mapping> Mappings() {
    std::vector<Mapping> mappings;
    std::ifstream smaps("/proc/self/smaps");
    bool readOnly = false;
    for (std::string line; std::getline(smaps, line);) {
        unsigned long begin = 0, end = 0, file = 0, changed = 0;  // changed in KiB
        char rights[5];
        if (std::sscanf(line.c_str(), "%lx-%lx %4s %*s %*s %lu", &begin, &end, rights, &file) == 4) {
            mappings.push_back({begin, end, false});
            readOnly = rights[1] == '-' && rights[3] == 'p' && file != 0;
        } else if (std::sscanf(line.c_str(), "Anonymous: %lu", &changed) == 1) {
            // Changed are such as where the linker has filled in addresses before it made the pages read-only.
            mappings.back().unchanged = readOnly && changed == 0;
        } else if (std::sscanf(line.c_str(), "Swap: %lu", &changed) == 1) {
            mappings.back().unchanged = mappings.back().unchanged && changed == 0;
        }
    }
    return mappings;
}

}  // namespace

void GiveBackStartMemory() {
    for (const auto& [begin, end, unchanged] : Mappings()) {
        if (unchanged) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_DONTNEED);
    }
}

}  // namespace twr
