#include "mesh/cMaterial_Bump.h"
#include "mesh/cMaterial_Decal.h"
#include "mesh/cMaterial_Interface.h"
#include "mesh/cMaterials.h"
#include "mesh/cModel.h"

#include "foundation/cTimer.h"
#include "tests/foundation/FakeClock.h"
#include "tests/render/RecordingDevice.h"

#include <algorithm>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace trellis;

namespace {

const int s_AtStartUp = g_Materials.GetMaterialID("of/nothing"); // ahead of main

// category 0, group 0 "Stone": bump Rough, a colour, which is no material, decal Smooth; group 1 "Wood": interface Oak
// category 1, group 0 "stone": plain Rough, bump Mossy without files
constexpr const char* s_Tree =
    "<cMaterials><Categories><cMaterial_Category><Groups><cMaterial_Group><GroupName>Stone</GroupName><Materials>"
    "<cMaterial_Bump><MaterialName>Rough</MaterialName><DiffuseMap>r.dds</DiffuseMap><NormalMap>r_n.dds</NormalMap>"
    "<DiffuseMapModulator><Color>1 0.5 0 1</Color><Modulator>2 0 2</Modulator></DiffuseMapModulator></cMaterial_Bump>"
    "<cColorEdit></cColorEdit>"
    "<cMaterial_Decal><MaterialName>Smooth</MaterialName><DecalMap>s.dds</DecalMap></cMaterial_Decal>"
    "</Materials></cMaterial_Group><cMaterial_Group><GroupName>Wood</GroupName><Materials>"
    "<cMaterial_Interface><MaterialName>Oak</MaterialName><InterfaceMap>o.dds</InterfaceMap><Specular>true</Specular>"
    "</cMaterial_Interface></Materials></cMaterial_Group></Groups></cMaterial_Category>"
    "<cMaterial_Category><Groups><cMaterial_Group><GroupName>stone</GroupName><Materials>"
    "<cMaterial><MaterialName>Rough</MaterialName></cMaterial>"
    "<cMaterial_Bump><MaterialName>Mossy</MaterialName></cMaterial_Bump>"
    "</Materials></cMaterial_Group></Groups></cMaterial_Category></Categories></cMaterials>";

class Materials : public testing::Test {
protected:
    Materials() {
        cClass_RegClass(&Bump, nullptr);
        cClass_RegClass(&Decal, nullptr);
        cClass_RegClass(&Interface, nullptr);
        EXPECT_TRUE(g_Materials.ReadFromString(s_Tree));
    }
    ~Materials() override {
        RecordingDevice::Uninstall();
        cTimer::Reset();
        g_Materials.CallCtor(&g_Materials);
    }
    static std::string Names() {
        cList<cStr> names;
        names.Add("old");
        g_Materials.ListMaterials(&names);
        return cStr::Join(" ", names).Text();
    }

    cMaterial_Bump Bump; // fresh ones
    cMaterial_Decal Decal;
    cMaterial_Interface Interface;
};

TEST_F(Materials, NamesResolveToTheFirstInTreeOrder) {
    EXPECT_EQ(s_AtStartUp, -1);
    // clang-format off
    constexpr struct { const char* Name; int ID; } s_Cases[] = {
        {"Stone/Rough", 0}, {"STONE\\ROUGH", 0}, {"stone.smooth", 0x20000}, {"wood_oak", 0x100},
        {"/stone//mossy", 0x10001}, {"wood.oak/ash", 0x100}, {"stone", -1}, {"stone/", -1}, {"stone/oak", -1},
        {"ston/rough", -1}, {"stone/roug", -1}, {"stone/roughs", -1}, {"._/\\", -1}, {"", -1}, {nullptr, -1}};
    // clang-format on
    for (const auto& c : s_Cases) {
        EXPECT_EQ(g_Materials.GetMaterialID(c.Name), c.ID) << (c.Name ? c.Name : "null");
    }
    cModel model;
    model.Meshes.SetCount(1);
    model.Meshes[0].MaterialName = "WOOD_OAK";
    model.GetMaterialsID();
    EXPECT_EQ(model.Meshes[0].MaterialID, 0x100);
}

TEST_F(Materials, IdsLeadToTheirMaterials) {
    static_assert(cMaterials::ComposeID(1, 2, 3) == 0x30201);
    int c, g, m;
    cMaterials::DecomposeID(-1, &c, &g, &m);
    EXPECT_TRUE(c == 255 && g == 255 && m == -1);
    for (const int id : {-1, 0x10000, 0x30000, 0x200, 2, 0x10100, -0x10000}) { // 0x10000: no material
        EXPECT_EQ(g_Materials.GetMaterial(id), nullptr) << id;
    }
    EXPECT_STREQ(g_Materials.GetMaterialMutable(0x20000)->ToString(), "Smooth (Decal)");
    EXPECT_STREQ(g_Materials.GetMaterialMutable(1)->ToString(), "Rough (None)");
    EXPECT_STREQ(Bump.ToString(), "");

    EXPECT_EQ(Names(), "Stone/Rough Stone/Smooth Wood/Oak stone/Rough stone/Mossy");
    g_Materials.RemoveMaterial("stone/rough");
    g_Materials.RemoveMaterial("stone/none");
    EXPECT_EQ(Names(), "Stone/Smooth Wood/Oak stone/Rough stone/Mossy");

    auto* last = g_Materials.Categories.Get(1)->Clone();
    g_Materials.Categories.RemoveAt(1, 1);
    while (g_Materials.Categories.Count() < cMaterials::MaxCategories) {
        g_Materials.Categories.Add(new cMaterial_Category);
    }
    g_Materials.Categories.Add(last);
    EXPECT_EQ(g_Materials.GetMaterialID("stone/mossy"), -1) << "no room for an id";
    g_Materials.Categories.RemoveAt(0, 1);
    EXPECT_EQ(g_Materials.GetMaterialID("stone/mossy"), 0x100FF);
}

TEST_F(Materials, TexturesAreFetchedWithTheFirstName) {
    EXPECT_EQ(g_Materials.GetMaterial(g_Materials.GetMaterialID("stone/rough"))->GetDiffuseMapID(), -1) << "no device";
    RecordingDevice& device = RecordingDevice::Install();
    device.Textures = {{"s.dds"}, {"r.dds"}, {"r_n.dds"}, {"o.dds"}};
    const auto find = [](const char* name) { return g_Materials.GetMaterialMutable(g_Materials.GetMaterialID(name)); };
    find("stone/mossy");
    EXPECT_EQ(device.Lookups, 0) << "no file, nothing to look up";
    auto* bump = dynamic_cast<cMaterial_Bump*>(find("stone/rough"));
    auto* decal = dynamic_cast<cMaterial_Decal*>(find("stone/smooth"));
    auto* interface = dynamic_cast<cMaterial_Interface*>(find("wood/oak"));
    EXPECT_TRUE(find("STONE.ROUGH") == bump && find("stone/smooth") == decal && find("wood/oak") == interface);
    EXPECT_EQ(device.Lookups, 4);
    EXPECT_EQ(bump->GetDiffuseMapID(), 1);
    EXPECT_EQ(bump->GetNormalMapID(), 2);
    EXPECT_EQ(bump->GetDiffuseMapModulator(), cColor(2, 1, 0, 2));
    EXPECT_EQ(decal->GetDecalMapID(), 0);
    EXPECT_EQ(interface->GetInterfaceMapID(), 3);
    EXPECT_TRUE(interface->UseSpecular());

    bump->NormalMap.Clear();
    bump->ReCreate();
    EXPECT_EQ(device.Lookups, 5);
    EXPECT_EQ(bump->GetNormalMapID(), -1);
    cList<cStr> files;
    bump->ListTextureFiles(&files);
    decal->ListTextureFiles(&files);
    interface->ListTextureFiles(&files);
    EXPECT_STREQ(cStr::Join(" ", files), "r.dds s.dds o.dds");
}

TEST_F(Materials, AreWrittenAsTheyAreRead) {
    EXPECT_EQ(Bump.GetAmountOfElements(), 15);
    EXPECT_EQ(Decal.GetAmountOfElements(), 12);
    EXPECT_EQ(Interface.GetAmountOfElements(), 6);
    EXPECT_TRUE(Bump.ImportDiffuseMapKeepAlpha && !Bump.ImportNormalMapKeepAlpha && Bump.ImportHeightMapScaleZ == 1);
    cStr saved, again;
    cMaterials copy;
    EXPECT_TRUE(g_Materials.WriteToString(&saved));
    EXPECT_TRUE(copy.ReadFromString(saved));
    EXPECT_TRUE(copy.WriteToString(&again));
    EXPECT_EQ(saved, again);
    cList<cStr> names, copied;
    g_Materials.ListMaterials(&names);
    copy.ListMaterials(&copied);
    EXPECT_GT(names.Count(), 3);
    EXPECT_TRUE(std::equal(names.begin(), names.end(), copied.begin(), copied.end()));
}

TEST_F(Materials, EveryLevelOffersItsClassesToAdd) {
    const auto add = [](cClass& list) {
        cClassExpParams menu;
        list.GetEditableElementExpansionList(menu, list.GetAmountOfElements(), &list, cClass::ShowAll, nullptr,
                                             nullptr);
        int added = 0;
        for (const char* name : menu.Names) {
            added += list.ExpandWith(name, &list) != -1;
        }
        return added;
    };
    EXPECT_EQ(add(g_Materials.Categories), 1);
    cMaterial_Category* category = g_Materials.Categories.Get(2);
    EXPECT_EQ(add(category->Groups), 1);
    cClassList<cMaterial>& materials = category->Groups.Get(0)->Materials;
    EXPECT_EQ(add(materials), 3) << "of each class but the base";
    EXPECT_EQ(materials.Get(0)->GetType() + materials.Get(1)->GetType() + materials.Get(2)->GetType(), 1 + 3 + 4);
}

TEST_F(Materials, DecalsPulseAndTravel) {
    cFakeClock clock;
    const auto wait = [&clock](float seconds) {
        clock.Advance((long long)(seconds * 1e6f));
        cTimer::Acquire();
    };
    cTimer::Reset();
    wait(0);
    wait(5);
    Decal.Create();
    Decal.Color0.Color = cColor(0, 0.5f, 0, 0);
    Decal.Color0.Modulator.Value = 2; // green 1
    Decal.Color1.Color = cColor(1, 0, 0, 1);
    Decal.UPeriodSec = 2;
    Decal.VPeriodSec = -4;              // the other way: what is left of the period
    const float half = std::sqrt(0.5f); // the sine of 45 degrees
    const struct {
        float Wait, Red, U, V;
    } cases[] = {{0, 0, 0, 0},                // the first colour
                 {0.5f, half, 0.25f, 0.875f}, // half way, and more than half the change
                 {0.5f, 1, 0.5f, 0.75f},      // the next period starts from the second
                 {0.5f, 1 - half, 0.75f, 0.625f},
                 {1, half, 0.25f, 0.375f}};
    for (const auto& c : cases) {
        wait(c.Wait);
        EXPECT_LT(cColor::Distance(Decal.GetColor(), cColor(c.Red, 1 - c.Red, 0, c.Red)), 1e-4f) << c.Red;
        const cVec3 at = Decal.GetTextureMatrix().GetTranslation();
        EXPECT_LT(cVec3::Distance(at, cVec3(c.U, c.V, 0)), 1e-4f) << c.U;
    }
    Decal.SwapColors();
    EXPECT_EQ(Decal.Color1.Modulator.Value, 2);
    Decal.ReCreate(); // from the start
    EXPECT_EQ(Decal.GetColor(), cColor(1, 0, 0, 1));
    wait(0.5f);
    for (const float period : {0.0f, 1e-44f}) {
        Decal.PeriodSec = Decal.UPeriodSec = Decal.VPeriodSec = period;
        EXPECT_EQ(Decal.GetColor(), cColor(1, 0, 0, 1));
        EXPECT_EQ(Decal.GetTextureMatrix(), cMat4::Identity);
    }
}

} // namespace
