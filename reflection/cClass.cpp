// Life, elements and tree of a reflected object.
#include "reflection/cClass.h"

#include "editor/cClassExplorer.h"
#include "foundation/cLog.h"
#include "reflection/cClass_Walk.h"
#include "reflection/cErrorPager.h"
#include "reflection/cXml.h"

namespace trellis {

constinit bool cClassList_CtorNoClear = false;
constinit bool cClassPtr_CtorNoClear = false;

void cClassPrintError(const char* format, ...) {
    va_list args;
    va_start(args, format);
    const cStr message = cStr::Formatv(format, args);
    va_end(args);
    cLog::Warning("--------------------------------------------------\r\nClass engine warning!\r\n%s\r\n",
                  message.Text());
}

namespace {

const char* OrEmpty(const char* text) {
    return text ? text : "";
}

void ReportUndefined(cClass* object) {
    cClassPrintError("Undefined class found: \"%s\"\n", OrEmpty(object->GetClassName()));
}

} // namespace

cClass* cClass::Target(void* data) {
    return data && CheckDirectCasting() ? static_cast<cClass*>(data) : this;
}

void cClass::CallCtor(void* data) {
    cClassExplorer::Init();
    if (!CheckDirectCasting()) {
        return;
    }
    auto* object = static_cast<cClass*>(data);
    Walk(object, data).ForEach([](cClass* elementClass, void* element) { elementClass->CallCtor(element); });
    object->CustomCtor();
}

void cClass::CallDtor(void* data) {
    if (!CheckDirectCasting()) {
        return;
    }
    auto* object = static_cast<cClass*>(data);
    object->CustomDtor();
    if (cClassGarbage::IsClosed()) {
        return; // the tables are going or gone; the members' own destructors do the rest
    }
    Walk(object, data).ForEach([](cClass* elementClass, void* element) { elementClass->CallDtor(element); });
}

int cClass::GetRealMaskedPosition(int i) {
    if (i > 0xFFFFFF) {
        return i - RawIndex;
    }
    const unsigned mask = GetClassMask();
    if (mask == ~0u) {
        return i;
    }
    const cOneClassStorage* storage = GetClassStorage();
    if (!storage) {
        ReportUndefined(this);
        return 0;
    }
    for (int raw = 0, shown = 0; raw < storage->Members.Count(); raw++) {
        if ((storage->Members[raw]->Mask & mask) && shown++ == i) {
            return raw;
        }
    }
    return 0;
}

/// The record behind an element index; null, and a warning for a class without a storage.
cOneClassMemberStorage* cClass::Record(int i) {
    const cOneClassStorage* storage = GetClassStorage();
    if (!storage) {
        ReportUndefined(this);
        return nullptr;
    }
    const int raw = GetRealMaskedPosition(i);
    return raw >= 0 && raw < storage->Members.Count() ? storage->Members[raw] : nullptr;
}

int cClass::GetAmountOfElements() {
    RegisterMembers();
    const cOneClassStorage* storage = GetClassStorage();
    if (!storage) {
        ReportUndefined(this);
        return 0;
    }
    const unsigned mask = GetClassMask();
    if (mask == ~0u) {
        return storage->Members.Count();
    }
    int count = 0;
    for (const cOneClassMemberStorage* member : storage->Members) {
        count += (member->Mask & mask) != 0;
    }
    return count;
}

const char* cClass::GetElementID(int i) {
    const cOneClassMemberStorage* member = Record(i);
    return member ? member->Name.Text() : "";
}

const char* cClass::GetElementView(int i, const char* context) {
    if (CheckDirectCasting() && i >= 0 && i < GetAmountOfElements()) {
        cClass* elementClass = GetElementClass(i);
        CurrentContext = elementClass;
        if (elementClass && elementClass->CheckDirectCasting()) {
            if (const char* view = elementClass->GetThisElementView(context)) {
                return view;
            }
        }
    }
    return GetElementID(i);
}

const char* cClass::GetThisElementView(const char*) {
    return nullptr;
}

cClass* cClass::GetElementClass(int i) {
    const cOneClassMemberStorage* member = Record(i);
    return member ? member->Class : nullptr;
}

void* cClass::GetElementPtr(int i, void* data) {
    if (CheckDirectCasting()) {
        CurrentContext = static_cast<cClass*>(data);
    }
    const cOneClassMemberStorage* member = Record(i);
    if (!member) {
        return nullptr;
    }
    return member->Locate(data);
}

void* cClass::GetElementExtraPtr(int i) {
    const cOneClassMemberStorage* member = Record(i);
    return member ? member->Extra : nullptr;
}

void cClass::RemoveAt(int, int) {}
int cClass::Add(cClass*) {
    return -1;
}
int cClass::ExpandWith(const char*, void*) {
    return -1;
}
int cClass::IndexOf(const void*) {
    return -1;
}

bool cClass::ForceProperty() {
    return CheckDirectCasting() && m_Parent && m_Parent != this && GetRoot() && m_Parent->ForceProperty();
}

bool cClass::MoveElement(int, char) {
    return false;
}
bool cClass::AskParentForUsingExpansionClass(const char*, const char*) {
    return true;
}
void cClass::call(void*, void*) {}
void cClass::SetSectionStatus(int) {}
void cClass::SetObjectGlobalID(unsigned) {}
bool cClass::CompatibleWith(const char*, int) {
    return true;
}
bool cClass::IsEnabled(const char*) {
    return true;
}
bool cClass::IsReadOnly(const char*) {
    return false;
}
bool cClass::OnChangeMember(cClass*, void*, void*, const char*) {
    return false;
}
void cClass::SetEnumName(const char*) {}

void cClass::SetParent(cClass* parent) {
    m_Parent = parent;
    const cOneClassStorage* storage = GetClassStorage();
    if (storage && storage->Prototype) {
        storage->LinkMemberObjects(this);
    }
}

int cClass::GetClassPresentationMask(cStr& out, void* data, void* extra, const char* view, unsigned) {
    if (view && cStr::Compare(view, "value") == 0) {
        cXml node;
        Save(node, data, extra);
        out = node.GetBody();
    }
    return 0;
}

cStr cClass::ToString(bool* full) {
    *full = false;
    return ToString();
}

cOneClassStorage* cClass::GetClassStorage() {
    return TRELLIS_CGARB.GetClass(GetClassName()); // not cached: classes without a storage of their own share this
}

bool cClass::FullCopy(void* src, void* srcExtra, cClass* dstClass, void* dst, void* dstExtra,
                      cClassCopyContext* context) {
    if (src == dst) {
        return true;
    }
    const cOneClassStorage* storage = GetClassStorage();
    if (!CheckDirectCasting() || !storage || storage->Members.IsEmpty()) {
        cXml text; // no table to walk: a value without an operation of its own goes through its text
        Save(text, src, srcExtra);
        cErrorPager silent;
        return dstClass->Load(text, dst, &silent, dstExtra);
    }
    for (int i = 0; i < storage->Members.Count(); i++) {
        const cOneClassMemberStorage* member = storage->Members[i];
        cClass* toClass = nullptr;
        void* to = nullptr;
        void* toExtra = nullptr;
        if (!(member->Mask & GetClassMask()) ||
            !dstClass->GetElementByName(member->Name.Text(), &toClass, &to, &toExtra, dst)) {
            continue;
        }
        // The destination was asked first: for a property read by value both addresses are the one slot, which now
        // holds the source's value, ready for the setter.
        void* from = GetElementPtr(i + RawIndex, src);
        if (!to || to == dst) {
            continue; // nothing behind it, or a button
        }
        if (from && from != to && toClass && member->Class) {
            cClass* fromClass = member->Class->Target(from);
            toClass = toClass->Target(to);
            if (cStr::Compare(OrEmpty(fromClass->GetClassName()), OrEmpty(toClass->GetClassName())) == 0) {
                fromClass->FullCopy(from, member->Extra, toClass, to, toExtra, context);
            }
        }
        // The destination's setter, as its class may be another. An int's gets the descriptor and a pointer's the
        // data, which for an object are the same.
        if (const cOneClassMemberStorage* target = dstClass->GetElementStorage(member->Name.Text())) {
            target->RunSetter(target->IntSetter ? static_cast<void*>(dstClass) : dst, to);
        }
    }
    return true;
}

cClass* cClass::Clone() {
    cClass* copy = new_element();
    if (copy && CheckDirectCasting()) { // a kind has nothing of its own to copy
        FullCopy(this, nullptr, copy, copy, nullptr, nullptr);
    }
    return copy;
}

cClass* cClass::GetRoot() {
    cClass* root = m_Parent;
    const cClass* behind = this; // at half the pace: in a ring the two meet
    for (bool isOdd = false; root && root->m_Parent && root->m_Parent != root; isOdd = !isOdd) {
        root = root->m_Parent;
        if (root == behind) {
            return nullptr;
        }
        behind = isOdd ? behind->m_Parent : behind;
    }
    return root;
}

cClass* cClass::GetParent(int n) {
    cClass* parent = m_Parent;
    for (; n > 1 && parent; n--) {
        parent = parent->m_Parent;
    }
    return parent;
}

int cClass::IndexOfThis() {
    return m_Parent ? m_Parent->IndexOf(this) : -1;
}

bool cClass::IsListName(const char* className) {
    return className && className[0] == 'c' && cStr::Compare(className, "cClassList.", 11) == 0;
}

bool cClass::IsPointerName(const char* className) {
    return className && className[0] == 'c' && cStr::Compare(className, "cClassPtr.", 10) == 0;
}

bool cClass::ContainsMember(cClass* member) {
    return cClass_ContainsMember(this, this, member);
}

bool cClass_ContainsMember(cClass* objectClass, void* data, cClass* member) {
    const int count = objectClass->GetAmountOfEditableElements(data, cClass::ShowProperties | cClass::ShowNodes);
    for (int i = 0; i < count; i++) {
        if (objectClass->CheckIfElementInvisible(i, data, cClass::ShowAll)) {
            continue;
        }
        cClass* elementClass = objectClass->GetEditableElementClass(i, data, cClass::ShowAll);
        void* element = objectClass->GetEditableElementData(i, data, cClass::ShowAll);
        if (!elementClass || !element) {
            continue;
        }
        // Buttons and headings stand at the object's own address; they have nothing below them to look into.
        if (element == member || (element != data && cClass_ContainsMember(elementClass, element, member))) {
            return true;
        }
    }
    return false;
}

void cClass::CallOnProcess(void* data) {
    if (!CheckDirectCasting()) {
        return;
    }
    auto* object = static_cast<cClass*>(data);
    object->OnProcess();
    Walk(object, data).ForEach([](cClass* elementClass, void* element) { elementClass->CallOnProcess(element); });
}

void cClass::AndFlags(void* data, unsigned char flags) {
    if (!CheckDirectCasting()) {
        return;
    }
    auto* object = static_cast<cClass*>(data);
    object->m_Flags &= flags;
    Walk(object, data).ForEach([flags](cClass* elementClass, void* element) {
        elementClass->AndFlags(element, flags);
    });
}

} // namespace trellis
