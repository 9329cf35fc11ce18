#include "tests/reflection/Lamp.h"

#include "foundation/cLog.h"
#include "reflection/cErrorPager.h"
#include "reflection/cXml.h"

#include <gtest/gtest.h>

#include <memory>

using namespace trellis;

namespace {

// Constructed ahead of main and destroyed behind the palette's users: the leak checker watches both ends.
cLamp s_Static;

/// Shows the members of one mask only.
class cMasked : public cLamp {
public:
    unsigned GetClassMask() override { return Mask; }
    unsigned Mask = ~0u;
};

class cNoStorage : public cClass {
public:
    const char* GetClassName() override { return "cNoStorage"; }
    cOneClassStorage* GetClassStorage() override { return nullptr; }
};

class cFirst : public cClass {
    TRELLIS_CLASS(cFirst)

public:
    void CustomCtor() override { LinkedInTime = static_cast<cClass&>(Shade).GetParent() == this; }
    cColorEdit Shade;
    bool LinkedInTime = false;
};

void cFirst::RegisterMembers() {
    cClassMembers members(this);
    if (members.Begin()) {
        members.AddObject(Shade, "Shade");
    }
}

std::string Names(cClass& object, unsigned flags) {
    std::string names;
    for (int i = 0; i < object.GetAmountOfEditableElements(&object, flags); i++) {
        names += object.GetEditableElementName(i, &object, flags);
        names += ' ';
    }
    return names;
}

} // namespace

TEST(Class, ConstructionResetsInheritedMembersFirstAndRunsDefaultsLast) {
    cLamp::Trace.clear();
    {
        cLamp lamp;
        EXPECT_EQ(lamp.Power, 40);
        EXPECT_EQ(lamp.Height, 1.5f);
        EXPECT_FALSE(lamp.On);
        EXPECT_EQ(lamp.Shade.Color, cColor::White);
        lamp.Power = 3;
        lamp.Room = "hall";
        lamp.CallCtor(&lamp);
        EXPECT_EQ(lamp.Power, 40);
        EXPECT_TRUE(lamp.Room.IsEmpty());
        EXPECT_EQ(lamp.GetElementID(0), std::string("On")) << "the base's members stand in front";
        EXPECT_STREQ(lamp.GetElementHostClass("On"), "cLight");
        EXPECT_STREQ(lamp.GetElementHostClass("Height"), "cLamp");
        EXPECT_TRUE(lamp.HasParentClass("cLight"));
        EXPECT_FALSE(lamp.HasParentClass("cRoom"));
        EXPECT_EQ(static_cast<cClass&>(lamp.Shade).GetParent(), &lamp);
        EXPECT_EQ(lamp.Shade.GetRoot(), &lamp);
    }
    EXPECT_EQ(cLamp::Trace, "++-");
    EXPECT_TRUE(TRELLIS_CGARB.FindClass("cLight")->CheckChildren("cLamp"));
    EXPECT_FALSE(TRELLIS_CGARB.FindClass("cLight")->CheckChildren("cLam"));
    EXPECT_TRUE(TRELLIS_CGARB.FindClass("cLamp")->CheckAll("Ligh", true, false, false));
}

TEST(Class, ParentsInARingHaveNoRoot) {
    for (const int count : {1, 2, 3, 7}) {
        cLamp ring[7];
        for (int i = 0; i < count; i++) {
            ring[i].SetParent(&ring[(i + 1) % count]);
        }
        // One that is its own parent ends a chain.
        EXPECT_EQ(ring[0].Shade.GetRoot(), count == 1 ? &ring[0] : nullptr) << count;
        EXPECT_EQ(ring[0].GetRoot(), count == 1 ? &ring[0] : nullptr) << count;
        EXPECT_FALSE(ring[0].Shade.ForceProperty()) << count;
        EXPECT_GT(ring[0].GetAmountOfEditableElements(&ring[0], cClass::ShowAll), 0) << count;
    }
}

TEST(Class, TheFirstObjectOfAClassIsLinkedAsAllOthers) {
    const cFirst first;
    EXPECT_TRUE(first.LinkedInTime);
}

TEST(Class, TheTableReadDirectlyGivesWhatTheFunctionsGive) {
    /// Not plain: the engine goes through the virtual functions.
    class cSlowLamp : public cLamp {
    public:
        int GetRealMaskedPosition(int i) override { return cLamp::GetRealMaskedPosition(i); }
        cClass* new_element() override { return new cSlowLamp; }
    };
    cLamp lamps[2];
    cSlowLamp slow;
    cClass* objects[] = {&lamps[0], &slow};
    ASSERT_TRUE(lamps[0].HasPlainElements());
    ASSERT_FALSE(slow.HasPlainElements());
    std::string seen[2];
    for (int i = 0; i < 2; i++) {
        cClass& object = *objects[i];
        cLamp::Trace.clear();
        object.ReadFromString(
            "<x><Dim>3</Dim><Power>9</Power><Shade><Color>1 0 0 1</Color></Shade><Looks>1</Looks></x>");
        object.FullCopy(&object, nullptr, &lamps[1], &lamps[1], nullptr, nullptr);
        cStr text;
        object.WriteToString(&text);
        object.SetFlags(7);
        static_cast<cLamp&>(object).Shade.SetFlags(5);
        object.AndFlags(&object, 6);
        EXPECT_EQ(object.GetFlags(), 6);
        EXPECT_EQ(static_cast<cLamp&>(object).Shade.GetFlags(), 4);
        object.CallOnProcess(&object);
        object.CallCtor(&object);
        seen[i] = cLamp::Trace + text.Text() + object.GetStringField("Power").Text();
    }
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_EQ(lamps[1].Power, 9);
}

TEST(Class, ModesReachOneMemberOnly) {
    cLamp lamp;
    EXPECT_TRUE(lamp.GetElementStorage("Looks")->NoSave) << "no data";
    EXPECT_FALSE(lamp.GetElementStorage("Shade")->NoSave);
    const cOneClassMemberStorage* count = lamp.GetElementStorage("Count");
    EXPECT_TRUE(count->NoSave && count->Static);
    EXPECT_EQ(count->Address(&lamp), &cLamp::Count);
    EXPECT_FALSE(lamp.GetElementStorage("Dim")->NoSave);
    EXPECT_TRUE(lamp.GetElementStorage("Shade")->Auto);
    EXPECT_FALSE(lamp.GetElementStorage("Height")->Auto);
}

TEST(Class, MaskedIndexesSkipAndBiasedOnesDoNot) {
    cMasked lamp;
    const int dim = 7; // On Power Room Height Looks Shade Count Dim Blink
    ASSERT_EQ(lamp.GetAmountOfElements(), 9);
    lamp.Mask = 2;
    EXPECT_EQ(lamp.GetAmountOfElements(), 9) << "members of all masks";
    lamp.Mask = 4;
    EXPECT_EQ(lamp.GetAmountOfElements(), 8);
    EXPECT_STREQ(lamp.GetElementID(dim), "&cLamp::Blink");
    EXPECT_EQ(lamp.GetRealMaskedPosition(dim), dim + 1);
    EXPECT_EQ(lamp.GetRealMaskedPosition(cClass::RawIndex + dim), dim);
    EXPECT_EQ(lamp.GetRealMaskedPosition(8), 0) << "past the end";
}

TEST(Class, ElementsByNameIndexAndInfo) {
    cLamp lamp;
    cClass* kind = nullptr;
    void* data = nullptr;
    void* extra = nullptr;
    ASSERT_TRUE(lamp.GetElementByName("Power", &kind, &data, &extra, &lamp));
    EXPECT_STREQ(kind->GetClassName(), "_cSliderI");
    EXPECT_EQ(data, &lamp.Power);
    EXPECT_EQ(static_cast<int*>(extra)[1], 100);
    EXPECT_FALSE(lamp.GetElementByName("power", &kind, &data, &extra, &lamp));
    EXPECT_FALSE(lamp.GetElementByName(nullptr, &kind, &data, &extra, &lamp));
    EXPECT_STREQ(lamp.GetElementID(99), "");
    EXPECT_EQ(lamp.GetElementPtr(-1, &lamp), nullptr);

    EXPECT_EQ(lamp.GetIntField("Power", 9), 40);
    EXPECT_EQ(lamp.GetIntField("Room", 9), 9) << "not a number";
    EXPECT_EQ(lamp.GetFloatField("Nothing", 2.5f), 2.5f);
    EXPECT_EQ(lamp.GetStringField("Height"), "1.500");

    cLamp::Trace.clear();
    lamp.Dim = 5;
    const cOneClassMemberInfo info = lamp.GetElementInfo("Dim", &lamp);
    EXPECT_EQ(info.GetMask(), 2u);
    cXml node;
    info.Save(&node);
    EXPECT_STREQ(node.Get_string(), "5");
    node.Assign_int(6);
    info.Load(&node, nullptr);
    EXPECT_EQ(lamp.Dim, 6);
    EXPECT_EQ(cLamp::Trace, "d6");
    EXPECT_EQ(lamp.GetElementInfo(99, &lamp).GetClass(), nullptr);
}

TEST(Class, CopiesMeetByNameAndKindAndRunSetters) {
    cLamp lamp;
    lamp.Power = 12;
    lamp.Dim = 3;
    lamp.Shade.Color = cColor::Red;
    cLamp::Trace.clear();
    const std::unique_ptr<cLamp> clone(static_cast<cLamp*>(lamp.Clone()));
    EXPECT_EQ(clone->Power, 12);
    EXPECT_EQ(clone->Dim, 3) << "properties travel through their accessors";
    EXPECT_EQ(clone->Shade.Color, cColor::Red);
    EXPECT_EQ(cLamp::Trace, "+p12d3");
    EXPECT_EQ(clone->Shade.cClass::GetParent(), clone.get());

    cLight light;
    lamp.FullCopy(&lamp, nullptr, &light, &light, nullptr, nullptr);
    EXPECT_EQ(light.Power, 12) << "what they have in common";
}

TEST(Class, EditorSeesPropertiesNodesAndAPlaceForAdding) {
    cRoom room;
    auto* light = new cLamp;
    room.Lights.Add(light);
    EXPECT_EQ(Names(room, cClass::ShowNodes), "Name Lights ") << "everything in an object without a parent is a node";
    EXPECT_EQ(Names(room, cClass::ShowProperties), "");
    EXPECT_EQ(Names(*light, cClass::ShowNodes), "Shade ");
    EXPECT_EQ(Names(*light, cClass::ShowProperties), "On Power Room Height Looks Count Dim &cLamp::Blink ");
    cClassList<cLight>& list = room.Lights;
    EXPECT_EQ(list.GetAmountOfEditableElements(&list, cClass::ShowNodes | cClass::ShowAdd), 2);
    EXPECT_STREQ(list.GetEditableElementName(1, &list, cClass::ShowAll), "add...");
    EXPECT_EQ(list.GetEditableElementClass(1, &list, cClass::ShowAll), nullptr);

    cClassExpParams menu;
    EXPECT_FALSE(room.GetEditableElementExpansionList(menu, 0, &room, cClass::ShowAll, nullptr, nullptr));
    EXPECT_FALSE(list.GetEditableElementExpansionList(menu, 0, &list, cClass::ShowAll, nullptr, nullptr));
    ASSERT_TRUE(list.GetEditableElementExpansionList(menu, 1, &list, cClass::ShowAll, nullptr, nullptr));
    ASSERT_EQ(menu.Names.Count(), 1) << "derived classes, not the base";
    EXPECT_STREQ(menu.Names[0], "cLamp");
    EXPECT_EQ(menu.Folders.Count(), 0);
    EXPECT_TRUE(room.ContainsMember(&light->Shade));
    EXPECT_FALSE(light->ContainsMember(&room));
}

TEST(Class, RegistrationKeepsTheFirstPrototypeAndLabel) {
    class cDotted : public cLight {
    public:
        const char* GetClassName() override { return "cDotted.x"; }
        cClass* new_element() override { return new cDotted; }
    } model;
    cClass_RegClassAuto(&model, "Lights");
    EXPECT_EQ(cClass_GetClassFromPalette("cDotted.x"), nullptr) << "generated names do not register themselves";
    cClass_RegClass(&model, "");
    cClass* prototype = cClass_GetClassFromPalette("cDotted.x");
    ASSERT_NE(prototype, nullptr);
    EXPECT_NE(prototype, &model);
    cClass_RegClass(&model, "First");
    cClass_RegClass(&model, "Second");
    EXPECT_EQ(cClass_GetClassFromPalette("cDotted.x"), prototype);
    EXPECT_EQ(TRELLIS_CGARB.FindClass("cDotted.x")->Label, "First");
    EXPECT_EQ(cClass_GetClassFromPalette("cNever"), nullptr);
    EXPECT_EQ(TRELLIS_CGARB.FindClass("cNever"), nullptr) << "asking makes nothing";
    EXPECT_NE(TRELLIS_CGARB.GetClass("cNever"), nullptr);
    EXPECT_EQ(cClass_GetClassFromPalette("cNever"), nullptr);
}

TEST(Class, WarningsHaveTheirWords) {
    cNoStorage object;
    const auto logged = [](auto act) {
        cLog::GetLogMutable().Clear();
        act();
        return std::string(cLog::GetLog().Text());
    };
    const std::string head = "--------------------------------------------------\r\nClass engine warning!\r\n";
    EXPECT_EQ(logged([&] { object.GetAmountOfElements(); }), head + "Undefined class found: \"cNoStorage\"\r\n\r\n");
    EXPECT_EQ(logged([&] { object.HasParentClass("x"); }), head + "class not registered: \"cNoStorage\"\r\n");
    cLamp lamp;
    cClass::StaticMode = 1;
    EXPECT_EQ(logged([&] { lamp.RegisterOneMemberProperty(new _cInt, nullptr, nullptr, "Late", nullptr, "cLamp", 0); }),
              head + "cClassMode_Static Not allowed for properties: <_cInt Late>\r\n");
    auto& members = lamp.GetClassStorage()->Members;
    delete members[members.Count() - 1];
    members.RemoveAt(members.Count() - 1);
    EXPECT_EQ(cClass::StaticMode, 0);
    EXPECT_EQ(cClass().GetAmountOfElements(), 0) << "a class without a name has an empty table";
}
