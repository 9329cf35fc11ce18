// Objects as trees, files and texts.
#include "files/cFile.h"
#include "files/cIO.h"
#include "foundation/cLog.h"
#include "reflection/cClass.h"
#include "reflection/cClass_Walk.h"
#include "reflection/cErrorPager.h"
#include "reflection/cXml.h"

#include <memory>

namespace trellis {
namespace {

bool IsDeeperThan(const cXml& node, int depth) {
    if (depth < 1) {
        return true;
    }
    for (int i = 0; i < node.GetNSubQuotes(); i++) {
        const cXml* child = node.GetSubQuote(i);
        if (child && IsDeeperThan(*child, depth - 1)) {
            return true;
        }
    }
    return false;
}

struct CurrentFile { // `CurrentSaveFile` for the time of one load or save
    explicit CurrentFile(const char* path) { cClass::CurrentSaveFile = path; }
    ~CurrentFile() { cClass::CurrentSaveFile = nullptr; }
};

} // namespace

void cClass::Save(cXml& node, void* data, void* extra) {
    cClass* object = Target(data);
    const Walk walk(object, data);
    CurrentContext = object;
    const int count = walk.Count();
    node.ReserveSubQuotes(count);
    for (int i = 0; i < count; i++) {
        const cOneClassMemberStorage* member = walk.Record(i);
        if (member && member->NoSave) {
            continue;
        }
        auto* element = walk.Table() ? new cXml(member->Name) : new cXml(walk.ID(i));
        node.AddSubQuote(element);
        void* address = walk.Ptr(i);
        void* elementExtra = walk.Extra(i);
        cClass* elementClass = address ? walk.Class(i) : nullptr;
        if (!elementClass) {
            element->Assign_string("NULL");
            continue;
        }
        element->SetList(IsListName(elementClass->GetClassName()));
        elementClass->Save(*element, address, elementExtra ? elementExtra : extra);
    }
    if (node.GetQuoteName()[0] == 0) { // a member keeps the tag its owner gave it; only a root is named here
        node.SetQuoteName(GetClassName());
    }
}

bool cClass::Load(cXml& node, void* data, cErrorPager* pager, void* extra) {
    cClass* object = Target(data);
    const char* className = object->GetClassName();
    const bool isList = IsListName(className);
    if (isList || IsPointerName(className)) {
        CallDtor(data);
        CallCtor(data);
    }
    const Walk walk(object, data);
    CurrentContext = object;
    const bool sameTable = walk.Table() && walk.Table() == GetClassStorage();
    int guess = 0;
    for (int i = 0; i < node.GetNSubQuotes(); i++) {
        cXml* element = node.GetSubQuote(i);
        if (!element) {
            continue;
        }
        Walk::Found found;
        if (isList ? !walk.Make(element->GetName(), &found) : !walk.FindOrMake(element->GetName(), guess, &found)) {
            if (pager) {
                pager->xml_print(node, "Unknown identifier %s of class %s.\n", element->GetQuoteName(),
                                 className ? className : "");
            }
            continue;
        }
        guess = found.Index + 1;
        if (!found.Class || !found.Ptr || found.Ptr == data) {
            continue; // a property that points nowhere at the moment, a button or a heading
        }
        if (CheckDirectCasting() && found.Class->CheckDirectCasting()) {
            static_cast<cClass*>(found.Ptr)->SetParent(object);
        }
        found.Class->Load(*element, found.Ptr, pager, found.Extra ? found.Extra : extra);
        const cOneClassMemberStorage* member =
            sameTable ? walk.Table()->Members[found.Index] : GetElementStorage(element->GetQuoteName());
        if (member) {
            member->RunSetter(data, found.Ptr);
        }
    }
    return true; // a value that cannot be read costs a warning and nothing else
}

void cClass::LoadMember(cXml& node, void* data, int index, cErrorPager* pager, void* extra) {
    cClass* object = Target(data);
    cClass* elementClass = object->GetElementClass(index);
    void* address = object->GetElementPtr(index, data);
    if (elementClass && address && address != data) {
        void* elementExtra = object->GetElementExtraPtr(index);
        elementClass->Load(node, address, pager, elementExtra ? elementExtra : extra);
        LoadMemberDirect(address, data, index);
    }
}

void cClass::LoadMemberDirect(void* value, void* data, int index) {
    if (const cOneClassMemberStorage* member = Target(data)->GetElementCMS(index)) {
        member->RunSetter(data, value);
    }
}

/// What could be parsed is taken, whatever becomes of its elements.
void cClass::LoadTree(cXml& document, const char* path, bool report) {
    cErrorPager pager(report);
    const CurrentFile current(path);
    Load(document, this, &pager, nullptr);
}

bool cClass::ReadFromFile(const char* path) {
    cLog::Message("Loading Xml file \"%s\"...", path);
    cFile file;
    return cIO::LoadFile(path, &file, true) && ReadFromFile(file);
}

bool cClass::ReadFromFile(const cFile& file) {
    if (!CheckDirectCasting()) {
        return false;
    }
    cXml document;
    if (!document.ReadFromFile(file, MaxFileDepth)) {
        return false;
    }
    LoadTree(document, "", true);
    return true;
}

bool cClass::SafeReadFromFile(const char* path) {
    if (!CheckDirectCasting()) {
        return false;
    }
    cXml document;
    if (!document.ReadFromFile(path, MaxFileDepth)) {
        return false;
    }
    LoadTree(document, path, false);
    return true;
}

bool cClass::ReadFromString(const cStr& text) {
    cFile file;
    file.WriteBytes(text.Text(), text.Length());
    file.SetPos(0);
    return ReadFromFile(file);
}

bool cClass::WriteToFile(const char* path) {
    cFile file;
    return WriteToFile(&file) && cIO::SaveFile(path, file, false);
}

bool cClass::WriteToString(cStr* text) {
    text->Clear();
    cFile file;
    if (!WriteToFile(&file)) {
        return false;
    }
    text->SetLength(file.GetSize());
    file.SetPos(0); // the cursor stands behind what was written
    file.ReadBytes(text->Data(), file.GetSize());
    return true;
}

bool cClass::WriteToFile(cFile* file) {
    file->Clear();
    if (!CheckDirectCasting()) {
        return false;
    }
    const CurrentFile current("");
    cXml saved;
    Save(saved, this, nullptr);
    saved.SetList(IsListName(GetClassName())); // as `Save` does for members
    if (ShouldSaveInShortForm()) {
        // Defaults are stored nowhere: they are what a fresh object says now. It takes on the shape of this object, so
        // that its lists are as long, and is then reset to defaults without losing the elements of its lists.
        const std::unique_ptr<cClass> fresh(new_element());
        cErrorPager pager(true);
        if (fresh->Load(saved, fresh.get(), &pager, nullptr)) {
            cClassList_CtorNoClear = true;
            cClassPtr_CtorNoClear = true;
            fresh->CallDtor(fresh.get());
            fresh->CallCtor(fresh.get());
            cClassList_CtorNoClear = false;
            cClassPtr_CtorNoClear = false;
        }
        cXml defaults;
        fresh->Save(defaults, fresh.get(), nullptr);
        bool changed;
        do {
            changed = false;
            cClass_ShortForm(&saved, &defaults, &changed);
        } while (changed);
    }
    SaveInShortForm = false;
    if (IsDeeperThan(saved, MaxFileDepth)) {
        cClassPrintError("nested too deep to be read back: \"%s\"", saved.GetQuoteName());
        return false;
    }
    saved.WriteToFile(file);
    return true;
}

// By position, not by name: two trees of one class in step. Names may stand twice. Only in lists can the trees be out
// of step, behind a null element, which a fresh list lacks: elements of two classes have nothing to compare. And a list
// that is empty differs from one that is not by default, though both have an empty body.
void cClass_ShortForm(cXml* saved, cXml* defaults, bool* changed) {
    for (int i = 0; i < saved->GetNSubQuotes();) {
        cXml* a = i < defaults->GetNSubQuotes() ? saved->GetSubQuote(i) : nullptr;
        cXml* b = a ? defaults->GetSubQuote(i) : nullptr;
        if (!b || (saved->IsList() && !(a->GetName() == b->GetName()))) {
            i++;
        } else if (a->GetNSubQuotes() > 0) {
            cClass_ShortForm(a, b, changed);
            i++;
        } else if (a->GetBody() == b->GetBody() && !saved->IsList() && !(a->IsList() && b->GetNSubQuotes() > 0)) {
            saved->DelSubQuote(i);
            defaults->DelSubQuote(i);
            *changed = true;
        } else {
            i++;
        }
    }
}

void cClass::DeleteDefaultSubFields(cXml& node, void* data, void* extra) {
    if (!CheckDirectCasting() || extra || static_cast<cClass*>(data)->GetAmountOfElements() == 0) {
        return;
    }
    const bool shortForm = SaveInShortForm;
    SaveInShortForm = false;
    const std::unique_ptr<cClass> fresh(Target(data)->new_element());
    cXml defaults;
    fresh->Save(defaults, fresh.get(), nullptr);
    SaveInShortForm = shortForm;
    for (int i = 0; i < node.GetNSubQuotes();) {
        const cXml* element = node.GetSubQuote(i);
        const cXml* other = element ? defaults.GetSubQuote(element->GetQuoteName()) : nullptr;
        if (other && element->GetNSubQuotes() == 0 && element->GetBody() == other->GetBody()) {
            node.DelSubQuote(i);
        } else {
            i++;
        }
    }
}

} // namespace trellis
