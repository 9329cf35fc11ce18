// Drops that swim about, flow together and part: a field of eight balls as a surface.
#pragma once

#include "math/cBounds.h"
#include "spatial/cIsoSurface.h"

namespace trellis {

class Drops {
public:
    Drops(); ///< In a box of 8 by 8 by 8 above the ground's middle.

    void Step(float sec);
    void Draw() const; ///< With the box.
    cBounds GetBox() const { return {m_Surface.Min, m_Surface.Max}; }

private:
    float m_Sec = 0;
    cList<cIsoSurface::Metaball> m_Balls;
    cIsoSurface m_Surface;
};

} // namespace trellis
