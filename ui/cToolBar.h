// Horizontal strip of controls along the top of a form's client.
#pragma once

#include "ui/cWnd.h"

namespace trellis {

class cToolBar : public cWnd {
public:
    using cWnd::cWnd;

    int GetType() const override { return ToolBarType; }
};

} // namespace trellis
