// The editing of a spline in the view.
#include "animation/cSpline.h"
#include "foundation/cImmortal.h"
#include "math/cMat4.h"
#include "render/cRender.h"
#include "ui/cWidgets.h"
#include "view/cManipulator.h"

#include <utility>

namespace trellis {

/// Stands for a spline among the widgets. The manager deletes what is added to it, and a spline belongs to the list or
/// the object that it is a member of: so not the spline is added, but this one, which hands on the frames.
class cSpline::Widget : public cWidget {
public:
    explicit Widget(cSpline* owner) : Owner(owner) {}
    ~Widget() override {
        if (Owner) {
            Owner->m_Widget = nullptr;
        }
    }
    void OnRender() override {
        if (Owner) {
            Owner->OnRender();
        }
    }

    cSpline* Owner; ///< Null once the spline has let go of it: freeing may take until the end of the frame.
};

void cSpline::Edit() {
    if (m_Widget) {
        FreeTools();
    } else {
        CreateTools();
    }
}

void cSpline::CreateTools() {
    constexpr int layer = 0;
    if (!m_Widget) {
        if (g_ManipulatorsType == cManipulator::None) {
            g_ManipulatorsType = cManipulator::MoveType;
        }
        Transform.CreateTools();
        m_Widget = new Widget(this);
        m_WidgetID = cWidgets::AddWidget(m_Widget, layer);
    }
    for (int i = 0; i < Nodes.Count(); i++) {
        if (cSpline_Node* node = Nodes.Get(i)) {
            node->CreateTools();
        }
    }
}

void cSpline::FreeTools() {
    if (Widget* widget = std::exchange(m_Widget, nullptr)) {
        widget->Owner = nullptr;
        cWidgets::FreeWidget(widget, true);
    }
    Transform.FreeTools();
    for (int i = 0; i < Nodes.Count(); i++) {
        if (cSpline_Node* node = Nodes.Get(i)) {
            node->FreeTools();
        }
    }
}

void cSpline::UpdateParent() {
    const cMat4 parent = Transform.GetMatrix();
    cMat4 inverse;
    const bool hasInverse = cMat4::Invert(parent, &inverse);
    for (int i = 0; i < Nodes.Count(); i++) {
        if (cSpline_Node* node = Nodes.Get(i)) {
            node->UpdateParent(parent, hasInverse ? &inverse : nullptr);
        }
    }
}

void cSpline::OnRender() {
    if (m_Widget) { // nodes may have been added
        CreateTools();
    }
    UpdateParent();
    const bool canDraw = cRender::GetInstance() && cRender::GetViewer();
    const cMat4 toWorld = Transform.GetMatrix();
    if (canDraw) {
        static const int s_Font = cRender::GetFontID("Tahoma B8");
        cRender::DrawString(s_Font, "Spline Root", Transform.Translate, cColor::Red);
        cRender::PushWorldMatrix();
        cRender::SetWorldMatrix(toWorld);
    }
    for (int i = 0; i < Nodes.Count(); i++) {
        if (cSpline_Node* node = Nodes.Get(i)) {
            node->Render(toWorld);
        }
    }
    FillCache(); // each frame: the tools have moved the nodes
    if (canDraw) {
        DrawCurve();
        cRender::PopWorldMatrix();
    }
}

void cSpline::DrawCurve() const {
    using Vertex = cVertex::PositionColored;
    static constinit cImmortal<cList<Vertex>> s_Store; // kept from frame to frame
    cList<Vertex>& vertices = s_Store.Value;
    constexpr int pieces = 100;
    if (Segments.IsEmpty()) {
        return;
    }
    const unsigned color = cColor::White.ToDword();
    vertices.Clear();
    vertices.Add({Segments[0].Bezier.Points[0], color});
    for (const Segment& segment : Segments) {
        for (int i = 1; i <= pieces; i++) {
            vertices.Add({segment.Bezier.GetValue(float(i) / pieces), color});
        }
    }
    static const int s_Shader = cRender::GetShaderID("Colored", Vertex::FormatID);
    cRender::SetDepthState(-1);
    cRender::SetShader(s_Shader);
    cRender::DrawArrays(cTopology::LineStrip, vertices.Data(), vertices.Count());
}

} // namespace trellis
