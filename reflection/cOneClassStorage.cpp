#include "reflection/cOneClassStorage.h"

#include "reflection/cClass.h"

namespace trellis {

cOneClassMemberStorage* cOneClassStorage::CreateMember(const char* name) {
    auto* member = new cOneClassMemberStorage;
    member->Name = name;
    member->Shadowed = FindMember(member->Name.Text()) != nullptr;
    Members.Add(member);
    return member;
}

bool cOneClassStorage::CheckAll(const char* text, bool parents, bool children, bool exact) const {
    return (parents && CheckString(Parents, text, exact)) || (children && CheckString(Children, text, exact));
}

bool cOneClassStorage::CheckString(const cList<cStr>& list, const char* text, bool exact) {
    for (const cStr& entry : list) {
        if (exact ? entry == text : entry.IndexOf(text) >= 0) {
            return true;
        }
    }
    return false;
}

int cOneClassStorage::FindMember(const char* name, int length, int guess) const {
    const auto is = [&](const cOneClassMemberStorage* member) {
        return member->Name.Length() == length && std::memcmp(member->Name.Text(), name, size_t(length)) == 0;
    };
    const int count = Members.Count();
    if (guess < count && is(Members[guess]) && !Members[guess]->Shadowed) {
        return guess;
    }
    for (int i = 0; i < count; i++) {
        if (is(Members[i])) {
            return i;
        }
    }
    return -1;
}

cOneClassMemberStorage* cOneClassStorage::FindMember(const char* name) const {
    const int i = FindMember(name, int(std::strlen(name)));
    return i < 0 ? nullptr : Members[i];
}

void cOneClassStorage::LinkMemberObjects(cClass* object) const {
    for (; m_Scanned < Members.Count(); m_Scanned++) {
        const cOneClassMemberStorage* member = Members[m_Scanned];
        if (member->Class && member->Class->CheckDirectCasting() && !member->IsProperty()) {
            m_ObjectMembers.Add(m_Scanned);
        }
    }
    for (const int i : m_ObjectMembers) {
        void* member = Members[i]->Address(object);
        if (member && member != object) { // otherwise one without data
            static_cast<cClass*>(member)->SetParent(object);
        }
    }
}

} // namespace trellis
