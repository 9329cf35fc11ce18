#include "ui/cEdit.h"

#include "foundation/cTimer.h"
#include "ui/cThemeText.h"
#include "ui/cWidgets.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace trellis {

namespace {

/// A limit that is null, or no number, does not bind. Of limits that cross the lower one wins.
template <class T> void ClampTo(T* value, const T* min, const T* max) {
    if (max && *value > *max) {
        *value = *max;
    }
    if (min && *value < *min) {
        *value = *min;
    }
}

} // namespace

cEdit::cEdit(cWnd* parent, int* value, const int* min, const int* max, const char* text, float x, float y, int align,
             bool visible, bool enabled)
    : cControl(parent, text, x, y, align, visible, enabled), m_IntValue(value), m_IntMin(min), m_IntMax(max) {
    Init();
}

cEdit::cEdit(cWnd* parent, float* value, const float* min, const float* max, const char* text, float x, float y,
             int align, bool visible, bool enabled)
    : cControl(parent, text, x, y, align, visible, enabled), m_FloatValue(value), m_FloatMin(min), m_FloatMax(max) {
    Init();
}

cEdit::cEdit(cWnd* parent, cStr* value, const char* text, float x, float y, int align, bool visible, bool enabled)
    : cControl(parent, text, x, y, align, visible, enabled), m_StrValue(value) {
    Init();
}

cEdit::~cEdit() {
    cEdit::Unbind();
}

void cEdit::Init() {
    m_TabStop = true;
    SetBufferFromValue();
}

void cEdit::Unbind() {
    m_IntValue = nullptr;
    m_FloatValue = nullptr;
    m_StrValue = nullptr;
    m_IntMin = m_IntMax = nullptr;
    m_FloatMin = m_FloatMax = nullptr;
    cEdit* upper = std::exchange(m_UpperSibling, nullptr);
    if (upper && upper->m_LowerSibling == this) {
        upper->m_LowerSibling = nullptr;
    }
    cEdit* lower = std::exchange(m_LowerSibling, nullptr);
    if (lower && lower->m_UpperSibling == this) {
        lower->m_UpperSibling = nullptr;
    }
}

// ---- The value

void cEdit::SetBufferFromValue() {
    if (m_IntValue) {
        m_Buffer = cStr::Format("%d", *m_IntValue);
    } else if (m_FloatValue) {
        m_Buffer = cStr::Format("%.3f", double(*m_FloatValue));
    } else if (m_StrValue) {
        m_Buffer = *m_StrValue;
    }
}

void cEdit::SetValueFromBuffer() {
    if (m_IntValue) {
        int value;
        if (!cStr::ToInt(m_Buffer, &value)) {
            return;
        }
        Clamp(&value);
        if (value != *m_IntValue) {
            const int before = std::exchange(*m_IntValue, value);
            NotifySibling();
            Send(IntCommitted, &before, m_IntValue);
        }
    } else if (m_FloatValue) {
        float value;
        if (!cStr::ToFloat(m_Buffer, &value)) {
            return;
        }
        Clamp(&value);
        // The text alone counts: a value with more decimals than are shown is rounded to these, although nothing was
        // typed, so that what is kept is what was seen.
        if (value != *m_FloatValue) {
            const float before = std::exchange(*m_FloatValue, value);
            NotifySibling();
            Send(FloatCommitted, &before, m_FloatValue);
        }
    } else if (m_StrValue && *m_StrValue != m_Buffer) {
        const cStr before = *m_StrValue, after = m_Buffer; // whoever hears of it may write over the value
        *m_StrValue = after;
        Send(TextCommitted, before.Text(), after.Text());
    }
}

void cEdit::NotifySibling() {
    constexpr float Gap = 0.001f;
    if (m_IntValue) {
        const int value = *m_IntValue;
        int* upper = m_UpperSibling ? m_UpperSibling->m_IntValue : nullptr;
        int* lower = m_LowerSibling ? m_LowerSibling->m_IntValue : nullptr;
        if (upper && *upper <= value) {
            *upper = value == std::numeric_limits<int>::max() ? value : value + 1;
        }
        if (lower && *lower >= value) {
            *lower = value == std::numeric_limits<int>::min() ? value : value - 1;
        }
    } else if (m_FloatValue) {
        const float value = *m_FloatValue;
        float* upper = m_UpperSibling ? m_UpperSibling->m_FloatValue : nullptr;
        float* lower = m_LowerSibling ? m_LowerSibling->m_FloatValue : nullptr;
        if (upper && !(*upper >= value + Gap)) {
            *upper = value + Gap;
        }
        if (lower && !(*lower <= value - Gap)) {
            *lower = value - Gap;
        }
    }
}

void cEdit::Clamp() {
    bool changed = false;
    if (m_IntValue) {
        const int before = *m_IntValue;
        Clamp(m_IntValue);
        changed = *m_IntValue != before;
    } else if (m_FloatValue) {
        const float before = *m_FloatValue;
        Clamp(m_FloatValue);
        changed = *m_FloatValue != before;
    }
    if (changed) {
        SetBufferFromValue();
        PlaceCaret(m_Caret, false);
    }
}

void cEdit::Clamp(int* value) const {
    ClampTo(value, m_IntMin, m_IntMax);
}

void cEdit::Clamp(float* value) const {
    ClampTo(value, m_FloatMin, m_FloatMax);
}

// ---- Edit mode

bool cEdit::IsEditing() const {
    return cWidgets::IsCaptured(this);
}

void cEdit::OnTabStop() {
    const Guard guard(this);
    if (!IsActive()) {
        Activate();
        if (guard.IsGone()) {
            return;
        }
    }
    SetBufferFromValue();
    cWidgets::SetCapture(this);
    SetFocus(this);
    if (!guard.IsGone() && IsEditing()) {
        m_MouseSelecting = false;
        m_Undo.Clear();
        SelectAll();
        m_CaretTime = cTimer::GetSystemTimeSec();
    }
}

bool cEdit::EndEdit(bool commit) {
    const Guard guard(this);
    if (commit && !m_ReadOnly) {
        SetValueFromBuffer();
        if (guard.IsGone()) {
            return false;
        }
    }
    if (IsEditing()) {
        cWidgets::ReleaseCapture();
    }
    m_MouseSelecting = false;
    m_Undo.Free();
    return true;
}

void cEdit::RecordUndo() {
    constexpr int Most = 500;
    if (m_Undo.Count() >= Most) {
        m_Undo.RemoveAt(0);
    }
    m_Undo.Add({m_Buffer, m_Caret, m_SelStart, m_SelLen});
}

void cEdit::Undo() {
    const int last = m_Undo.Count() - 1;
    if (last < 0) {
        return;
    }
    UndoInfo& info = m_Undo[last];
    m_Buffer = info.Text;
    m_Caret = info.Caret;
    m_SelStart = info.SelStart;
    m_SelLen = info.SelLen;
    m_Undo.SetCount(last);
    m_CaretTime = cTimer::GetSystemTimeSec();
}

// ---- Characters

int cEdit::SequenceAt(int at) const {
    const int length = cStr::UTF8LengthOf(m_Buffer[at]);
    if (length > m_Buffer.Length() - at) {
        return 1;
    }
    for (int i = 1; i < length; i++) {
        if ((m_Buffer[at + i] & 0xC0) != 0x80) {
            return 1; // it is cut short, and what follows begins a character of its own
        }
    }
    return length;
}

int cEdit::CountBefore(int at) const {
    int count = 0;
    for (int i = 0; i < at; i += SequenceAt(i)) {
        count++;
    }
    return count;
}

int cEdit::ByteOf(int index) const {
    int at = 0;
    for (; index > 0 && at < m_Buffer.Length(); index--) {
        at += SequenceAt(at);
    }
    return at;
}

int cEdit::UnitOf(int index) const {
    int units = 0;
    for (int at = 0; index > 0 && at < m_Buffer.Length(); index--) {
        const int length = SequenceAt(at);
        units += length == 4 ? 2 : 1; // a surrogate pair
        at += length;
    }
    return units;
}

void cEdit::SelectAll() {
    m_Caret = m_SelLen = Count();
    m_SelStart = 0;
}

/// @param extend  the end of the selection that the caret was not at stays
void cEdit::PlaceCaret(int to, bool extend) {
    int anchor = m_Caret;
    if (m_SelLen > 0) {
        anchor = m_Caret == m_SelStart ? m_SelStart + m_SelLen : m_SelStart;
    }
    to = std::clamp(to, 0, Count());
    if (to != m_Caret) {
        m_Caret = to;
        m_CaretTime = cTimer::GetSystemTimeSec();
    }
    m_SelLen = extend ? std::abs(to - anchor) : 0;
    m_SelStart = m_SelLen > 0 ? std::min(to, anchor) : 0;
}

void cEdit::RemoveRange(int start, int count) {
    const int from = ByteOf(start), to = ByteOf(start + count);
    if (to > from) {
        m_Buffer.Remove(from, to - from);
    }
    PlaceCaret(CountBefore(from), false);
    m_CaretTime = cTimer::GetSystemTimeSec();
}

void cEdit::Replace(const char* text) {
    if (m_SelLen > 0) {
        RemoveRange(m_SelStart, m_SelLen);
    }
    const int at = ByteOf(m_Caret), before = m_Buffer.Length();
    m_Buffer.Insert(at, text);
    PlaceCaret(CountBefore(at + m_Buffer.Length() - before), false);
    m_CaretTime = cTimer::GetSystemTimeSec();
}

// ---- Layout

void cEdit::CalcRelBounds() {
    LayOut(m_Theme->EditFont, m_Theme->EditPadding, {m_Theme->EditMinWidth, m_Theme->EditHeight});
}

void cEdit::CalcRects() {
    if (!IsEditing()) {
        SetBufferFromValue();
    }
    cControl::CalcRects();
    m_EditRect = m_TextRect = m_ValueRect;
    m_TextRect.x0 += m_Theme->EditPaddingLeft;
    m_TextRect.x1 = std::max(m_TextRect.x1 - m_Theme->EditPaddingRight, m_TextRect.x0);
    Scroll();
}

void cEdit::Scroll() {
    if (!IsEditing()) {
        m_ScrollX = 0;
        return;
    }
    const int font = m_Theme->EditFont;
    const float room = m_TextRect.Width(), x = cThemeText::WidthBefore(font, m_Buffer, UnitOf(m_Caret));
    if (x + m_ScrollX < 0) {
        m_ScrollX = -x;
    } else if (x + m_ScrollX > room) {
        m_ScrollX = std::max(room - cThemeText::Width(font, m_Buffer), room - x);
    }
    m_ScrollX = std::min(m_ScrollX, 0.0f);
}

int cEdit::ToCarriagePos(float x) {
    const auto distance = [&](float left) {
        const cVec3 edge(m_TextRect.x0 + m_ScrollX + left, m_TextRect.Center().y, 0);
        return std::fabs((edge * m_Transform).x - x);
    };
    int nearest = 0, index = 0;
    float left = 0, least = distance(0);
    for (int at = 0; at < m_Buffer.Length(); index++) {
        const int length = SequenceAt(at);
        if (length == 1 && (m_Buffer[at] & 0x80)) {
            break; // nothing behind a bad byte is shown
        }
        left += cThemeText::Width(m_Theme->EditFont, cStr(m_Buffer.Text() + at, 0, length));
        at += length;
        if (const float here = distance(left); here < least) {
            least = here;
            nearest = index + 1;
        }
    }
    return nearest;
}

bool cEdit::FillDrawArgs(cTheme::DrawArgs* args) {
    args->Part = cTheme::Parts::Edit;
    args->Value = m_Buffer;
    args->TextRect = m_TextRect;
    args->Toggled = IsEditing();
    args->Caret = UnitOf(m_Caret);
    args->SelStart = UnitOf(m_SelStart);
    args->SelLen = UnitOf(m_SelStart + m_SelLen) - args->SelStart;
    args->ScrollX = m_ScrollX;
    args->CaretTime = m_CaretTime;
    return true;
}

} // namespace trellis
