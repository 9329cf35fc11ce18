#include "mesh/cMaterial_Bump.h"
#include "mesh/cMaterial_Decal.h"
#include "mesh/cMaterial_Import.h"
#include "mesh/cMaterial_Interface.h"

#include "image/cImage.h"
#include "tests/files/Folders.h"
#include "tests/render/RecordingDevice.h"

using namespace trellis;

namespace {

std::vector<std::string> s_Answers, s_Asked, s_FirstAsked;

/// Answers a dialog from the list, and writes down what it is opened with. "=" accepts the proposal.
bool Show(const cIO::FileDialog& dialog, cStr* out) {
    const std::string path = dialog.InitialPath, file = dialog.InitialFile;
    s_Asked.push_back(path + " " + file);
    const std::string answer = s_Answers.empty() ? "" : s_Answers.front();
    s_Answers.erase(s_Answers.begin(), s_Answers.begin() + !s_Answers.empty());
    *out = answer == "=" ? (path + "/" + file).c_str() : answer.c_str();
    return true;
}

void Answer(std::vector<std::string> answers) {
    s_Answers = std::move(answers);
    s_Asked.clear();
    cIO::Host host;
    host.ShowLoadFile = host.ShowSaveFile = Show;
    cIO::SetHost(host);
}

class MaterialImport : public Folders {
protected:
    static void SetUpTestSuite() { // the first import of the process, whatever test comes first
        Answer({""});
        cIO::SetImageDialogInitialPath("/start");
        cMaterial_Interface().ImportInterfaceMap();
        s_FirstAsked = s_Asked;
    }
    MaterialImport() {
        cIO::SetImageDialogInitialPath("/kept");
        cIO::SetImageDialogInitialFile("kept.dds");
    }
    ~MaterialImport() override {
        EXPECT_STREQ(cIO::GetImageDialogInitialPath(), "/kept");
        EXPECT_STREQ(cIO::GetImageDialogInitialFile(), "kept.dds");
        cIO::SetHost({});
        RecordingDevice::Uninstall();
    }

    /// A picture of one colour: (200, 100, 50), 117 in grey, and an alpha of 128.
    void MakePicture(const char* name, cFormat::Enum format, int width, int height) {
        cImage image(cFormat::Rgba8, width, height, 1, 1);
        for (int i = 0; i < width * height * 4; i++) {
            image.GetPixels()[i] = static_cast<unsigned char>("\xC8\x64\x32\x80"[i % 4]);
        }
        if (format == cFormat::Dxt5) {
            image.Compress();
        } else {
            image.ToFormat(format);
        }
        std::filesystem::create_directories(Write("Pictures"));
        ASSERT_TRUE(cIO::SaveImage(name, image));
    }
};

TEST_F(MaterialImport, EveryKindOfPicture) {
    using F = cFormat;
    // clang-format off
    // Options: A, alpha is kept; I, green is inverted; Z, heights have no scale. No second picture, or refused: `None`.
    const struct { const char* Button; std::string_view Options; F::Enum First, Second; int SecondSide;
                   F::Enum Out; int Mips, Color[3]; } cases[] = {
        {"&cMaterial_Bump::ImportDiffuseMap",             "A",  F::Rgba8,   F::None, 0, F::Dxt5,   3, {200, 100, 50}},
        {"&cMaterial_Bump::ImportDiffuseMap",             "I",  F::Dxt5,    F::None, 0, F::Dxt1,   3, {200, 100, 50}},
        {"&cMaterial_Bump::ImportDiffuseMap",             "A",  F::R8,      F::None, 0, F::Dxt1,   3, {117, 117, 117}},
        {"&cMaterial_Bump::ImportDiffuseMap",             "A",  F::Rgba16f, F::None, 0, F::None,   0, {}},
        {"&cMaterial_Decal::ImportDecalMap",              "",   F::Rgba8,   F::None, 0, F::Dxt1,   3, {200, 100, 50}},
        {"&cMaterial_Interface::ImportInterfaceMap",      "",   F::Rgba8,   F::None, 0, F::Rgba8,  1, {200, 100, 50}},
        {"&cMaterial_Bump::ImportNormalMap",              "",   F::Rgba8,   F::None, 0, F::Dxt1,   3, {200, 100, 50}},
        {"&cMaterial_Bump::ImportNormalMap",              "AI", F::Rgba8,   F::None, 0, F::Dxt5,   3, {200, 155, 50}},
        {"&cMaterial_Bump::ImportHeightMap",              "",   F::Rgba8,   F::None, 0, F::Dxt1,   3, {127, 127, 255}},
        {"&cMaterial_Bump::ImportHeightMap",              "A",  F::Rgb8,    F::None, 0, F::Dxt5,   3, {127, 127, 255}},
        {"&cMaterial_Bump::ImportHeightMap",              "Z",  F::Rgb8,    F::None, 0, F::Dxt1,   3, {0, 0, 0}},
        // Unit vectors (0.661, -0.251, -0.707) and (0, 0, 1), added and at unit length (0.861, -0.333, 0.384).
        {"&cMaterial_Bump::ImportNormalMapPlusHeightMap", "",   F::Rgba8,   F::R8,   4, F::Dxt1,   3, {237, 84, 176}},
        {"&cMaterial_Bump::ImportNormalMapPlusHeightMap", "AI", F::Rgba8,   F::Rgb8, 4, F::Dxt5,   3, {237, 170, 176}},
        {"&cMaterial_Bump::ImportNormalMapPlusHeightMap", "",   F::Rgb8,    F::R8,   8, F::Dxt1,   3, {200, 100, 50}},
        {"&cMaterial_Bump::ImportNormalMapPlusHeightMap", "",   F::R8,      F::R8,   4, F::None,   0, {}},
        {"&cMaterial_Bump::ImportNormalMapPlusHeightMap", "",   F::R8,      F::R8,   8, F::Dxt1,   3, {117, 117, 117}},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Button + (" " + std::string(c.Options)));
        MakePicture("Pictures/first.v1.dds", c.First, c.First == F::Dxt5 ? 4 : 5, 4); // a side of 5 becomes 4
        Answer({"Pictures/first.v1.dds", "="});
        if (c.Second != F::None) {
            MakePicture("Pictures/second.dds", c.Second, c.SecondSide, c.SecondSide);
            Answer({"Pictures/first.v1.dds", "Pictures/second.dds", "="});
        }
        cMaterial_Bump bump;
        cMaterial_Decal decalMaterial;
        cMaterial_Interface interfaceMaterial;
        bump.ImportDiffuseMapKeepAlpha = bump.ImportHeightMapSaveHeightAsAlpha = bump.ImportNormalMapKeepAlpha =
            c.Options.starts_with('A');
        bump.ImportNormalMapInvertGreen = c.Options.ends_with('I');
        bump.ImportHeightMapScaleZ = c.Options == "Z" ? 0 : 1;
        cList<cStr> files;
        for (cMaterial* material : std::initializer_list<cMaterial*>{&bump, &decalMaterial, &interfaceMaterial}) {
            cClass* button;
            void *data, *extra;
            if (material->GetElementByName(c.Button, &button, &data, &extra, material)) {
                button->call(data, nullptr);
            }
            material->ListTextureFiles(&files);
        }
        if (c.Out == F::None) {
            EXPECT_TRUE(files.IsEmpty());
            EXPECT_EQ(s_Answers.size(), 1u) << "no dialog to save";
            continue;
        }
        ASSERT_EQ(files.Count(), 1);
        EXPECT_STREQ(files[0], c.Out == F::Rgba8 ? "Textures/Particles/first.dds" : "Pictures/first.dds");
        cImage image;
        ASSERT_TRUE(cIO::LoadImage(files[0], &image));
        EXPECT_EQ(image.GetFormat(), c.Out);
        EXPECT_EQ(image.GetMipMapCount(), c.Mips);
        EXPECT_EQ(image.GetWidth() * 10 + image.GetHeight(), 44);
        image.Uncompress();
        for (int i = 0; i < 3; i++) {
            EXPECT_NEAR(image.GetPixels()[i], c.Color[i], 8) << i; // five bits, cut off
        }
    }
}

TEST_F(MaterialImport, WhatEndsItChangesNothing) {
    ASSERT_EQ(s_FirstAsked, std::vector<std::string>{"/start "});
    MakePicture("Pictures/a.dds", cFormat::Rgb8, 4, 4);
    Put(Read("Pictures/bad.dds"));
    const std::string good = "Pictures/a.dds", bad = "Pictures/bad.dds";
    const std::vector<std::string> cases[] = {
        // the last answer ends it
        {""}, {bad}, {good, ""}, {good, "no.dds"}, {good, good, ""}, {good, good, "Out/b.xyz"}};
    for (const auto& answers : cases) {
        Answer(answers);
        cStr target = "Out/b.bmp";
        cMaterial_ImportArgs args;
        args.Type = cMaterial::ImportType::NormalMapPlusHeightMap;
        args.NormalMap = &target;
        args.Changed = true;
        cMaterial_Import(&args);
        EXPECT_FALSE(args.Changed);
        EXPECT_STREQ(target, "Out/b.bmp");
        EXPECT_EQ(s_Asked.size(), answers.size());
    }
    EXPECT_FALSE(std::filesystem::exists(Write("Out/b.dds")));
    EXPECT_EQ(s_Asked[2], Read("Out") + " b.dds") << "its own folder, and always this extension";
}

TEST_F(MaterialImport, TheTextureIsTakenUpAndTheFolderRemembered) {
    RecordingDevice& device = RecordingDevice::Install();
    device.Textures.push_back({"Textures/new.dds"});
    MakePicture("Pictures/a.dds", cFormat::Rgb8, 4, 4);
    cMaterial_Bump bump;
    bump.DiffuseMap = "Textures\\old.dds";
    Answer({"Pictures/a.dds", Read("Textures/new.dds"), ""});
    bump.ImportDiffuseMap();
    EXPECT_STREQ(bump.DiffuseMap, "Textures/new.dds");
    EXPECT_EQ(device.Take(), "ReloadTexture Textures/new.dds\nSetSamplerState 0 -1\n");
    EXPECT_EQ(bump.GetDiffuseMapID(), 0);
    bump.ImportDiffuseMap(); // cancelled
    EXPECT_EQ(device.Take(), "");
    EXPECT_EQ(s_Asked[1], Read("Textures") + " old.dds");
    EXPECT_EQ(s_Asked[2], Read("Textures") + " ");

    Answer({"Pictures/a.dds", Top("readable/b.dds")}); // beside the read folder, not in it
    bump.ImportDiffuseMap();
    EXPECT_STREQ(bump.DiffuseMap, Top("readable/b.dds").c_str());
}

} // namespace
