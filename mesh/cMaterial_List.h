// List of an object class that can itself be added in the editor.
#pragma once

#include "reflection/cClassList.h"

namespace trellis {

/// Of categories and of groups, which nothing is derived from: a plain list would offer nothing to add.
template <class T> class cMaterial_List : public cClassList<T> {
public:
    int GetExpansionRules() override { return cClass::ExpandWithBase | cClass::ExpandWithDerived; }
    cClass* new_element() override { return new cMaterial_List; }
};

} // namespace trellis
