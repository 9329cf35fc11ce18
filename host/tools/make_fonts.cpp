// Makes the fonts and the tool-bar bitmap that the themes ask for, out of free outline fonts.
//
//     make_fonts FOLDER      writes FOLDER/Fonts/*.cFont, *.bmp and FOLDER/Textures/WindowsStandard/ToolBar.bmp
#include "files/cFile.h"
#include "files/cIO.h"
#include "host/tools/ToolBarIcons.h"
#include "image/cImage.h"
#include "render/cFont.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

using namespace trellis;

namespace {

/// A font of the themes. Outlines are hinted to whole pixels where they are small: thin stems would blur otherwise.
struct Recipe {
    const char* Name;
    const char* File; ///< In the folder of the system's fonts.
    int Pixels;       ///< Of the em.
    int Ascent, Height;
};
constexpr Recipe s_Recipes[] = {
    {"Tahoma 8", "truetype/dejavu/DejaVuSansCondensed.ttf", 11, 11, 13},
    {"Tahoma B8", "truetype/dejavu/DejaVuSansCondensed-Bold.ttf", 11, 11, 13},
    {"Calibri 11", "truetype/crosextra/Carlito-Regular.ttf", 15, 14, 18},
    {"Calibri 16", "truetype/crosextra/Carlito-Regular.ttf", 21, 20, 26},
    {"Calibri B24", "truetype/crosextra/Carlito-Bold.ttf", 32, 30, 39},
    {"Comic Sans MS BI24", "opentype/comic-neue/ComicNeue-BoldItalic.otf", 32, 35, 45},
};
constexpr const char* s_FontsFolder = "/usr/share/fonts";
constexpr int Padding = 1; // of empty pixels around the ink, so that filtering finds no neighbour
constexpr int HintedBelow = 18;

/// What programs write: ASCII, Latin-1, and some marks of typesetting, ascending.
std::vector<unsigned short> Codes() {
    std::vector<unsigned short> codes;
    for (unsigned short c = 32; c <= 126; c++) {
        codes.push_back(c);
    }
    for (unsigned short c = 160; c <= 255; c++) {
        codes.push_back(c);
    }
    for (unsigned short c : {0x0152, 0x0153, 0x2013, 0x2014, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2026, 0x20AC}) {
        codes.push_back(c);
    }
    return codes;
}

/// One glyph's ink, rows from the top, and where it goes in the picture.
struct Ink {
    unsigned short Code;
    int Width, Height, Left, Top, Advance;
    std::vector<unsigned char> Pixels;
    int X = 0, Y = 0; ///< Top left corner in the picture, the padding not counted.
};

bool Rasterise(FT_Face face, const Recipe& recipe, std::vector<Ink>* out) {
    const FT_Int32 flags =
        FT_LOAD_RENDER |
        (recipe.Pixels < HintedBelow ? FT_LOAD_FORCE_AUTOHINT | FT_LOAD_TARGET_NORMAL : FT_LOAD_TARGET_LIGHT);
    for (unsigned short code : Codes()) {
        if (FT_Get_Char_Index(face, code) == 0 || FT_Load_Char(face, code, flags) != 0) {
            continue;
        }
        const FT_GlyphSlot slot = face->glyph;
        const FT_Bitmap& bitmap = slot->bitmap;
        Ink ink{code,
                int(bitmap.width),
                int(bitmap.rows),
                slot->bitmap_left,
                slot->bitmap_top,
                int((slot->advance.x + 32) >> 6),
                {}};
        for (int y = 0; y < ink.Height; y++) {
            const unsigned char* row = bitmap.buffer + y * bitmap.pitch;
            ink.Pixels.insert(ink.Pixels.end(), row, row + ink.Width);
        }
        out->push_back(std::move(ink));
    }
    return out->size() > '~' - ' ' && (*out)['~' - ' '].Code == '~'; // none of ASCII is missing
}

/// Lays the glyphs into rows of a picture of that width. @return its height
int Pack(std::vector<Ink>* inks, int width) {
    constexpr int Gap = 2 * Padding;
    int x = 0, y = 0, rowHeight = 0;
    for (Ink& ink : *inks) {
        if (x + ink.Width + Gap > width) {
            x = 0;
            y += rowHeight;
            rowHeight = 0;
        }
        ink.X = x + Padding;
        ink.Y = y + Padding;
        x += ink.Width + Gap;
        rowHeight = std::max(rowHeight, ink.Height + Gap);
    }
    return y + rowHeight;
}

int NextPowerOfTwo(int v) {
    int p = 1;
    while (p < v) {
        p *= 2;
    }
    return p;
}

cImage PictureOf(const std::vector<Ink>& inks, int width, int height) {
    cImage picture(cFormat::R8, width, height, 1, 1);
    std::memset(picture.GetPixels(), 0, size_t(width) * size_t(height));
    for (const Ink& ink : inks) {
        for (int y = 0; y < ink.Height; y++) {
            std::copy_n(ink.Pixels.data() + y * ink.Width, ink.Width,
                        picture.GetPixels() + (height - 1 - ink.Y - y) * width + ink.X);
        }
    }
    return picture;
}

cFont TableOf(const std::vector<Ink>& inks, const Recipe& recipe, int width, int height) {
    cFont font;
    font.Ascent = recipe.Ascent;
    font.Height = recipe.Height;
    font.Padding = Padding;
    for (const Ink& ink : inks) {
        cFont::Glyph g;
        g.Code = ink.Code;
        g.U0 = float(ink.X - Padding) / float(width);
        g.U1 = float(ink.X + ink.Width + Padding) / float(width);
        g.V0 = 1 - float(ink.Y - Padding) / float(height);
        g.V1 = 1 - float(ink.Y + ink.Height + Padding) / float(height);
        g.OffsetX = float(ink.Left - Padding);
        g.OffsetY = float(recipe.Ascent - ink.Top - Padding);
        g.Width = float(ink.Width + 2 * Padding);
        g.Height = float(ink.Height + 2 * Padding);
        g.AdvanceX = float(ink.Advance);
        g.AdvanceY = 0;
        font.Glyphs.Add(g);
    }
    return font;
}

bool MakeFont(FT_Library library, const Recipe& recipe, const std::string& folder) {
    const std::string path = std::string(s_FontsFolder) + "/" + recipe.File;
    FT_Face face;
    if (FT_New_Face(library, path.c_str(), 0, &face) != 0) {
        std::fprintf(stderr, "make_fonts: no font file %s\n", path.c_str());
        return false;
    }
    std::vector<Ink> inks;
    FT_Set_Pixel_Sizes(face, 0, unsigned(recipe.Pixels));
    const bool complete = Rasterise(face, recipe, &inks);
    FT_Done_Face(face);
    if (!complete) {
        std::fprintf(stderr, "make_fonts: %s lacks glyphs of ASCII\n", path.c_str());
        return false;
    }

    int width = 64; // the least picture that is not much higher than wide
    while (Pack(&inks, width) > width) {
        width *= 2;
    }
    const int height = NextPowerOfTwo(Pack(&inks, width));
    cFile table;
    TableOf(inks, recipe, width, height).Write(&table);
    const std::string base = folder + "/Fonts/" + recipe.Name;
    return cIO::SaveFile((base + ".cFont").c_str(), table) &&
           cIO::SaveImage((base + ".bmp").c_str(), PictureOf(inks, width, height));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_fonts FOLDER\n");
        return 2;
    }
    const std::string folder = std::filesystem::absolute(argv[1]).string(); // not beside the program
    cIO::CreatePath((folder + "/Fonts").c_str());
    cIO::CreatePath((folder + "/Textures/WindowsStandard").c_str());

    FT_Library library;
    if (FT_Init_FreeType(&library) != 0) {
        std::fprintf(stderr, "make_fonts: FreeType does not start\n");
        return 1;
    }
    bool ok = true;
    for (const Recipe& recipe : s_Recipes) {
        ok &= MakeFont(library, recipe, folder);
    }
    FT_Done_FreeType(library);
    ok &= cIO::SaveImage((folder + "/Textures/WindowsStandard/ToolBar.bmp").c_str(), MakeToolBarIcons());
    return ok ? 0 : 1;
}
