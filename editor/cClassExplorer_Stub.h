// The form of the class explorer, and that of the main menu.
#pragma once

#include "editor/cClassExplorer.h"
#include "ui/cForm.h"

#include <deque>

namespace trellis {

class cButton;
class cComboBox;
class cPanel;

/// Controls are bound to the members' addresses. What changes an object's structure takes them off first: `Detach`.
class cClassExplorer::Stub : public cForm {
public:
    /// @param isClassExplorer  false: the main menu
    Stub(bool isClassExplorer, const cRect& bounds, const cTheme* theme);
    ~Stub() override { End(); }

    void OnRender() override;
    void MsgProc(int id, int msg, const void* before, const void* after) override;
    void SetFocus(cWnd* control) override;

    void OnObjectAdded();
    void OnObjectRemoved(int index, const cClass* object);
    void FocusObject(cClass* object);
    void Detach();                                ///< No control touches the object any more.
    void RequestReCreate() { m_ReCreate = true; } ///< In the next frame.
    void ForgetView(const cClass* object);        ///< It was reset.
    void Open(int id);                            ///< Once the manager has the form, as that widget.
    void End(); ///< Keeps place, view and focus for the next time, and lets go of the object.

    static cStr GetDisplayName(const char* id); ///< "Cast Shadows" of "&cLamp::CastShadows".

    /// By which copied values know each other: all plain numbers of a type, all plain texts.
    static cStr GetClipBoardName(cClass* elementClass, void* data);

private:
    /// A control, or a part of one, and the element that it shows.
    struct Row {
        int ID; ///< Of the widget.
        cWnd* Control;
        cClass* Class;
        cClass* ParentClass; ///< The object that it is an element of; null for the shown one itself.
        void* Data;
        void* Extra;
        cStr ParentName; ///< Of the element in its parent.
        int Index;       ///< As in `Focus`.
        void* Target;    ///< What is changed: of a vector's part, one of its numbers.
        int Part;        ///< Of the element's control; 0: the whole, which comes first.
        int Former[3];   ///< Of a range: its numbers in the last frame, bit by bit. Of `Value`: what it was read as.
        const cOneClassMemberStorage* Member = nullptr; ///< The element's accessors. Null: it has none.
        int* Value = nullptr; ///< What the control of a property that is read by value is bound to.
    };
    enum ActionID : int {
        LoadAction,
        SaveAction,
        BackAction,
        ForwardAction,
        UndoAction,
        RedoAction,
        CopyAction,
        PasteAction,
        ClearAction,
        AddAction,
        MoveUpAction,
        MoveDownAction,
        DeleteAction,
        ActionCount
    };
    struct Action;
    static const Action s_Actions[];
    struct Geometry;
    Geometry GetGeometry() const;

    // ---- Controls
    void CreateControls();
    void CreateControls(cWnd* parent, cClass* parentClass, cClass* elementClass, void* data, void* extra,
                        const char* name, bool simple);
    void CreateLeaf(Row row, cWnd* parent, const char* label);
    void AddRow(Row row, cWnd* control, int part, void* target);
    void ReCreateControls(int undo); ///< -1, 1: after an undo or a redo.
    void AlignControls();
    void DoExchange();
    void AskForRows();
    void WriteProperties();
    static void RunSetter(const Row& row, void* value);
    Row* FindRow(int id);
    static bool Holds(cClass* object, void* data, const UndoRedoNode& node);
    static cStr LabelOf(cClass* elementClass, const char* name);

    // ---- Focus
    Row* Focused(); ///< The element's first; null also when it is not shown any more.
    void RestoreFocus();
    void StoreFocus();
    void RefreshFocus();
    void UpdateButtons();
    void FillClassBox(Row* row);

    // ---- Objects
    Object* Current(); ///< That is to be shown; null without any.
    Object* Shown();   ///< That the controls are of; null when it has gone.
    void GoToObject(int index);
    void Visit(int place); ///< In the history.
    void GoBack();
    void GoForward();
    void ApplyCurIndex();
    void LoadViewIndex(const cVec2& view);
    void StoreView();
    void ClearForwardSessionHistory();
    void ListObjects();

    // ---- Undo
    void OnControlChanged(Row* row, int msg, const void* before, const void* after);
    void RecordPushed(const Row& changed);
    void AddUndoRedoNode(const UndoRedoNode& node);
    void UpdateUndoRedo(int direction);
    void ClearUndoRedo();

    // ---- Tool bar
    void CreateToolBar();
    Object* AskForFile(bool (*dialog)(cStr* filePn), cStr* filePn);
    void Load();
    void Save();
    void Undo();
    void Redo();
    void Copy();
    bool ClipBoardIsCompatible();
    void Paste();
    void Clear();
    void Add();
    void MoveUp();
    void MoveDown();
    void Delete();
    void Move(int by);
    void ResetElement(const Row& row);
    static cClass* ListOf(const Row& row); ///< The list that the element stands in; null when in none.

    const bool m_IsClassExplorer;
    cPanel* m_Panel = nullptr; // of the object, without a title
    cList<Row> m_Rows;         // in the order of the controls
    std::deque<int> m_Values;  // of properties that are read by value, as one slot serves all of them
    int m_Index = -1;          // of the element whose controls are being made
    cClass* m_Shown = nullptr; // what the controls are of; compared only
    int m_ObjectIndex = -1;    // in `s_Objects`
    Focus m_FocusedElement;
    int m_ID = -1;
    bool m_IsEnding = false;
    bool m_IsStale = false; // what it showed has gone
    bool m_ReCreate = false;
    bool m_ScrollToFocus = false; // once the rows have their places
    bool m_Local = false;         // mirrors the manipulators' space
    int m_Class = 0;              // in the box of classes
    int m_ChosenObject = -1;      // in that of objects
    cList<cStr> m_ClassNames;     // that it offers, without their folders
    cButton* m_Buttons[ActionCount] = {};
    cComboBox* m_ObjectBox = nullptr;
    cComboBox* m_ClassBox = nullptr;
    int m_LocalID = -1; // of the box
};

} // namespace trellis
