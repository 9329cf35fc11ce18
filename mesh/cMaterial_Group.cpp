#include "mesh/cMaterial_Group.h"

namespace trellis {

void cMaterial_Group::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cStr>(GroupName, "GroupName");
    members.AddObject(Materials, "Materials");
}

} // namespace trellis
