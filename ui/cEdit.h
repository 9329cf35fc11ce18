// Line of text under edit: a number or a string of the caller's, with caret, selection, clipboard and undo.
//
// Edit mode is exactly the state of holding the capture. What is typed is written to the value when it ends, and then
// clamped to the limits. Positions are characters of `m_Buffer`, whatever their length; a byte that is no part of one
// counts as one.
#pragma once

#include "foundation/cList.h"
#include "ui/cControl.h"

namespace trellis {

/// Sends `IntCommitted`, `FloatCommitted` or `TextCommitted` when the value has changed. Text that is no number leaves
/// the value alone. At rest the buffer follows the value. Whoever edits a read-only text commits nothing.
class cEdit : public cControl {
public:
    struct UndoInfo {
        cStr Text;
        int Caret = 0;
        int SelStart = 0;
        int SelLen = 0;
    };

    /// @param min, max  may be null: no limit
    cEdit(cWnd* parent, int* value, const int* min, const int* max, const char* text, float x, float y, int align,
          bool visible, bool enabled);
    cEdit(cWnd* parent, float* value, const float* min, const float* max, const char* text, float x, float y, int align,
          bool visible, bool enabled);
    cEdit(cWnd* parent, cStr* value, const char* text, float x, float y, int align, bool visible, bool enabled);
    ~cEdit() override;

    int GetType() const override { return EditType; }
    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    bool OnMouseMove() override;
    bool OnChar(int c, int code) override;
    bool IsHot(bool covered) override;
    void OnTabStop() override; ///< Enters edit mode with all selected.
    void CalcRelBounds() override;
    void CalcRects() override;

    void Unbind() override; ///< Also of the limits; the siblings let go of each other.
    void SetBufferFromValue();
    void SetValueFromBuffer();  ///< Commits. A message may free the edit.
    void NotifySibling();       ///< Pushes the other end of a range out of the way.
    void Scroll();              ///< Keeps the caret in view.
    int ToCarriagePos(float x); ///< The place between characters nearest to `x`; of two the earlier.
    void RecordUndo();
    void Undo();
    void Clamp(); ///< The bound value; the buffer follows.
    void Clamp(int* value) const;
    void Clamp(float* value) const;

    cStr m_Buffer;
    // At most one is set. Not owned.
    int* m_IntValue = nullptr;
    float* m_FloatValue = nullptr;
    cStr* m_StrValue = nullptr;
    const int* m_IntMin = nullptr;
    const int* m_IntMax = nullptr;
    const float* m_FloatMin = nullptr;
    const float* m_FloatMax = nullptr;
    cRect m_EditRect = cRect::Empty; ///< The field.
    cRect m_TextRect = cRect::Empty; ///< The field less its paddings; the caption's is `m_LabelRect`.
    float m_CaretTime = 0;           ///< When the caret moved last, in system time.
    int m_Caret = 0;
    int m_SelStart = 0; ///< 0 without a selection.
    int m_SelLen = 0;
    float m_ScrollX = 0; ///< At most 0.
    bool m_MouseSelecting = false;
    bool m_ReadOnly = false;
    bool m_LockOnEdit = false;       ///< The first character typed makes it read-only.
    cList<UndoInfo> m_Undo;          ///< The last 500 changes of this edit mode, each with the whole text.
    cEdit* m_UpperSibling = nullptr; ///< Of a range: the edit of its upper end, and
    cEdit* m_LowerSibling = nullptr; ///< that of its lower one. An edit that goes lets go of them.

protected:
    bool FillDrawArgs(cTheme::DrawArgs* args) override;

private:
    void Init();
    bool IsEditing() const;
    bool EndEdit(bool commit); // false: the edit is gone
    bool EndEditAndTab(bool forward);
    bool OnEditKey(int code);
    void OnMoveKey(int code);
    void OnDeleteKey(int code);
    void Paste();
    void PutChar(int c);
    void CopySelection() const;
    void SelectAll();
    void PlaceCaret(int to, bool extend);
    void RemoveRange(int start, int count);
    void Replace(const char* text); // the selection, or inserts

    int SequenceAt(int at) const; // bytes of the character that begins there
    int CountBefore(int at) const;
    int Count() const { return CountBefore(m_Buffer.Length()); }
    int ByteOf(int index) const;
    int UnitOf(int index) const; // in UTF-16
};

} // namespace trellis
