// Member tables: their lines, inheritance, and lookup by name.
#include "reflection/cClass.h"
#include "reflection/cClass_Walk.h"
#include "reflection/cXml.h"

#include <utility>

namespace trellis {

namespace {

/// Moves the one-shot modes into the record.
void TakeModes(cOneClassMemberStorage* member, bool hasData) {
    member->Static = std::exchange(cClass::StaticMode, 0);
    member->ReadOnly = std::exchange(cClass::ReadOnlyMode, 0);
    member->Invisible = std::exchange(cClass::InvisibleMode, 0);
    member->Simple = std::exchange(cClass::SimpleMode, 0);
    member->NoSave = std::exchange(cClass::NoSaveMode, 0);
    if (!hasData) {
        member->NoSave = 1;
    }
}

cOneClassMemberStorage* MakeMember(cClass* owner, cClass* elementClass, const char* name, void* extra,
                                   const char* hostClass, unsigned mask) {
    cOneClassStorage* storage = owner->GetClassStorage();
    if (!storage) {
        storage = TRELLIS_CGARB.CreateClassStorage(owner->GetClassName());
    }
    if (!storage) {
        delete elementClass; // the process is ending
        return nullptr;
    }
    cOneClassMemberStorage* member = storage->CreateMember(name);
    member->Class = elementClass;
    member->Extra = extra;
    member->HostClass = hostClass;
    member->Mask = mask;
    return member;
}

// A property has no address that could be static; its accessors get the object.
void TakePropertyModes(cOneClassMemberStorage* member, cClass* elementClass, const char* name) {
    if (cClass::StaticMode) {
        const char* className = elementClass->GetClassName();
        cClassPrintError("cClassMode_Static Not allowed for properties: <%s %s>", className ? className : "", name);
    }
    TakeModes(member, true);
}

} // namespace

void cClass::RegisterOneMember(cClass* elementClass, void* data, const char* name, void* extra, const char* hostClass,
                               bool autoFlag, unsigned mask) {
    cOneClassMemberStorage* member = MakeMember(this, elementClass, name, extra, hostClass, mask);
    if (!member) {
        return;
    }
    member->Auto = autoFlag;
    if (data) {
        member->Offset = reinterpret_cast<intptr_t>(data) - (StaticMode ? 0 : reinterpret_cast<intptr_t>(this));
    }
    TakeModes(member, data != nullptr);
}

void cClass::RegisterOneMemberIntProperty(cClass* elementClass, int (*get)(void*), void (*set)(void*, int),
                                          const char* name, void* extra, const char* hostClass, unsigned mask) {
    if (cOneClassMemberStorage* member = MakeMember(this, elementClass, name, extra, hostClass, mask)) {
        member->IntGetter = get;
        member->IntSetter = set;
        TakePropertyModes(member, elementClass, name);
    }
}

void cClass::RegisterOneMemberProperty(cClass* elementClass, void* (*get)(void*), void (*set)(void*, void*),
                                       const char* name, void* extra, const char* hostClass, unsigned mask) {
    if (cOneClassMemberStorage* member = MakeMember(this, elementClass, name, extra, hostClass, mask)) {
        member->PtrGetter = get;
        member->PtrSetter = set;
        TakePropertyModes(member, elementClass, name);
    }
}

cClass* cClass_GetClassFromPalette(const char* name) {
    const cOneClassStorage* storage = TRELLIS_CGARB.FindClass(name);
    return storage ? storage->Prototype : nullptr;
}

void cClass_RegClassBC(cClass* object, const char* label, const char* name, bool autoReg) {
    if (autoReg && name && std::strchr(name, '.')) {
        return;
    }
    cOneClassStorage* storage = cClassGarbage::IsClosing() ? nullptr : TRELLIS_CGARB.GetClass(name);
    if (!storage) {
        return;
    }
    if (!storage->Prototype) {
        storage->Prototype = object->new_element();
        if (!storage->Prototype) {
            return;
        }
    }
    if (storage->Members.IsEmpty()) {
        storage->Prototype->RegisterMembers();
    }
    if (label && storage->Label.IsEmpty()) {
        storage->Label = label;
    }
}

void cClass_RegBase(cClass* child, cClass* parent) {
    cOneClassStorage* of = child->GetClassStorage();
    cOneClassStorage* from = parent->GetClassStorage();
    if (!of || !from) {
        return;
    }
    if (!from->CheckChildren(child->GetClassName())) {
        from->Children.Add(child->GetClassName());
    }
    if (!of->CheckParent(parent->GetClassName())) {
        of->Parents.Add(parent->GetClassName());
    }
}

void cClass_RegParent(cClass* child, cClass* parent) {
    cClass_RegBase(child, parent);
    cOneClassStorage* of = child->GetClassStorage();
    const cOneClassStorage* from = parent->GetClassStorage();
    if (!of || !from) {
        return;
    }
    for (const cOneClassMemberStorage* inherited : from->Members) {
        cOneClassMemberStorage* member = of->CreateMember(inherited->Name.Text());
        member->Class = inherited->Class->new_element();
        member->Offset = inherited->Offset;
        member->Reserved = inherited->Reserved;
        member->ReadOnly = inherited->ReadOnly;
        member->Invisible = inherited->Invisible;
        member->Static = inherited->Static;
        member->NoSave = inherited->NoSave;
        member->Simple = inherited->Simple;
        member->Extra = inherited->Extra;
        member->IntGetter = inherited->IntGetter;
        member->PtrGetter = inherited->PtrGetter;
        member->IntSetter = inherited->IntSetter;
        member->PtrSetter = inherited->PtrSetter;
        member->HostClass = inherited->HostClass;
        member->Mask = inherited->Mask;
    }
}

cOneClassStorage* cClass::KnownStorage() {
    cOneClassStorage* storage = GetClassStorage();
    if (!storage) {
        const char* name = GetClassName();
        cClassPrintError("class not registered: \"%s\"", name ? name : "");
    }
    return storage;
}

cOneClassMemberStorage* cClass::GetElementStorage(const char* name) {
    const cOneClassStorage* storage = name ? KnownStorage() : nullptr;
    return storage ? storage->FindMember(name) : nullptr;
}

cOneClassMemberStorage* cClass::GetElementCMS(int i) {
    return Record(i);
}

const char* cClass::GetElementHostClass(const char* name) {
    const cOneClassMemberStorage* member = GetElementStorage(name);
    return member && member->HostClass ? member->HostClass : "";
}

const char* cClass::GetElementHostClass(int i) {
    const cOneClassMemberStorage* member = KnownStorage() ? Record(i) : nullptr;
    return member && member->HostClass ? member->HostClass : "";
}

bool cClass::HasParentClass(const char* name) {
    const cOneClassStorage* storage = name ? KnownStorage() : nullptr;
    for (int i = 0; storage && i < storage->Members.Count(); i++) {
        const char* host = storage->Members[i]->HostClass;
        if (host && cStr::Compare(host, name) == 0) {
            return true;
        }
    }
    return false;
}

bool cClass::GetElementByName(const char* name, cClass** elementClass, void** data, void** extra, void* object) {
    if (!name) {
        return false;
    }
    CurrentContext = this;
    const int made = ExpandWith(name, object);
    if (made != -1) {
        *elementClass = GetElementClass(made);
        *data = GetElementPtr(made, object);
        return true;
    }
    return FindElementByName(name, elementClass, data, extra, object);
}

bool cClass::FindElementByName(const char* name, cClass** elementClass, void** data, void** extra, void* object) {
    Walk::Found found;
    if (!name || !Walk(this, object).Find(name, &found)) {
        return false;
    }
    *elementClass = found.Class;
    *data = found.Ptr;
    *extra = found.Extra;
    return true;
}

cOneClassMemberInfo cClass::GetElementInfo(int i, void* data) {
    cClass* object = Target(data);
    cClass* elementClass = i >= 0 && i < object->GetAmountOfElements() ? object->GetElementClass(i) : nullptr;
    if (!elementClass) {
        return {};
    }
    void* element = object->GetElementPtr(i, data);
    cOneClassMemberStorage* member = object->GetElementCMS(i);
    if (member && member->IntGetter) { // out of the slot that the next walk overwrites
        static int s_Value;
        s_Value = *static_cast<int*>(element);
        element = &s_Value;
    }
    return {this, data, elementClass, element, object->GetElementExtraPtr(i), member};
}

cOneClassMemberInfo cClass::GetElementInfo(const char* name, void* data) {
    cClass* object = Target(data);
    Walk::Found found;
    if (!name || !object->KnownStorage() || !Walk(object, data).Find(name, &found)) {
        return {};
    }
    return GetElementInfo(found.Index, data);
}

cStr cClass::GetStringField(const char* name) {
    cClass* elementClass = nullptr;
    void* data = nullptr;
    void* extra = nullptr;
    // Not the expanding search: asking a list for a field must not make an element.
    if (!CheckDirectCasting() || !FindElementByName(name, &elementClass, &data, &extra, this) || !elementClass ||
        !data) {
        return {};
    }
    cXml node;
    elementClass->Save(node, data, extra);
    return node.GetBody();
}

int cClass::GetIntField(const char* name, int fallback) {
    int value;
    return cStr::ToInt(GetStringField(name), &value) ? value : fallback;
}

float cClass::GetFloatField(const char* name, float fallback) {
    float value;
    return cStr::ToFloat(GetStringField(name), &value) ? value : fallback;
}

} // namespace trellis
