// Base of controls that are made of others: a row of parts, the caption at the first.
#pragma once

#include "ui/cControl.h"

#include <initializer_list>

namespace trellis {

/// Draws nothing itself; its parts' messages pass unchanged, with the ids of the parts. Whoever shows, hides or
/// disables the composite does so to its parts.
class cComposite : public cControl {
public:
    void CalcRelBounds() override;
    void CalcRects() override;
    void OnRender() override;
    void OnTabStop() override {} // its parts are the stops
    void Unbind() override;

protected:
    cComposite(cWnd* parent, float x, float y, int align, bool visible, bool enabled);

    /// Left to right, all of the size in their `m_Size`. Takes the parts over.
    /// @param font, padding  of the caption, as the first part draws it
    /// @param spacing  between them, points
    void SetParts(std::initializer_list<cControl*> parts, int font, float padding, float spacing);

private:
    bool m_PartsVisible, m_PartsEnabled; // as the parts were last told
    int m_Font = -1;
    float m_Padding = 0, m_Spacing = 0;
};

} // namespace trellis
