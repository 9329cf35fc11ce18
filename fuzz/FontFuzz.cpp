// Font files: what is read must be written and read again alike, and any text must find its glyphs.
#include "fuzz/Fuzz.h"
#include "render/cFont.h"

using namespace trellis;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const cFile file = FileOf(data, size);
    cFont font;
    if (!font.Read(file)) {
        return 0;
    }
    for (int code = 0; code < 65536; code += 97) {
        const cFont::Glyph* glyph = font.FindOrPlaceholder(static_cast<unsigned short>(code));
        Check(!glyph || glyph->Code == code || glyph == &font.Glyphs[cFont::Placeholder]);
    }
    cFile written;
    font.Write(&written);
    written.SetPos(0);
    cFont back;
    Check(back.Read(written) && back.Glyphs.Count() == font.Glyphs.Count() && back.Padding == font.Padding);
    return 0;
}
