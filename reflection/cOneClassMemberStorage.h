// One line of a class's member table.
#pragma once

#include "foundation/cStr.h"

#include <cstdint>

namespace trellis {

class cClass;

/// Made by `cOneClassStorage::CreateMember`, filled by `cClass::RegisterOneMember` and its property forms.
class cOneClassMemberStorage {
public:
    cOneClassMemberStorage();
    ~cOneClassMemberStorage(); ///< Deletes `Class`.
    cOneClassMemberStorage(const cOneClassMemberStorage&) = delete;
    cOneClassMemberStorage& operator=(const cOneClassMemberStorage&) = delete;

    bool IsProperty() const { return IntGetter || PtrGetter; }
    bool HasAccessors() const { return IsProperty() || IntSetter || PtrSetter; }

    /// Where the member of an object stands; for a property, the object.
    void* Address(void* object) const {
        return Static ? reinterpret_cast<void*>(Offset) : static_cast<unsigned char*>(object) + Offset;
    }

    /// Where the member's value stands. A property that is read by value answers with the one static slot.
    void* Locate(void* object) const {
        return IntGetter ? Fetch(object) : PtrGetter ? PtrGetter(object) : Address(object);
    }

    /// Runs the setter, if there is one, on a value that has been written at `value`.
    void RunSetter(void* object, void* value) const;

    cClass* Class = nullptr; ///< Descriptor of the member's kind; an element of its own.
    cStr Name;               ///< The tag, and by default the label in an editor.
    intptr_t Offset = 0;     ///< Bytes from the object; the address of a static member; 0 for null data and properties.
    unsigned char Reserved = 0;
    unsigned char ReadOnly = 0;
    unsigned char Invisible = 0;
    unsigned char Static = 0;
    unsigned char NoSave = 0; ///< Always 1 for a member without data.
    unsigned char Simple = 0;
    void* Extra = nullptr; ///< For the kind: a range, a `cEnum`, a file filter.
    int (*IntGetter)(void* object) = nullptr;
    void* (*PtrGetter)(void* object) = nullptr;
    void (*IntSetter)(void* object, int value) = nullptr; ///< Called after the value has been written.
    void (*PtrSetter)(void* object, void* value) = nullptr;
    const char* HostClass = nullptr; ///< Class that declared the member.
    bool Auto = false;               ///< Registered through `cClass_RegAuto`.
    unsigned Mask = ~0u;             ///< Presentation masks the member belongs to, see `cClass::GetClassMask`.
    bool Shadowed = false;           ///< Another of the same name stands in front of it.

private:
    void* Fetch(void* object) const;
};

extern int num_cOneClassMemberStorage; ///< Records alive.

} // namespace trellis
