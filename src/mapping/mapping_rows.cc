#include "mapping/mapping_rows.h"

namespace twr {

void BindVariable(MappingVar& row, const MappingVar& variable) {
    row.dfwId = variable.dfwId;
    row.dfwName = variable.dfwName;
    row.dfwColumn3 = variable.dfwColumn3;
    row.dfwColumn4 = variable.dfwColumn4;
    row.dfwColumn6 = variable.dfwColumn6;
}

}  // namespace twr
