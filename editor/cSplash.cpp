#include "editor/cSplash.h"

#include "editor/cSplash_Data.h"

namespace trellis {

void cSplash::Show(const ShowArgs& args) {
    cSplash_Data& data = cSplash_Data::s_Data;
    if (!data.Searched) {
        data.SearchFiles();
    }
    if (data.Loaded || data.Load()) {
        cSplash_Image image;
        image.Compose(data, args.Version, args.X, args.Y);
        s_Window = args.ShowState;
        if (s_Presenter) {
            s_Presenter(image.Picture, args.ShowState);
        }
    }
    data.Free(); // a window has its own copy, and the next splash is made anew
}

} // namespace trellis
