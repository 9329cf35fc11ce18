// Which control an element gets: by the name of its kind.
#include "editor/cClassExplorer_Stub.h"

#include "reflection/cClass.h"
#include "reflection/cEnum.h"
#include "ui/cBindButton.h"
#include "ui/cButton.h"
#include "ui/cCheckBox.h"
#include "ui/cColorSwatch.h"
#include "ui/cComboBox.h"
#include "ui/cEdit.h"
#include "ui/cEditSlider.h"
#include "ui/cEditVec.h"
#include "ui/cFilePn.h"
#include "ui/cImageSwatch.h"
#include "ui/cLabel.h"
#include "ui/cSeparator.h"
#include "ui/cSlider.h"
#include "ui/cSliderRanged.h"

#include <algorithm>

namespace trellis {

namespace {

constexpr int s_MaxEnumValue = 10000; // beyond, a list of lines is none to choose from

/// What a control is made of. Its place is the panel's to find.
struct Source {
    cWnd* Parent;
    const char* Label;
    void* Data;
    void* Extra;
};

template <class T> T* As(void* p) {
    return static_cast<T*>(p);
}

template <class Control, class... Args> cWnd* New(const Source& s, Args... args) {
    return new Control(s.Parent, args..., s.Label, 0, 0, cRect::LeftTop, true, true);
}

template <class T> cWnd* NewEdit(const Source& s) {
    if constexpr (std::is_same_v<T, cStr>) {
        return New<cEdit>(s, As<cStr>(s.Data));
    } else {
        return New<cEdit>(s, As<T>(s.Data), As<const T>(nullptr), As<const T>(nullptr));
    }
}

/// The ends stand behind each other; without them the slider does not move.
template <class Control, class T> cWnd* NewSlider(const Source& s) {
    const T* ends = As<const T>(s.Extra);
    return New<Control>(s, As<T>(s.Data), ends, ends ? ends + 1 : nullptr);
}

template <class T> cWnd* NewRanged(const Source& s) {
    return New<cSliderRanged>(s, As<T>(s.Data));
}

template <class T, int N> cWnd* NewVec(const Source& s) {
    return New<cEditVec>(s, As<T>(s.Data), N);
}

template <int Type> cWnd* NewFile(const Source& s) {
    return new cFilePn(s.Parent, Type, As<cStr>(s.Data), s.Label, 0, 0, cRect::LeftTop, true, true);
}

/// A line for each value up to the largest; one that no name stands for is empty.
cWnd* NewIndex(const Source& s) {
    cList<cStr> names;
    if (const auto* values = static_cast<const cEnum*>(s.Extra)) {
        int count = 0;
        for (const int value : values->Values) {
            count = value < s_MaxEnumValue ? std::max(count, value + 1) : count;
        }
        for (int i = 0; i < count; i++) {
            names.Add(values->GetName(i));
        }
    }
    return new cComboBox(s.Parent, As<int>(s.Data), names, s.Label, 0, 0, cRect::LeftTop, true, true);
}

enum ValueType { Nothing, Bool, Int, Float, Text };

constexpr struct Maker {
    const char* Kind;
    ValueType Type; // of what the control writes
    int Count;
    cWnd* (*Make)(const Source& s);
} s_Makers[] = {
    {"_cFloat", Float, 1, NewEdit<float>},
    {"_cInt", Int, 1, NewEdit<int>},
    {"_cBool", Bool, 1, [](const Source& s) { return New<cCheckBox>(s, As<bool>(s.Data)); }},
    {"_cStr", Text, 1, NewEdit<cStr>},
    {"_cBind", Int, 1, [](const Source& s) { return New<cBindButton>(s, As<int>(s.Data)); }},
    {"_cSliderI", Int, 1, NewSlider<cSlider, int>},
    {"_cSliderF", Float, 1, NewSlider<cSlider, float>},
    {"_cEditSliderI", Int, 1, NewSlider<cEditSlider, int>},
    {"_cEditSliderF", Float, 1, NewSlider<cEditSlider, float>},
    {"_cSliderRangedI", Int, 3, NewRanged<int>},
    {"_cSliderRangedF", Float, 3, NewRanged<float>},
    {"_cButton", Nothing, 0, [](const Source& s) { return New<cButton>(s); }},
    {"_cIndex", Int, 1, NewIndex},
    {"_cSeparator", Nothing, 0, [](const Source& s) -> cWnd* { return new cSeparator(s.Parent, s.Label, true); }},
    {"_cFloat2", Float, 2, NewVec<float, 2>},
    {"_cFloat3", Float, 3, NewVec<float, 3>},
    {"_cFloat4", Float, 4, NewVec<float, 4>},
    {"_cVec2i", Int, 2, NewVec<int, 2>},
    {"_cVec3i", Int, 3, NewVec<int, 3>},
    {"_cImageFile", Text, 1, NewFile<cFilePn::Image>},
    {"_cModelFile", Text, 1, NewFile<cFilePn::Model>},
    {"_cAnimFile", Text, 1, NewFile<cFilePn::Anim>},
    {"_cCameraFile", Text, 1, NewFile<cFilePn::Camera>},
    {"_cBspFile", Text, 1, NewFile<cFilePn::Bsp>},
    {"_cSoundFile", Text, 1, NewFile<cFilePn::Sound>},
    {"_cXmlFile", Text, 1, NewFile<cFilePn::Xml>},
    {"_cImageID", Nothing, 0, [](const Source& s) { return New<cImageSwatch>(s, As<const int>(s.Data)); }},
    {"_cColor", Nothing, 0, [](const Source& s) { return New<cColorSwatch>(s, As<const float>(s.Data)); }},
    {"_cLabel", Nothing, 0, [](const Source& s) { return New<cLabel>(s, As<const cStr>(s.Data)); }},
};

/// Null for a kind that no control is for.
const Maker* FindMaker(cClass* kind) {
    const char* name = kind->GetClassName();
    for (const Maker& maker : s_Makers) {
        if (name && cStr::Compare(maker.Kind, name) == 0) {
            return &maker;
        }
    }
    return nullptr;
}

} // namespace

void cClassExplorer::Stub::CreateLeaf(Row row, cWnd* parent, const char* label) {
    const Maker* maker = FindMaker(row.Class);
    if (!maker || (!row.Data && maker->Type != Nothing)) {
        return;
    }
    if (row.Member && row.Member->IntGetter) {
        const bool isNumber = maker->Count == 1 && (maker->Type == Bool || maker->Type == Int);
        if (!isNumber && cStr::Compare(maker->Kind, "_cImageID") != 0) {
            return; // an int cannot hold it
        }
        row.Value = &m_Values.emplace_back(0);
    }
    cWnd* control = maker->Make({parent, label, row.Value ? row.Value : row.Data, row.Extra});
    AddRow(row, control, 0, row.Data);

    // The parts speak for themselves: each of a vector writes its own number.
    int parts = 0;
    const auto addPart = [&](cWnd* part, int number) {
        AddRow(row, part, ++parts, static_cast<char*>(row.Data) + number * int(sizeof(float)));
    };
    static_assert(sizeof(float) == sizeof(int));
    if (const auto* vec = dynamic_cast<cEditVec*>(control)) {
        for (int i = 0; i < vec->m_Count; i++) {
            addPart(vec->m_Edits[i], i);
        }
    } else if (const auto* ranged = dynamic_cast<cSliderRanged*>(control)) {
        addPart(ranged->m_Lower, 1);
        addPart(ranged->m_Slider, 0);
        addPart(ranged->m_Upper, 2);
    } else if (const auto* slider = dynamic_cast<cEditSlider*>(control)) {
        addPart(slider->m_Edit, 0);
        addPart(slider->m_Slider, 0);
    } else if (const auto* file = dynamic_cast<cFilePn*>(control)) {
        addPart(file->m_Edit, 0);
        addPart(file->m_Button, 0);
    }
}

/// Whether an object, or something in it, has a value where a change was, and of its type.
bool cClassExplorer::Stub::Holds(cClass* object, void* data, const UndoRedoNode& node) {
    const ValueType type = node.Bool ? Bool : node.Int ? Int : node.Float ? Float : Text;
    const void* const targets[] = {nullptr, node.Bool, node.Int, node.Float, node.Str};
    const int count = object->GetAmountOfElements();
    for (int i = 0; i < count; i++) {
        cClass* c = object->GetElementClass(i);
        void* element = c ? object->GetElementPtr(i, data) : nullptr;
        if (!element || element == data) {
            continue;
        }
        if (c->CheckDirectCasting()) {
            if (Holds(static_cast<cClass*>(element), element, node)) {
                return true;
            }
            continue;
        }
        if (node.Member && (node.Owner != object || node.Member != object->GetElementCMS(i))) {
            continue;
        }
        const Maker* maker = FindMaker(c);
        for (int k = 0; maker && maker->Type == type && k < maker->Count; k++) {
            if (static_cast<char*>(element) + k * int(sizeof(float)) == targets[type]) {
                return true;
            }
        }
    }
    return false;
}

// Copied values are known by this name. Sliders and files exchange theirs with plain numbers and texts.
cStr cClassExplorer::Stub::GetClipBoardName(cClass* elementClass, void* data) {
    static constexpr struct {
        const char *Kind, *Name;
    } folded[] = {
        {"_cSliderF", "_cFloat"},  {"_cEditSliderF", "_cFloat"}, {"_cSliderI", "_cInt"},   {"_cEditSliderI", "_cInt"},
        {"_cIndex", "_cInt"},      {"_cImageFile", "_cStr"},     {"_cModelFile", "_cStr"}, {"_cAnimFile", "_cStr"},
        {"_cCameraFile", "_cStr"}, {"_cBspFile", "_cStr"},       {"_cSoundFile", "_cStr"}, {"_cXmlFile", "_cStr"},
    };
    if (elementClass->CheckDirectCasting() && data) {
        elementClass = static_cast<cClass*>(data);
    }
    const char* name = elementClass->GetClassName();
    for (const auto& f : folded) {
        if (name && cStr::Compare(f.Kind, name) == 0) {
            return f.Name;
        }
    }
    return name;
}

} // namespace trellis
