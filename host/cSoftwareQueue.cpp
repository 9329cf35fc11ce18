#include "host/cSoftwareQueue.h"

#include <algorithm>
#include <climits>

namespace trellis {

namespace {

constexpr int s_BandShift = 5;   // colours and depths of 32 rows of a usual picture fit the cache of a processor
constexpr int s_WholeShift = 15; // above the largest side
constexpr int s_MaxVertices = 1 << 16, s_FirstVertices = 1 << 10;
constexpr size_t s_MaxCalls = 1 << 12;
constexpr int s_MaxEntries = 1 << 20;   // of 16 bytes, in all bands together
constexpr int64_t s_LeastWork = 30'000; // below it another thread would come too late to help

/// Calls with other targets do not wait together: one might read what the other draws into.
bool HasSameTarget(const cSoftwareQueue::State& a, const cSoftwareQueue::State& b) {
    return a.Surface.Bytes == b.Surface.Bytes && a.Surface.Floats == b.Surface.Floats && a.Depths == b.Depths;
}

} // namespace

cSoftwareQueue::cSoftwareQueue(int threads) : m_Threads(threads), m_Rasters(size_t(m_Threads.GetCount())) {}

void cSoftwareQueue::MakeRoom(const State& state, int vertices, bool isAlone) {
    if (isAlone || vertices > m_Capacity - m_Count || m_Calls.size() >= s_MaxCalls ||
        (!m_Calls.empty() && !HasSameTarget(m_Calls[0].What, state))) {
        Flush();
    }
    if (vertices > m_Capacity - m_Count) {
        const int64_t doubled = std::min(int64_t(2) * m_Capacity, int64_t(s_MaxVertices));
        const int capacity = std::max({vertices, int(doubled), s_FirstVertices});
        std::unique_ptr<Vertex[]> grown(new Vertex[size_t(capacity)]);
        m_Corners.reset(new cSoftwareRaster::Corner[size_t(capacity)]);
        m_Vertices = std::move(grown);
        m_Capacity = capacity;
    }
    if (m_Calls.empty()) {
        m_Shift = isAlone ? s_WholeShift : s_BandShift;
        m_Bands.resize(std::max(m_Bands.size(), size_t((state.Surface.Height - 1) >> m_Shift) + 1));
    }
}

void cSoftwareQueue::Clear(const State& state, const Fill& fill) {
    MakeRoom(state, 0, false);
    m_Calls.push_back({state, cTopology::Points, true, fill});
    m_Work += int64_t(state.Clip.X1 - state.Clip.X0) * (state.Clip.Y1 - state.Clip.Y0) / 8;
    Add({}, state.Clip.Y0, state.Clip.Y1);
}

cSoftwareQueue::Vertex* cSoftwareQueue::Begin(const State& state, cTopology::Enum topology, int vertices) {
    m_Calls.push_back({state, topology, false, {}});
    m_Rasters[0].Begin(state);
    m_First = m_Count;
    m_Count += vertices;
    return &m_Vertices[size_t(m_First)];
}

void cSoftwareQueue::Project() {
    m_Rasters[0].Project(&m_Vertices[size_t(m_First)], m_Count - m_First, &m_Corners[size_t(m_First)]);
}

// Primitives

/// @param y0, y1  the rows that it may reach, as far as the bounds let it
void cSoftwareQueue::Add(const int (&corners)[3], int y0, int y1) {
    const cSoftwareRaster::Bounds& clip = m_Calls.back().What.Clip;
    const int first = std::max(y0, clip.Y0), last = std::min(y1, clip.Y1) - 1;
    if (m_Entries > s_MaxEntries) {
        DrawBands();
        m_Rasters[0].Begin(m_Calls.back().What); // which has drawn other calls
    }
    for (int band = first >> m_Shift; first <= last && band <= last >> m_Shift; band++) {
        m_Entries++;
        m_Bands[size_t(band)].push_back({int(m_Calls.size()) - 1, {corners[0], corners[1], corners[2]}});
    }
}

void cSoftwareQueue::Point(int a) {
    const cSoftwareRaster::Corner& corner = At(a);
    if (!corner.Out) {
        Add({m_First + a, 0, 0}, corner.Y >> 8, (corner.Y >> 8) + 1);
    }
}

bool cSoftwareQueue::Line(int a, int b, bool skipFirst) {
    const cSoftwareRaster::Corner &from = At(a), &to = At(b);
    if (!m_Rasters[0].HasLine(from, to)) {
        return false;
    }
    const bool isCut = from.Out | to.Out;
    Add({m_First + a, m_First + b, skipFirst}, isCut ? 0 : std::min(from.Y, to.Y) >> 8,
        isCut ? INT_MAX : (std::max(from.Y, to.Y) >> 8) + 1);
    return true;
}

void cSoftwareQueue::Triangle(int a, int b, int c) {
    const cSoftwareRaster::Corner &p = At(a), &q = At(b), &r = At(c);
    if (p.Out & q.Out & r.Out) {
        return;
    }
    const bool isCut = p.Out | q.Out | r.Out;
    const cSoftwareRaster::Bounds& clip = m_Calls.back().What.Clip;
    int x0 = clip.X0, y0 = clip.Y0, x1 = clip.X1, y1 = clip.Y1;
    if (!isCut) {
        x0 = std::max(x0, std::min({p.X, q.X, r.X}) >> 8);
        x1 = std::min(x1, (std::max({p.X, q.X, r.X}) >> 8) + 1);
        y0 = std::max(y0, std::min({p.Y, q.Y, r.Y}) >> 8);
        y1 = std::min(y1, (std::max({p.Y, q.Y, r.Y}) >> 8) + 1);
    }
    if (x0 < x1 && y0 < y1) {
        m_Work += int64_t(x1 - x0) * (y1 - y0) / 2 + 32;
        Add({m_First + a, m_First + b, m_First + c}, y0, y1);
    }
}

// Drawing

void cSoftwareQueue::Flush() {
    if (m_Calls.empty()) {
        return;
    }
    DrawBands();
    m_Calls.clear();
    m_Count = 0;
    m_Round++;
}

/// What waits in the bands; the calls and their vertices stay.
void cSoftwareQueue::DrawBands() {
    m_NextBand = 0;
    const auto job = [this](int worker) {
        for (int band = m_NextBand++; band < int(m_Bands.size()); band = m_NextBand++) {
            Draw(band, &m_Rasters[size_t(worker)]);
        }
    };
    if (m_Threads.GetCount() == 1 || m_Work < s_LeastWork) {
        job(0);
    } else {
        m_Threads.Run(job);
    }
    for (auto& band : m_Bands) {
        band.clear();
    }
    m_Entries = 0;
    m_Work = 0;
}

void cSoftwareQueue::Wipe(const Call& call, int y0, int y1) {
    const State& state = call.What;
    const int count = state.Clip.X1 - state.Clip.X0;
    cSoftwareMerge merge;
    merge.Begin(state.Surface, cSoftwareBlend());
    for (int y = std::max(y0, state.Clip.Y0); y < std::min(y1, state.Clip.Y1) && count > 0; y++) {
        if (call.To.IsColor) {
            merge.Fill(state.Clip.X0, y, count, call.To.Color);
        }
        if (call.To.IsDepth) {
            std::fill_n(state.Depths + size_t(y) * size_t(state.DepthPitch) + size_t(state.Clip.X0), count,
                        call.To.Depth);
        }
    }
}

void cSoftwareQueue::Draw(int band, cSoftwareRaster* raster) const {
    const int y0 = band << m_Shift, y1 = y0 + (1 << m_Shift);
    const cSoftwareRaster::Corner* corners = m_Corners.get();
    int current = -1;
    for (const Entry& entry : m_Bands[size_t(band)]) {
        const Call& call = m_Calls[size_t(entry.Call)];
        if (call.IsClear) {
            Wipe(call, y0, y1);
            continue;
        }
        if (entry.Call != current) {
            current = entry.Call;
            raster->Begin(call.What, y0, y1);
        }
        const int* at = entry.Corners;
        switch (call.Topology) {
        case cTopology::Points:
            raster->Point(corners[at[0]]);
            break;
        case cTopology::LineList:
        case cTopology::LineStrip:
            raster->Line(corners[at[0]], corners[at[1]], at[2]);
            break;
        case cTopology::TriangleList:
            raster->Triangle(corners[at[0]], corners[at[1]], corners[at[2]]);
            break;
        }
    }
}

} // namespace trellis
