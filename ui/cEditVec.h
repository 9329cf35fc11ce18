// Two to four numbers side by side.
#pragma once

#include "ui/cComposite.h"

namespace trellis {

class cEdit;

class cEditVec : public cComposite {
public:
    /// @param values  consecutive  @param count  of them, clamped to 2..4
    cEditVec(cWnd* parent, float* values, int count, const char* text, float x, float y, int align, bool visible,
             bool enabled);
    cEditVec(cWnd* parent, int* values, int count, const char* text, float x, float y, int align, bool visible,
             bool enabled);

    int GetType() const override { return EditVec2Type + m_Count - 2; }

    int m_Count;
    cEdit* m_Edits[4] = {};

private:
    template <class T> void Make(T* values, const char* text);
};

} // namespace trellis
