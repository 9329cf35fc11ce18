#include "mesh/cMaterial_Category.h"

namespace trellis {

void cMaterial_Category::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cStr>(CategoryName, "CategoryName");
    members.AddObject(Groups, "Groups");
}

} // namespace trellis
