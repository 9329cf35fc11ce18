#include "editor/cClassExplorer.h"

#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <random>

#include <gtest/gtest.h>

#include "editor/cClassExplorer_Stub.h"
#include "host/cShowcase.h"
#include "reflection/cXml.h"
#include "tests/ui/UiFixture.h"
#include "ui/cBindButton.h"
#include "ui/cButton.h"
#include "ui/cCheckBox.h"
#include "ui/cComboBox.h"
#include "ui/cEdit.h"
#include "ui/cEditSlider.h"
#include "ui/cEditVec.h"
#include "ui/cFilePn.h"
#include "ui/cPanel.h"
#include "ui/cSlider.h"
#include "ui/cSliderRanged.h"
#include "ui/cToolBar.h"
#include "view/cManipulator.h"

namespace trellis {

namespace {

cStr s_Chosen; // what file dialogs answer; empty: cancelled

class ClassExplorer : public Ui {
protected:
    ClassExplorer() {
        cTheme::WindowsStandard = &Classic;
        cIO::Host host;
        host.ShowLoadFile = host.ShowSaveFile = [](const cIO::FileDialog&, cStr* filePn) {
            *filePn = s_Chosen;
            return !s_Chosen.IsEmpty();
        };
        cIO::SetHost(host);
        s_Chosen = "";
        Classic.Recording = false;
        cClassExplorer_ClipBoard.ClearAll();
    }
    ~ClassExplorer() override {
        while (!cClassExplorer::GetObjects().IsEmpty()) {
            cClassExplorer::RemoveObject(cClassExplorer::GetObjects()[0].Class);
        }
        cWidgets::FreeAll();
        cTheme::WindowsStandard = nullptr;
        cIO::SetHost({});
        g_ManipulatorsType = g_ManipulatorsLocal = {};
        EXPECT_FALSE(cClassExplorer::GetVisible());
    }
    void Open() {
        cClassExplorer::ToggleClassExplorer();
        Settle();
    }
    void Settle() {
        for (int i = 0; i < 3; i++) {
            Frame();
        }
    }
    static cForm* Form() { return cForm::s_Forms.IsEmpty() ? nullptr : cForm::s_Forms[cForm::s_Forms.Count() - 1]; }

    /// A control by its caption, or a panel by its title; null when there is none.
    template <class T = cWnd> static T* Find(const char* caption) {
        cList<cWnd*> all;
        if (Form()) {
            Form()->ListChildren(&all, false);
            Form()->m_ToolBar->ListChildren(&all, false);
        }
        for (cWnd* wnd : all) {
            const auto* control = dynamic_cast<cControl*>(wnd);
            const auto* panel = dynamic_cast<cPanel*>(wnd);
            if ((control && control->m_Text == caption) || (panel && panel->m_Title == caption)) {
                if (T* found = dynamic_cast<T*>(wnd)) {
                    return found;
                }
            }
        }
        return nullptr;
    }
    /// As if it had been clicked.
    void Push(const char* caption) {
        auto* button = Find<cButton>(caption);
        ASSERT_TRUE(button && button->IsEnabled()) << caption;
        Form()->MsgProc(cWidgets::GetWidgetID(button), cControl::Pressed, nullptr, nullptr);
        Settle();
    }
    bool CanPush(const char* caption) {
        Frame();
        const auto* button = Find<cButton>(caption);
        return button && button->IsEnabled();
    }
    void Focus(const char* caption) {
        cWnd* wnd = Find(caption);
        ASSERT_TRUE(wnd) << caption;
        wnd->SetFocus(wnd);
        Frame();
    }
    static void Enter(cEdit* edit, const char* text) {
        edit->m_Buffer = text;
        edit->SetValueFromBuffer();
    }
    void Enter(const char* caption, const char* text) {
        auto* edit = Find<cEdit>(caption);
        ASSERT_TRUE(edit) << caption;
        Enter(edit, text);
        Frame();
    }
    void Slide(cSlider* slider, int code = cInput::Right) {
        slider->SetFocus(slider);
        Press(code);
    }
    void Toggle(const char* title) {
        auto* panel = Find<cPanel>(title);
        ASSERT_TRUE(panel) << title;
        panel->m_Expanded = !panel->m_Expanded;
        Form()->MsgProc(cWidgets::GetWidgetID(panel), cControl::PanelToggled, nullptr, nullptr);
        Settle();
    }
    static std::string XmlOf(cClass* object) {
        cXml xml;
        object->Save(xml, object, nullptr);
        cStr text;
        xml.GetXMLSource(&text, 0);
        return text.Text();
    }

    cShowcase object, a, b, c, menu; // longer than the forms
};

TEST(ClassExplorerNames, Labels) {
    const std::pair<const char*, const char*> rows[] = {
        {"ImportHeightMapScaleZ", "Import Height Map Scale Z"},
        {"ShowClassExplorerOnStartup", "Show Class Explorer On Startup"},
        {"Some_Name", "Some_Name"},
        {"Multithreading", "Multithreading"},
        {"&cSettings::ReloadTextures", "Reload Textures"},
        {"&cLamp::Some_Name", "Some_Name"},
        {"CV0", "CV 0"},
        {"cSpline", "cSpline"},
        {"cX11Port", "cX 11 Port"},
        {"Precompile Shaders", "Precompile Shaders"},
        {"HTTPPort80", "HTTPPort 80"},
        {"", ""},
    };
    for (const auto& [id, label] : rows) {
        EXPECT_STREQ(cClassExplorer::Stub::GetDisplayName(id), label);
    }
}

TEST_F(ClassExplorer, EveryKindIsEditedAndUndone) {
    cClassExplorer::AddObject("Showcase", &object, "");
    Open();
    const struct {
        const char* Caption;
        std::function<void(cWnd*)> Edit;
    } rows[] = {
        {"Bool",
         [](cWnd* w) {
             bool* value = static_cast<cCheckBox*>(w)->m_Value;
             *value = !*value;
             Form()->MsgProc(cWidgets::GetWidgetID(w), cControl::Checked, value, nullptr);
         }},
        {"Int", [](cWnd* w) { Enter(static_cast<cEdit*>(w), "77"); }},
        {"Float", [](cWnd* w) { Enter(static_cast<cEdit*>(w), "1.25"); }},
        {"Slider I", [this](cWnd* w) { Slide(static_cast<cSlider*>(w)); }},
        {"Slider F", [this](cWnd* w) { Slide(static_cast<cSlider*>(w)); }},
        {"Edit Slider I", [](cWnd* w) { Enter(static_cast<cEditSlider*>(w)->m_Edit, "3"); }},
        {"Edit Slider F", [this](cWnd* w) { Slide(static_cast<cEditSlider*>(w)->m_Slider); }},
        {"Ranged I", [](cWnd* w) { Enter(static_cast<cSliderRanged*>(w)->m_Lower, "20"); }}, // pushes the upper end
        {"Ranged F", [](cWnd* w) { Enter(static_cast<cSliderRanged*>(w)->m_Upper, "-2"); }},
        {"Float 2", [](cWnd* w) { Enter(static_cast<cEditVec*>(w)->m_Edits[1], "2"); }},
        {"Float 3", [](cWnd* w) { Enter(static_cast<cEditVec*>(w)->m_Edits[2], "3"); }},
        {"Float 4", [](cWnd* w) { Enter(static_cast<cEditVec*>(w)->m_Edits[3], "4"); }},
        {"Vec 2i", [](cWnd* w) { Enter(static_cast<cEditVec*>(w)->m_Edits[0], "5"); }},
        {"Vec 3i", [](cWnd* w) { Enter(static_cast<cEditVec*>(w)->m_Edits[2], "6"); }},
        {"Side", [](cWnd* w) { static_cast<cComboBox*>(w)->SelectedItem(3); }},
        {"Str", [](cWnd* w) { Enter(static_cast<cEdit*>(w), "text <&>"); }},
        {"Image File",
         [](cWnd* w) {
             s_Chosen = "/a/b.dds";
             auto* file = static_cast<cFilePn*>(w);
             file->MsgProc(cWidgets::GetWidgetID(file->m_Button), cControl::Pressed, nullptr, nullptr);
         }},
        {"Xml File", [](cWnd* w) { Enter(static_cast<cFilePn*>(w)->m_Edit, "x.Xml"); }},
    };
    const std::string start = XmlOf(&object);
    std::string former = start;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Caption);
        auto* control = Find(row.Caption);
        ASSERT_TRUE(control);
        row.Edit(control);
        Settle();
        const std::string after = XmlOf(&object);
        EXPECT_NE(after, former);
        int undone = 0;
        while (XmlOf(&object) != former && undone++ < 3) {
            Push("Undo");
        }
        EXPECT_EQ(XmlOf(&object), former);
        while (undone-- > 0) {
            Push("Redo");
        }
        EXPECT_EQ(XmlOf(&object), after);
        former = after;
    }
    while (CanPush("Undo")) {
        Push("Undo");
    }
    EXPECT_EQ(XmlOf(&object), start);
    EXPECT_EQ(Find<cEdit>("Int")->m_Buffer, "5") << "the controls are made anew";
    EXPECT_TRUE(Find<cEdit>("Fixed")->m_ReadOnly);
    object.Bool = false;
    Frame();
    EXPECT_FALSE(Find("Float")->m_Enabled || Find("Double")->m_Enabled);
    EXPECT_TRUE(Find("Int")->m_Enabled);
    object.Side = 7;
    Settle();
    auto* side = Find<cComboBox>("Side");
    EXPECT_EQ(side->m_Items.Count(), 4);
    EXPECT_EQ(side->m_Items[2], "") << "no name stands for it";
}

TEST_F(ClassExplorer, ANewEditEndsWhatCouldBeDoneAgain) {
    cClassExplorer::AddObject("Showcase", &object, "");
    Open();
    EXPECT_FALSE(CanPush("Undo") || CanPush("Redo"));
    for (const char* text : {"1", "2", "3"}) {
        Enter("Int", text);
    }
    Push("Undo");
    Push("Undo");
    EXPECT_EQ(object.Int, 1);
    EXPECT_TRUE(CanPush("Redo"));
    Enter("Int", "9");
    EXPECT_FALSE(CanPush("Redo"));
    Push("Undo");
    EXPECT_EQ(object.Int, 1);
    Push("Redo");
    EXPECT_EQ(object.Int, 9);
    Push("Double");
    EXPECT_EQ(object.Int, 18);
    EXPECT_EQ(Find<cEdit>("Int")->m_Buffer, "18");
}

TEST_F(ClassExplorer, PanelsRememberAndFocusOpensTheWay) {
    auto* crate = new cCrate;
    crate->Content.Add(new cBall);
    object.Shapes.Add(crate);
    cClassExplorer::AddObject("Showcase", &object, "");
    Open();
    EXPECT_STREQ(Form()->m_Title, "Showcase - cShowcase");
    EXPECT_TRUE(Find<cPanel>("Best")->m_Expanded && Find<cPanel>("Best")->m_Simple);
    EXPECT_TRUE(Find("Radius"));
    EXPECT_FALSE(Find("cCrate")) << "what is closed is not made";
    Toggle("Shapes");
    ASSERT_TRUE(Find("cCrate"));
    Toggle("cCrate");
    EXPECT_TRUE(Find("Size") && Find("Content"));
    crate->Name = "big";
    cClassExplorer::ReCreateControls();
    Settle();
    EXPECT_TRUE(Find("cCrate big")) << "the object's own words follow";
    cClassExplorer::ToggleClassExplorer();
    Settle();
    EXPECT_FALSE(Form());
    Open();
    EXPECT_TRUE(Find("Size")) << "as it was";

    Toggle("Color");
    EXPECT_TRUE(Find<cPanel>("Color")->m_Expanded);
    cClassExplorer::FocusObject(crate->Content.GetObject(0));
    Settle();
    EXPECT_FALSE(Find<cPanel>("Color")->m_Expanded);
    auto* ball = Find<cPanel>("cBall");
    ASSERT_TRUE(ball);
    EXPECT_TRUE(ball->m_Expanded);
    EXPECT_EQ(Form()->m_Focus, ball);
    EXPECT_GE(ball->m_Title2.y0, Form()->m_Client.y0) << "and it is to be seen";
}

TEST_F(ClassExplorer, Lists) {
    cClassExplorer::AddObject("Showcase", &object, "");
    Open();
    EXPECT_FALSE(CanPush("Add") || CanPush("Delete") || CanPush("Copy") || CanPush("Paste") || CanPush("Clear"));
    Toggle("Shapes");
    Focus("Shapes");
    EXPECT_TRUE(CanPush("Add"));
    EXPECT_FALSE(CanPush("Delete") || CanPush("Move Up"));
    auto* box = Find<cComboBox>("Class");
    ASSERT_EQ(box->m_Items.Count(), 2);
    EXPECT_EQ(box->m_Items[0], "Round/cBall");
    EXPECT_EQ(box->m_Items[1], "Angular/cCrate");
    Enter("Int", "6");
    Focus("Shapes");
    Push("Add");
    EXPECT_FALSE(CanPush("Undo")) << "what could be undone may have gone";
    Find<cComboBox>("Class")->SelectedItem(1);
    Push("Add");
    ASSERT_EQ(object.Shapes.Count(), 2);
    EXPECT_STREQ(object.Shapes.GetElementID(0), "cBall");
    EXPECT_STREQ(object.Shapes.GetElementID(1), "cCrate");
    Focus("cCrate");
    EXPECT_FALSE(CanPush("Add"));
    Push("Move Down"); // it is the last one
    Push("Move Up");
    EXPECT_STREQ(object.Shapes.GetElementID(0), "cCrate");
    EXPECT_TRUE(Form()->m_Focus && Form()->m_Focus == Find("cCrate")) << "the focus goes along";
    Push("Move Down");
    EXPECT_STREQ(object.Shapes.GetElementID(1), "cCrate");
    Push("Delete");
    EXPECT_EQ(object.Shapes.Count(), 1);
    EXPECT_FALSE(CanPush("Delete") || CanPush("Copy"));
    Focus("Shapes");
    Push("Clear");
    EXPECT_EQ(object.Shapes.Count(), 0);
    Enter("Int", "6");
    Focus("Int");
    Push("Clear");
    EXPECT_EQ(object.Int, 0) << "of its kind";
    EXPECT_FALSE(CanPush("Undo"));
}

TEST_F(ClassExplorer, Clipboard) {
    cClassExplorer::AddObject("Showcase", &object, "");
    object.Shapes.Add(new cBall);
    object.Shapes.Add(new cCrate);
    object.Shapes.SetFlags(1);
    Open();
    const char* groups[][8] = {
        {"Float", "Slider F", "Edit Slider F"},
        {"Int", "Slider I", "Edit Slider I", "Side"},
        {"Str", "Image File", "Sound File", "Xml File", "Fixed"},
        {"Bool"},
        {"Bind"},
        {"Ranged I"},
        {"Ranged F"},
        {"Float 2"},
        {"Float 3"},
        {"Plain"},
        {"Color"},
        {"Best", "cBall"},
        {"cCrate"},
        {"Shapes"},
    };
    for (const auto& from : groups) {
        for (const auto& to : groups) {
            for (const char* source : from) {
                if (!source) {
                    continue;
                }
                Focus(source);
                Push("Copy");
                if (to[0]) {
                    Focus(to[0]);
                    EXPECT_EQ(CanPush("Paste"), &from == &to) << source << " to " << to[0];
                }
            }
        }
    }
    object.SliderF = 0.75f;
    Focus("Slider F");
    Push("Copy");
    Focus("Float");
    Push("Paste");
    EXPECT_EQ(object.Float, 0.75f);
    object.Best.Name = "round";
    object.Best.Radius = 3;
    Focus("Best");
    Push("Copy");
    Focus("cBall");
    Push("Paste");
    EXPECT_EQ(object.Shapes.Get(0)->Name, "round");
    Focus("Shapes");
    Push("Copy");
    Push("Clear");
    Push("Paste");
    EXPECT_EQ(object.Shapes.Count(), 2);
    cClassExplorer_ClipBoard.ClearAll();
    EXPECT_FALSE(CanPush("Undo"));
    Focus("Str");
    EXPECT_FALSE(CanPush("Paste")) << "nothing was copied";
}

TEST_F(ClassExplorer, HistoryViewAndFocusAreKept) {
    cClassExplorer::AddObject("A", &a, "");
    cClassExplorer::AddObject("B", &b, "");
    Open();
    Focus("Str");
    Form()->m_RelClient.Translate({0, 100});
    Settle();
    const float scrolled = Form()->m_RelClient.y1;
    EXPECT_GT(scrolled, 0);
    Enter("Int", "8");
    EXPECT_FALSE(CanPush("Back") || CanPush("Forward"));
    Find<cComboBox>("Object")->SelectedItem(1);
    Settle();
    EXPECT_STREQ(Form()->m_Title, "B - cShowcase");
    EXPECT_FALSE(Form()->m_Focus == Find("Str")) << "not of this object";
    EXPECT_EQ(Form()->m_RelClient.y1, 0);
    EXPECT_FALSE(CanPush("Undo"));
    Push("Back");
    EXPECT_STREQ(Form()->m_Title, "A - cShowcase");
    EXPECT_EQ(Form()->m_Focus, Find("Str"));
    EXPECT_EQ(Form()->m_RelClient.y1, scrolled);
    EXPECT_TRUE(CanPush("Undo") && CanPush("Forward"));
    Form()->Maximize();
    Form()->Close();
    Settle();
    EXPECT_FALSE(cClassExplorer::GetVisible());
    Open();
    EXPECT_TRUE(cClassExplorer::GetVisible());
    EXPECT_EQ(Form()->m_State, cForm::Maximized);
    Form()->Maximize();
    Settle();
    EXPECT_EQ(Form()->m_Focus, Find("Str"));
    EXPECT_TRUE(CanPush("Forward"));
    Push("Undo");
    EXPECT_EQ(a.Int, 5);
    Find<cComboBox>("Object")->SelectedItem(1);
    Settle();
    EXPECT_FALSE(CanPush("Forward")) << "a choice ends the way forward";
    cClassExplorer::AddObject("C", &c, "");
    EXPECT_EQ(Find<cComboBox>("Object")->m_Items.Count(), 3);
}

TEST_F(ClassExplorer, Files) {
    cShowcase source;
    source.Int = 30;
    const std::string xml = Top("a.Xml"), dat = Top("a.dat"), other = Top("b.xml");
    ASSERT_TRUE(source.WriteToFile(xml.c_str()) && source.WriteToFile(dat.c_str()));
    cClassExplorer::AddObject("A", &a, xml.c_str());
    cClassExplorer::AddObject("B", &b, dat.c_str());
    EXPECT_EQ(a.Int, 30);
    EXPECT_EQ(b.Int, 5);
    EXPECT_EQ(cClassExplorer::GetObjects()[0].FileName, "a.Xml");
    EXPECT_EQ(cClassExplorer::GetObjects()[1].FileName, "");
    a.Int = 1;
    a.Float = 2;
    cClassExplorer::ReloadObject(&a, dat.c_str());
    EXPECT_EQ(a.Int, 1);
    cClassExplorer::ReloadObject(&a, xml.c_str());
    EXPECT_EQ(a.Int, 30);
    EXPECT_EQ(a.Float, 0) << "from the defaults on";
    Open();
    Enter("Int", "31");
    Push("Load..."); // cancelled
    EXPECT_EQ(a.Int, 31);
    EXPECT_FALSE(CanPush("Undo"));
    s_Chosen = other.c_str();
    Push("Save...");
    EXPECT_EQ(cClassExplorer::GetObjects()[0].FileName, "b.xml");
    Enter("Int", "32");
    Push("Load...");
    EXPECT_EQ(a.Int, 31);
    EXPECT_EQ(Find<cEdit>("Int")->m_Buffer, "31");
    EXPECT_STREQ(cIO::GetXmlDialogInitialFile(), "b.xml");
    Put(other, "<cShowcase><Int>7</Int><Nothing>1</Nothing></cShowcase>");
    Push("Load...");
    EXPECT_EQ(a.Int, 7);
    Put(other, "broken");
    Push("Load...");
    EXPECT_EQ(a.Int, 5);
}

/// Whatever goes away under the form: nothing is left to touch it.
TEST_F(ClassExplorer, WhatGoesAway) {
    auto going = std::make_unique<cShowcase>();
    cShowcase& rest = b;
    cClassExplorer::AddObject("Object", going.get(), "");
    cClassExplorer::AddObject("Rest", &rest, "");
    going->Shapes.Add(new cBall);
    going->Shapes.SetFlags(1);
    going->Shapes.GetObject(0)->SetFlags(1);
    Open();
    auto* name = static_cast<cEdit*>(nullptr);
    cList<cWnd*> all;
    Find<cPanel>("cBall")->ListChildren(&all, false);
    for (cWnd* wnd : all) {
        name = name ? name : dynamic_cast<cEdit*>(wnd);
    }
    ASSERT_TRUE(name);
    Enter(name, "ball");
    name->SetFocus(name);
    Push("Drop Shapes"); // the focus was in them, and so is what could be undone
    EXPECT_FALSE(Find("cBall"));
    EXPECT_FALSE(CanPush("Copy"));
    Push("Undo");
    EXPECT_FALSE(CanPush("Undo"));

    Focus("Str");
    cClassExplorer::RemoveObject(going.get());
    going.reset();
    Settle();
    EXPECT_STREQ(Form()->m_Title, "") << "it was the only one that had been visited";
    EXPECT_FALSE(Find("Str"));
    EXPECT_FALSE(CanPush("Save...") || CanPush("Copy"));
    Find<cComboBox>("Object")->SelectedItem(0);
    Settle();
    EXPECT_STREQ(Form()->m_Title, "Rest - cShowcase");
    cClassExplorer::RemoveObject(&rest);
    Settle();
    cClassExplorer::ToggleClassExplorer();
    Settle();
    Open(); // without an object
    EXPECT_TRUE(Form());
}

TEST_F(ClassExplorer, MainMenu) {
    cClassExplorer::AddObject("A", &a, "");
    cClassExplorer::AddMenuObject("Menu", &menu, "");
    cClassExplorer::AddObject("B", &b, "");
    cClassExplorer::ToggleMainMenu();
    Settle();
    EXPECT_STREQ(Form()->m_Title, "Menu");
    EXPECT_FALSE(Find("Undo"));
    EXPECT_TRUE(Find("Load..."));
    ASSERT_TRUE(Find("Shapes"));
    Enter("Int", "9");
    EXPECT_EQ(menu.Int, 9);
    EXPECT_EQ(cClassExplorer::GetObjects()[1].Undo.Count(), 0);
    EXPECT_TRUE(Find("Alpha") || Find("Modulator")) << "what is closed is made as well";
    Toggle("Color");
    EXPECT_EQ(menu.Color.GetFlags() & 1, 1);
    Push("Double");
    EXPECT_EQ(menu.Int, 18);
    cClassExplorer::AddMenuObject("B", &b, ""); // which is announced already
    Settle();
    EXPECT_STREQ(Form()->m_Title, "B");
    EXPECT_EQ(cClassExplorer::GetObjects().Count(), 3);
    cClassExplorer::AddMenuObject("Menu", &menu, "");
    cClassExplorer::RemoveObject(&menu);
    Settle();
    EXPECT_STREQ(Form()->m_Title, "");
    cClassExplorer::ToggleMainMenu();
    Settle();
}

TEST_F(ClassExplorer, TwoFormsOfOneObject) {
    for (int i = 0; i < 3; i++) {
        object.Shapes.Add(new cBall);
        object.Shapes.GetObject(i)->SetFlags(1);
    }
    object.Shapes.SetFlags(1);
    cClassExplorer::AddMenuObject("Object", &object, "");
    cClassExplorer::ToggleMainMenu();
    Settle();
    Open();
    Focus("cBall");
    Push("Delete");
    Focus("Shapes");
    Push("Clear");
    EXPECT_EQ(object.Shapes.Count(), 0);
    object.Int = 6;
    Enter("Int", "7");
    Push("Undo");
    EXPECT_EQ(Find<cEdit>("Int")->m_Buffer, "6");
    cForm::s_Forms[0]->Activate();
    EXPECT_STREQ(Form()->m_Title, "Object");
    EXPECT_EQ(Find<cEdit>("Int")->m_Buffer, "6") << "in the other one as well";
}

TEST_F(ClassExplorer, FocusOnAPartStays) {
    cClassExplorer::AddObject("Object", &object, "");
    Open();
    auto* vec = Find<cEditVec>("Float 3");
    vec->SetFocus(vec->m_Edits[1]);
    cClassExplorer::ReCreateControls();
    Settle();
    EXPECT_EQ(Form()->m_Focus, Find<cEditVec>("Float 3")->m_Edits[1]);
    Push("Copy");
    EXPECT_STREQ(cClassExplorer_ClipBoard.GetQuoteName(), "_cFloat3") << "of the whole";
    cClassExplorer::FocusObject(&object); // has no row of its own
    object.SetParent(&object);
    cClassExplorer::FocusObject(&object);
    object.SetParent(nullptr);
    EXPECT_TRUE(Find("Int"));
}

/// Nothing but their accessors reaches the values.
class cDial : public cClass {
    TRELLIS_CLASS(cDial)

public:
    static cDial* Of(void* object) { return static_cast<cDial*>(static_cast<cClass*>(object)); }

    int Low = 3, High = 70, IsOn = 0, Calls = 0;
    cStr Label;
};

void cDial::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    const auto add = [this](cClass* kind, const char* name, int (*get)(void*), void (*set)(void*, int)) {
        static int s_Range[] = {0, 100};
        RegisterOneMemberIntProperty(kind, get, set, name, s_Range, ClassName, ~0u);
    };
    add(
        new _cInt, "Low", [](void* o) { return Of(o)->Low; }, [](void* o, int v) { Of(o)->Low = std::min(v, 50); });
    add(
        new _cEditSliderI, "High", [](void* o) { return Of(o)->High; }, [](void* o, int v) { Of(o)->High = v; });
    add(
        new _cBool, "On", [](void* o) { return Of(o)->IsOn; }, [](void* o, int v) { Of(o)->IsOn = v; });
    RegisterOneMemberProperty(
        new _cStr, [](void* o) -> void* { return &Of(o)->Label; }, [](void* o, void*) { Of(o)->Calls++; }, "Label",
        nullptr, ClassName, ~0u);
}

TEST_F(ClassExplorer, PropertiesGoThroughTheirAccessors) {
    cDial dial;
    cClassExplorer::AddObject("Dial", &dial, "");
    Open();
    const auto shown = [](const char* caption) { return std::string(Find<cEdit>(caption)->m_Buffer); };
    const auto high = [] { return Find<cEditSlider>("High"); };
    const auto state = [&] { return std::vector<int>{dial.Low, dial.High, dial.IsOn, dial.Calls}; };
    EXPECT_EQ(shown("Low"), "3") << "each its own";
    EXPECT_STREQ(high()->m_Edit->m_Buffer, "70");
    Enter("Low", "9");
    Slide(high()->m_Slider);
    auto* box = Find<cCheckBox>("On");
    *box->m_Value = true;
    Form()->MsgProc(cWidgets::GetWidgetID(box), cControl::Checked, box->m_Value, nullptr);
    Enter("Label", "name");
    Settle();
    EXPECT_EQ(state(), (std::vector{9, 75, 1, 1}));
    for (const std::vector<int>& undone : {std::vector{9, 75, 1, 2}, {9, 75, 0, 2}, {9, 70, 0, 2}, {3, 70, 0, 2}}) {
        Push("Undo");
        EXPECT_EQ(state(), undone);
    }
    EXPECT_STREQ(dial.Label, "");
    EXPECT_FALSE(CanPush("Undo"));
    Push("Redo");
    EXPECT_EQ(state(), (std::vector{9, 70, 0, 2}));
    Focus("Low");
    Push("Copy");
    Focus("High");
    Push("Paste");
    EXPECT_EQ(dial.High, 9);
    Push("Clear");
    EXPECT_EQ(dial.High, 0);
    dial.Low = 4;
    Frame();
    EXPECT_EQ(shown("Low"), "4") << "it was changed elsewhere";
    Enter("Low", "80");
    Frame();
    EXPECT_EQ(shown("Low"), "50") << "what the object made of it";
    cClassExplorer::RemoveObject(&dial);
}

/// A button puts another object where there was one: the changes of the former one are not written into it.
TEST_F(ClassExplorer, UndoKnowsWhatHasGone) {
    cClassExplorer::AddObject("Object", &object, "");
    Open();
    Enter("Int", "9");
    cClassExplorer::UndoRedoNode node;
    node.Int = reinterpret_cast<int*>(&object.Str); // as if a text stood where a number was
    cClassExplorer::Object& announced = cClassExplorer::GetObjects()[0];
    announced.UndoIndex = announced.Undo.Add(node);
    object.Str = "a text that is longer than any that stands in its own handle";
    Push("Undo");
    EXPECT_STREQ(object.Str, "a text that is longer than any that stands in its own handle");
    EXPECT_FALSE(CanPush("Undo"));
    EXPECT_EQ(object.Int, 9);
}

/// In one go, as from within a callback, where what is freed waits: no place is lost, and nothing is touched any more.
TEST_F(ClassExplorer, ClosesAndOpensWithinACallback) {
    static cShowcase* s_Object;
    s_Object = &object;
    struct Closer : cWidget {
        void OnRender() override {
            if (Times-- > 0) {
                cClassExplorer::ToggleClassExplorer();
                s_Object->DropShapes();
                if (IsBack) {
                    cClassExplorer::ToggleClassExplorer();
                }
            }
        }
        int Times = 0;
        bool IsBack = false;
    };
    object.Shapes.Add(new cBall);
    object.Shapes.SetFlags(1);
    object.Shapes.GetObject(0)->SetFlags(1);
    cClassExplorer::AddObject("Object", &object, "");
    cClassExplorer::AddObject("Object again", &object, "");
    EXPECT_EQ(cClassExplorer::GetObjects().Count(), 1);
    auto* closer = new Closer;
    cWidgets::AddWidget(closer, 0);
    Open();
    Focus("Str");
    Form()->Maximize();
    Settle();
    closer->IsBack = true;
    closer->Times = 1;
    Settle();
    EXPECT_EQ(Form()->m_State, cForm::Maximized);
    EXPECT_EQ(Form()->m_Focus, Find("Str"));
    closer->IsBack = false;
    closer->Times = 1;
    Settle();
    EXPECT_FALSE(cClassExplorer::GetVisible());
}

TEST_F(ClassExplorer, RangesRightAfterARebuild) {
    object.RangedI[0] = 5;
    object.RangedI[1] = 2;
    cClassExplorer::AddObject("Object", &object, "");
    Open();
    Enter("Int", "1");
    Form()->MsgProc(cWidgets::GetWidgetID(Find("Undo")), cControl::Pressed, nullptr, nullptr);
    Enter(Find<cSliderRanged>("Ranged I")->m_Lower, "3"); // no frame in between
    EXPECT_EQ(cClassExplorer::GetObjects()[0].Undo.Count(), 1);
    Push("Undo");
    EXPECT_EQ(object.RangedI[0], 5);
    EXPECT_EQ(object.RangedI[1], 2);
    auto* file = Find<cFilePn>("Xml File");
    Focus("Int");
    file->SetFocus(file->m_Button);
    object.Files[6] = "a.Xml";
    Push("Clear");
    EXPECT_STREQ(object.Files[6], "") << "and not the one before";
    EXPECT_EQ(object.Int, 5);
}

/// The dialog lets the rest of the program go on, which closes the form.
TEST_F(ClassExplorer, DialogsThatCloseTheForm) {
    cClassExplorer::AddObject("Object", &object, "");
    for (const char* caption : {"Load...", "Save..."}) {
        Open();
        cIO::Host host;
        host.ShowLoadFile = host.ShowSaveFile = [](const cIO::FileDialog&, cStr* filePn) {
            cWidgets::FreeWidget(Form(), false);
            *filePn = "x.Xml";
            return true;
        };
        cIO::SetHost(host);
        Form()->MsgProc(cWidgets::GetWidgetID(Find(caption)), cControl::Pressed, nullptr, nullptr);
        EXPECT_FALSE(cClassExplorer::GetVisible());
    }
}

TEST_F(ClassExplorer, ToolBarMovesTheManipulators) {
    cClassExplorer::AddObject("Showcase", &object, "");
    Open();
    std::string order;
    for (const cWnd* wnd : Form()->m_ToolBar->m_Children) {
        const auto* control = dynamic_cast<const cControl*>(wnd);
        order += control->GetType() == cWnd::SeparatorType ? "| " : std::string(control->m_Text.Text()) + ", ";
    }
    EXPECT_EQ(order,
              "Object, | Load..., Save..., | Snap, , Local, | Back, Forward, | Undo, Redo, | Copy, Paste, Clear, "
              "| Add, Class, | Move Up, Move Down, Delete, | ");
    auto* local = Find<cCheckBox>("Local");
    *local->m_Value = true;
    Form()->MsgProc(cWidgets::GetWidgetID(local), cControl::Checked, local->m_Value, nullptr);
    EXPECT_EQ(g_ManipulatorsLocal, cSpace::Local);
    g_ManipulatorsLocal = cSpace::World;
    Frame();
    EXPECT_FALSE(*local->m_Value);
}

/// Anything in any order; then undoing all that can be undone gives back what there was.
TEST_F(ClassExplorer, RandomSessions) {
    cClassExplorer::AddObject("A", &a, "");
    cClassExplorer::AddObject("B", &b, "");
    Open();
    const char* count = std::getenv("TRELLIS_EDITOR_ACTIONS");
    std::mt19937 random(5);
    const auto below = [&random](int n) { return int(random() % unsigned(n)); };
    std::map<cClass*, std::string> starts{{&a, XmlOf(&a)}, {&b, XmlOf(&b)}};
    for (int i = 0, actions = count ? std::atoi(count) : 2000; i < actions; i++) {
        cList<cWnd*> all;
        Form()->ListChildren(&all, false);
        Form()->m_ToolBar->ListChildren(&all, false);
        cWnd* wnd = all[below(all.Count())];
        const auto& objects = cClassExplorer::GetObjects();
        cClass* shown = Form()->m_Title == "A - cShowcase" ? objects[0].Class : objects[1].Class;
        if (auto* edit = dynamic_cast<cEdit*>(wnd); edit && edit->IsEnabled() && !edit->m_ReadOnly) {
            Enter(edit, cStr::Format("%d", below(40) - 20));
        } else if (auto* slider = dynamic_cast<cSlider*>(wnd)) {
            Slide(slider, below(2) ? cInput::Right : cInput::Left);
        } else if (auto* box = dynamic_cast<cComboBox*>(wnd); box && !box->m_Items.IsEmpty()) {
            box->SelectedItem(below(box->m_Items.Count()));
        } else if (auto* check = dynamic_cast<cCheckBox*>(wnd)) {
            *check->m_Value = !*check->m_Value;
            Form()->MsgProc(cWidgets::GetWidgetID(check), cControl::Checked, check->m_Value, nullptr);
        } else if (dynamic_cast<cPanel*>(wnd) && below(2)) {
            Form()->MsgProc(cWidgets::GetWidgetID(wnd), cControl::PanelToggled, nullptr, nullptr);
            static_cast<cPanel*>(wnd)->m_Expanded = below(3) > 0;
        } else if (auto* button = dynamic_cast<cButton*>(wnd); button && button->IsEnabled()) {
            const cStr& text = button->m_Text; // nothing undoes these
            const bool isForGood =
                text == "Double" || text == "Drop Shapes" || text == "Move Up" || text == "Move Down";
            if (!isForGood || objects[shown == &a ? 0 : 1].Undo.IsEmpty()) {
                Form()->MsgProc(cWidgets::GetWidgetID(button), cControl::Pressed, nullptr, nullptr);
            }
        }
        wnd = cWidgets::GetWidgetID(wnd) != -1 ? wnd : nullptr;
        if (wnd && wnd->m_Parent && below(2)) {
            wnd->SetFocus(wnd);
        }
        Frame();
        a.Shapes.RemoveAt(20, 1000);
        if (objects[shown == &a ? 0 : 1].Undo.IsEmpty()) { // a new beginning
            starts[shown] = XmlOf(shown);
        }
        if (i % 500 == 499) {
            for (int k = 0; k < 2; k++) {
                Find<cComboBox>("Object")->SelectedItem(k);
                Frame();
                while (CanPush("Undo")) {
                    Push("Undo");
                }
                cClass* root = objects[k].Class;
                ASSERT_EQ(XmlOf(root), starts[root]) << i;
            }
        }
    }
}

} // namespace

} // namespace trellis
