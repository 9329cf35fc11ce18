// The pictures that a splash is put together from. Files in the folder "Splash" count by their names, in any case and
// with any extension:
//
//     0 to 9   Dot   Version   Background...     the last may be there more than once
#pragma once

#include "foundation/cStr.h"
#include "image/cImage.h"

namespace trellis {

class cSplash_Data {
public:
    static constexpr int DigitCount = 10;

    /// A picture and the file that it comes from.
    struct Piece {
        cStr FilePn; ///< Empty when there is none.
        cImage Image;
    };

    void SearchFiles(); ///< Picks one of several backgrounds by the second. Loads nothing.

    /// Loads all that was found, as `Rgb8`. @return false when anything is missing or cannot be had as that
    bool Load();
    void Free(); ///< Back to the freshly constructed state.

    /// @param c  a digit or a point
    const cImage& GetImage(char c) const { return (c == '.' ? Dot : Digits[c - '0']).Image; }

    Piece Background;
    Piece Digits[DigitCount];
    Piece Dot;
    Piece Version; ///< The label in front of the number.
    bool Searched = false;
    bool Loaded = false;

    static cSplash_Data s_Data;

private:
    Piece* FindPiece(const cStr& name);
};

/// The background with a version on it.
struct cSplash_Image {
    cImage Picture;
    cStr Version; ///< As it is drawn.

    /// Negative coordinates as those of `cSplash::ShowArgs`. @param data  loaded
    void Compose(const cSplash_Data& data, const char* version, int x, int y);
};

} // namespace trellis
