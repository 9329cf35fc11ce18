// Contents of an add menu.
#pragma once

#include "foundation/cList.h"

namespace trellis {

/// Filled by `cClass::GetEditableElementExpansionList`. The texts belong to the palette.
class cClassExpParams {
public:
    cList<const char*> Names;   ///< Class names on offer.
    cList<const char*> Folders; ///< Empty unless there are at least two.
    cList<int> FolderOfName;    ///< Beside `Names`: index in `Folders`, or -1.
};

} // namespace trellis
