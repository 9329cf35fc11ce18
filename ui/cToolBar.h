// Horizontal strip of controls along the top of a form's client.
#pragma once

#include "ui/cWnd.h"

namespace trellis {

class cForm;

/// Belongs to a form through `SetToolBar`. The middle button slides its controls when there is no room for all.
class cToolBar : public cWnd {
public:
    cToolBar(cForm* form, bool visible, bool enabled);

    int GetType() const override { return ToolBarType; }
    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    bool OnMouseMove() override;
    void OnRender() override;
    bool IsHot(bool covered) override;
    bool OnSetCursor(cInput::Cursor::Enum* cursor) override;
    void CalcRects() override;

    void AlignChildren(); ///< Side by side.

    float m_Scroll = 0; ///< How far the controls have slid to the left; at most 0.
    float m_MinScroll = 0;
    float m_DragStartScroll = 0;
    float m_DragStartMouse = 0;
    float m_AlignedScroll = 0; ///< That the controls stand at since they were last lined up.
    cVec2 m_Cursor{0, 0};      ///< Where the next control goes, while they are lined up.
};

} // namespace trellis
