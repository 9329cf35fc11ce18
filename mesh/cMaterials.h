// All materials of an application, and the numbers by which meshes refer to them.
//
//     categories -> groups -> materials          "group/material" names the first of that name in tree order
//     id: material << 16 | group << 8 | category, each an index in the list above it; -1: none
#pragma once

#include "mesh/cMaterial_Category.h"

namespace trellis {

/// An id holds while nothing is added, moved or removed in front of its material. It has room for `MaxCategories`,
/// `MaxGroups` in each and `MaxMaterials` in each of these; what lies beyond has no id. Elements of other classes,
/// which files may bring, are passed over. All of it belongs to the main thread.
class cMaterials : public cClass {
    TRELLIS_CLASS(cMaterials)

public:
    void ListMaterials(cList<cStr>* names) const; ///< As "group/material", in tree order.

    // Null for -1 and whatever else is no material's id.
    const cMaterial* GetMaterial(int id) const;
    cMaterial* GetMaterialMutable(int id) { return const_cast<cMaterial*>(GetMaterial(id)); }

    /// Finds a material and creates its textures: those that no mesh names cost no memory.
    ///
    /// @param name  a group and a material, any of "._/\" between them; case does not count, nor does what follows a
    ///              further separator
    /// @return -1 for a name of less than two words, and for one that is not there
    int GetMaterialID(const char* name);
    void RemoveMaterial(const char* name); ///< Finds it in the same way. Later ones of its group move up.

    static constexpr int ComposeID(int category, int group, int material) {
        return int(unsigned(category) + (unsigned(group) << 8) + (unsigned(material) << 16));
    }
    /// -1 gives 255, 255, -1: callers check for it first.
    static constexpr void DecomposeID(int id, int* category, int* group, int* material) {
        *category = id & 0xFF;
        *group = id >> 8 & 0xFF;
        *material = id >> 16;
    }

    static constexpr int MaxCategories = 256;
    static constexpr int MaxGroups = 256;
    static constexpr int MaxMaterials = 1 << 15; ///< In a group: ids are not negative.

    cMaterial_List<cMaterial_Category> Categories;

private:
    const cMaterial_Group* FindGroup(int id) const;
    int Find(const char* name) const;
};

extern cMaterials& g_Materials; ///< Built at start-up, and there to the end of the process.

} // namespace trellis
