#include "reflection/cClassPointersGarbage.h"

#include "reflection/cClass.h"

namespace trellis {
namespace {

constexpr int BranchShift = 24;
constexpr unsigned PositionMask = 0xFFFFFF;

const char* OrEmpty(const char* text) {
    return text ? text : "";
}
bool IsFree(const cOneClassPointer* record) {
    return !record->Object && record->RefCount == 0;
}

} // namespace

constinit cClassPointersGarbage CPGARB;

cClassPointersGarbage::~cClassPointersGarbage() {
    s_Closed = true; // objects that are destroyed later still come by
    for (int i = 0; i < BranchCount; i++) {
        for (const cOneClassPointer* record : m_Branches[i]) {
            delete record;
        }
        m_Branches[i].Free();
        m_Free[i].Free();
    }
}

int cClassPointersGarbage::GetBranch(const char* className) {
    unsigned sum = 0;
    const char* text = OrEmpty(className);
    for (unsigned i = 0; text[i]; i++) {
        sum += (unsigned char)text[i] * (i + 1);
    }
    return int(sum % BranchCount);
}

cOneClassPointer* cClassPointersGarbage::GetPointer(unsigned id) const {
    if (s_Closed) {
        return nullptr;
    }
    const cList<cOneClassPointer*>& branch = m_Branches[id >> BranchShift];
    const int position = int(id & PositionMask);
    return position < branch.Count() ? branch[position] : nullptr;
}

/// The record that the object is live in. An ID alone does not tell: it may be of a record that went on to another
/// object, because a tear-down can run twice.
cOneClassPointer* cClassPointersGarbage::RecordOf(cClass* object) const {
    if (!object->GetObjectNamePointer()) {
        return nullptr;
    }
    cOneClassPointer* record = GetPointer(object->GetObjectGlobalID());
    return record && record->Object == object ? record : nullptr;
}

/// A free record of the branch, or a new one; null at the end of the process and when the branch is full.
cOneClassPointer* cClassPointersGarbage::Take(int branch) {
    if (s_Closed) {
        return nullptr;
    }
    cList<cOneClassPointer*>& recycled = m_Free[branch];
    if (!recycled.IsEmpty()) {
        cOneClassPointer* record = recycled[recycled.Count() - 1];
        recycled.RemoveAt(recycled.Count() - 1);
        record->Referrer = nullptr;
        record->PendingClass.Clear();
        return record;
    }
    cList<cOneClassPointer*>& records = m_Branches[branch];
    if (unsigned(records.Count()) == PositionMask) {
        return nullptr; // the last position stays unused, so that no ID is `NoID`
    }
    auto* record = new cOneClassPointer;
    record->ID = (unsigned(branch) << BranchShift) + unsigned(records.Count());
    records.Add(record);
    return record;
}

void cClassPointersGarbage::Recycle(cOneClassPointer* record) {
    record->NamePointer = nullptr;
    record->Root = nullptr;
    record->PendingName.Clear();
    m_Free[record->ID >> BranchShift].Add(record);
}

unsigned cClassPointersGarbage::AddClass(cClass* object) {
    const int branch = GetBranch(object->GetClassName());
    cStr* name = object->GetObjectNamePointer();
    cOneClassPointer* held = GetPointer(object->GetObjectGlobalID());
    if (held && held->Object == object) {
        // A derived class resets itself once for each of its bases, under a new class name each time. A second record
        // would leave the first with a dangling object.
        if (name && int(held->ID >> BranchShift) == branch) {
            held->NamePointer = name;
            held->Root = object->GetRoot();
            return held->ID;
        }
        Release(held);
    }
    cOneClassPointer* record = name ? Take(branch) : nullptr;
    if (!record) {
        object->SetObjectGlobalID(NoID);
        return NoID;
    }
    record->Object = object;
    record->NamePointer = name;
    record->Root = object->GetRoot();
    record->RefCount = 0;
    object->SetObjectGlobalID(record->ID);
    return record->ID;
}

void cClassPointersGarbage::DeleteClass(cClass* object) {
    if (cOneClassPointer* record = RecordOf(object)) {
        Release(record);
    }
}

/// The object of a record has gone. The record stays while there are references.
void cClassPointersGarbage::Release(cOneClassPointer* record) {
    record->Object = nullptr;
    record->NamePointer = nullptr;
    if (record->RefCount == 0) {
        Recycle(record);
    }
}

unsigned cClassPointersGarbage::AddRef(const char* className, const char* objectName, cClass* referrer) {
    if (s_Closed) {
        return NoID;
    }
    className = OrEmpty(className);
    objectName = OrEmpty(objectName);
    cClass* root = referrer ? referrer->GetRoot() : nullptr;
    const int branch = GetBranch(className);
    cOneClassPointer* found = nullptr; // under a foreign root, which is better than nothing; the last one wins
    for (cOneClassPointer* record : m_Branches[branch]) {
        cClass* object = record->Object;
        if (!object || !record->NamePointer || std::strcmp(OrEmpty(object->GetClassName()), className) != 0 ||
            !(*record->NamePointer == objectName)) {
            continue;
        }
        found = record;
        if (object->CheckIfObjectIsGlobal() || object->GetRoot() == root) {
            break;
        }
    }
    for (int i = 0; !found && i < m_Branches[branch].Count(); i++) {
        cOneClassPointer* record = m_Branches[branch][i];
        if (!record->Object && !record->NamePointer && !record->PendingName.IsEmpty() &&
            record->PendingName == objectName && record->PendingClass == className) {
            found = record;
        }
    }
    if (found) {
        found->RefCount++;
        return found->ID;
    }
    cOneClassPointer* record = Take(branch);
    if (!record) {
        return NoID;
    }
    record->Root = root;
    record->Referrer = referrer;
    record->PendingName = objectName;
    record->PendingClass = className;
    record->RefCount = 1;
    return record->ID;
}

void cClassPointersGarbage::AddRef(unsigned id) {
    cOneClassPointer* record = GetPointer(id);
    if (record && !IsFree(record)) { // a free one would go on the free list twice
        record->RefCount++;
    }
}

void cClassPointersGarbage::DelRef(unsigned id) {
    cOneClassPointer* record = GetPointer(id);
    if (!record || record->RefCount == 0) {
        return; // below 0 the record would be taken for free while the next reference is held
    }
    if (--record->RefCount == 0 && !record->Object) {
        Recycle(record);
    }
}

} // namespace trellis
