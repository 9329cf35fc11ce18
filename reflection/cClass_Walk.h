// The elements of one object, for the engine's own walks.
#pragma once

#include "reflection/cClass.h"

namespace trellis {

/// Registers the members and goes through the elements: straight over the member table where the class's elements are
/// that and nothing else, otherwise by the virtual functions. Indexes are below `Count()`, which is asked anew each
/// time, as resetting an element may change a list.
class cClass::Walk {
public:
    Walk(cClass* object, void* data) : m_Object(object), m_Data(data) {
        const cOneClassStorage* storage = object->GetClassStorage();
        const int before = storage ? storage->Members.Count() : 0;
        object->RegisterMembers();
        if (storage && object->HasPlainElements() && object->GetClassMask() == ~0u) {
            m_Table = storage;
            if (before != storage->Members.Count()) {
                storage->LinkMemberObjects(object); // the very first object, whose table has just been built
            }
        }
    }

    int Count() const { return m_Table ? m_Table->Members.Count() : m_Object->GetAmountOfElements(); }
    const char* ID(int i) const { return m_Table ? m_Table->Members[i]->Name.Text() : m_Object->GetElementID(i); }
    cClass* Class(int i) const { return m_Table ? m_Table->Members[i]->Class : m_Object->GetElementClass(i); }
    void* Extra(int i) const { return m_Table ? m_Table->Members[i]->Extra : m_Object->GetElementExtraPtr(i); }

    void* Ptr(int i) const {
        if (!m_Table) {
            return m_Object->GetElementPtr(i, m_Data);
        }
        CurrentContext = static_cast<cClass*>(m_Data);
        return m_Table->Members[i]->Locate(m_Data);
    }

    /// Null for elements without a record, as those of a list.
    const cOneClassMemberStorage* Record(int i) const {
        return m_Table ? m_Table->Members[i] : m_Object->GetElementCMS(i);
    }

    /// Calls f(class, address) for each element that has a value: a class, and an address other than the object's own,
    /// where buttons and headings stand.
    template <class F> void ForEach(F&& f) const {
        for (int i = 0; i < Count(); i++) {
            cClass* elementClass = Class(i);
            void* element = elementClass ? Ptr(i) : nullptr;
            if (element && element != m_Data) {
                f(elementClass, element);
            }
        }
    }

    /// What a lookup by name gives.
    struct Found {
        cClass* Class = nullptr;
        void* Ptr = nullptr;
        void* Extra = nullptr;
        int Index = -1;
    };

    /// As `cClass::GetElementByName`, and `guess` as for `cOneClassStorage::FindMember`.
    bool FindOrMake(const cStr& name, int guess, Found* found) const {
        return m_Table ? FindInTable(name.Text(), name.Length(), guess, found)
                       : m_Object->GetElementByName(name.Text(), &found->Class, &found->Ptr, &found->Extra, m_Data);
    }

    /// The same for a list that was empty before the load. Its elements all have names that it could make elements
    /// for, so a name that it cannot is not searched among them: a file of unknown tags would take quadratic time.
    bool Make(const cStr& name, Found* found) const {
        CurrentContext = m_Object;
        const int made = m_Object->ExpandWith(name.Text(), m_Data);
        if (made != -1) {
            *found = {m_Object->GetElementClass(made), m_Object->GetElementPtr(made, m_Data), nullptr, made};
        }
        return made != -1;
    }

    /// As `cClass::FindElementByName`.
    bool Find(const char* name, Found* found) const {
        CurrentContext = m_Object;
        if (m_Table) {
            return FindInTable(name, int(std::strlen(name)), 0, found);
        }
        for (int i = 0, count = Count(); i < count; i++) {
            if (std::strcmp(ID(i), name) == 0) {
                *found = {Class(i), Ptr(i), Extra(i), i};
                return true;
            }
        }
        return false;
    }

    const cOneClassStorage* Table() const { return m_Table; } ///< Null where the virtual functions answer.

private:
    bool FindInTable(const char* name, int length, int guess, Found* found) const {
        CurrentContext = m_Object;
        const int i = m_Table->FindMember(name, length, guess);
        if (i >= 0) {
            const cOneClassMemberStorage* member = m_Table->Members[i];
            CurrentContext = static_cast<cClass*>(m_Data);
            *found = {member->Class, member->Locate(m_Data), member->Extra, i};
        }
        return i >= 0;
    }

    cClass* m_Object;
    void* m_Data;
    const cOneClassStorage* m_Table = nullptr;
};

} // namespace trellis
