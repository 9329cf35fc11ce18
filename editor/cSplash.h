// The start-up picture: one of the backgrounds in the folder "Splash", with the version's number drawn on it out of
// pictures of digits.
#pragma once

#include "foundation/cStr.h"

namespace trellis {

class cImage;

/// Belongs to the main thread. Taking the splash down is safe at any time: the log does it.
class cSplash {
public:
    struct ShowArgs {
        cStr Version; ///< Only its digits and points are drawn.

        // Pixels from the background's left and top edges to the version's. Negative: from its right and bottom edges
        // to the version's.
        int X = 0;
        int Y = 0;
        int ShowState = 1; ///< How the window is shown, for whoever makes one; 0 means that there is none.
    };

    /// Makes a window of the composed picture, an `Rgb8` one that is gone afterwards.
    using Presenter = void (*)(const cImage& picture, int showState);

    static void SetPresenter(Presenter presenter) { s_Presenter = presenter; } ///< Null: nothing is shown.

    /// Composes the picture and hands it over. Nothing happens unless all pictures are there; nothing is said of
    /// one that is missing.
    static void Show(const ShowArgs& args);

    static void DestroyNow() { s_Window = 0; } ///< Takes the picture down; safe when none is shown.
    static void DestroyLater() {}              ///< Nothing: only a window could stay for a while.

    static int GetWindow() { return s_Window; } ///< The `ShowState` of what is shown; 0 for none.

private:
    static inline Presenter s_Presenter = nullptr;
    static inline int s_Window = 0;
};

} // namespace trellis
