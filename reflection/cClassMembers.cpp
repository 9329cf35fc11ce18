#include "reflection/cClassMembers.h"

namespace trellis {

bool cClassMembers::Begin() {
    const cOneClassStorage* storage = m_Owner->GetClassStorage();
    if (!storage || cClassGarbage::IsClosing()) {
        return false;
    }
    storage->LinkMemberObjects(m_Owner);
    return storage->Members.IsEmpty();
}

void cClassMembers::AddKind(cClass* prototype, void* member, const char* name, void* extra) {
    if (prototype) {
        m_Owner->RegisterOneMember(prototype->new_element(), member, name, extra, m_Owner->GetClassName(), false, ~0u);
    }
}

void cClassMembers::AddEnum(int& member, const char* name, cEnum* values) {
    AddKind(cClass_GetClassMember(static_cast<_cIndex*>(nullptr), _cIndex::ClassName), &member, name, values);
}

void cClassMembers::AddSeparator(const char* heading) {
    AddKind(cClass_GetClassFromPalette(_cSeparator::ClassName), nullptr, heading, nullptr);
}

} // namespace trellis
