#include "mesh/cMaterials.h"

#include "foundation/cImmortal.h"
#include "mesh/cMaterial_Bump.h"
#include "mesh/cMaterial_Decal.h"
#include "mesh/cMaterial_Interface.h"

#include <algorithm>
#include <typeinfo>

namespace trellis {

namespace {

cImmortal<cMaterials> s_Materials __attribute__((init_priority(400))); // ahead of globals that resolve names

template <class T> void Register() {
    T model;
    cClass_RegClass(&model, nullptr);
}

/// An element of a list as what the list is meant for, or null. A dynamic cast costs more than the comparison of a
/// name; the classes that elements are as a rule are recognised without one.
template <class T, class... Usual> const T* At(const cClassList<T>& list, int i) {
    const cClass* element = list.GetObject(i);
    if (!element) {
        return nullptr;
    }
    const std::type_info* type = &typeid(*element);
    return ((type == &typeid(Usual)) || ...) ? static_cast<const T*>(element) : dynamic_cast<const T*>(element);
}

const cMaterial_Category* At(const cMaterial_List<cMaterial_Category>& list, int i) {
    return At<cMaterial_Category, cMaterial_Category>(list, i);
}

const cMaterial_Group* At(const cMaterial_List<cMaterial_Group>& list, int i) {
    return At<cMaterial_Group, cMaterial_Group>(list, i);
}

const cMaterial* At(const cClassList<cMaterial>& list, int i) {
    return At<cMaterial, cMaterial_Bump, cMaterial_Decal, cMaterial_Interface>(list, i);
}

bool IsSeparator(char c) {
    return c == '.' || c == '_' || c == '/' || c == '\\';
}

char Fold(char c) {
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

/// A piece of a name, in place: names are resolved by the thousand.
struct Token {
    /// Takes the next one. @return false at the end
    bool Next() {
        for (Text += Length; IsSeparator(*Text); Text++) {
        }
        for (Length = 0; Text[Length] && !IsSeparator(Text[Length]); Length++) {
        }
        return Length > 0;
    }
    /// From the end: where names only have numbers of their own, that is where those stand.
    bool operator==(const cStr& name) const {
        if (name.Length() != Length) {
            return false;
        }
        int i = Length;
        for (const char* other = name.Text(); i > 0 && Fold(Text[i - 1]) == Fold(other[i - 1]); i--) {
        }
        return i == 0;
    }

    const char* Text;
    int Length = 0;
};

} // namespace

constinit cMaterials& g_Materials = s_Materials.Value;

void cMaterials::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    Register<cMaterial_Bump>(); // a list may meet them in a file, or be asked to make one, before any lives
    Register<cMaterial_Decal>();
    Register<cMaterial_Interface>();
    members.AddObject(Categories, "Categories");
}

void cMaterials::ListMaterials(cList<cStr>* names) const {
    names->Clear();
    for (int c = 0; c < Categories.Count(); c++) {
        const cMaterial_Category* category = At(Categories, c);
        for (int g = 0; category && g < category->Groups.Count(); g++) {
            const cMaterial_Group* group = At(category->Groups, g);
            for (int m = 0; group && m < group->Materials.Count(); m++) {
                if (const cMaterial* material = At(group->Materials, m)) {
                    names->Add(group->GroupName + "/" + material->MaterialName);
                }
            }
        }
    }
}

const cMaterial_Group* cMaterials::FindGroup(int id) const {
    int c, g, m;
    DecomposeID(id, &c, &g, &m);
    const cMaterial_Category* category = At(Categories, c);
    return category ? At(category->Groups, g) : nullptr;
}

const cMaterial* cMaterials::GetMaterial(int id) const {
    const cMaterial_Group* group = FindGroup(id);
    return group ? At(group->Materials, id >> 16) : nullptr;
}

int cMaterials::Find(const char* name) const {
    Token wantedGroup{name ? name : ""};
    if (!wantedGroup.Next()) {
        return -1;
    }
    Token wantedMaterial = wantedGroup;
    if (!wantedMaterial.Next()) {
        return -1;
    }
    for (int c = 0; c < std::min(Categories.Count(), MaxCategories); c++) {
        const cMaterial_Category* category = At(Categories, c);
        for (int g = 0; category && g < std::min(category->Groups.Count(), MaxGroups); g++) {
            const cMaterial_Group* group = At(category->Groups, g);
            if (!group || !(wantedGroup == group->GroupName)) {
                continue;
            }
            for (int m = 0; m < std::min(group->Materials.Count(), MaxMaterials); m++) {
                const cMaterial* material = At(group->Materials, m);
                if (material && wantedMaterial == material->MaterialName) {
                    return ComposeID(c, g, m);
                }
            }
        }
    }
    return -1;
}

int cMaterials::GetMaterialID(const char* name) {
    const int id = Find(name);
    if (id != -1) {
        GetMaterialMutable(id)->Create();
    }
    return id;
}

void cMaterials::RemoveMaterial(const char* name) {
    const int id = Find(name);
    if (id != -1) {
        const_cast<cMaterial_Group*>(FindGroup(id))->Materials.RemoveAt(id >> 16, 1);
    }
}

} // namespace trellis
