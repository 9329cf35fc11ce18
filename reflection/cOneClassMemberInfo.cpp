#include "reflection/cOneClassMemberInfo.h"

#include "reflection/cClass.h"
#include "reflection/cErrorPager.h"
#include "reflection/cXml.h"

namespace trellis {

unsigned cOneClassMemberInfo::GetMask() const {
    return m_Storage ? m_Storage->Mask : ~0u;
}
const char* cOneClassMemberInfo::Name() const {
    return m_Storage ? m_Storage->Name.Text() : "";
}
bool cOneClassMemberInfo::IsInvisible() const {
    return m_Storage && m_Storage->Invisible;
}
bool cOneClassMemberInfo::IsReadOnly() const {
    return m_Storage && m_Storage->ReadOnly;
}
bool cOneClassMemberInfo::IsStatic() const {
    return m_Storage && m_Storage->Static;
}
bool cOneClassMemberInfo::IsNotSavable() const {
    return m_Storage && m_Storage->NoSave;
}
bool cOneClassMemberInfo::IsDirectCasting() const {
    return m_Class && m_Class->CheckDirectCasting();
}

void cOneClassMemberInfo::Save(cXml* node) const {
    if (m_Data == m_Parent && m_Data) {
        return; // a button or a heading: saving it as an object would save its owner
    }
    if (m_Class && !m_Data) {
        node->Assign_string("NULL");
    } else if (m_Class) {
        m_Class->Save(*node, m_Data, m_Extra);
    }
}

void cOneClassMemberInfo::Load(cXml* node, cErrorPager* pager) const {
    if (!m_Class || !m_Data || m_Data == m_Parent) {
        return;
    }
    cErrorPager silent;
    m_Class->Load(*node, m_Data, pager ? pager : &silent, m_Extra);
    AcceptAfterWrite();
}

void cOneClassMemberInfo::AcceptAfterWrite() const {
    if (m_Storage && m_Data) {
        m_Storage->RunSetter(m_Parent, m_Data);
    }
}

} // namespace trellis
