#include "ui/cEditVec.h"

#include "ui/cEdit.h"

#include <algorithm>

namespace trellis {

cEditVec::cEditVec(cWnd* parent, float* values, int count, const char* text, float x, float y, int align, bool visible,
                   bool enabled)
    : cComposite(parent, x, y, align, visible, enabled), m_Count(std::clamp(count, 2, 4)) {
    Make(values, text);
}

cEditVec::cEditVec(cWnd* parent, int* values, int count, const char* text, float x, float y, int align, bool visible,
                   bool enabled)
    : cComposite(parent, x, y, align, visible, enabled), m_Count(std::clamp(count, 2, 4)) {
    Make(values, text);
}

template <class T> void cEditVec::Make(T* values, const char* text) {
    const cTheme& theme = *m_Theme;
    const T* noLimit = nullptr;
    for (int i = 0; i < m_Count; i++) {
        m_Edits[i] = new cEdit(this, values ? values + i : nullptr, noLimit, noLimit, i == 0 ? text : "", 0, 0,
                               cRect::LeftTop, m_Visible, m_Enabled);
        m_Edits[i]->m_Size = {theme.EditVecMinWidth, theme.EditHeight};
        SetParts({m_Edits[i]}, theme.EditFont, theme.EditPadding, theme.EditVecSpacing);
    }
}

} // namespace trellis
