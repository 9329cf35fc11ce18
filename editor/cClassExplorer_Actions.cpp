// What the tool bar and the controls do: files, history, undo, clipboard, lists.
#include "editor/cClassExplorer_Stub.h"

#include "files/cIO.h"
#include "reflection/cClass.h"
#include "reflection/cClassExpParams.h"
#include "reflection/cXml.h"
#include "ui/cButton.h"
#include "ui/cCheckBox.h"
#include "ui/cComboBox.h"
#include "ui/cEdit.h"
#include "ui/cPanel.h"
#include "ui/cSeparator.h"
#include "ui/cToolBar.h"
#include "ui/cWidgets.h"
#include "view/cManipulator.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace trellis {

namespace {

using Icons = cTheme::ToolBarIcon;

bool CanBeAddedTo(cClass* c) {
    return cClass::IsListName(c->GetClassName()) || cClass::IsPointerName(c->GetClassName());
}

} // namespace

// ---- Tool bar

struct cClassExplorer::Stub::Action {
    Icons::Enum Icon;
    bool HasList;
    const char* Text;
    void (*Run)(Stub* form);
};

// By their ids.
constexpr cClassExplorer::Stub::Action cClassExplorer::Stub::s_Actions[ActionCount] = {
    {Icons::Load, false, "Load...", [](Stub* form) { form->Load(); }},
    {Icons::Save, false, "Save...", [](Stub* form) { form->Save(); }},
    {Icons::Back, false, "Back", [](Stub* form) { form->GoBack(); }},
    {Icons::Forward, false, "Forward", [](Stub* form) { form->GoForward(); }},
    {Icons::Undo, false, "Undo", [](Stub* form) { form->Undo(); }},
    {Icons::Redo, false, "Redo", [](Stub* form) { form->Redo(); }},
    {Icons::Copy, false, "Copy", [](Stub* form) { form->Copy(); }},
    {Icons::Paste, false, "Paste", [](Stub* form) { form->Paste(); }},
    {Icons::Clear, false, "Clear", [](Stub* form) { form->Clear(); }},
    {Icons::Add, true, "Add", [](Stub* form) { form->Add(); }},
    {Icons::MoveUp, false, "Move Up", [](Stub* form) { form->MoveUp(); }},
    {Icons::MoveDown, false, "Move Down", [](Stub* form) { form->MoveDown(); }},
    {Icons::Delete, false, "Delete", [](Stub* form) { form->Delete(); }},
};

void cClassExplorer::Stub::CreateToolBar() {
    static constexpr float NoSnap = 0;
    auto* bar = new cToolBar(this, true, true);
    SetToolBar(bar);
    const auto add = [bar](auto* control) {
        bar->AddChild(control);
        return control;
    };
    const auto gap = [&] { add(new cSeparator(bar, "", true)); };
    const auto addButtons = [&](int first, int last) {
        for (int i = first; i <= last; i++) {
            const Action& a = s_Actions[i];
            m_Buttons[i] = add(new cButton(bar, a.Icon, a.HasList, a.Text, 0, 0, cRect::LeftMiddle, true, true));
        }
    };
    if (!m_IsClassExplorer) {
        addButtons(LoadAction, SaveAction);
        return;
    }
    m_ObjectBox = add(new cComboBox(bar, &m_ChosenObject, {}, "Object", 0, 0, cRect::LeftMiddle, true, true));
    gap();
    addButtons(LoadAction, SaveAction);
    gap();
    add(new cEdit(bar, &g_ManipulatorsSnap, &NoSnap, nullptr, "Snap", 0, 0, cRect::LeftMiddle, true, true));
    cList<cStr> tools;
    for (const char* name : {"No Manipulator", "Move", "Rotate", "Scale", "Universal"}) {
        tools.Add(name);
    }
    add(new cComboBox(bar, &g_ManipulatorsType, tools, "", 0, 0, cRect::LeftMiddle, true, true));
    m_LocalID = cWidgets::GetWidgetID(add(new cCheckBox(bar, &m_Local, "Local", 0, 0, cRect::LeftMiddle, true, true)));
    gap();
    addButtons(BackAction, ForwardAction);
    gap();
    addButtons(UndoAction, RedoAction);
    gap();
    addButtons(CopyAction, ClearAction);
    gap();
    addButtons(AddAction, AddAction);
    m_ClassBox = add(new cComboBox(bar, &m_Class, {}, "Class", 0, 0, cRect::LeftMiddle, true, true));
    gap();
    addButtons(MoveUpAction, DeleteAction);
    gap();
}

void cClassExplorer::Stub::UpdateButtons() {
    if (!m_IsClassExplorer || !m_ToolBar) {
        return;
    }
    const Object* object = Current();
    Row* row = Focused();
    const bool isInList = row && ListOf(*row), canAdd = row && CanBeAddedTo(row->Class);
    m_Buttons[BackAction]->m_Enabled = s_SessionHistoryIndex > 0;
    m_Buttons[ForwardAction]->m_Enabled = s_SessionHistoryIndex + 1 < s_SessionHistory_ObjIndex.Count();
    m_Buttons[UndoAction]->m_Enabled = object && object->UndoIndex >= 0;
    m_Buttons[RedoAction]->m_Enabled = object && object->UndoIndex + 1 < object->Undo.Count();
    m_Buttons[CopyAction]->m_Enabled = m_Buttons[ClearAction]->m_Enabled = row;
    m_Buttons[PasteAction]->m_Enabled = ClipBoardIsCompatible();
    m_Buttons[AddAction]->m_Enabled = m_ClassBox->m_Enabled = canAdd;
    for (const int id : {MoveUpAction, MoveDownAction, DeleteAction}) {
        m_Buttons[id]->m_Enabled = isInList;
    }
    for (const int id : {LoadAction, SaveAction}) {
        m_Buttons[id]->m_Enabled = object;
    }
    m_ChosenObject = m_ObjectIndex;
    FillClassBox(canAdd ? row : nullptr);
}

/// With what the focused list can take; the folders stand in front of the names.
void cClassExplorer::Stub::FillClassBox(Row* row) {
    cClassExpParams params;
    cList<cStr> items;
    m_ClassNames.Clear();
    if (row && row->Class->GetEditableElementExpansionList(params, -1, row->Data, cClass::ShowAll, row->ParentClass,
                                                           row->ParentName)) {
        for (int i = 0; i < params.Names.Count(); i++) {
            const int folder = params.FolderOfName[i];
            m_ClassNames.Add(params.Names[i]);
            items.Add(folder < 0 ? cStr(params.Names[i]) : cStr(params.Folders[folder]) + "/" + params.Names[i]);
        }
    }
    m_Class = std::clamp(m_Class, 0, std::max(items.Count() - 1, 0));
    m_ClassBox->SetItems(items);
}

void cClassExplorer::Stub::MsgProc(int id, int msg, const void* before, const void* after) {
    if (m_IsEnding) {
        return;
    }
    const auto sender = std::find_if(std::begin(m_Buttons), std::end(m_Buttons), [id](const cButton* button) {
        return button && cWidgets::GetWidgetID(button) == id;
    });
    if (sender != std::end(m_Buttons)) {
        s_Actions[sender - m_Buttons].Run(this);
    } else if (m_ObjectBox && id == cWidgets::GetWidgetID(m_ObjectBox)) {
        GoToObject(m_ChosenObject);
    } else if (id == m_LocalID) {
        g_ManipulatorsLocal = m_Local ? cSpace::Local : cSpace::World;
    } else if (Row* row = FindRow(id)) {
        OnControlChanged(row, msg, before, after);
    }
}

// ---- Values

void cClassExplorer::Stub::OnControlChanged(Row* row, int msg, const void* before, const void* after) {
    if (msg == cControl::PanelToggled) {
        const bool isOpen = static_cast<cPanel*>(row->Control)->m_Expanded;
        row->Class->SetFlags(static_cast<unsigned char>((row->Class->GetFlags() & ~1) | int(isOpen)));
        m_IsClassExplorer ? RequestReCreate() : AlignControls();
        return;
    }
    if (msg == cControl::Pressed) {
        row->Class->call(row->ParentClass, nullptr);
        cClassExplorer::ReCreateControls(); // it may have changed anything, and closed this form
        return;
    }
    UndoRedoNode node;
    node.Owner = row->ParentClass;
    node.Member = row->Member;
    const auto* ints = static_cast<const int*>(before);
    const auto* floats = static_cast<const float*>(before);
    switch (msg) {
    case cControl::Checked:
        node.NewBool = *static_cast<const bool*>(before); // it tells of the value as it is now
        node.OldBool = !node.NewBool;
        node.Bool = static_cast<bool*>(row->Target);
        break;
    case cControl::BindChanged:
    case cControl::Selected:
    case cControl::IntSlid:
    case cControl::IntCommitted:
        node.OldInt = *ints;
        node.NewInt = *static_cast<const int*>(after);
        node.Int = static_cast<int*>(row->Target);
        break;
    case cControl::FloatSlid:
    case cControl::FloatCommitted:
        node.OldFloat = *floats;
        node.NewFloat = *static_cast<const float*>(after);
        node.Float = static_cast<float*>(row->Target);
        break;
    case cControl::TextCommitted:
    case cControl::FileChosen:
        node.OldStr = static_cast<const char*>(before);
        node.NewStr = static_cast<const char*>(after);
        node.Str = static_cast<cStr*>(row->Target);
        break;
    default:
        return;
    }
    RecordPushed(*row);
    AddUndoRedoNode(node);
    if (row->Value) {
        WriteProperties();
    } else {
        RunSetter(*row, row->Data);
    }
}

/// The ends of a range push each other, and say nothing of it: what has changed since the last frame is recorded, too.
void cClassExplorer::Stub::RecordPushed(const Row& changed) {
    const auto range = std::find_if(m_Rows.begin(), m_Rows.end(), [&changed](const Row& row) {
        return row.Control->GetType() == SliderRangedType && row.Data == changed.Data;
    });
    if (range == m_Rows.end()) {
        return;
    }
    const bool isFloat = cStr::Compare(range->Class->GetClassName(), "_cSliderRangedF") == 0;
    for (int i = 0; i < 3; i++) {
        void* target = static_cast<char*>(range->Data) + i * int(sizeof(int));
        const int former = range->Former[i];
        std::memcpy(&range->Former[i], target, sizeof(int));
        if (target == changed.Target || range->Former[i] == former) {
            continue;
        }
        UndoRedoNode node;
        node.Owner = range->ParentClass;
        node.Member = range->Member;
        if (isFloat) {
            node.OldFloat = std::bit_cast<float>(former);
            node.NewFloat = std::bit_cast<float>(range->Former[i]);
            node.Float = static_cast<float*>(target);
        } else {
            node.OldInt = former;
            node.NewInt = range->Former[i];
            node.Int = static_cast<int*>(target);
        }
        AddUndoRedoNode(node);
    }
}

// ---- Undo

void cClassExplorer::Stub::AddUndoRedoNode(const UndoRedoNode& node) {
    Object* object = m_IsClassExplorer ? Current() : nullptr;
    if (!object) {
        return;
    }
    const int kept = object->UndoIndex + 1;
    object->Undo.RemoveAt(kept, object->Undo.Count() - kept); // a new change ends what could be done again
    object->UndoIndex = object->Undo.Add(node);
    UpdateButtons();
}

void cClassExplorer::Stub::UpdateUndoRedo(int direction) {
    Object* object = Current();
    const int index = object ? object->UndoIndex + (direction == -1 ? 0 : 1) : -1;
    if (!object || index < 0 || index >= object->Undo.Count()) {
        return;
    }
    const UndoRedoNode node = object->Undo[index];
    if (!Holds(object->Class, object->Class, node)) {
        ClearUndoRedo(); // a button of the object, or its owner, has taken the element away
        return;
    }
    object->UndoIndex += direction == -1 ? -1 : 1;
    node.Do(direction);
    ForEachForm([](Stub* stub) { stub->RequestReCreate(); }); // the other one may show the value as well
}

void cClassExplorer::Stub::ClearUndoRedo() {
    if (Object* object = Current()) {
        object->Undo.Free();
        object->UndoIndex = -1;
    }
}

void cClassExplorer::Stub::Undo() {
    ReCreateControls(-1);
}

void cClassExplorer::Stub::Redo() {
    ReCreateControls(1);
}

// ---- Files

/// The dialog lets the rest of the program go on.
///
/// @return the object that is shown, its path stored; null when it was cancelled, or is not shown any more
cClassExplorer::Object* cClassExplorer::Stub::AskForFile(bool (*dialog)(cStr* filePn), cStr* filePn) {
    const Object* asked = Current();
    if (!asked) {
        return nullptr;
    }
    cIO::SetXmlDialogInitialPath(asked->Folder);
    cIO::SetXmlDialogInitialFile(asked->FileName);
    const cClass* shown = asked->Class;
    const Guard guard(this);
    if (!dialog(filePn) || guard.IsGone()) {
        return nullptr;
    }
    Object* object = Current();
    if (!object || object->Class != shown) {
        return nullptr;
    }
    object->Folder = filePn->GetFilePath();
    object->FileName = filePn->GetFileName();
    return object;
}

void cClassExplorer::Stub::Load() {
    ClearUndoRedo(); // also when the dialog is cancelled
    UpdateButtons();
    cStr filePn;
    if (const Object* object = AskForFile(cIO::LoadXmlDialog, &filePn)) {
        cClass* shown = object->Class;
        ClearUndoRedo(); // of what was edited meanwhile
        cClassExplorer::ReCreateControls();
        shown->CallDtor(shown);
        shown->CallCtor(shown);
        shown->ReadFromFile(filePn);
    }
}

void cClassExplorer::Stub::Save() {
    cStr filePn;
    if (const Object* object = AskForFile(cIO::SaveXmlDialog, &filePn)) {
        object->Class->WriteToFile(filePn);
    }
}

// ---- Clipboard

void cClassExplorer::Stub::Copy() {
    const Row* row = Focused();
    if (!row) {
        return;
    }
    cClassExplorer_ClipBoard.ClearAll();
    void* data = row->Value ? row->Value : row->Data;
    row->Class->Save(cClassExplorer_ClipBoard, data, row->Extra);
    if (cClassExplorer_ClipBoard.GetName().IsEmpty()) { // an object names itself
        cClassExplorer_ClipBoard.SetQuoteName(GetClipBoardName(row->Class, row->Data));
    }
    UpdateButtons();
}

bool cClassExplorer::Stub::ClipBoardIsCompatible() {
    const Row* row = Focused();
    return row && GetClipBoardName(row->Class, row->Data) == cClassExplorer_ClipBoard.GetName() &&
           !cClassExplorer_ClipBoard.GetName().IsEmpty();
}

void cClassExplorer::Stub::Paste() {
    const Row* row = Focused();
    if (row && ClipBoardIsCompatible()) {
        Row element = *row;
        int value = 0;
        element.Data = element.Value ? &value : element.Data;
        ResetElement(element);
        element.Class->Load(cClassExplorer_ClipBoard, element.Data, nullptr, element.Extra);
        RunSetter(element, element.Data);
    }
}

void cClassExplorer::Stub::Clear() {
    if (const Row* row = Focused()) {
        Row element = *row;
        int value = 0; // of a property that is read by value
        element.Data = element.Value ? &value : element.Data;
        ResetElement(element);
        RunSetter(element, element.Data);
    }
}

/// To its defaults; a list is emptied.
void cClassExplorer::Stub::ResetElement(const Row& row) {
    ClearUndoRedo();
    cClassExplorer::ReCreateControls(); // of the other form, too, which may show the same
    row.Class->CallDtor(row.Data);
    row.Class->CallCtor(row.Data);
}

// ---- Lists

cClass* cClassExplorer::Stub::ListOf(const Row& row) {
    cClass* parent = row.Class->CheckDirectCasting() ? row.Class->GetParent() : nullptr;
    return parent && cClass::IsListName(parent->GetClassName()) ? parent : nullptr;
}

void cClassExplorer::Stub::Add() {
    Row* row = Focused();
    if (!row || !CanBeAddedTo(row->Class) || m_Class < 0 || m_Class >= m_ClassNames.Count()) {
        return;
    }
    const Row element = *row;
    const cStr name = m_ClassNames[m_Class];
    ClearUndoRedo();
    cClassExplorer::ReCreateControls();
    element.Class->ExpandWith(name, element.Data);
}

void cClassExplorer::Stub::MoveUp() {
    Move(-1);
}

void cClassExplorer::Stub::MoveDown() {
    Move(1);
}

void cClassExplorer::Stub::Move(int by) {
    Row* row = Focused();
    cClass* list = row ? ListOf(*row) : nullptr;
    const int place = list ? list->IndexOf(row->Data) : -1, to = place + by;
    if (place == -1 || to < 0 || to >= list->GetAmountOfElements()) {
        return;
    }
    cClassExplorer::ReCreateControls();
    list->MoveElement(place, static_cast<char>(by));
    m_FocusedElement.Index += by; // it goes along
}

void cClassExplorer::Stub::Delete() {
    Row* row = Focused();
    cClass* list = row ? ListOf(*row) : nullptr;
    const int place = list ? list->IndexOf(row->Data) : -1;
    if (place == -1) {
        return;
    }
    ClearUndoRedo();
    cClassExplorer::ReCreateControls();
    list->RemoveAt(place, 1);
}

} // namespace trellis
