// Draw calls that wait until somebody looks at their pixels. Then they are drawn by all processors, in bands of rows:
//
//     call --vertices--> corners --primitives--> lists of the bands they reach --Flush--> one raster a thread
//
// Rows are nobody's but their band's, and a band draws its primitives in their order: pixels come out the same for any
// number of threads.
#pragma once

#include "host/cSoftwareRaster.h"
#include "host/cSoftwareThreads.h"
#include "render/cTopology.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace trellis {

/// Whatever a call refers to must stay as it is until the next `Flush`: the pixels drawn into, the shader with its
/// constants, and the textures it reads. Those may not be what is drawn into, unless the call is alone.
///
/// Belongs to the rendering thread. In the steady state nothing is allocated.
class cSoftwareQueue {
public:
    using State = cSoftwareRaster::State;
    using Vertex = cSoftwareShader::Vertex;

    explicit cSoftwareQueue(int threads); ///< As `cSoftwareThreads`.

    struct Fill { ///< What a rectangle is cleared to.
        bool IsColor = false, IsDepth = false;
        cVec4 Color{};
        float Depth = 0;
    };
    /// Clears `Clip` of the state's surface and depths.
    void Clear(const State& state, const Fill& fill);

    /// Comes before `Begin`, and before the state's shader is made: draws what waits when there is no room for a call,
    /// or when it cannot wait together with this one.
    ///
    /// @param isAlone  the call reads what it draws into; its primitives are drawn one after the other
    void MakeRoom(const State& state, int vertices, bool isAlone);

    /// Begins a draw call. @return where its vertices come, with clip positions and varyings
    Vertex* Begin(const State& state, cTopology::Enum topology, int vertices);
    void Project(); ///< The vertices are there.

    // Primitives of the call, by its vertices' numbers
    void Point(int a);
    bool Line(int a, int b, bool skipFirst); ///< @return whether there is anything of it to draw, anywhere
    void Triangle(int a, int b, int c);

    void Flush();
    unsigned GetRound() const { return m_Round; } ///< Counts the flushes.

private:
    struct Call {
        State What;
        cTopology::Enum Topology;
        bool IsClear;
        Fill To; // of one that clears
    };
    struct Entry { // one primitive in one band
        int Call;
        int Corners[3]; // as many as it has; behind those of a line its `skipFirst`
    };

    const cSoftwareRaster::Corner& At(int vertex) const { return m_Corners[size_t(m_First + vertex)]; }
    void Add(const int (&corners)[3], int y0, int y1);
    void DrawBands();
    void Draw(int band, cSoftwareRaster* raster) const;
    static void Wipe(const Call& call, int y0, int y1);

    cSoftwareThreads m_Threads;
    std::vector<cSoftwareRaster> m_Rasters; // one for each thread; the first one projects, too
    std::vector<Call> m_Calls;
    std::unique_ptr<Vertex[]> m_Vertices;
    std::unique_ptr<cSoftwareRaster::Corner[]> m_Corners;
    int m_Capacity = 0, m_First = 0, m_Count = 0; // vertices; those of the present call begin at the first
    std::vector<std::vector<Entry>> m_Bands;
    int m_Shift = 0;    // a band has 1 << m_Shift rows
    int m_Entries = 0;  // in all of them
    int64_t m_Work = 0; // in pixels, about
    unsigned m_Round = 0;
    std::atomic<int> m_NextBand = 0;
};

} // namespace trellis
