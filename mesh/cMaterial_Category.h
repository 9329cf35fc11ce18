// Topmost level of the material tree, for order in the editor: names of materials leave the category out.
#pragma once

#include "mesh/cMaterial_Group.h"
#include "mesh/cMaterial_List.h"

namespace trellis {

class cMaterial_Category : public cClass {
    TRELLIS_CLASS(cMaterial_Category)

public:
    using cClass::ToString;
    cStr ToString() override { return CategoryName; }

    cStr CategoryName;
    cMaterial_List<cMaterial_Group> Groups;
};

} // namespace trellis
