// Middle level of the material tree: materials under the first word of their names.
#pragma once

#include "mesh/cMaterial.h"
#include "reflection/cClassList.h"

namespace trellis {

class cMaterial_Group : public cClass {
    TRELLIS_CLASS(cMaterial_Group)

public:
    using cClass::ToString;
    cStr ToString() override { return GroupName; }

    cStr GroupName;
    cClassList<cMaterial> Materials;
};

} // namespace trellis
