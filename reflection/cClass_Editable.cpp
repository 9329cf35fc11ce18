// The member table as an editor sees it: properties, nodes, and a place for adding.
#include "reflection/cClass.h"

namespace trellis {
namespace {

constexpr unsigned ShowBoth = cClass::ShowProperties | cClass::ShowNodes;

} // namespace

bool cClass::CheckIfElementIsNode(int i, void* data) {
    cClass* object = Target(data);
    cClass* elementClass = object->GetElementClass(i);
    void* element = elementClass ? object->GetElementPtr(i, data) : nullptr;
    return element && element != data && elementClass->GetAmountOfEditableElements(element, ShowAll) > 0;
}

/// Whether an element counts among the nodes rather than among the properties.
bool cClass::IsShownAsNode(int i, void* data) {
    cClass* object = Target(data);
    const bool isObject = data && CheckDirectCasting();
    if (isObject && object->ForceProperty()) {
        return false;
    }
    if (isObject && !object->GetParent()) {
        return true; // a root has no row of its own, so everything in it opens one
    }
    cClass* elementClass = object->GetElementClass(i);
    if (elementClass && elementClass->CheckDirectCasting()) {
        auto* element = static_cast<cClass*>(object->GetElementPtr(i, data));
        if (element && element->ForceProperty()) {
            return false;
        }
    }
    return CheckIfElementIsNode(i, data);
}

int cClass::GetAmountOfEditableElements(void* data, unsigned flags) {
    cClass* object = Target(data);
    const int elements = object->GetAmountOfElements();
    if (data && CheckDirectCasting() && (flags & ShowProperties) && object->ForceProperty()) {
        flags |= ShowAdd;
    }
    int count = 0;
    if ((flags & ShowBoth) == ShowBoth) {
        count = elements;
    } else {
        for (int i = 0; i < elements; i++) {
            count += (flags & (IsShownAsNode(i, data) ? ShowNodes : ShowProperties)) != 0;
        }
    }
    const int rules = object->GetExpansionRules();
    const int add = (flags & ShowAdd) ? 1 : 0;
    if (elements < 1 && (flags & ShowBoth) < ShowBoth) {
        return rules ? add : 0;
    }
    if (rules & ExpandAnywhere) {
        return count ? count : add;
    }
    return rules ? count + add : count;
}

int cClass::GetIndexOfEditableElement(int n, void* data, unsigned flags) {
    const int elements = Target(data)->GetAmountOfElements();
    if (n < 0) {
        return -1;
    }
    if ((flags & ShowBoth) == ShowBoth) {
        return n < elements ? n : -1;
    }
    for (int i = 0, shown = 0; i < elements; i++) {
        if ((flags & (IsShownAsNode(i, data) ? ShowNodes : ShowProperties)) && shown++ == n) {
            return i;
        }
    }
    return -1;
}

cClass* cClass::GetEditableElementClass(int n, void* data, unsigned flags) {
    const int i = GetIndexOfEditableElement(n, data, flags);
    return i < 0 ? nullptr : Target(data)->GetElementClass(i);
}

void* cClass::GetEditableElementData(int n, void* data, unsigned flags) {
    const int i = GetIndexOfEditableElement(n, data, flags);
    return i < 0 ? nullptr : Target(data)->GetElementPtr(i, data);
}

void* cClass::GetEditableElementExtra(int n, void* data, unsigned flags) {
    const int i = GetIndexOfEditableElement(n, data, flags);
    return i < 0 ? nullptr : Target(data)->GetElementExtraPtr(i);
}

bool cClass::CheckIfEditableElementIsNode(int n, void* data, unsigned flags) {
    const int i = GetIndexOfEditableElement(n, data, flags);
    return i >= 0 && CheckIfElementIsNode(i, data);
}

const char* cClass::GetEditableElementName(int n, void* data, unsigned flags) {
    const int i = GetIndexOfEditableElement(n, data, flags);
    return i < 0 ? "add..." : Target(data)->GetElementID(i);
}

const char* cClass::GetEditableElementView(int n, void* data, const char* context, unsigned flags) {
    const int i = GetIndexOfEditableElement(n, data, flags);
    return i < 0 ? "add..." : Target(data)->GetElementView(i, context);
}

bool cClass::CheckIfElementReadOnly(int n, void* data, unsigned flags) {
    const int i = GetIndexOfEditableElement(n, data, flags);
    const cOneClassMemberStorage* member = i < 0 ? nullptr : Target(data)->GetElementCMS(i);
    return member && member->ReadOnly;
}

bool cClass::CheckIfElementSimple(int n, void* data, unsigned flags) {
    const int i = GetIndexOfEditableElement(n, data, flags);
    const cOneClassMemberStorage* member = i < 0 ? nullptr : Target(data)->GetElementCMS(i);
    return member && member->Simple;
}

bool cClass::CheckIfElementInvisible(int n, void* data, unsigned flags) {
    const int i = GetIndexOfEditableElement(n, data, flags);
    const cOneClassMemberStorage* member = i < 0 ? nullptr : Target(data)->GetElementCMS(i);
    return member && member->Invisible;
}

bool cClass::GetEditableElementExpansionList(cClassExpParams& params, int n, void* data, unsigned flags, cClass* parent,
                                             const char* parentMember) {
    cClass* object = Target(data);
    const int rules = object->GetExpansionRules();
    if (data && CheckDirectCasting()) {
        CurrentContext = object;
    }
    const bool atAdd = GetIndexOfEditableElement(n, data, flags) == -1;
    if (!(rules & ExpandAnywhere) && !(atAdd && (rules & (ExpandWithBase | ExpandWithDerived)))) {
        return false;
    }
    const char* baseName = object->GetExpansionBaseClass();
    const cOneClassStorage* base = baseName ? TRELLIS_CGARB.FindClass(baseName) : nullptr;
    if (!base) {
        return false;
    }
    const auto offer = [&](const char* name) {
        if (parent && !parent->AskParentForUsingExpansionClass(parentMember, name)) {
            return;
        }
        const cOneClassStorage* storage = TRELLIS_CGARB.FindClass(name);
        int folder = -1;
        if (storage && !storage->Label.IsEmpty()) {
            for (folder = params.Folders.Count() - 1; folder >= 0; folder--) {
                if (storage->Label == params.Folders[folder]) {
                    break;
                }
            }
            if (folder < 0) {
                folder = params.Folders.Add(storage->Label.Text());
            }
        }
        params.Names.Add(name);
        params.FolderOfName.Add(folder);
    };
    params.Names.Clear();
    params.Folders.Clear();
    params.FolderOfName.Clear();
    if (rules & ExpandWithBase) {
        offer(baseName);
    }
    if (rules & ExpandWithDerived) {
        for (const cStr& name : base->Children) {
            if (!(name == baseName)) {
                offer(name.Text());
            }
        }
    }
    if (params.Folders.Count() < 2) { // one folder is no folder
        params.Folders.Clear();
        for (int& folder : params.FolderOfName) {
            folder = -1;
        }
    }
    return !params.Names.IsEmpty();
}

} // namespace trellis
