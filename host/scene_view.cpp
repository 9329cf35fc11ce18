// Shows a model on the ground grid through the software device, plays a script of input, and saves pictures of it.
//
//     scene_view DATA MODEL SCRIPT FOLDER [ANIM]      DATA holds Fonts/; MODEL and ANIM are files that cIO can load
//
// The script is that of InputScript.h; FOLDER receives NAME.bmp for each of its pictures. Keys: 0 to 4 choose the
// handles (none, move, rotate, scale, all), L their axes, S snapping, F frames what is shown, V shows its box; A plays
// the animation, P edits a path around the model, C flies along it; W sets a walker upon the model, whom the arrow keys
// lead along the ground's axes, and M shows drops that swim, instead of the model. The script points to handles as
// move/x, rotate/y, scale/free and so on; the first tool of a kind counts, and node/2 is the end point of the path's
// third node.
#include "animation/cAnim.h"
#include "animation/cCamera.h"
#include "animation/cSpline.h"
#include "files/SourceFolder.h"
#include "files/cIO.h"
#include "foundation/cTimer.h"
#include "host/Daylight.h"
#include "host/Drops.h"
#include "host/HandleParts.h"
#include "host/InputScript.h"
#include "host/Walker.h"
#include "host/cSoftwareDevice.h"
#include "mesh/cModel.h"
#include "render/cRender.h"
#include "tests/foundation/FakeClock.h"
#include "ui/cWidgets.h"
#include "view/cFreeViewer.h"
#include "view/cMoveTool.h"
#include "view/cRotateTool.h"
#include "view/cScaleTool.h"
#include "view/cTransform.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <memory>

using namespace trellis;

namespace {

/// What stands in the world; behind the handles, in front of the viewer.
class Scene : public cWidget {
public:
    explicit Scene(cFreeViewer* viewer) : m_Viewer(viewer) {}

    bool Load(const char* path) {
        if (!cIO::LoadModel(path, &m_Model) || m_Model.GetTriangleCount() == 0) {
            return false;
        }
        m_Posed = m_Model;
        if (!m_Model.Static) {
            m_Model.GoToBindPose(&m_Posed);
            m_Posed.Static = true;
        }
        m_Posed.UpdateBounds();
        return true;
    }
    bool LoadAnim(const char* path) { return cIO::LoadAnim(path, &m_Anim); }

    /// Who looks: the viewer of the hand, or the one that flies.
    cViewer* GetViewer() { return m_IsFlying ? &m_Flyer : m_Viewer; }

    cMat4 World() const {
        const cVec3& t = Transform.Translate;
        return cMat4::Scaling(Transform.Scale) * Transform.Rotate.ToMat4() * cMat4::Translation(t.x, t.y, t.z);
    }

    bool OnButtonDown(int code) override {
        if (code >= cInput::Key0 && code <= cInput::Key4) {
            g_ManipulatorsType = code - cInput::Key0;
            Transform.CreateTools();
            return true;
        }
        switch (code) {
        case cInput::F:
            m_Drops ? m_Viewer->Frame(m_Drops->GetBox(), cMat4::Identity, cRect::Empty)
                    : m_Viewer->Frame(m_Posed.Bounds, World(), cRect::Empty);
            return true;
        case cInput::A:
            m_IsPlaying = !m_IsPlaying;
            return true;
        case cInput::P:
            EnsurePath();
            Path.Edit();
            return true;
        case cInput::C:
            m_IsFlying = !m_IsFlying;
            m_FlightState = {};
            MakeFlight();
            return true;
        case cInput::W:
            m_IsWalking = !m_IsWalking;
            m_Walker.SetLevel(m_Posed, TopOf(m_Posed.Bounds));
            return true;
        case cInput::M:
            m_Drops = m_Drops ? nullptr : std::make_unique<Drops>();
            return true;
        case cInput::L:
            g_ManipulatorsLocal = g_ManipulatorsLocal == cSpace::World ? cSpace::Local : cSpace::World;
            Transform.CreateTools();
            return true;
        case cInput::S:
            g_ManipulatorsSnap = g_ManipulatorsSnap > 0 ? 0.0f : 0.5f;
            return true;
        case cInput::V:
            m_ShowBounds = !m_ShowBounds;
            return true;
        }
        return false;
    }

    void OnRender() override {
        static const int s_Depth = cRender::GetDepthStateID(true, true, cDepthFunc::LessEqual);
        cRender::SetDepthState(s_Depth);
        cRender::SetBlendState(-1);
        cRender::SetCullMode(cCullMode::None);
        cRender::SetWorldMatrix(cMat4::Identity);
        cRender::GridArgs grid;
        grid.Height = 12;
        cRender::DrawGrid(grid);

        if (m_IsPlaying) {
            m_AnimSec =
                std::fmod(m_AnimSec + cTimer::GetFrameTimeSec(), std::max(float(m_Anim.GetDurationSec()), 0.01f));
            m_Anim.SetFrame(m_AnimSec, m_Model, &m_Joints);
            m_Model.SetAnim(m_Joints, &m_Posed);
        }
        if (m_Drops) {
            m_Drops->Step(cTimer::GetFrameTimeSec());
            m_Drops->Draw();
            return;
        }
        cRender::SetWorldMatrix(World());
        for (const cModel::Mesh& mesh : m_Posed.Meshes) {
            DrawInDaylight(mesh, DaylightColorOf(mesh.MaterialName));
        }
        if (m_ShowBounds) {
            cRender::DrawBounds(m_Posed.Bounds, cColor::Orange);
            const cVec3 low = m_Posed.Bounds.min, high = m_Posed.Bounds.max;
            cRender::DrawSphereWire((low + high) * 0.5f, (high - low).Length() * 0.5f, cColor(0.5f, 0.7f, 0.9f, 1));
        }
        if (m_IsWalking) {
            const auto held = [](int more, int less) {
                return float(cInput::IsDown(more)) - float(cInput::IsDown(less));
            };
            m_Walker.Step({held(cInput::Right, cInput::Left), 0, held(cInput::Down, cInput::Up)},
                          cTimer::GetFrameTimeSec());
            m_Walker.Draw();
        }
        cRender::SetWorldMatrix(cMat4::Scaling(2, 2, 2) * cMat4::RotationY(45) * cMat4::Translation(-9, 1, -9));
        cRender::DrawCamera(cColor::DarkSlateGray);
        cRender::SetWorldMatrix(cMat4::Identity);
        Transform.OnProcess();
    }

    /// Ahead of a frame's drawing.
    void Fly() {
        if (!m_IsFlying) {
            return;
        }
        m_Flight.Step(&m_FlightState, cTimer::GetFrameTimeSec());
        m_Flyer.Position = m_FlightState.Position;
        m_Flyer.Orient = m_FlightState.Orientation;
        m_Flyer.FovY = m_FlightState.FieldOfView;
        m_Flyer.Viewport = m_Viewer->Viewport;
        m_Flyer.Update(false);
    }

    cTransform Transform;
    cSpline Path;

private:
    static cVec3 TopOf(const cBounds& bounds) {
        const cVec3 low = bounds.min, high = bounds.max;
        return {(low.x + high.x) * 0.5f, high.y + Walker::HalfHeight, (low.z + high.z) * 0.5f};
    }

    void EnsurePath() {
        if (Path.Nodes.Count() == 0) {
            const cVec3 points[] = {{9, 2, 0}, {0, 4, 9}, {-9, 6, 0}, {0, 7, -9}, {8, 9, -4}};
            Path.SetFromPoints(points, int(std::size(points)));
        }
    }

    /// Along the path in four seconds, looking at the model.
    void MakeFlight() {
        constexpr int Frames = 80;
        EnsurePath();
        m_Flight.FrameRate = 20;
        m_Flight.Cameras.Clear();
        m_Flight.Cameras.Add({"round the model", 0.1f, 2000, 0, {}});
        const cVec3 middle = (cVec3(m_Posed.Bounds.min) + cVec3(m_Posed.Bounds.max)) * 0.5f;
        for (int i = 0; i < Frames; i++) {
            const float length = Path.GetTotalLength() * float(i) / (Frames - 1);
            cCamera::Frame frame{Path.GetValue(Path.GetPlaceByLengthAccurate(length)), {}, 67.5f};
            cViewer_CalcOrientFromForwardDir(&frame.Orientation, middle - frame.Position);
            m_Flight.Cameras[0].Frames.Add(frame);
        }
    }

    cFreeViewer* m_Viewer;
    cViewer m_Flyer;
    cModel m_Model, m_Posed;
    cAnim m_Anim;
    cList<cAnim::Joint> m_Joints;
    cCamera m_Flight;
    cCamera::State m_FlightState;
    Walker m_Walker;
    std::unique_ptr<Drops> m_Drops;
    float m_AnimSec = 0;
    bool m_ShowBounds = false, m_IsPlaying = false, m_IsFlying = false, m_IsWalking = false;
};

class Program {
public:
    bool Play(const char* modelPn, const char* animPn, const char* scriptPn, const std::string& folder,
              std::string* error) {
        InputScript script;
        if (!script.Load(scriptPn, error)) {
            return false;
        }
        if (!m_Scene->Load(modelPn) || (*animPn && !m_Scene->LoadAnim(animPn))) {
            *error = "no such model or animation";
            return false;
        }
        cWidgets::AddWidget(m_Viewer, 0);
        cWidgets::AddWidget(m_Scene, 0);
        cRender::SetViewer(m_Viewer);
        const InputScript::Listener listener{
            [this](int width, int height) {
                s_Device->SetSize(width, height);
                m_Viewer->Viewport = {0, 0, float(width), float(height)};
                m_Viewer->Update();
            },
            [this](const std::string& name, cVec2* position) { return Find(name, position); },
            InputScript::SaverTo(folder),
        };
        const bool ok = script.Play(
            listener, [this] { Frame(); }, error);
        m_Scene->Transform.FreeTools();
        m_Scene->Path.FreeTools();
        cRender::SetViewer(nullptr);
        cWidgets::FreeAll();
        return ok;
    }

    static inline cSoftwareDevice* s_Device = nullptr; // the front end's

private:
    bool Find(const std::string& name, cVec2* position) const {
        const std::string kind = name.substr(0, name.find('/')), handle = name.substr(name.find('/') + 1);
        if (kind == "node") {
            const int node = std::atoi(handle.c_str());
            const auto* at = m_Scene->Path.Nodes.Get(node);
            return at && m_Viewer->WorldToClosestScreenPoint(at->EP, position);
        }
        return FindHandle(name, position);
    }

    void Frame() {
        m_Clock.Advance(1'000'000 / 60);
        cTimer::Acquire();
        cWidgets::HandleInputEvents();
        m_Scene->Fly();
        cRender::BeginFrame();
        cRender::Clear(true, true, cColor(0.62f, 0.68f, 0.74f), 1);
        cRender::SetViewer(m_Scene->GetViewer());
        for (int layer = 0; layer < cWidgets::LayerCount; layer++) {
            cWidgets::Render(layer);
        }
        cRender::EndFrame();
    }

    cFakeClock m_Clock;
    cFreeViewer* m_Viewer = new cFreeViewer; // the manager's
    Scene* m_Scene = new Scene(m_Viewer);
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 5 && argc != 6) {
        std::fprintf(stderr, "usage: scene_view DATA MODEL SCRIPT FOLDER [ANIM]\n");
        return 2;
    }
    const auto absolute = [](const char* path) { return std::filesystem::absolute(path).string(); };
    static_cast<SourceFolder*>(cIO::GetSourcesMutable()[0])->SetPath(absolute(argv[1]).c_str());
    RegisterDaylight();
    cRender::SetFactory([](int) -> cRender::Stub* { return Program::s_Device = new cSoftwareDevice(640, 480); });
    if (!cRender::Init(0)) {
        return 1;
    }
    std::string error;
    const std::string anim = argc == 6 ? absolute(argv[5]) : "";
    const bool ok = Program().Play(absolute(argv[2]).c_str(), anim.c_str(), argv[3], absolute(argv[4]), &error);
    if (!ok) {
        std::fprintf(stderr, "scene_view: %s\n", error.c_str());
    }
    cRender::Free();
    return ok ? 0 : 1;
}
