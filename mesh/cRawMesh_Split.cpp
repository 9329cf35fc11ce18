#include "mesh/cRawMesh.h"

#include <cstdint>
#include <cstring>
#include <random>
#include <utility>

namespace trellis {

namespace {

/// Where one attribute of a vertex comes from. Without a place in the vertex the source counts as empty.
template <class V> struct Source {
    template <class List>
    Source(const List& list, const cVertex::Format& format, cVertexUsage::Enum usage)
        : Items(reinterpret_cast<const unsigned char*>(list.Data())),
          Count(format.HasUsage(usage, &Offset, nullptr) ? unsigned(list.Count()) : 0) {}

    /// Leaves the vertex alone for an index outside the list.
    void Copy(int index, unsigned char* vertex, int stride = int(sizeof(V)), int from = 0) const {
        if (unsigned(index) < Count) {
            std::memcpy(vertex + Offset, Items + size_t(index) * unsigned(stride) + from, sizeof(V));
        }
    }

    const unsigned char* Items;
    int Offset = 0;
    unsigned Count;
};

} // namespace

void cRawMesh::FreeHashTables() const {
    HashTables.Free();
    for (HashEntry* block : m_EntryBlocks) {
        delete[] block;
    }
    m_EntryBlocks.Free();
    m_EntriesLeft = 0;
}

cRawMesh::HashEntry* cRawMesh::AddEntry(int index, int material, int point) const {
    constexpr int blockSize = 4096;
    if (m_EntriesLeft == 0) {
        m_EntryBlocks.Add(new HashEntry[blockSize]);
        m_EntriesLeft = blockSize;
    }
    HashEntry* entry = &m_EntryBlocks[m_EntryBlocks.Count() - 1][blockSize - m_EntriesLeft--];
    entry->Index = index;
    entry->Material = material;
    entry->Point = point;
    entry->Next = nullptr;
    return entry;
}

/// The welding of one `Split`: which vertex a corner becomes.
template <class T> class cRawMesh::Welder {
public:
    Welder(const cRawMesh& mesh, const cList<cRawSplit<T>*>& splits)
        : m_Mesh(mesh), m_Splits(splits), m_ByPoint(mesh.HashTables[0]), m_ByBytes(mesh.HashTables[1]) {}

    /// @return index of the vertex in the split of its material; a new one is added
    int Weld(int material, int point, const unsigned char* vertex) {
        if (point >= m_ByPoint.Count()) {
            m_ByPoint.SetCount(point + 1); // new slots are null
        }
        HashEntry** link = &m_ByPoint[point];
        for (int length = 0; *link; link = &(*link)->Next) {
            if (IsAt(**link, material, vertex)) {
                return (*link)->Index;
            }
            if (++length == LongChain) {
                return WeldByBytes(material, point, vertex);
            }
        }
        return Add(link, material, point, vertex);
    }

private:
    /// Longer chains are left to the other table, or a fan of a million corners would take their square in steps.
    static constexpr int LongChain = 32;

    bool IsAt(const HashEntry& entry, int material, const unsigned char* vertex) const {
        return entry.Material == material &&
               std::memcmp(&m_Splits[material]->Vertices[entry.Index], vertex, sizeof(T)) == 0;
    }

    int Add(HashEntry** link, int material, int point, const unsigned char* vertex) {
        T fresh;
        std::memcpy(static_cast<void*>(&fresh), vertex, sizeof(T));
        *link = m_Mesh.AddEntry(m_Splits[material]->Vertices.Add(fresh), material, point);
        return (*link)->Index;
    }

    int WeldByBytes(int material, int point, const unsigned char* vertex) {
        if (m_Count == m_ByBytes.Count()) {
            Grow();
        }
        HashEntry** link = &Bucket(material, point, vertex);
        for (; *link; link = &(*link)->Next) {
            if ((*link)->Point == point && IsAt(**link, material, vertex)) { // points may lie at one place
                return (*link)->Index;
            }
        }
        m_Count++;
        return Add(link, material, point, vertex);
    }

    /// Multiplies and folds word by word, from a seed that no file can know: its vertices cannot be made to meet.
    HashEntry*& Bucket(int material, int point, const unsigned char* vertex) {
        static const uint64_t s_Seed = std::random_device()() | 1ull << 32;
        const auto mix = [](uint64_t hash, unsigned word) {
            hash = (hash ^ word) * 0x9E3779B97F4A7C15ull;
            return hash ^ hash >> 32;
        };
        uint64_t hash = mix(mix(s_Seed, unsigned(material)), unsigned(point));
        for (size_t i = 0; i < sizeof(T); i += sizeof(unsigned)) {
            unsigned word;
            std::memcpy(&word, vertex + i, sizeof(word));
            hash = mix(hash, word);
        }
        return m_ByBytes[int(hash & unsigned(m_ByBytes.Count() - 1))];
    }

    void Grow() {
        cList<HashEntry*> old = std::move(m_ByBytes);
        m_ByBytes = cList<HashEntry*>();
        m_ByBytes.SetCount(old.IsEmpty() ? 1024 : old.Count() * 2);
        for (HashEntry* entry : old) {
            while (entry) {
                HashEntry* next = std::exchange(entry->Next, nullptr);
                const T& vertex = m_Splits[entry->Material]->Vertices[entry->Index];
                HashEntry*& bucket =
                    Bucket(entry->Material, entry->Point, reinterpret_cast<const unsigned char*>(&vertex));
                entry->Next = bucket;
                bucket = entry;
                entry = next;
            }
        }
    }

    const cRawMesh& m_Mesh;
    const cList<cRawSplit<T>*>& m_Splits;
    cList<HashEntry*>& m_ByPoint;
    cList<HashEntry*>& m_ByBytes; // a power of two of buckets, or none
    int m_Count = 0;              // of entries in it
};

template <class T> void cRawMesh::Split(cList<cRawSplit<T>*>* out) const {
    out->Clear();
    cList<cVec<int, 3>> fans;
    const bool ready = IsTriangulated();
    if (!ready) {
        Triangulate(&fans);
    }
    const cList<cVec<int, 3>>& polys = ready ? Polys : fans;

    for (const cStr& name : Materials) {
        out->Add(new cRawSplit<T>{name, {}, {}});
    }
    if (Materials.IsEmpty()) {
        out->Add(new cRawSplit<T>{"default", {}, {}});
    }
    if (out->Count() == 1) { // with more of them nobody knows yet what each will hold
        (*out)[0]->Indices.EnsureCapacity(polys.Count() / 4 * 3, false);
        (*out)[0]->Vertices.EnsureCapacity(Points.Count(), false);
    }
    FreeHashTables();
    HashTables.SetCount(2);
    HashTables[0].EnsureCapacity(Points.Count(), false);
    Welder<T> welder(*this, *out);

    const cVertex::Format format = T::GetFormat();
    const Source<cVec3> positions(Points, format, cVertexUsage::Position);
    const Source<cVec3> normals(Normals, format, cVertexUsage::Normal);
    const Source<cVec2> texCoords(TexCoords, format, cVertexUsage::TexCoord);
    const Source<cVec3> tangents(TangentBases, format, cVertexUsage::Tangent);
    const Source<cVec3> biTangents(TangentBases, format, cVertexUsage::BiTangent);
    const Source<cVec4> blendIndices(BlendIndices, format, cVertexUsage::BlendIndices);
    const Source<cVec4> blendWeights(BlendWeights, format, cVertexUsage::BlendWeights);

    alignas(T) unsigned char vertex[sizeof(T)] = {};
    int offset, count;
    if (format.HasUsage(cVertexUsage::Position, &offset, &count) && count == 4) {
        const float w = 1;
        std::memcpy(vertex + offset + sizeof(cVec3), &w, sizeof(w));
    }

    for (int i = 0; i < polys.Count(); i++) {
        const int material = polys[i][1];
        for (const int end = i + 3; i < end;) {
            const cVec<int, 3>& corner = polys[++i];
            const int point = corner[0];
            positions.Copy(point, vertex);
            normals.Copy(corner[2], vertex);
            texCoords.Copy(corner[1], vertex);
            tangents.Copy(corner[2], vertex, int(sizeof(TangentBasis)));
            biTangents.Copy(corner[2], vertex, int(sizeof(TangentBasis)), int(offsetof(TangentBasis, BiTangent)));
            blendIndices.Copy(point, vertex);
            blendWeights.Copy(point, vertex);
            (*out)[material]->Indices.Add(welder.Weld(material, point, vertex));
        }
    }
    FreeHashTables();
}

template void cRawMesh::Split(cList<cRawSplit<cVertex::Bump>*>*) const;
template void cRawMesh::Split(cList<cRawSplit<cVertex::Anim>*>*) const;
template void cRawMesh::Split(cList<cRawSplit<cVertex::PositionRhw>*>*) const;

} // namespace trellis
