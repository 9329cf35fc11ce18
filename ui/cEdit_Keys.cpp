// What an edit does with keys and the mouse.
#include "files/cIO.h"
#include "render/cRender.h"
#include "ui/cEdit.h"
#include "ui/cWidgets.h"

#include <algorithm>

namespace trellis {

namespace {

bool IsShift() {
    return cInput::IsDown(cInput::Shift);
}

bool IsControl() {
    return cInput::IsDown(cInput::Control);
}

/// The left stick goes before the right one.
bool IsLeftThumbHeld() {
    return cInput::IsDown(cInput::LeftThumbUp) || cInput::IsDown(cInput::LeftThumbDown) ||
           cInput::IsDown(cInput::LeftThumbLeft) || cInput::IsDown(cInput::LeftThumbRight);
}

/// UTF-8 of a code point, with its terminator; empty for what is none.
struct Utf8 {
    explicit Utf8(int c) {
        if (c < 0x80) {
            Put(c);
        } else if (c < 0x800) {
            Put(0xC0 | c >> 6, c);
        } else if (c < 0x10000) {
            if (c < 0xD800 || c > 0xDFFF) {
                Put(0xE0 | c >> 12, c >> 6, c);
            }
        } else if (c < 0x110000) {
            Put(0xF0 | c >> 18, c >> 12, c >> 6, c);
        }
    }
    template <class... Tail> void Put(int first, Tail... tail) {
        char* out = Bytes;
        *out++ = char(first);
        ((*out++ = char(0x80 | (tail & 0x3F))), ...);
    }
    char Bytes[5] = {};
};

} // namespace

bool cEdit::IsHot(bool covered) {
    // Edit mode holds the capture for long; away from the mouse it shall not keep others from being hot.
    const bool away = IsEditing() && !m_MouseSelecting && !IsMouseInside();
    return TrackHot(covered || away);
}

// ---- Buttons

bool cEdit::OnButtonDown(int code) {
    if (IsEditing()) {
        if (!IsLive()) {
            EndEdit(false);
            return false;
        }
        return OnEditKey(code);
    }
    if (!IsLive() || (code != cInput::LeftButton && code != cInput::RightButton) || !IsMouseInside()) {
        return false;
    }
    if (code == cInput::LeftButton && !IsInside(m_LabelRect, cInput::GetMousePositionOrient())) {
        OnTabStop();
    } else {
        SetFocus(this);
    }
    return true;
}

/// In edit mode.
bool cEdit::OnEditKey(int code) {
    if (m_MouseSelecting && (cInput::IsKeyboardCode(code) || cInput::IsGamepadCode(code))) {
        return true;
    }
    switch (code) {
    case cInput::LeftButton:
    case cInput::RightButton:
    case cInput::MiddleButton:
        if (!IsMouseInside()) {
            EndEdit(true);
            return false; // the click goes on to what is there
        }
        if (code != cInput::LeftButton) {
            return true;
        }
        if (m_SelLen == 0 && cInput::IsDoubleClick()) {
            SelectAll();
            return true;
        }
        PlaceCaret(ToCarriagePos(cInput::GetMousePositionOrient().x), false);
        m_MouseSelecting = true;
        return true;
    case cInput::WheelUp:
    case cInput::WheelDown:
    case cInput::Start:
        EndEdit(true);
        return false;
    case cInput::Enter:
    case cInput::ButtonA:
        EndEdit(true);
        return true;
    case cInput::Esc:
        EndEdit(false);
        return true;
    case cInput::Home:
        PlaceCaret(0, IsShift());
        return true;
    case cInput::End:
        PlaceCaret(Count(), IsShift());
        return true;
    case cInput::A:
        if (IsControl()) {
            SelectAll();
        }
        return true;
    case cInput::C:
        if (IsControl()) {
            CopySelection();
        }
        return true;
    case cInput::X:
        if (IsControl() && !m_ReadOnly && m_SelLen > 0) {
            RecordUndo();
            CopySelection();
            RemoveRange(m_SelStart, m_SelLen);
        }
        return true;
    }
    return true;
}

bool cEdit::OnButtonUp(int code) {
    if (!IsEditing()) {
        return false;
    }
    if (code == cInput::LeftButton) {
        m_MouseSelecting = false;
    }
    return true;
}

bool cEdit::OnMouseMove() {
    if (!IsEditing()) {
        return false;
    }
    if (m_MouseSelecting) {
        PlaceCaret(ToCarriagePos(cInput::GetMousePositionOrient().x), true);
    }
    return true;
}

// ---- Characters

bool cEdit::OnChar(int c, int code) {
    if (!IsEditing()) {
        return false;
    }
    if (!IsLive()) {
        EndEdit(false);
        return false;
    }
    if (m_MouseSelecting) {
        return true;
    }
    if (m_LockOnEdit) {
        m_ReadOnly = true;
    }
    constexpr int Rubout = 127;
    if (c >= ' ' && c != Rubout) { // some hosts send control characters for the keys below
        PutChar(c);
        return true;
    }
    switch (code) {
    case cInput::RightThumbUp:
        return IsLeftThumbHeld() || EndEditAndTab(false);
    case cInput::Up:
    case cInput::LeftThumbUp:
        return EndEditAndTab(false);
    case cInput::RightThumbDown:
        return IsLeftThumbHeld() || EndEditAndTab(true);
    case cInput::Tab:
    case cInput::Down:
    case cInput::LeftThumbDown:
        return EndEditAndTab(true);
    case cInput::Left:
    case cInput::Right:
        OnMoveKey(code);
        break;
    case cInput::BackSpace:
    case cInput::Delete:
        OnDeleteKey(code);
        break;
    case cInput::V:
        if (IsControl() && !m_ReadOnly) {
            Paste();
        }
        break;
    case cInput::Z:
        if (IsControl() && !m_ReadOnly) {
            Undo();
        }
        break;
    }
    return true;
}

bool cEdit::EndEditAndTab(bool forward) {
    if (EndEdit(true)) {
        cWnd* form = m_Parent; // the nearest: each has a focus of its own
        while (form && form->m_Parent && form->GetType() != FormType) {
            form = form->m_Parent;
        }
        if (form) {
            form->GoTab(forward);
        }
    }
    return true;
}

void cEdit::PutChar(int c) {
    const Utf8 text(c);
    if (!m_ReadOnly && *text.Bytes) {
        RecordUndo();
        Replace(text.Bytes);
    }
}

void cEdit::OnMoveKey(int code) {
    PlaceCaret(m_Caret + (code == cInput::Left ? -1 : 1), IsShift());
}

void cEdit::OnDeleteKey(int code) {
    const int start = code == cInput::BackSpace ? m_Caret - 1 : m_Caret;
    if (m_ReadOnly || (m_SelLen == 0 && (start < 0 || start >= Count()))) {
        return;
    }
    RecordUndo();
    m_SelLen > 0 ? RemoveRange(m_SelStart, m_SelLen) : RemoveRange(start, 1);
}

// ---- Clipboard

void cEdit::CopySelection() const {
    if (m_SelLen > 0) {
        const int from = ByteOf(m_SelStart), to = ByteOf(m_SelStart + m_SelLen);
        cIO::CopyToClipboard(cStr(m_Buffer.Text() + from, 0, to - from));
    }
}

void cEdit::Paste() {
    cStr text;
    cIO::CopyFromClipboard(&text); // nothing there is an empty text, by which a selection is deleted
    // By the glyphs of this font in all themes: what may be pasted does not change with the looks.
    cRender::EnsurePrintable(cRender::GetFontID("Tahoma 8"), &text);
    if (m_SelLen > 0 || !text.IsEmpty()) {
        RecordUndo();
        Replace(text);
    }
}

} // namespace trellis
