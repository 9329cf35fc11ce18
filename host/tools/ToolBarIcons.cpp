#include "host/tools/ToolBarIcons.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

using namespace trellis;

namespace {

constexpr int Cell = 32, Columns = 8, Rows = 2;

struct Point {
    float X, Y; ///< Pixels of the cell from its top left corner.
};
struct Paint {
    unsigned char R, G, B;
};
constexpr Paint Ink = {0x2B, 0x3A, 0x55}, Paper = {0xFA, 0xFB, 0xFD}, Folder = {0xF2, 0xC0, 0x50},
                Blue = {0x3C, 0x78, 0xD8}, Green = {0x3C, 0xA0, 0x4C}, Red = {0xD0, 0x3C, 0x3C},
                Gray = {0x9A, 0xA4, 0xB4}, Steel = {0x5A, 0x6C, 0x8C};

/// One cell, painted over and over with a soft edge of one pixel.
class Canvas {
public:
    void Polygon(const std::vector<Point>& points, Paint paint) {
        Cover([&](float x, float y) { return Inside(points, x, y); }, paint);
    }
    /// A stroke along a line through points, with round joints and ends.
    void Stroke(const std::vector<Point>& points, float width, Paint paint) {
        Cover(
            [&](float x, float y) {
                for (size_t i = 0; i + 1 < points.size(); i++) {
                    if (DistanceSq(points[i], points[i + 1], x, y) <= width * width / 4) {
                        return true;
                    }
                }
                return false;
            },
            paint);
    }
    void Outlined(std::vector<Point> points, Paint fill, Paint line, float width = 1.5f) {
        Polygon(points, fill);
        points.push_back(points.front());
        Stroke(points, width, line);
    }

    void CopyTo(cImage* sheet, int index) const {
        for (int y = 0; y < Cell; y++) {
            const int row = sheet->GetHeight() - 1 - (index / Columns * Cell + y);
            std::memcpy(sheet->GetPixels() + (row * sheet->GetWidth() + index % Columns * Cell) * 4, m_Pixels[y][0],
                        sizeof(m_Pixels[y]));
        }
    }

private:
    static bool Inside(const std::vector<Point>& p, float x, float y) {
        bool inside = false;
        for (size_t i = 0, j = p.size() - 1; i < p.size(); j = i++) {
            if ((p[i].Y > y) != (p[j].Y > y) && x < (p[j].X - p[i].X) * (y - p[i].Y) / (p[j].Y - p[i].Y) + p[i].X) {
                inside = !inside;
            }
        }
        return inside;
    }
    static float DistanceSq(Point a, Point b, float x, float y) {
        const float dx = b.X - a.X, dy = b.Y - a.Y, lengthSq = dx * dx + dy * dy;
        const float t = lengthSq > 0 ? std::clamp(((x - a.X) * dx + (y - a.Y) * dy) / lengthSq, 0.0f, 1.0f) : 0;
        const float ex = x - a.X - t * dx, ey = y - a.Y - t * dy;
        return ex * ex + ey * ey;
    }
    /// Sixteen samples a pixel.
    template <class F> void Cover(F covers, Paint paint) {
        for (int y = 0; y < Cell; y++) {
            for (int x = 0; x < Cell; x++) {
                int hits = 0;
                for (int s = 0; s < 16; s++) {
                    hits += covers(float(x) + (float(s % 4) + 0.5f) / 4, float(y) + (float(s / 4) + 0.5f) / 4);
                }
                Blend(m_Pixels[y][x], paint, float(hits) / 16);
            }
        }
    }
    static void Blend(unsigned char* pixel, Paint paint, float alpha) {
        const float under = float(pixel[3]) / 255 * (1 - alpha), total = alpha + under;
        if (total <= 0) {
            return;
        }
        const unsigned char color[3] = {paint.R, paint.G, paint.B};
        for (int c = 0; c < 3; c++) {
            pixel[c] = static_cast<unsigned char>((float(color[c]) * alpha + float(pixel[c]) * under) / total + 0.5f);
        }
        pixel[3] = static_cast<unsigned char>(total * 255 + 0.5f);
    }

    unsigned char m_Pixels[Cell][Cell][4] = {};
};

/// An arrow that points right about (16, 16), turned by quarter turns.
std::vector<Point> Arrow(int quarters) {
    std::vector<Point> points = {{26, 16}, {17, 7}, {17, 12}, {6, 12}, {6, 20}, {17, 20}, {17, 25}};
    for (Point& p : points) {
        for (int i = 0; i < quarters; i++) {
            p = {16 - (p.Y - 16), 16 + (p.X - 16)};
        }
    }
    return points;
}

void Load(Canvas* c) {
    c->Outlined({{5, 9}, {12, 9}, {14, 12}, {25, 12}, {25, 25}, {5, 25}}, Folder, Ink);
    c->Outlined({{9, 16}, {29, 16}, {25, 25}, {5, 25}}, {0xFB, 0xD8, 0x80}, Ink);
}

void Save(Canvas* c) {
    c->Outlined({{6, 6}, {23, 6}, {26, 9}, {26, 26}, {6, 26}}, Blue, Ink);
    c->Polygon({{10, 7}, {21, 7}, {21, 14}, {10, 14}}, Paper);
    c->Polygon({{17, 8}, {20, 8}, {20, 13}, {17, 13}}, Ink);
    c->Polygon({{9, 17}, {23, 17}, {23, 25}, {9, 25}}, Paper);
    c->Stroke({{12, 20}, {20, 20}}, 1, Gray);
    c->Stroke({{12, 23}, {20, 23}}, 1, Gray);
}

/// A bent arrow to the left; mirrored, to the right.
void Bent(Canvas* c, bool mirrored, Paint paint) {
    const auto at = [mirrored](float x, float y) { return Point{mirrored ? 32 - x : x, y}; };
    std::vector<Point> arc;
    for (int i = 0; i <= 16; i++) {
        const float angle = -1.5708f + 3.1416f * float(i) / 16;
        arc.push_back(at(17 + 6.5f * std::cos(angle), 17.5f + 6.5f * std::sin(angle)));
    }
    arc.insert(arc.begin(), at(11, 11));
    arc.push_back(at(11, 24));
    c->Stroke(arc, 4.5f, Ink);
    c->Stroke(arc, 2.5f, paint);
    c->Outlined({at(4, 11), at(13, 4), at(13, 18)}, paint, Ink);
}

void Page(Canvas* c, float x, float y) {
    c->Outlined({{x, y}, {x + 9, y}, {x + 13, y + 4}, {x + 13, y + 17}, {x, y + 17}}, Paper, Ink);
    for (float line = y + 6; line < y + 16; line += 3) {
        c->Stroke({{x + 3, line}, {x + 10, line}}, 1, Gray);
    }
}

void Copy(Canvas* c) {
    Page(c, 5, 4);
    Page(c, 13, 10);
}

void Paste(Canvas* c) {
    c->Outlined({{5, 7}, {23, 7}, {23, 27}, {5, 27}}, {0xB8, 0x86, 0x50}, Ink);
    c->Outlined({{10, 4}, {18, 4}, {18, 9}, {10, 9}}, Gray, Ink);
    Page(c, 13, 11);
}

void Clear(Canvas* c) { // an eraser on a line
    c->Outlined({{6, 19}, {18, 7}, {27, 14}, {15, 26}, {11, 26}}, {0xF0, 0x90, 0xA0}, Ink);
    c->Outlined({{6, 19}, {11, 14}, {20, 21}, {15, 26}, {11, 26}}, Paper, Ink);
    c->Stroke({{4, 28}, {28, 28}}, 1.5f, Ink);
}

void Add(Canvas* c) {
    c->Outlined({{13, 6},
                 {19, 6},
                 {19, 13},
                 {26, 13},
                 {26, 19},
                 {19, 19},
                 {19, 26},
                 {13, 26},
                 {13, 19},
                 {6, 19},
                 {6, 13},
                 {13, 13}},
                Green, Ink);
}

void Delete(Canvas* c) {
    c->Outlined({{10, 6},
                 {16, 12},
                 {22, 6},
                 {26, 10},
                 {20, 16},
                 {26, 22},
                 {22, 26},
                 {16, 20},
                 {10, 26},
                 {6, 22},
                 {12, 16},
                 {6, 10}},
                Red, Ink);
}

} // namespace

cImage MakeToolBarIcons() {
    static constexpr void (*s_Icons[])(Canvas*) = {
        Load,
        Save,
        [](Canvas* c) { c->Outlined(Arrow(2), Steel, Ink); }, // back
        [](Canvas* c) { c->Outlined(Arrow(0), Steel, Ink); }, // forward
        [](Canvas* c) { Bent(c, false, Blue); },              // undo
        [](Canvas* c) { Bent(c, true, Blue); },               // redo
        Copy,
        Paste,
        Clear,
        Add,
        [](Canvas* c) { c->Outlined(Arrow(3), Green, Ink); }, // move up
        [](Canvas* c) { c->Outlined(Arrow(1), Green, Ink); }, // move down
        Delete,
    };
    cImage sheet(cFormat::Rgba8, Cell * Columns, Cell * Rows, 1, 1);
    std::memset(sheet.GetPixels(), 0, size_t(sheet.GetMipMappedSize()));
    for (size_t i = 0; i < std::size(s_Icons); i++) {
        Canvas canvas;
        s_Icons[i](&canvas);
        canvas.CopyTo(&sheet, int(i));
    }
    return sheet;
}
