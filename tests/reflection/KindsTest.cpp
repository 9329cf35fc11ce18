#include "animation/cSpline.h"
#include "foundation/cLog.h"
#include "reflection/cColorEdit.h"
#include "reflection/cEnum.h"
#include "reflection/cErrorPager.h"
#include "reflection/cImageSwatchFile.h"
#include "reflection/cXml.h"
#include "view/cPosition.h"

#include <gtest/gtest.h>

#include <memory>

using namespace trellis;

namespace {

_cInt s_First; // completes the palette, ahead of main and among the other static objects

/// A value for any kind, with something in it that a zero must replace.
struct Slot {
    explicit Slot(cClass* kind) : Kind(kind), Text("old") { std::memset(Raw, 1, sizeof(Raw)); }
    void* Data() { return dynamic_cast<_cStr*>(Kind) ? static_cast<void*>(&Text) : Raw; }
    std::string Saved() {
        cXml node;
        Kind->Save(node, Data(), nullptr);
        return node.Get_string();
    }
    cClass* Kind;
    cStr Text;
    alignas(8) unsigned char Raw[16];
};

/// The whole object as text, defaults and all.
std::string Full(cClass* object) {
    cXml node;
    object->Save(node, object, nullptr);
    cStr text;
    node.GetXMLSource(&text, 0);
    return text.Text();
}

/// Gives each value in the object, and in a new element of each list, another content. @return how many took it
int Change(cClass* object) {
    const char* base = object->GetExpansionBaseClass();
    int changed = base && object->ExpandWith(base, object) >= 0;
    for (int i = 0; i < object->GetAmountOfElements(); i++) {
        const cOneClassMemberInfo element = object->GetElementInfo(i, object);
        if (element.IsDirectCasting()) {
            changed += Change(static_cast<cClass*>(element.GetData()));
            continue;
        }
        cXml before, after;
        element.Save(&before);
        for (const char* body : {"true", "7", "7 8", "7 8 9", "7 8 9 10"}) { // one of them suits
            after.Assign_string(body);
            element.Load(&after, nullptr);
            element.Save(&after);
            if (!element.IsNotSavable() && !(after.GetBody() == before.GetBody())) {
                changed++;
                break;
            }
        }
    }
    return changed;
}

} // namespace

TEST(Kinds, BodiesInAndOut) {
    constexpr struct {
        const char *Kind, *Body, *Saved;
        const char* Complaint = ""; // with one, `Load` is false
    } s_Cases[] = {
        {"_cInt", "-12abc", "-12"},
        {"_cInt", "abc", "0", "unable to read dword from XML: abc\n"},
        {"_cSliderI", "500", "500"}, // the ends bind the control, not the file
        {"_cFloat", "3.14159", "3.142"},
        {"_cFloat", "x1", "0.000", "unable to read float from XML: x1\n"},
        {"_cBool", " \ttrueish", "true"},
        {"_cBool", "tru", "false"},
        {"_cBool", "True", "false"},
        {"_cStr", "a <b>", "a <b>"},
        {"_cLabel", "a", ""},
        {"_cBind", "65", "65"},
        {"_cBind", "abc", "-1", "Parsing error during \"int\" read from XML: abc\n"},
        {"_cFloat2", "1;,2", "1.000 2.000"},
        {"_cFloat2", "1", "0.000 0.000", "Parsing error during \"_cFloat2\" read from XML: 1\n"},
        {"_cFloat3", "1 2 3 4", "1.000 2.000 3.000"},
        {"_cFloat3", "1 2", "0.000 0.000 0.000", "Parsing error during \"_cFloat3\" read from XML: 1 2\n"},
        {"_cFloat3", "1 2 3 x", "0.000 0.000 0.000", "Parsing error during \"_cFloat3\" read from XML: 1 2 3 x\n"},
        {"_cColor", "1 .5 0 1", "1.000 0.500 0.000 1.000"},
        {"_cColor", "1", "0.000 0.000 0.000 0.000", "Parsing error during \"_cFloat4\" read from XML: 1\n"},
        {"_cVec2i", "1 -2", "1 -2"},
        {"_cVec2i", "1 2 3", "0 0", "Parsing error during \"_cVec2i\" read from XML: 1 2 3\n"},
        {"_cSliderRangedI", "5 0 9", "5 0 9"},
        {"_cSliderRangedI", "1 2 3 4", "0 0 0", "Parsing error during \"_cVec3i\" read from XML: 1 2 3 4\n"},
        {"_cSliderRangedF", "1 2", "0.000 0.000 0.000", "Parsing error during \"_cFloat3\" read from XML: 1 2\n"},
    };
    for (const auto& c : s_Cases) {
        SCOPED_TRACE(std::string(c.Kind) + " <- " + c.Body);
        Slot slot(cClass_GetClassFromPalette(c.Kind));
        cXml node;
        node.Assign_string(c.Body);
        cErrorPager pager(true);
        EXPECT_EQ(slot.Kind->Load(node, slot.Data(), &pager, nullptr), !*c.Complaint);
        EXPECT_EQ(slot.Saved(), c.Saved);
        EXPECT_EQ(pager.Text, c.Complaint);
        EXPECT_EQ(slot.Kind->Load(node, slot.Data(), nullptr, nullptr), !*c.Complaint);
    }
    int id = 5;
    cXml node;
    EXPECT_TRUE(cClass_GetClassFromPalette("_cImageID")->Load(node, &id, nullptr, nullptr));
    EXPECT_EQ(id, -1);
}

TEST(Kinds, ZerosAndTheTypesTheyStandFor) {
    constexpr struct {
        const char *Kind, *Zero, *Type; // a null type: every one
        int Size;                       // 0: every one
    } s_Cases[] = {
        {"_cInt", "0", nullptr, 4},
        {"_cFloat", "0.000", "float", 0},
        {"_cBool", "false", nullptr, 1},
        {"_cImageFile", "", nullptr, 0},
        {"_cBind", "-1", "int", 4},
        {"_cImageID", "", "int", 4},
        {"_cFloat2", "0.000 0.000", "cVec2", 8},
        {"_cFloat3", "0.000 0.000 0.000", "cVec3", 12},
        {"_cFloat4", "0.000 0.000 0.000 0.000", "cVec4", 16},
        {"_cColor", "0.000 0.000 0.000 0.000", "cColor", 16},
        {"_cVec2i", "0 0", "cVec.int.2", 8},
        {"_cSliderRangedI", "0 0 1", "cVec.int.3", 12},
        {"_cSliderRangedF", "0.000 0.000 1.000", "cAngles", 12},
    };
    for (const auto& c : s_Cases) {
        SCOPED_TRACE(c.Kind);
        Slot slot(cClass_GetClassFromPalette(c.Kind));
        slot.Kind->CallCtor(slot.Data());
        EXPECT_EQ(slot.Saved(), c.Zero);
        EXPECT_TRUE(slot.Kind->CompatibleWith(c.Type, c.Size));
        EXPECT_EQ(slot.Kind->CompatibleWith(c.Type, c.Size - 4), c.Size == 0);
        EXPECT_EQ(slot.Kind->CompatibleWith("cVec9", c.Size), c.Type == nullptr);
        EXPECT_EQ(slot.Kind->CompatibleWith(nullptr, c.Size), c.Type == nullptr);
    }
}

TEST(Kinds, EnumsAreSharedRefilledAndForgiving) {
    cEnum* sides = cEnums::Get("KindsTest_Side");
    for (int i = 0; i < 3; i++) { // as the constructors of three objects
        ASSERT_EQ(cEnums::Get("KindsTest_Side"), sides);
        sides->Clear();
        sides->Add("Right", 7);
        sides->Add("Left", 3);
        sides->Add("None", unsigned(-1));
        sides->Add("Left", 4);
    }
    EXPECT_EQ(sides->Values.Count(), 3);
    _cIndex kind;
    constexpr struct {
        const char *Body, *Saved;
        int Value;
    } s_Cases[] = {{"Left", "Left", 4}, {"left", "Right", 7}, {"", "Right", 7}, {"None", "Right", 7}};
    for (const auto& c : s_Cases) {
        SCOPED_TRACE(c.Body);
        int value = 99;
        cXml node("Side");
        node.Assign_string("stale");
        kind.Save(node, &value, sides);
        EXPECT_STREQ(node.Get_string(), "") << "99 has no name";
        node.Assign_string(c.Body);
        cErrorPager pager(true);
        EXPECT_TRUE(kind.Load(node, &value, &pager, sides));
        EXPECT_EQ(value, c.Value);
        EXPECT_TRUE(pager.Text.IsEmpty());
        EXPECT_FALSE(kind.Load(node, &value, &pager, nullptr));
        EXPECT_EQ(pager.Text, "cEnum not assigned for type \"_cIndex\" for variable Side\n");
        kind.Save(node, &value, sides);
        kind.Save(node, &value, nullptr);
        EXPECT_STREQ(node.Get_string(), c.Saved);
    }
    EXPECT_NE(cEnums::Get(nullptr), nullptr);
    cEnums::ClearAll();
    EXPECT_NE(cEnums::Get("KindsTest_Side"), sides);
    EXPECT_EQ(sides->Find("Left"), 1) << "members still point at it";
    int value = 5;
    cXml node;
    EXPECT_TRUE(kind.Load(node, &value, nullptr, cEnums::Get("KindsTest_Side")));
    EXPECT_EQ(value, 0) << "an empty enum";
}

TEST(Kinds, ChannelsOfAColourAreItsMemoryAndAreSavedOnce) {
    cColorEdit color;
    EXPECT_EQ(Full(&color), "<cColorEdit>\n <Color>1.000 1.000 1.000 1.000</Color>\n"
                            " <Modulator>1.000 0.000 2.000</Modulator>\n</cColorEdit>\n");
    const cOneClassMemberInfo alpha = color.GetElementInfo("Alpha", &color);
    EXPECT_EQ(alpha.GetData(), &color.Color.a);
    EXPECT_EQ(static_cast<float*>(alpha.GetExtra())[0], 0);
    EXPECT_EQ(static_cast<float*>(alpha.GetExtra())[1], 1);
}

TEST(Kinds, SwatchFollowsItsPath) {
    constexpr struct {
        int Texture, TextureAfter;
        const char *File, *Last, *FileAfter, *LastAfter, *InfoAfter;
    } s_Steps[] = {
        {-1, -1, "", "old", "", "old", "i"}, {-1, -1, "a", "old", "", "", ""}, // there is no device to load it
        {3, 3, "", "a", "", "", ""},         {3, 3, "a", "", "a", "a", "i"},
        {3, 3, "a", "A", "a", "A", "i"},     {3, -1, "b", "a", "b", "a", "i"},
    };
    for (const auto& s : s_Steps) {
        SCOPED_TRACE(std::string(s.File) + " after " + s.Last);
        cImageSwatchFile swatch;
        swatch.TextureID = s.Texture;
        swatch.File = s.File;
        swatch.LastLoaded = s.Last;
        swatch.Info = "i";
        swatch.OnProcess();
        EXPECT_EQ(swatch.TextureID, s.TextureAfter);
        EXPECT_EQ(swatch.File, s.FileAfter);
        EXPECT_EQ(swatch.LastLoaded, s.LastAfter);
        EXPECT_EQ(swatch.Info, s.InfoAfter);
    }
}

TEST(Palette, EveryClassSurvivesFileCopyAndReset) {
    int kinds = 0, objects = 0;
    for (int i = 0; i < TRELLIS_CGARB.GetClassCount(); i++) {
        cClass* prototype = TRELLIS_CGARB.GetClass(i)->Prototype;
        if (!prototype) {
            continue;
        }
        SCOPED_TRACE(prototype->GetClassName());
        const std::unique_ptr<cClass> object(prototype->new_element()), read(prototype->new_element());
        EXPECT_STREQ(object->GetClassName(), prototype->GetClassName());
        if (!prototype->CheckDirectCasting()) {
            kinds++;
            Slot slot(object.get()), copy(object.get());
            object->CallCtor(slot.Data());
            EXPECT_TRUE(object->FullCopy(slot.Data(), nullptr, object.get(), copy.Data(), nullptr, nullptr));
            EXPECT_EQ(copy.Saved(), slot.Saved());
            continue;
        }
        objects++;
        const std::string fresh = Full(object.get());
        EXPECT_GT(Change(object.get()), 0);
        const std::string full = Full(object.get());
        cStr file;
        EXPECT_TRUE(object->WriteToString(&file));
        cLog::GetLogMutable().Clear();
        EXPECT_TRUE(read->ReadFromString(file));
        EXPECT_TRUE(cLog::GetLog().IsEmpty()) << cLog::GetLog().Text();
        EXPECT_EQ(Full(read.get()), full) << file.Text();
        EXPECT_EQ(Full(std::unique_ptr<cClass>(object->Clone()).get()), full);
        object->CallDtor(object.get());
        object->CallCtor(object.get());
        EXPECT_EQ(Full(object.get()), fresh);
    }
    EXPECT_GE(kinds, 27);
    EXPECT_GE(objects, 5);
}

TEST(Palette, SplinesAndPositionsKeepTheirForm) {
    cPosition position;
    EXPECT_EQ(Full(&position), "<Position>\n <Position>0.000 0.000 0.000</Position>\n"
                               " <&cPosition::Move></&cPosition::Move>\n</Position>\n");
    cClassList<cSpline> list;
    list.Add(new cSpline);
    auto* spline = static_cast<cSpline*>(list.GetElementClass(list.Add(new cSpline)));
    EXPECT_EQ(spline->ToString(), "2. Spline");
    EXPECT_EQ(cSpline().ToString(), "Spline");
    spline->Nodes.Add(new cSpline_Node);
    EXPECT_EQ(Full(spline), "<cSpline>\n <&cSpline::Edit></&cSpline::Edit>\n <Transform>\n"
                            "  <Scale>1.000 1.000 1.000</Scale>\n  <Rotate>0.000 0.000 0.000</Rotate>\n"
                            "  <Translate>0.000 0.000 0.000</Translate>\n </Transform>\n"
                            " <&cSpline::CenterTransform></&cSpline::CenterTransform>\n"
                            " <Nodes>\n  <cSpline_Node>\n   <CV0>-10.000 10.000 0.000</CV0>\n"
                            "   <EP>0.000 10.000 0.000</EP>\n   <CV1>10.000 10.000 0.000</CV1>\n"
                            "  </cSpline_Node>\n </Nodes>\n"
                            " <Closed>false</Closed>\n <&cSpline::SetUniformSampled></&cSpline::SetUniformSampled>\n"
                            " <SetUniformSampledNodeCount>10</SetUniformSampledNodeCount>\n"
                            " <&cSpline::SetAdaptiveSampled></&cSpline::SetAdaptiveSampled>\n"
                            " <SetAdaptiveSampledMaxErrSq>100.000</SetAdaptiveSampledMaxErrSq>\n</cSpline>\n");
}
