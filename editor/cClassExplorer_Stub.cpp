// The form: which object it shows, its controls, and the element that has the focus.
#include "editor/cClassExplorer_Stub.h"

#include "reflection/cClass.h"
#include "ui/cButton.h"
#include "ui/cComboBox.h"
#include "ui/cEdit.h"
#include "ui/cPanel.h"
#include "ui/cToolBar.h"
#include "ui/cWidgets.h"
#include "view/cManipulator.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace trellis {

namespace {

constexpr unsigned char OpenFlag = 1; // of an object: its panel is open
constexpr unsigned s_All = cClass::ShowAll;

/// "CastShadows" of "&cLamp::CastShadows".
const char* BehindColons(const char* id) {
    const char* colons = std::strstr(id, "::");
    return colons ? colons + 2 : id;
}

} // namespace

// ---- The form

/// Where the two forms keep their places.
struct cClassExplorer::Stub::Geometry {
    bool& IsMaximized;
    cVec2& MinStateRelPos;
    int& MinStateAlign;
    cVec2 &NormalStateRelPosTl, &NormalStateRelPosBr;
    int &NormalStateAlignTl, &NormalStateAlignBr;
    float& ToolBarScrollPos;
};

cClassExplorer::Stub::Geometry cClassExplorer::Stub::GetGeometry() const {
    if (m_IsClassExplorer) {
        return {s_ClassExplorerIsMaximized,         s_ClassExplorerMinStateRelPos,
                s_ClassExplorerMinStateAlign,       s_ClassExplorerNormalStateRelPosTl,
                s_ClassExplorerNormalStateRelPosBr, s_ClassExplorerNormalStateAlignTl,
                s_ClassExplorerNormalStateAlignBr,  s_ClassExplorerToolBarScrollPos};
    }
    return {s_MainMenuIsMaximized,         s_MainMenuMinStateRelPos,      s_MainMenuMinStateAlign,
            s_MainMenuNormalStateRelPosTl, s_MainMenuNormalStateRelPosBr, s_MainMenuNormalStateAlignTl,
            s_MainMenuNormalStateAlignBr,  s_MainMenuToolBarScrollPos};
}

cClassExplorer::Stub::Stub(bool isClassExplorer, const cRect& bounds, const cTheme* theme)
    : cForm(nullptr, "", bounds, theme), m_IsClassExplorer(isClassExplorer) {
    m_FitWidth = true;
    const Geometry g = GetGeometry();
    m_State = g.IsMaximized ? Maximized : Normal;
    m_MinOffset = g.MinStateRelPos;
    m_MinAlign = g.MinStateAlign;
    m_Offset0 = g.NormalStateRelPosTl;
    m_Offset1 = g.NormalStateRelPosBr;
    m_Align0 = g.NormalStateAlignTl;
    m_Align1 = g.NormalStateAlignBr;
    if (m_IsClassExplorer) {
        if (s_SessionHistory_ObjIndex.IsEmpty() && !s_Objects.IsEmpty()) {
            s_SessionHistory_ObjIndex.Add(0);
            s_SessionHistoryIndex = 0;
        }
        m_ObjectIndex = s_SessionHistoryIndex >= 0 ? s_SessionHistory_ObjIndex[s_SessionHistoryIndex] : -1;
    }
}

void cClassExplorer::Stub::Open(int id) {
    m_ID = id;
    CreateToolBar();
    m_ToolBar->m_Scroll = GetGeometry().ToolBarScrollPos;
    ListObjects();
    ApplyCurIndex();
    Activate();
}

void cClassExplorer::Stub::End() {
    if (std::exchange(m_IsEnding, true)) {
        return;
    }
    StoreView();
    StoreFocus();
    const Geometry g = GetGeometry();
    g.IsMaximized = m_State == Maximized || (m_State == Minimized && m_PrevState == Maximized);
    g.MinStateRelPos = m_MinOffset;
    g.MinStateAlign = m_MinAlign;
    g.NormalStateRelPosTl = m_Offset0;
    g.NormalStateRelPosBr = m_Offset1;
    g.NormalStateAlignTl = m_Align0;
    g.NormalStateAlignBr = m_Align1;
    g.ToolBarScrollPos = m_ToolBar ? m_ToolBar->m_Scroll : g.ToolBarScrollPos;
    int& id = m_IsClassExplorer ? s_ClassExplorerID : s_MainMenuID;
    id = id == m_ID ? -1 : id;
    Detach();
}

void cClassExplorer::Stub::OnRender() {
    if (m_IsEnding) {
        return;
    }
    if (const Object* object = Current(); m_IsStale || m_Shown != (object ? object->Class : nullptr)) {
        StoreView();
        StoreFocus();
        ApplyCurIndex();
    } else if (m_ReCreate) {
        ReCreateControls(0);
    }
    m_Local = g_ManipulatorsLocal == cSpace::Local;
    DoExchange();
    cForm::OnRender();
    if (m_ScrollToFocus && m_Focus && !m_Focus->m_Bounds.IsEmpty()) {
        m_ScrollToFocus = false;
        ScrollToFocusedControl();
    }
}

cClassExplorer::Object* cClassExplorer::Stub::Current() {
    if (!m_IsClassExplorer) {
        m_ObjectIndex = s_MainMenuObjIndex == -1 ? -1 : s_Objects.Count() - 1 - s_MainMenuObjIndex;
    }
    return m_ObjectIndex >= 0 && m_ObjectIndex < s_Objects.Count() ? &s_Objects[m_ObjectIndex] : nullptr;
}

cClassExplorer::Object* cClassExplorer::Stub::Shown() {
    return m_Shown ? Find(m_Shown) : nullptr;
}

// ---- Controls

cStr cClassExplorer::Stub::GetDisplayName(const char* id) {
    const char* rest = BehindColons(id);
    if (std::strchr(rest, '_')) {
        return rest;
    }
    const auto isUpper = [](char c) { return c >= 'A' && c <= 'Z'; };
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    cStr out;
    for (int i = 0; rest[i]; i++) {
        const char c = rest[i], before = i > 0 ? rest[i - 1] : ' ';
        const bool isWord = (isUpper(c) && !isUpper(before)) || (isDigit(c) && !isDigit(before));
        if (isWord && before != ' ' && !(i == 1 && before == 'c')) { // "cSpline" stays whole
            out.Append(' ');
        }
        out.Append(c);
    }
    return out;
}

cStr cClassExplorer::Stub::LabelOf(cClass* elementClass, const char* name) {
    cStr label = GetDisplayName(name);
    if (cClass::IsPointerName(elementClass->GetClassName())) {
        if (cClass* target = elementClass->GetElementClass(0)) {
            label += cStr(" - ") + target->GetClassName();
        }
    }
    bool isFull = false;
    const cStr text = elementClass->ToString(&isFull);
    if (text.IsEmpty()) {
        return label;
    }
    if (isFull || label.IsEmpty()) {
        return text;
    }
    return label + (text[0] == ' ' ? "" : " ") + text;
}

void cClassExplorer::Stub::CreateControls() {
    m_Rows.Clear();
    m_Panel = nullptr;
    m_Index = -1;
    if (const Object* object = Current()) {
        CreateControls(this, nullptr, object->Class, static_cast<void*>(object->Class), nullptr, "", false);
    }
    AlignControls();
}

void cClassExplorer::Stub::CreateControls(cWnd* parent, cClass* parentClass, cClass* elementClass, void* data,
                                          void* extra, const char* name, bool simple) {
    if (!elementClass) {
        return;
    }
    if (elementClass->CheckDirectCasting()) {
        if (!data) {
            return; // of a property that points nowhere at the moment
        }
        elementClass = static_cast<cClass*>(data);
    }
    const cStr label = LabelOf(elementClass, name ? name : "");
    Row row{-1, nullptr, elementClass, parentClass, data, extra, name, m_Index, data, 0, {}};
    const cOneClassMemberStorage* member = parentClass ? parentClass->GetElementCMS(m_Index) : nullptr;
    if (member && member->HasAccessors()) {
        row.Member = member;
    }
    const int count = elementClass->GetAmountOfEditableElements(data, s_All);
    if (count == 0) {
        CreateLeaf(row, parent, label);
        return;
    }
    auto* panel = new cPanel(parent, label, 0, 0, true, true);
    panel->m_Expanded = panel->m_Headless || (elementClass->GetFlags() & OpenFlag);
    if (simple) {
        panel->SetSimple(true);
    }
    AddRow(row, panel, 0, data);
    m_Panel = m_Panel ? m_Panel : panel;
    if (!panel->m_Expanded && m_IsClassExplorer) {
        return; // what is not seen costs nothing
    }
    for (int n = 0; n < count; n++) {
        if (elementClass->CheckIfElementInvisible(n, data, s_All)) {
            continue;
        }
        m_Index = n;
        CreateControls(panel, elementClass, elementClass->GetEditableElementClass(n, data, s_All),
                       elementClass->GetEditableElementData(n, data, s_All),
                       elementClass->GetEditableElementExtra(n, data, s_All),
                       elementClass->GetEditableElementView(n, data, nullptr, s_All),
                       elementClass->CheckIfElementSimple(n, data, s_All));
    }
    panel->CalcRelBounds();
}

/// @param control  to be added to its parent; a part of another one is there already
void cClassExplorer::Stub::AddRow(Row row, cWnd* control, int part, void* target) {
    row.ID = part > 0 ? cWidgets::GetWidgetID(control) : control->m_Parent->AddChild(control, false);
    row.Part = part;
    row.Control = control;
    row.Target = target;
    m_Rows.Add(row);
}

cClassExplorer::Stub::Row* cClassExplorer::Stub::FindRow(int id) {
    for (Row& row : m_Rows) {
        if (row.ID == id) {
            return &row;
        }
    }
    return nullptr;
}

void cClassExplorer::Stub::AlignControls() {
    if (m_Panel) {
        m_Panel->CalcRelBounds();
    }
}

void cClassExplorer::Stub::Detach() {
    m_Rows.Clear();
    cList<cWnd*> all;
    ListChildren(&all, false);
    for (cWnd* wnd : all) {
        if (auto* control = dynamic_cast<cControl*>(wnd)) {
            control->Unbind();
        }
    }
    m_Values.clear();
}

void cClassExplorer::Stub::ReCreateControls(int undo) {
    const cVec2 view(m_RelClient.x0, m_RelClient.y1);
    if (undo != 0) {
        StoreView();
        UpdateUndoRedo(undo);
    }
    m_ReCreate = false;
    Detach();
    if (cWnd* former = std::exchange(m_Panel, nullptr)) {
        FreeChild(former);
    }
    CreateControls();
    AskForRows(); // `OnProcess` waits for the frame, as it may have brought us here
    LoadViewIndex(view);
    RefreshFocus();
}

/// An object can enable its rows, and open them to writing, by what it holds at the moment.
void cClassExplorer::Stub::AskForRows() {
    for (Row& row : m_Rows) {
        if (!row.ParentClass) {
            continue;
        }
        const char* name = BehindColons(row.ParentName);
        row.Control->m_Enabled = row.ParentClass->IsEnabled(name);
        if (row.Control->GetType() == EditType) {
            static_cast<cEdit*>(row.Control)->m_ReadOnly = row.ParentClass->IsReadOnly(name);
        }
        if (row.Control->GetType() == SliderRangedType) {
            std::memcpy(row.Former, row.Data, sizeof(row.Former));
        }
        if (row.Value && row.Part == 0) {
            const int now = *static_cast<int*>(row.Member->Locate(row.ParentClass));
            const bool isBool = row.Control->GetType() == CheckBoxType; // which reads the lowest byte alone
            *row.Value = row.Former[0] = isBool ? int(now != 0) : now;
        }
    }
}

/// What controls have written to their own values.
void cClassExplorer::Stub::WriteProperties() {
    for (int i = 0; i < m_Rows.Count(); i++) { // each may take them away
        Row& row = m_Rows[i];
        if (row.Value && row.Part == 0 && *row.Value != row.Former[0]) {
            row.Former[0] = *row.Value;
            RunSetter(row, row.Value);
        }
    }
}

void cClassExplorer::Stub::RunSetter(const Row& row, void* value) {
    if (row.Member) {
        row.Member->RunSetter(row.ParentClass, value);
    }
}

void cClassExplorer::Stub::DoExchange() {
    WriteProperties();
    AskForRows();
    for (int i = 0; i < m_Rows.Count(); i++) { // each may take them away
        const Row& row = m_Rows[i];
        if (row.ParentClass && row.Part == 0) {
            row.Class->OnProcess();
        }
    }
}

// ---- Focus

void cClassExplorer::Stub::SetFocus(cWnd* control) {
    cForm::SetFocus(control);
    const Row* row = nullptr;
    for (const cWnd* w = control; w && !row && !m_IsEnding; w = w->m_Parent) {
        row = FindRow(cWidgets::GetWidgetID(w));
    }
    if (!row) {
        return; // of the tool bar, whose buttons work on the element that had it
    }
    if (const Object* object = Current()) {
        object->Class->AndFlags(object->Class, OpenFlag);
    }
    m_FocusedElement = {row->Class, row->Data, row->Extra, row->Index, row->ParentClass, row->Part};
    UpdateButtons();
}

cClassExplorer::Stub::Row* cClassExplorer::Stub::Focused() {
    for (Row& row : m_Rows) {
        const Focus& f = m_FocusedElement;
        if (f.Data && row.Class == f.Class && row.Data == f.Data && row.Index == f.Index &&
            row.ParentClass == f.Panel) {
            return &row;
        }
    }
    return nullptr;
}

void cClassExplorer::Stub::StoreFocus() {
    if (Object* object = Shown()) {
        object->FocusedElement = m_FocusedElement;
    }
}

/// The controls of the object are made after it.
void cClassExplorer::Stub::RestoreFocus() {
    const Object* object = Current();
    m_FocusedElement = object ? object->FocusedElement : Focus();
}

/// The controls are new: the focus goes to that of the same element.
void cClassExplorer::Stub::RefreshFocus() {
    const Row* row = Focused();
    if (!row) {
        m_FocusedElement = {};
    } else if (!m_Focus) { // else it is on the tool bar
        const Row* part = row + m_FocusedElement.Part;
        part = part < m_Rows.end() && part->Data == row->Data && part->Class == row->Class ? part : row;
        cForm::SetFocus(part->Control->GetTabStop() ? part->Control : nullptr);
    }
    UpdateButtons();
}

void cClassExplorer::Stub::FocusObject(cClass* object) {
    const Object* current = Current();
    if (!current || !object) {
        return;
    }
    current->Class->AndFlags(current->Class, 2); // closes all
    int depth = 0;                               // an object may be its own parent
    for (cClass* c = object; c && depth < cClass::MaxFileDepth; c = c->GetParent(), depth++) {
        c->SetFlags(c->GetFlags() | OpenFlag);
    }
    ReCreateControls(0);
    for (const Row& row : m_Rows) {
        if (row.Class == object && row.Control != m_Panel) { // headings stand at the object's address as well
            SetFocus(row.Control);
            m_ScrollToFocus = true;
            return;
        }
    }
    LoadViewIndex({0, 0}); // it is the one that is shown
}

// ---- Objects

void cClassExplorer::Stub::ApplyCurIndex() {
    const Object* object = Current();
    m_Title = object ? object->Name : cStr();
    if (object && m_IsClassExplorer) {
        m_Title += cStr(" - ") + object->Class->GetClassName();
    }
    m_Shown = object ? object->Class : nullptr;
    m_IsStale = false;
    RestoreFocus();
    ReCreateControls(0);
    LoadViewIndex(object ? object->View : cVec2(0, 0));
}

void cClassExplorer::Stub::GoToObject(int index) {
    if (index < 0 || index >= s_Objects.Count()) {
        return;
    }
    StoreView();
    StoreFocus();
    ClearForwardSessionHistory();
    s_SessionHistory_ObjIndex.Add(index);
    s_SessionHistoryIndex = s_SessionHistory_ObjIndex.Count() - 1;
    m_ObjectIndex = index;
    ApplyCurIndex();
}

void cClassExplorer::Stub::ClearForwardSessionHistory() {
    const int kept = s_SessionHistoryIndex + 1;
    s_SessionHistory_ObjIndex.RemoveAt(kept, s_SessionHistory_ObjIndex.Count() - kept);
}

void cClassExplorer::Stub::GoBack() {
    Visit(s_SessionHistoryIndex - 1);
}

void cClassExplorer::Stub::GoForward() {
    Visit(s_SessionHistoryIndex + 1);
}

void cClassExplorer::Stub::Visit(int place) {
    if (place < 0 || place >= s_SessionHistory_ObjIndex.Count()) {
        return;
    }
    StoreView();
    StoreFocus();
    s_SessionHistoryIndex = place;
    m_ObjectIndex = s_SessionHistory_ObjIndex[place];
    ApplyCurIndex();
}

void cClassExplorer::Stub::StoreView() {
    if (Object* object = Shown()) {
        object->View = {m_RelClient.x0, m_RelClient.y1};
    }
}

void cClassExplorer::Stub::LoadViewIndex(const cVec2& view) {
    m_RelClient.Translate({view.x - m_RelClient.x0, view.y - m_RelClient.y1});
}

void cClassExplorer::Stub::ForgetView(const cClass* object) {
    if (m_Shown == object) {
        m_FocusedElement = {};
        LoadViewIndex({0, 0});
    }
}

void cClassExplorer::Stub::OnObjectAdded() {
    ListObjects();
    if (m_ObjectIndex == -1) {
        GoToObject(s_Objects.Count() - 1);
    }
}

void cClassExplorer::Stub::OnObjectRemoved(int index, const cClass* object) {
    if (m_Shown == object) {
        m_Shown = nullptr;
        m_IsStale = true;
    }
    if (m_IsClassExplorer) { // the menu looks for its object in each frame
        const bool isCurrent = m_ObjectIndex == index;
        m_ObjectIndex -= m_ObjectIndex > index;
        if (isCurrent) {
            m_ObjectIndex = s_SessionHistoryIndex >= 0 ? s_SessionHistory_ObjIndex[s_SessionHistoryIndex] : -1;
            ApplyCurIndex();
        }
    }
    ListObjects();
}

void cClassExplorer::Stub::ListObjects() {
    cList<cStr> names;
    for (const Object& object : s_Objects) {
        names.Add(object.Name);
    }
    if (m_ObjectBox) {
        m_ObjectBox->SetItems(names);
    }
}

} // namespace trellis
