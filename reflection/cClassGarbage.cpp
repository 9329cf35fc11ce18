#include "reflection/cClassGarbage.h"

#include "reflection/cClass.h"

namespace trellis {

// Constant-initialised, so that it serves objects of any translation unit. The priority has the destructor registered
// ahead of theirs, which makes it run behind them.
constinit cClassGarbage TRELLIS_CGARB __attribute__((init_priority(210)));

constinit bool cClassGarbage::s_Closing = false;
constinit bool cClassGarbage::s_Closed = false;

cClassGarbage::~cClassGarbage() {
    s_Closing = true;
    for (int i = 0; i < m_Classes.Count(); i++) { // a tear-down may look up a new name
        // It walks the tables, which all still stand.
        delete std::exchange(m_Classes[i]->Prototype, nullptr);
    }
    // The descriptors of member objects are objects too, and walk the tables of their own classes, whose descriptors
    // may be gone by then. From here on a tear-down is the class's own code and nothing more.
    s_Closed = true;
    for (cOneClassStorage* storage : m_Classes) {
        for (cOneClassMemberStorage* member : storage->Members) {
            delete member;
        }
    }
    for (cOneClassStorage* storage : m_Classes) {
        delete storage;
    }
}

cOneClassStorage* cClassGarbage::GetClass(const char* name) {
    cOneClassStorage* storage = FindClass(name);
    return storage ? storage : CreateClassStorage(name);
}

cOneClassStorage* cClassGarbage::FindClass(const char* name) const {
    const int index = s_Closed ? -1 : m_Names.Find(name ? name : "");
    return index < 0 ? nullptr : m_Classes[index];
}

cOneClassStorage* cClassGarbage::CreateClassStorage(const char* name) {
    if (s_Closed) {
        return nullptr;
    }
    auto* storage = new cOneClassStorage;
    m_Names.Add(name ? name : "", m_Classes.Add(storage));
    return storage;
}

} // namespace trellis
