// The colour that a frame begins with, as a class of its own.
#pragma once

#include "reflection/cColorEdit.h"

namespace trellis {

class cSettings_ClearColor : public cColorEdit {
    TRELLIS_CLASS(cSettings_ClearColor)
};

} // namespace trellis
