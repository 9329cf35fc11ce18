#include "ui/cTheme_Fragile_Icons.h"

#include "ui/cTheme_Fragile_Pen.h"

#include <algorithm>

namespace trellis {

namespace {

using Icons = cTheme::ToolBarIcon;

struct Stroke {
    Icons::Enum Icon;
    float Ends[4]; ///< x, y, x, y in the unit square, Y upward.
};

// clang-format off
constexpr Stroke s_Strokes[] = {
    // A folder.
    {Icons::Load, {0, 0.12f, 1, 0.12f}}, {Icons::Load, {1, 0.12f, 1, 0.72f}}, {Icons::Load, {1, 0.72f, 0.5f, 0.72f}},
    {Icons::Load, {0.5f, 0.72f, 0.38f, 0.88f}}, {Icons::Load, {0.38f, 0.88f, 0, 0.88f}}, {Icons::Load, {0, 0.88f, 0, 0.12f}},
    // A disk with its shutter and its label.
    {Icons::Save, {0.05f, 0.05f, 0.95f, 0.05f}}, {Icons::Save, {0.95f, 0.05f, 0.95f, 0.72f}}, {Icons::Save, {0.95f, 0.72f, 0.72f, 0.95f}},
    {Icons::Save, {0.72f, 0.95f, 0.05f, 0.95f}}, {Icons::Save, {0.05f, 0.95f, 0.05f, 0.05f}},
    {Icons::Save, {0.26f, 0.05f, 0.26f, 0.42f}}, {Icons::Save, {0.26f, 0.42f, 0.74f, 0.42f}}, {Icons::Save, {0.74f, 0.42f, 0.74f, 0.05f}},
    {Icons::Save, {0.3f, 0.95f, 0.3f, 0.72f}}, {Icons::Save, {0.3f, 0.72f, 0.64f, 0.72f}},
    {Icons::Back, {0.05f, 0.5f, 0.95f, 0.5f}}, {Icons::Back, {0.05f, 0.5f, 0.42f, 0.87f}}, {Icons::Back, {0.05f, 0.5f, 0.42f, 0.13f}},
    {Icons::Forward, {0.05f, 0.5f, 0.95f, 0.5f}}, {Icons::Forward, {0.95f, 0.5f, 0.58f, 0.87f}}, {Icons::Forward, {0.95f, 0.5f, 0.58f, 0.13f}},
    // An arrow that turns back.
    {Icons::Undo, {0.05f, 0.66f, 0.33f, 0.94f}}, {Icons::Undo, {0.05f, 0.66f, 0.33f, 0.38f}}, {Icons::Undo, {0.05f, 0.66f, 0.62f, 0.66f}},
    {Icons::Undo, {0.62f, 0.66f, 0.80f, 0.60f}}, {Icons::Undo, {0.80f, 0.60f, 0.92f, 0.46f}}, {Icons::Undo, {0.92f, 0.46f, 0.92f, 0.28f}},
    {Icons::Undo, {0.92f, 0.28f, 0.80f, 0.14f}}, {Icons::Undo, {0.80f, 0.14f, 0.62f, 0.08f}}, {Icons::Undo, {0.62f, 0.08f, 0.4f, 0.08f}},
    {Icons::Redo, {0.95f, 0.66f, 0.67f, 0.94f}}, {Icons::Redo, {0.95f, 0.66f, 0.67f, 0.38f}}, {Icons::Redo, {0.95f, 0.66f, 0.38f, 0.66f}},
    {Icons::Redo, {0.38f, 0.66f, 0.20f, 0.60f}}, {Icons::Redo, {0.20f, 0.60f, 0.08f, 0.46f}}, {Icons::Redo, {0.08f, 0.46f, 0.08f, 0.28f}},
    {Icons::Redo, {0.08f, 0.28f, 0.20f, 0.14f}}, {Icons::Redo, {0.20f, 0.14f, 0.38f, 0.08f}}, {Icons::Redo, {0.38f, 0.08f, 0.6f, 0.08f}},
    // A sheet before another.
    {Icons::Copy, {0.05f, 0.02f, 0.66f, 0.02f}}, {Icons::Copy, {0.66f, 0.02f, 0.66f, 0.68f}}, {Icons::Copy, {0.66f, 0.68f, 0.05f, 0.68f}},
    {Icons::Copy, {0.05f, 0.68f, 0.05f, 0.02f}}, {Icons::Copy, {0.34f, 0.98f, 0.95f, 0.98f}}, {Icons::Copy, {0.95f, 0.98f, 0.95f, 0.32f}},
    // A clipboard.
    {Icons::Paste, {0.12f, 0, 0.88f, 0}}, {Icons::Paste, {0.88f, 0, 0.88f, 0.86f}}, {Icons::Paste, {0.88f, 0.86f, 0.12f, 0.86f}},
    {Icons::Paste, {0.12f, 0.86f, 0.12f, 0}}, {Icons::Paste, {0.36f, 0.98f, 0.64f, 0.98f}},
    {Icons::Paste, {0.32f, 0.56f, 0.68f, 0.56f}}, {Icons::Paste, {0.32f, 0.3f, 0.68f, 0.3f}},
    // An empty sheet.
    {Icons::Clear, {0.15f, 0, 0.85f, 0}}, {Icons::Clear, {0.85f, 0, 0.85f, 0.68f}}, {Icons::Clear, {0.85f, 0.68f, 0.55f, 1}},
    {Icons::Clear, {0.55f, 1, 0.15f, 1}}, {Icons::Clear, {0.15f, 1, 0.15f, 0}}, {Icons::Clear, {0.55f, 1, 0.55f, 0.68f}},
    {Icons::Clear, {0.55f, 0.68f, 0.85f, 0.68f}},
    {Icons::Add, {0.5f, 0.05f, 0.5f, 0.95f}}, {Icons::Add, {0.05f, 0.5f, 0.95f, 0.5f}},
    {Icons::MoveUp, {0.5f, 0.05f, 0.5f, 0.95f}}, {Icons::MoveUp, {0.5f, 0.95f, 0.13f, 0.58f}}, {Icons::MoveUp, {0.5f, 0.95f, 0.87f, 0.58f}},
    {Icons::MoveDown, {0.5f, 0.05f, 0.5f, 0.95f}}, {Icons::MoveDown, {0.5f, 0.05f, 0.13f, 0.42f}}, {Icons::MoveDown, {0.5f, 0.05f, 0.87f, 0.42f}},
    // A bin.
    {Icons::Delete, {0.06f, 0.8f, 0.94f, 0.8f}}, {Icons::Delete, {0.36f, 0.8f, 0.36f, 0.98f}}, {Icons::Delete, {0.36f, 0.98f, 0.64f, 0.98f}},
    {Icons::Delete, {0.64f, 0.98f, 0.64f, 0.8f}}, {Icons::Delete, {0.16f, 0.8f, 0.23f, 0}}, {Icons::Delete, {0.23f, 0, 0.77f, 0}},
    {Icons::Delete, {0.77f, 0, 0.84f, 0.8f}}, {Icons::Delete, {0.41f, 0.6f, 0.42f, 0.2f}}, {Icons::Delete, {0.59f, 0.6f, 0.58f, 0.2f}},
};
// clang-format on

} // namespace

void cTheme_Fragile_DrawIcon(const cTheme_Fragile_Pen& pen, int icon, const cVec2& at, float size,
                             const cColor& color) {
    const float radius = std::max(size * 0.055f, 0.8f);
    for (const Stroke& s : s_Strokes) {
        if (s.Icon == icon) {
            pen.Strokes(at, size, radius, &s.Ends, 1, color);
        }
    }
}

} // namespace trellis
