#include "editor/cClassExplorer.h"

#include "editor/cClassExplorer_Stub.h"
#include "reflection/cClass.h"
#include "reflection/cXml.h"
#include "render/cRender.h"
#include "ui/cTheme.h"
#include "ui/cWidgets.h"
#include "view/cViewer.h"

#include <algorithm>

namespace trellis {

constinit cXml cClassExplorer_ClipBoard;

namespace {

constexpr int s_FormLayer = 3;

bool IsXml(const char* path) {
    return cStr::CompareNoCase(cStr(path).GetFileExtension(), "Xml") == 0;
}

/// A folder alone may be given as well.
void StorePath(cClassExplorer::Object* object, const char* path) {
    const cStr pn(path);
    const bool isFolder = pn.GetFileExtension().IsEmpty();
    object->Folder = isFolder ? pn : pn.GetFilePath();
    object->FileName = IsXml(path) ? pn.GetFileName() : cStr();
}

} // namespace

void cClassExplorer::UndoRedoNode::Do(int direction) const {
    const bool isOld = direction == -1;
    if (Member && Member->IntGetter) {
        int value = Bool ? int(isOld ? OldBool : NewBool) : isOld ? OldInt : NewInt;
        Member->RunSetter(Owner, &value);
        return;
    }
    if (Bool) {
        *Bool = isOld ? OldBool : NewBool;
    } else if (Int) {
        *Int = isOld ? OldInt : NewInt;
    } else if (Float) {
        *Float = isOld ? OldFloat : NewFloat;
    } else if (Str) {
        *Str = isOld ? OldStr : NewStr;
    }
    if (Member) {
        Member->RunSetter(Owner, Member->Locate(Owner));
    }
}

// ---- Objects

void cClassExplorer::AddObject(const char* name, cClass* object, const char* path) {
    if (Add(name, object, path) && s_MainMenuObjIndex != -1) { // it goes on showing the same one
        s_MainMenuObjIndex++;
    }
}

void cClassExplorer::AddMenuObject(const char* name, cClass* object, const char* path) {
    Add(name, object, path);
    if (const Object* added = Find(object)) { // it may have been announced already
        s_MainMenuObjIndex = s_Objects.Count() - 1 - int(added - s_Objects.Data());
    }
}

bool cClassExplorer::Add(const char* name, cClass* object, const char* path) {
    Init();
    if (!object || Find(object)) {
        return false;
    }
    Object added;
    added.Name = name;
    added.Class = object;
    StorePath(&added, path);
    if (!added.FileName.IsEmpty()) {
        object->ReadFromFile(path);
    }
    s_Objects.Add(added);
    if (Stub* stub = GetStub(s_ClassExplorerID)) {
        stub->OnObjectAdded();
    }
    return true;
}

void cClassExplorer::RemoveObject(const cClass* object) {
    const Object* found = Find(object);
    if (!found) {
        return;
    }
    const int index = int(found - s_Objects.Data());
    ReCreateControls();
    if (s_MainMenuObjIndex == s_Objects.Count() - 1 - index) {
        s_MainMenuObjIndex = -1;
    } else if (s_MainMenuObjIndex > s_Objects.Count() - 1 - index) {
        s_MainMenuObjIndex--;
    }
    s_Objects.RemoveAt(index);
    for (int i = s_SessionHistory_ObjIndex.Count(); i-- > 0;) {
        int& visited = s_SessionHistory_ObjIndex[i];
        if (visited == index) {
            s_SessionHistory_ObjIndex.RemoveAt(i);
            s_SessionHistoryIndex -= i <= s_SessionHistoryIndex;
        } else if (visited > index) {
            visited--;
        }
    }
    s_SessionHistoryIndex = std::max(s_SessionHistoryIndex, s_SessionHistory_ObjIndex.IsEmpty() ? -1 : 0);
    ForEachForm([&](Stub* stub) { stub->OnObjectRemoved(index, object); });
}

void cClassExplorer::ReloadObject(cClass* object, const char* path) {
    Init();
    Object* found = Find(object);
    if (!found || !IsXml(path)) {
        return;
    }
    ReCreateControls();
    StorePath(found, path);
    found->Undo.Free(); // what could be done again would write into elements that may have gone
    found->UndoIndex = -1;
    found->View = cVec2(0, 0);
    found->FocusedElement = {};
    ForEachForm([object](Stub* stub) { stub->ForgetView(object); });
    object->CallDtor(object);
    object->CallCtor(object);
    object->ReadFromFile(path);
}

cClassExplorer::Object* cClassExplorer::Find(const cClass* object) {
    for (Object& o : s_Objects) {
        if (o.Class == object) {
            return &o;
        }
    }
    return nullptr;
}

// ---- Forms

cClassExplorer::Stub* cClassExplorer::GetStub(int id) {
    return static_cast<Stub*>(cWidgets::GetWidget(id));
}

void cClassExplorer::FocusObject(cClass* object) {
    if (Stub* stub = GetStub(s_ClassExplorerID)) {
        stub->FocusObject(object);
    }
}

void cClassExplorer::ReCreateControls() {
    ForEachForm([](Stub* stub) {
        stub->Detach();
        stub->RequestReCreate();
    });
}

void cClassExplorer::Toggle(int* id, bool isClassExplorer) {
    if (Stub* form = GetStub(*id)) {
        form->End(); // it may have to wait for its deletion
        *id = -1;
        cWidgets::FreeWidget(form, true);
        return;
    }
    const cTheme* theme = cTheme::WindowsStandard ? cTheme::WindowsStandard : cTheme::Fragile;
    if (!theme) {
        return;
    }
    const cViewer* viewer = cRender::GetViewer();
    const cRect screen = viewer ? viewer->Viewport : cRect(0, 0, 640, 480);
    const float margin = 8, width = std::min(screen.Width() - 2 * margin, isClassExplorer ? 480.0f : 420.0f);
    const float left = isClassExplorer ? screen.x0 + margin : screen.x1 - margin - width;
    auto* form = new Stub(isClassExplorer, {left, screen.y0 + margin, left + width, screen.y1 - margin}, theme);
    *id = cWidgets::AddWidget(form, s_FormLayer);
    form->Open(*id);
}

void cClassExplorer::ToggleClassExplorer() {
    Toggle(&s_ClassExplorerID, true);
}

void cClassExplorer::ToggleMainMenu() {
    Toggle(&s_MainMenuID, false);
}

bool cClassExplorer::GetVisible() {
    bool isVisible = false;
    ForEachForm([&isVisible](const Stub* stub) { isVisible = isVisible || stub->IsVisible(); });
    return isVisible;
}

} // namespace trellis
