#include "view/cTransform.h"

namespace trellis {

void cTransform::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cFloat3>(Scale, "Scale");
    members.Add<_cFloat3>(Rotate, "Rotate");
    members.Add<_cFloat3>(Translate, "Translate");
}

} // namespace trellis
