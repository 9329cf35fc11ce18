// Codec tables, loading and saving by extension, and the registry, with codecs whose files are one number.
#include <gtest/gtest.h>

#include "Folders.h"
#include "animation/cAnim.h"
#include "animation/cCamera.h"
#include "files/cFile.h"
#include "files/cIO.h"
#include "foundation/cLog.h"
#include "image/cImage.h"
#include "math/cMat4.h"
#include "mesh/cModel.h"
#include "spatial/cBsp.h"

namespace trellis {
namespace {

/// A file is the digits of a number, which becomes the number of joints, the frame rate, or the like.
bool ReadNumber(const cFile& file, int* number) {
    cStr text;
    return file.ReadString(&text, " ") && cStr::ToInt(text, number) && *number >= 0;
}

class FakeModels : public cIO::ModelCodec {
public:
    bool Encodes() const override { return true; }
    bool Decode(const cFile& file, cModel* out) override {
        int joints;
        if (!ReadNumber(file, &joints)) {
            return false;
        }
        out->Static = joints == 0;
        out->Joints.SetCount(joints);
        return true;
    }
    bool Encode(const cModel& model, cFile* out) override {
        if (model.Joints.Count() == 1) {
            return false;
        }
        if (model.Joints.Count() > 0) {
            out->WriteString(cStr::Format("%d", model.Joints.Count()));
        }
        return true;
    }
} s_Models;

class FakeAnims : public cIO::AnimCodec {
public:
    bool Encodes() const override { return false; }
    bool Decode(const cFile& file, cAnim* out) override { return ReadNumber(file, &out->FrameRate); }
    bool Encode(const cAnim&, cFile*) override { return false; }
} s_Anims;

class FakeCameras : public cIO::CameraCodec {
public:
    bool Encodes() const override { return true; }
    bool Decode(const cFile& file, cCamera* out) override { return ReadNumber(file, &out->FrameRate); }
    bool Encode(const cCamera&, cFile*) override { return false; }
} s_Cameras;

class Assets : public Folders {
protected:
    Assets() {
        cIO::AddCodec("fakeM", &s_Models);
        cIO::AddCodec("fakeA", &s_Anims);
        cIO::AddCodec("fakeC", &s_Cameras);
        m_Folder = Top("");
    }
    ~Assets() override {
        cIO::FreeModels();
        cIO::FreeAnims();
        cIO::FreeCameras();
    }
    /// A file with that text; its absolute path.
    cStr File(const char* name, const char* text) {
        const cStr path = cStr::Format("%s%s", m_Folder.c_str(), name);
        Put(path.Text(), text);
        return path;
    }
    static std::string Logged(auto act) {
        cLog::GetLogMutable().Clear();
        act();
        return cLog::GetLog().Text();
    }

    std::string m_Folder;
};

TEST_F(Assets, TheFirstCodecOfAnExtensionStays) {
    const int models = cIO::GetModelCodecs().Count();
    FakeModels other;
    EXPECT_EQ(Logged([&] { cIO::AddCodec("FAKEm", &other); }), "");
    EXPECT_EQ(cIO::GetModelCodecs().Count(), models);
    const cList<cIO::ImageCodecInfo>& images = cIO::GetImageCodecs();
    const char* const names[] = {"Dds", "Bmp", "cPvr", "Tga"};
    for (int i = 0; i < 4; i++) {
        EXPECT_STREQ(images[i].Extension, names[i]);
    }
    static FakeModels s_Late;
    static FakeAnims s_LateAnims;
    EXPECT_EQ(Logged([] { cIO::AddCodec("late", &s_Late); }), "Added \"late\" model codec.\r\n");
    EXPECT_EQ(Logged([] { cIO::AddCodec("late", &s_LateAnims); }), "Added \"late\" animation decoder.\r\n");
}

TEST_F(Assets, LoadingAndSavingSayWhatHappened) {
    cModel model;
    cImage image;
    const cStr good = File("a.FakeM", "3");
    const cStr bad = File("b.fakem", "x");
    const cStr odd = File("c.odd", "3");
    const cStr gone = cStr::Format("%snone.fakem", m_Folder.c_str());
    const struct {
        const char* Path;
        const char* Words;
        bool Ok;
    } cases[] = {
        {good, "Loaded model file", true},
        {bad, "Can't decode model file", false},
        {odd, "Can't decode model file", false},
        {gone, "Can't load model file", false},
    };
    for (const auto& c : cases) {
        bool ok = false;
        EXPECT_EQ(Logged([&] { ok = cIO::LoadModel(c.Path, &model); }),
                  std::string(c.Words) + " \"" + c.Path + "\"\r\n");
        EXPECT_EQ(ok, c.Ok);
    }
    EXPECT_EQ(Logged([&] { cIO::LoadImage(odd, &image); }),
              std::string("Can't decode image file \"") + odd.Text() + "\"\r\n");

    const std::string out = m_Folder + "out.fakem";
    EXPECT_EQ(model.Joints.Count(), 0) << "nothing is left of a failure";
    EXPECT_TRUE(cIO::LoadModel(good, &model));
    EXPECT_TRUE(cIO::SaveModel(out.c_str(), model));
    model.Joints.SetCount(0);
    EXPECT_TRUE(cIO::LoadModel(out.c_str(), &model));
    EXPECT_EQ(model.Joints.Count(), 3);
    model.Joints.SetCount(1);
    EXPECT_EQ(Logged([&] { EXPECT_FALSE(cIO::SaveModel(out.c_str(), model)); }),
              "Can't encode model file \"" + out + "\"\r\n");
    model.Joints.SetCount(0);
    EXPECT_TRUE(cIO::SaveModel((m_Folder + "never.fakem").c_str(), model)) << "nothing encoded, nothing written";
    EXPECT_FALSE(cIO::LoadModel((m_Folder + "never.fakem").c_str(), &model));
    EXPECT_EQ(Logged([&] { EXPECT_FALSE(cIO::SaveImage((m_Folder + "noext").c_str(), image)); }), "");
    EXPECT_EQ(Logged([&] { EXPECT_FALSE(cIO::SaveImage(odd, image)); }), "");
}

TEST_F(Assets, IdsOutliveTheDataBehindThem) {
    const cStr path = File("m.fakeM", "2");
    const int id = cIO::GetModelID(path, false);
    ASSERT_EQ(id, 0);
    EXPECT_EQ(cIO::GetModelID(path, false), id);
    EXPECT_EQ(cIO::GetModelID(path, true), 1);
    EXPECT_EQ(cIO::GetModelID("none.fakeM", false), -1);
    EXPECT_EQ(cIO::GetModelPtr(-1), nullptr);
    EXPECT_EQ(cIO::GetModelPtr(2), nullptr);
    EXPECT_STREQ(cIO::GetModelFilePn(7), "");

    const cModel* model = cIO::GetModelPtr(id);
    File("m.fakeM", "5");
    EXPECT_TRUE(cIO::ReloadModel(path));
    EXPECT_EQ(cIO::GetModelPtr(id), model) << "into the same object";
    EXPECT_EQ(model->Joints.Count(), 5);
    EXPECT_EQ(cIO::GetModelPtr(1)->Joints.Count(), 5);
    File("m.fakeM", "x");
    EXPECT_FALSE(cIO::ReloadModel(id));
    EXPECT_EQ(model->Joints.Count(), 5) << "the old data stay";
    EXPECT_NE(Logged([] { cIO::UnloadModels(); }).find("Unloaded 2 Models."), std::string::npos);
    EXPECT_EQ(cIO::GetModelPtr(id), nullptr) << "gone from disk for the moment";
    File("m.fakeM", "0");
    ASSERT_NE(cIO::GetModelPtr(id), nullptr);
    EXPECT_TRUE(cIO::GetModelPtr(id)->Static);
    EXPECT_NE(Logged([] {
                  cIO::ReloadModels();
              }).find("Reloaded 1 Static Models, 0 Anim Models, 1 Static Proxies, 0 Anim Proxies."),
              std::string::npos);
    cIO::FreeModels();
    EXPECT_EQ(cIO::GetModelPtr(id), nullptr);
    EXPECT_EQ(Logged([] { cIO::ReloadModels(); }),
              "Reloaded 0 Static Models, 0 Anim Models, 0 Static Proxies, 0 Anim Proxies.\r\n");
}

/// What a hostile file drives a decoder into.
class GreedyImages : public cIO::ImageCodec {
public:
    bool Decode(const cFile&, cImage* out) override {
        out->Create(cFormat::R8, 1, 1, 1, 1);
        throw std::bad_alloc();
    }
    bool Encode(const cImage&, cFile*) override { throw std::bad_alloc(); }
} s_Greedy;

TEST_F(Assets, NoMemoryIsAnAnswer) {
    cIO::AddCodec("greedy", &s_Greedy);
    Put(Read("a.greedy"), "x");
    cImage image;
    bool ok = true;
    EXPECT_EQ(Logged([&] { ok = cIO::LoadImage("a.greedy", &image); }), "Can't decode image file \"a.greedy\"\r\n");
    EXPECT_FALSE(ok);
    EXPECT_TRUE(image.IsEmpty());
    EXPECT_EQ(Logged([&] { ok = cIO::SaveImage("a.greedy", image); }), "Can't encode image \"a.greedy\"\r\n");
}

TEST_F(Assets, PathsUnderTheReadFolderAreOneHoweverTheyAreGiven) {
    const cStr absolute = Read("assets_test.fakeM").c_str();
    Put(absolute.Text(), "1");
    const int id = cIO::GetModelID("assets_test.fakeM", false);
    ASSERT_NE(id, -1);
    EXPECT_EQ(cIO::GetModelID(absolute, false), id);
    EXPECT_STREQ(cIO::GetModelFilePn(id), "assets_test.fakeM");
    Source()->SetPath((Read() + "/").c_str());
    EXPECT_EQ(cIO::GetModelID(absolute, false), id) << "with a slash at the folder's end";
}

TEST_F(Assets, AnimationsAreOneByPathRateAndTransform) {
    const cStr path = File("a.fakeA", "24");
    const cMat4 moved = cMat4::Translation({1, 0, 0});
    cMat4 near = moved;
    near(3, 0) += 0.00001f;
    const int id = cIO::GetAnimID(path, 0, cMat4::Identity);
    EXPECT_EQ(cIO::GetAnimID(path, 0, cMat4::Identity), id);
    EXPECT_EQ(cIO::GetAnimID(path, -3, cMat4::Identity), id);
    EXPECT_EQ(cIO::GetAnimID(path, 24, cMat4::Identity), id) << "its own rate";
    const int other = cIO::GetAnimID(path, 0, moved);
    EXPECT_NE(other, id);
    EXPECT_EQ(cIO::GetAnimID(path, 0, near), other);
    const int fast = cIO::GetAnimID(path, 60, cMat4::Identity);
    EXPECT_NE(fast, id);
    EXPECT_EQ(cIO::GetAnimID(path, 60, cMat4::Identity), fast);
    EXPECT_NE(Logged([] { cIO::UnloadAnims(); }).find("Unloaded 3 Anims."), std::string::npos);
    EXPECT_EQ(cIO::GetAnimID(path, 24, cMat4::Identity), id) << "comes back to be compared";
    EXPECT_EQ(cIO::GetAnimMutablePtr(id)->FrameRate, 24);
    File("a.fakeA", "25");
    EXPECT_TRUE(cIO::ReloadAnim(path));
    EXPECT_EQ(cIO::GetAnimPtr(other)->FrameRate, 25);
    EXPECT_NE(Logged([] { cIO::ReloadAnims(); }).find("Reloaded 3 Anims."), std::string::npos);

    const cStr camera = File("c.fakeC", "30");
    EXPECT_EQ(cIO::GetCameraID(camera), 0);
    EXPECT_EQ(cIO::GetCameraID(camera), 0);
    cIO::UnloadCameras();
    ASSERT_NE(cIO::GetCameraPtr(0), nullptr);
    EXPECT_EQ(cIO::GetCameraPtr(0)->FrameRate, 30);
    EXPECT_TRUE(cIO::ReloadCamera(camera));
    EXPECT_NE(Logged([] { cIO::ReloadCameras(); }).find("Reloaded 1 Cameras."), std::string::npos);
}

TEST_F(Assets, TheClipboardKeepsACopy) {
    cImage image(cFormat::R8, 1, 1, 1, 1);
    image.GetPixels()[0] = 9;
    EXPECT_TRUE(cIO::CopyToClipboard(image));
    image.GetPixels()[0] = 1;
    cImage back;
    EXPECT_TRUE(cIO::CopyFromClipboard(&back));
    EXPECT_EQ(back.GetPixels()[0], 9);
    cIO::CopyToClipboard(cImage());
    EXPECT_FALSE(cIO::CopyFromClipboard(&back));
    EXPECT_TRUE(back.IsEmpty());
}

TEST_F(Assets, CollisionTrees) {
    cBsp bsp, back;
    bsp.AddTriangle(cVec3::Zero, cVec3::AxisX, cVec3::AxisY, 1);
    bsp.Build(3, 1, 0.001f);
    const std::string path = m_Folder + "t"; // the extension is added
    EXPECT_TRUE(cIO::SaveBsp(path.c_str(), bsp));
    EXPECT_EQ(Logged([&] { EXPECT_TRUE(cIO::LoadBsp(path.c_str(), &back)); }),
              "Loaded BSP file \"" + path + ".cBsp\"\r\n");
    EXPECT_FALSE(back.IsEmpty());
    const cStr broken = File("d.cBsp", "x");
    EXPECT_EQ(Logged([&] { EXPECT_FALSE(cIO::LoadBsp(broken, &back)); }),
              std::string("Can't decode BSP file \"") + broken.Text() + "\"\r\n");
    EXPECT_TRUE(back.IsEmpty());
    const std::string log = Logged([&] { EXPECT_FALSE(cIO::LoadBsp((path + "2").c_str(), &back)); });
    EXPECT_TRUE(log.ends_with("Can't load BSP file \"" + path + "2.cBsp\"\r\n")) << log;
}

} // namespace
} // namespace trellis
