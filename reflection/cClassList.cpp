#include "reflection/cClassList.h"

#include "editor/cClassExplorer.h"

#include <memory>

namespace trellis {

void cClassList_Init() {
    cClassExplorer::Init();
}

int cClassList_ExpandWith(cClass* descriptor, const char* name, cClass* list) {
    // A lookup that creates nothing: names come out of files, and storages stay for good.
    cClass* prototype = name && list ? cClass_GetClassFromPalette(name) : nullptr;
    // A kind is no element. It has no value of its own, and loading one would write into the descriptor.
    if (!prototype || !prototype->CheckDirectCasting()) {
        return -1;
    }
    std::unique_ptr<cClass> element(prototype->new_element());
    if (!element) {
        return -1;
    }
    element->SetParent(descriptor); // as for any new element; `Add` then links it to the list that it is in
    const int index = list->Add(element.get());
    if (index >= 0) {
        element.release(); // the list has it
    }
    return index;
}

bool cClassList_FullCopy(cClass* src, void* srcExtra, cClass* dst, void* dstExtra, cClassCopyContext* context) {
    if (src == dst) {
        return true; // emptying the one would empty the other
    }
    dst->CallCtor(dst);
    for (int i = 0; i < src->GetAmountOfElements(); i++) {
        cClass* element = src->GetElementClass(i);
        std::unique_ptr<cClass> copy(element ? element->new_element() : nullptr);
        if (!copy) {
            continue;
        }
        if (dst->Add(copy.get()) < 0) {
            return false; // not a list
        }
        cClass* added = copy.release();
        element->FullCopy(element, srcExtra, added, added, dstExtra, context);
    }
    return true;
}

} // namespace trellis
