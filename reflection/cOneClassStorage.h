// What the palette keeps for a class name.
#pragma once

#include "reflection/cOneClassMemberStorage.h"

namespace trellis {

/// Born on the first lookup of its name, there until the process ends.
class cOneClassStorage {
public:
    cOneClassStorage() = default;
    cOneClassStorage(const cOneClassStorage&) = delete;
    cOneClassStorage& operator=(const cOneClassStorage&) = delete;

    /// Appends a record with a copy of the name; the rest of it is as constructed.
    cOneClassMemberStorage* CreateMember(const char* name);

    bool CheckChildren(const char* name) const { return CheckString(Children, name, true); }
    bool CheckParent(const char* name) const { return CheckString(Parents, name, true); }

    /// @param exact  false: the text occurs somewhere in an entry
    bool CheckAll(const char* text, bool parents, bool children, bool exact) const;
    static bool CheckString(const cList<cStr>& list, const char* text, bool exact);

    /// Position of the first record of that name, or -1.
    ///
    /// @param guess  where it is looked for first: files hold members in the order of the table
    int FindMember(const char* name, int length, int guess = 0) const;
    cOneClassMemberStorage* FindMember(const char* name) const; ///< The record itself, or null.

    /// Links the member objects of `object` to it as their parent: those in the object itself and static ones.
    /// Properties have no object in place and are left out.
    void LinkMemberObjects(cClass* object) const;

    int Reserved = -1;
    cClass* Prototype = nullptr; ///< Owned; null until the class is registered.
    cList<cOneClassMemberStorage*> Members;
    cList<cStr> Children; ///< Names of derived classes.
    cList<cStr> Parents;  ///< Names of base classes.
    cStr Label;           ///< Folder of the add menu.

private:
    friend class cClass;

    // Positions of the member objects, kept up as members come: every element count walks them, and a table of a
    // hundred values has two or three.
    mutable cList<int> m_ObjectMembers;
    mutable int m_Scanned = 0; // members that m_ObjectMembers has seen
};

} // namespace trellis
