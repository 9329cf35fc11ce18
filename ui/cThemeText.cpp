#include "ui/cThemeText.h"

#include "foundation/cImmortal.h"
#include "foundation/cList.h"
#include "render/cRender.h"

#include <cstring>

namespace trellis {

namespace {

constinit cImmortal<cList<char>> s_ScratchStore;

/// The first bytes of a text, and a tail; good until the next call.
const char* Prefix(const char* text, int bytes, const char* tail = "") {
    cList<char>& scratch = s_ScratchStore.Value;
    const int tailBytes = int(std::strlen(tail));
    scratch.SetCount(bytes + tailBytes + 1);
    std::memcpy(scratch.Data(), text, size_t(bytes));
    std::memcpy(scratch.Data() + bytes, tail, size_t(tailBytes) + 1);
    return scratch.Data();
}

/// Bytes of the UTF-8 sequence that a text begins with; the text's end cuts it.
int SequenceLength(const char* text) {
    return int(strnlen(text, size_t(cStr::UTF8LengthOf(*text))));
}

} // namespace

float cThemeText::Width(int font, const char* text) {
    return cRender::MeasureStringCells(font, text).Width();
}

float cThemeText::WidthBefore(int font, const char* text, int index) {
    int bytes = 0;
    while (index > 0 && text[bytes]) {
        const int length = SequenceLength(text + bytes);
        index -= length == 4 ? 2 : 1; // a surrogate pair
        bytes += length;
    }
    return Width(font, Prefix(text, bytes));
}

const char* cThemeText::Shortened(int font, const char* text, float room) {
    if (Width(font, text) <= room) {
        return text;
    }
    constexpr const char* Dots = "...";
    int fitting = -1;
    for (int bytes = 0; text[bytes]; bytes += SequenceLength(text + bytes)) {
        if (Width(font, Prefix(text, bytes, Dots)) > room) {
            break;
        }
        fitting = bytes;
    }
    return fitting < 0 ? nullptr : Prefix(text, fitting, Dots);
}

} // namespace trellis
