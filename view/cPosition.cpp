#include "view/cPosition.h"

namespace trellis {

void cPosition::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cFloat3>(Position, "Position");
    members.AddButton(&cPosition::Move, "&cPosition::Move");
}

void cPosition::Move() {}

} // namespace trellis
