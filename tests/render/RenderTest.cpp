// The front end over the recording device: calls in, calls of the device out.
#include "image/cImage.h"
#include "tests/render/RecordingDevice.h"
#include "view/cViewer.h"

#include <gtest/gtest.h>

using namespace trellis;

namespace {

class Render : public testing::Test {
protected:
    void TearDown() override { RecordingDevice::Uninstall(); }

    RecordingDevice& Device = RecordingDevice::Install();
};

/// Calls in turn, each with the lines that it must leave on the device.
struct Step {
    const char* Name;
    void (*Call)();
    const char* Lines;
};

template <size_t N> void RunSteps(RecordingDevice& device, const Step (&steps)[N]) {
    for (const Step& step : steps) {
        step.Call();
        EXPECT_EQ(device.Take(), step.Lines) << step.Name;
    }
}

} // namespace

TEST(RenderLife, WithoutDevice) {
    RecordingDevice::Uninstall();
    EXPECT_FALSE(cRender::Init(3)) << "no factory";
    EXPECT_EQ(cRender::GetInstance(), nullptr);
    EXPECT_EQ(cRender::GetType(), 0);
    EXPECT_FALSE(cRender::GetFlipRenderTarget());
    cRender::FreeTexture(1);
    cRender::FreeShader(1);
    cRender::FreeVertexBuffer(1);
    cRender::FreeIndexBuffer(1);
    cRender::Free();
}

TEST(RenderLife, InitResetsAndRegisters) {
    RecordingDevice::Uninstall();
    const int deleted = RecordingDevice::DeletedCount;
    cRender::SetFactory([](int) -> cRender::Stub* {
        auto* device = new RecordingDevice;
        device->FailInit = true;
        return device;
    });
    EXPECT_FALSE(cRender::Init(3));
    EXPECT_EQ(RecordingDevice::DeletedCount, deleted + 1) << "a device that fails is gone";

    cRender::SetFactory([](int) -> cRender::Stub* { return new RecordingDevice; });
    ASSERT_TRUE(cRender::Init(2));
    EXPECT_FALSE(cRender::Init(2)) << "there is one";
    auto& device = static_cast<RecordingDevice&>(*cRender::GetInstance());
    EXPECT_EQ(device.Take(), "Init 2\nSetDepthState -1\nSetBlendState -1\nSetCullMode 0\nSetWireframe 0\n"
                             "SetClipRect empty\n");
    EXPECT_EQ(cRender::GetVertexSize(cVertex::PositionColored::FormatID), int(sizeof(cVertex::PositionColored)));
    EXPECT_EQ(cRender::GetVertexSize(cVertex::ShadowVolume::FormatID), int(sizeof(cVertex::ShadowVolume)));
    device.Type = 2;
    EXPECT_TRUE(cRender::GetFlipRenderTarget());

    cRender::PushDepthState();
    RecordingDevice::Uninstall();
    EXPECT_EQ(RecordingDevice::DeletedCount, deleted + 2);
    RecordingDevice& next = RecordingDevice::Install();
    cRender::SetDepthState(5);
    next.Take();
    cRender::PopDepthState();
    EXPECT_EQ(next.Take(), "") << "the stacks went with the device";
    RecordingDevice::Uninstall();
}

TEST_F(Render, StatesAreFiltered) {
    RunSteps(Device,
             {
                 {"depth", [] { cRender::SetDepthState(7); }, "SetDepthState 7\n"},
                 {"same depth", [] { cRender::SetDepthState(7); }, ""},
                 {"push", [] { cRender::PushDepthState(), cRender::PushDepthState(); }, ""},
                 {"pop into the same", [] { cRender::PopDepthState(); }, ""},
                 {"other", [] { cRender::SetDepthState(8); }, "SetDepthState 8\n"},
                 {"pop into another", [] { cRender::PopDepthState(); }, "SetDepthState 7\n"},
                 {"pop of none", [] { cRender::PopDepthState(); }, ""},
                 {"blend", [] { cRender::SetBlendState(3), cRender::SetBlendState(3); }, "SetBlendState 3\n"},
                 {"blend stack",
                  [] {
                      cRender::PushBlendState(), cRender::SetBlendState(-1), cRender::PopBlendState();
                      cRender::PopBlendState();
                  },
                  "SetBlendState -1\nSetBlendState 3\n"},
                 {"cull",
                  [] {
                      cRender::SetCullMode(cCullMode::None), cRender::PushCullMode();
                      cRender::SetCullMode(cCullMode::Back), cRender::PopCullMode(), cRender::PopCullMode();
                  },
                  "SetCullMode 2\nSetCullMode 0\n"},
                 {"wireframe", [] { cRender::SetWireframe(true), cRender::SetWireframe(true); }, "SetWireframe 1\n"},
                 {"frame", [] { cRender::EndFrame(), cRender::BeginFrame(), cRender::BeginFrame(); }, "BeginFrame\n"},
                 {"end of frame", [] { cRender::EndFrame(), cRender::EndFrame(); }, "EndFrame\n"},
                 {"reset is not filtered", [] { cRender::ResetStates(), cRender::ResetStates(); },
                  "SetDepthState -1\nSetBlendState -1\nSetCullMode 0\nSetWireframe 0\nSetClipRect empty\n"
                  "SetDepthState -1\nSetBlendState -1\nSetCullMode 0\nSetWireframe 0\nSetClipRect empty\n"},
             });
    EXPECT_FALSE(cRender::GetWireframe());
}

TEST_F(Render, ClipIsComparedWithATolerance) {
    RunSteps(
        Device,
        {
            {"empty on empty", [] { cRender::SetClipRect(cRect::Empty); }, ""},
            {"other numbers, as empty", [] { cRender::SetClipRect(cRect(5, 5, 1, 1)); }, ""},
            {"first", [] { cRender::SetClipRect(cRect(0, 0, 8, 8)); }, "SetClipRect 0,0,8,8\n"},
            {"0.001 off", [] { cRender::SetClipRect(cRect(0.001f, 0, 8, 8)); }, ""},
            {"0.002 off", [] { cRender::SetClipRect(cRect(0, 0.002f, 8, 8)); }, "SetClipRect 0,0.002,8,8\n"},
            {"pop into the same",
             [] { cRender::PushClipRect(), cRender::SetClipRect(cRect(0, 0.0025f, 8, 8)), cRender::PopClipRect(); },
             ""},
            {"no intersection",
             [] { cRender::PushClipRect(), cRender::SetClipRect(cRect(4, 4, 9, 9)), cRender::PopClipRect(); },
             "SetClipRect 4,4,9,9\nSetClipRect 0,0.002,8,8\n"},
            {"pop of none", [] { cRender::PopClipRect(); }, ""},
        });
}

TEST_F(Render, MatricesAreDerivedWhenAskedFor) {
    EXPECT_EQ(cRender::GetWorldMatrixInverse(), cMat4::Identity);
    cRender::SetWorldMatrix(cMat4::Scaling(2, 4, 8));
    EXPECT_EQ(Device.Take(), "ApplyTransforms\n");
    EXPECT_EQ(cRender::GetWorldMatrixInverse(), cMat4::Scaling(0.5f, 0.25f, 0.125f));
    EXPECT_EQ(cRender::GetNormalMatrix(), cMat3::Scaling(0.5f, 0.25f, 0.125f));

    cRender::PushWorldMatrix();
    cRender::SetWorldMatrix(cMat4::Zero);
    EXPECT_EQ(cRender::GetWorldMatrixInverse(), cMat4::Identity) << "singular";
    EXPECT_EQ(cRender::GetNormalMatrix(), cMat3::Identity);
    Device.Take();
    cRender::PopWorldMatrix();
    cRender::PopWorldMatrix();
    EXPECT_EQ(Device.Take(), "ApplyTransforms\n");
    EXPECT_EQ(cRender::GetWorldMatrix(), cMat4::Scaling(2, 4, 8));
    EXPECT_EQ(cRender::GetWorldMatrixInverse(), cMat4::Scaling(0.5f, 0.25f, 0.125f));
    cRender::ResetStates();
    EXPECT_EQ(cRender::GetWorldMatrixInverse(), cMat4::Identity);
}

TEST_F(Render, TextureMatrices) {
    const cMat4 m = cMat4::Scaling(3);
    for (int stage : {-1, 4, 7}) {
        cRender::SetTextureMatrix(m, stage);
    }
    EXPECT_EQ(Device.Take(), "");
    cRender::SetTextureMatrix(m, 0);
    EXPECT_EQ(Device.Take(), "ApplyTransforms\n");
    EXPECT_EQ(cRender::GetTextureMatrix(7), m);
    EXPECT_EQ(cRender::GetTextureMatrix(-1), m);
    EXPECT_EQ(cRender::GetTextureMatrix(3), cMat4::Identity);
}

TEST_F(Render, TargetsNest) {
    Device.Textures = {{"", 64, 32, 1, 0, 1, 1}, {"", 16, 16, 1, 0, 1, 1}};
    cViewer viewer;
    viewer.Viewport = cRect(10, 20, 310, 120);
    viewer.Update(false);
    cRender::SetViewer(&viewer);
    cRender::SetClipRect(cRect(1, 2, 3, 4));
    EXPECT_EQ(Device.Take(), "SetViewport 10,20,310,120\nApplyTransforms\nSetClipRect 1,2,3,4\n");
    const cMat4 outer = viewer.ViewProjection;

    const int targets[] = {0, 1};
    const int slices[] = {5, 6};
    cRender::PushRenderTarget(targets, 2, 1, slices, true);
    EXPECT_EQ(Device.Take(), "SetRenderTarget [0,1] 2 1 [5,6]\nSetViewport 0,0,64,32\nApplyTransforms\n"
                             "SetClipRect empty\n");
    EXPECT_EQ(viewer.Aspect, 3) << "the outer picture's";
    cRender::SetClipRect(cRect(0, 0, 5, 5));
    Device.Take();

    cRender::PushRenderTarget(targets + 1, 1, -1, nullptr, false);
    EXPECT_EQ(Device.Take(), "SetRenderTarget [1] 1 -1 null\nSetViewport 0,0,16,16\nApplyTransforms\n"
                             "SetClipRect empty\n");
    EXPECT_EQ(viewer.GetAspect(), 3) << "as the target around it has it";

    cRender::PopRenderTarget();
    EXPECT_EQ(Device.Take(), "SetRenderTarget [0,1] 2 1 [5,6]\nSetViewport 0,0,64,32\nApplyTransforms\n"
                             "SetClipRect 0,0,5,5\n");
    cRender::PopRenderTarget();
    EXPECT_EQ(Device.Take(), "SetRenderTarget null 0 -1 null\nSetViewport 10,20,310,120\nApplyTransforms\n"
                             "SetClipRect 1,2,3,4\n");
    EXPECT_EQ(viewer.ViewProjection, outer);
    EXPECT_EQ(viewer.Aspect, 0);
    cRender::PushRenderTarget(targets, 1, -1, nullptr, false);
    EXPECT_EQ(viewer.GetAspect(), 2) << "the target's own";
    cRender::PopRenderTarget();
    Device.Take();
    cRender::PopRenderTarget();
    EXPECT_EQ(Device.Take(), "") << "nothing to pop";

    cRender::SetViewer(nullptr);
    cRender::PushRenderTarget(targets, 1, -1, nullptr, true);
    cRender::PopRenderTarget();
    EXPECT_EQ(Device.Take(), "SetRenderTarget [0] 1 -1 null\nSetClipRect empty\nSetRenderTarget null 0 -1 null\n"
                             "SetClipRect 1,2,3,4\n");
}

TEST_F(Render, ResourcesGetTheirSamplerState) {
    Device.Textures = {{"a.dds", 4, 4, 1, cFormat::Rgb8, 1, 0}};
    const cImage image(cFormat::Rgb8, 8, 4, 1, 1);
    EXPECT_EQ(cRender::GetTextureID("a.dds", 9), 0);
    EXPECT_EQ(cRender::GetTextureID("none.dds", 9), -1);
    EXPECT_EQ(cRender::AddTexture("b.dds", 2), 1);
    EXPECT_EQ(cRender::AddTexture(image, 3), 2);
    EXPECT_EQ(cRender::AddRenderTarget(5, 6, cFormat::Rgba8, 4, true, 1), 3);
    EXPECT_EQ(cRender::AddRenderDepth(3), 4);
    EXPECT_EQ(Device.Take(), "SetSamplerState 0 9\nSetSamplerState -1 9\nAddTexture b.dds\nSetSamplerState 1 2\n"
                             "AddTexture 8 4\nSetSamplerState 2 3\nAddRenderTarget 5 6 4\nSetSamplerState 3 4\n"
                             "AddRenderDepth 3 19\n");
    cRender::SetTexture(-1, 2, 1);
    EXPECT_EQ(Device.Take(), "SetSamplerState 2 1\nSetTexture -1 2\n");

    cList<cRect> rects;
    rects.Add(cRect(0, 0, 2, 3));
    rects.Add(cRect(4, 1, 8, 2));
    cRender::UpdateTexture(2, image, rects);
    EXPECT_EQ(Device.Take(), "UpdateTexture 2 2 3 0,0,2,3\nUpdateTexture 2 4 1 4,1,8,2\n");

    cRender::SetShaderConst(-1, cColor(1, 0.5f, 0.25f, 0));
    cRender::SetShaderConst(-1, cRect(1, 2, 3, 4));
    EXPECT_EQ(Device.Take(), "SetShaderConst -1 1 0.5 0.25 0\nSetShaderConst -1 1 2 3 4\n");
}

TEST_F(Render, LineInTheWorld) {
    Device.TakeDraws();
    cRender::DrawLine(cVec3(1, 2, 3), cVec3(4, 5, 6), cColor(1, 0.5f, 0, 1));
    const auto draws = Device.TakeDraws();
    ASSERT_EQ(draws.size(), 1u);
    EXPECT_EQ(draws[0].Topology, cTopology::LineList);
    const auto* v = draws[0].As<cVertex::PositionColored>();
    EXPECT_EQ(v[1].Pos, cVec3(4, 5, 6));
    EXPECT_EQ(v[0].Color, 0xFF0080FFu);
}

TEST(RenderNames, Tables) {
    EXPECT_STREQ(cFilter::ToString(cFilter::TrilinearAniso), "Trilinear Aniso");
    EXPECT_STREQ(cAddressMode::ToString(cAddressMode::Mirror), "Mirror");
}
