#include "reflection/cOneClassMemberStorage.h"

#include "reflection/cClass.h"

namespace trellis {

int num_cOneClassMemberStorage = 0;

cOneClassMemberStorage::cOneClassMemberStorage() {
    num_cOneClassMemberStorage++;
}

cOneClassMemberStorage::~cOneClassMemberStorage() {
    num_cOneClassMemberStorage--;
    delete Class;
}

void* cOneClassMemberStorage::Fetch(void* object) const {
    static int s_Value; // one for all: a copy relies on source and destination sharing it
    s_Value = IntGetter(object);
    return &s_Value;
}

void cOneClassMemberStorage::RunSetter(void* object, void* value) const {
    if (IntSetter) {
        IntSetter(object, *static_cast<int*>(value));
    } else if (PtrSetter) {
        PtrSetter(object, value);
    }
}

} // namespace trellis
