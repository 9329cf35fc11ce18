#include "mesh/cCodecObj.h"

#include <cstdint>
#include <cstring>
#include <memory>

#include "files/cFile.h"
#include "foundation/cHash.h"
#include "foundation/cLog.h"
#include "mesh/cModel.h"
#include "mesh/cRawMesh.h"

namespace trellis {

namespace {

using Corner = cVec<int, 3>; // point, texture coordinate, normal; or a polygon's header

/// A piece of `s_Buffer`. What follows it, a blank or the terminator, ends a number as the terminator would.
struct Token {
    const char* Text;
    int Length;

    bool Is(const char* word) const { return cStr::Compare(Text, word, Length) == 0 && !word[Length]; }
};

cStr s_Buffer; // the line at hand, without comment and outer blanks
cList<Token> s_Tokens;

/// Reads a line into the two buffers. A zero byte ends it as a comment does, as the texts are C strings.
///
/// @return number of tokens, -1 at the end of the file
int cCodecObj_LoadLine(const cFile& file) {
    if (!file.ReadString(&s_Buffer, "\r\n")) {
        return -1;
    }
    const char* text = s_Buffer.Text();
    text += std::strspn(text, " \t");
    size_t length = std::strcspn(text, "#");
    while (length > 0 && (text[length - 1] == ' ' || text[length - 1] == '\t')) {
        length--;
    }
    s_Buffer.Copy(text, 0, int(length));

    s_Tokens.Clear();
    for (const char* p = s_Buffer.Text(); *p;) {
        const auto n = int(std::strcspn(p, " \t"));
        s_Tokens.Add({p, n});
        p += n;
        p += std::strspn(p, " \t");
    }
    return s_Tokens.Count();
}

/// Reads the numbers behind the first token.
bool GetNumbers(int count, float* out) {
    if (s_Tokens.Count() <= count) {
        return false;
    }
    for (int i = 0; i < count; i++) {
        if (!cStr::ToFloat(s_Tokens[i + 1].Text, &out[i])) {
            return false;
        }
    }
    return true;
}

bool Refuse(const char* what) {
    cLog::Warning("cCodecObj: %s: \"%s\".", what, s_Buffer.Text());
    return false;
}

/// From 1 up, or from -1 down and then from the end of the list, to from 0 up.
int ToIndex(int number, int count) {
    return number > 0 ? number - 1 : number < 0 ? number + count : 0;
}

/// Up to three numbers between slashes; one that is not there stays undefined, which no list reaches.
///
/// @return false for a point of number 0. For the other two it is taken for the first: files with zeros for "none"
///         have always loaded
bool cCodecObj_GetIndices(const cRawMesh& mesh, const Token& token, Corner* out) {
    *out = Corner::UNDEFINED;
    const int counts[] = {mesh.Points.Count(), mesh.TexCoords.Count(), mesh.Normals.Count()};
    const char* p = token.Text;
    const char* end = p + token.Length;
    for (int i = 0; i < 3; i++) {
        int number;
        if (p < end && cStr::ToInt(p, &number)) { // at the end it would step over blanks to the next token
            if (number == 0 && i == 0) {
                return Refuse("Zero indices not allowed");
            }
            (*out)[i] = ToIndex(number, counts[i]);
        }
        p = static_cast<const char*>(std::memchr(p, '/', size_t(end - p)));
        if (!p) {
            break;
        }
        p++;
    }
    return true;
}

bool cCodecObj_AddFace(cRawMesh* mesh, int material) {
    const int count = s_Tokens.Count() - 1;
    mesh->Polys.Add({count, material, 0});
    for (int i = 0; i < count; i++) {
        Corner corner;
        if (!cCodecObj_GetIndices(*mesh, s_Tokens[i + 1], &corner)) {
            return false;
        }
        mesh->Polys.Add(corner);
    }
    return true;
}

/// Finds the materials of a mesh by name.
class Materials {
public:
    explicit Materials(cRawMesh* mesh) : m_Mesh(mesh) {}

    /// Makes a material the current one. A name ahead of all faces takes the place of those before it.
    void Select(const Token& token) {
        cStr name(token.Text, 0, token.Length);
        for (int i = name.Length() - 1; i >= 0; i--) {
            if (name[i] == ':') {
                name.Remove(0, i + 1);
                break;
            }
        }
        cList<cStr>& names = m_Mesh->Materials;
        if (m_Mesh->Polys.IsEmpty()) {
            names.Clear();
            m_Hash.Free();
        }
        const int key = m_Hash.GenerateKey(name, false);
        for (m_Current = m_Hash.First(key); m_Current != -1; m_Current = m_Hash.Next(m_Current)) {
            if (names[m_Current] == name) {
                return;
            }
        }
        m_Current = names.Add(name);
        m_Hash.Add(key, m_Current);
    }
    int Current() const { return m_Current; }

private:
    cRawMesh* m_Mesh;
    cHash m_Hash;
    int m_Current = 0;
};

/// Does what the tokens say. Lines of other kinds, "mtllib" among them, mean nothing here.
bool LoadTokens(cRawMesh* mesh, Materials* materials) {
    float v[3];
    const Token& word = s_Tokens[0];
    if (word.Is("v")) {
        if (!GetNumbers(3, v)) {
            return Refuse("Too few position coordinates");
        }
        mesh->Points.Add({v[0], v[1], v[2]});
    } else if (word.Is("vt")) {
        if (!GetNumbers(2, v)) {
            return Refuse("Too few texture coordinates");
        }
        mesh->TexCoords.Add({v[0], v[1]});
    } else if (word.Is("vn")) {
        if (!GetNumbers(3, v)) {
            return Refuse("Too few normal coordinates");
        }
        mesh->Normals.Add({v[0], v[1], v[2]});
    } else if (word.Is("f")) {
        return s_Tokens.Count() > 3 ? cCodecObj_AddFace(mesh, materials->Current()) : Refuse("Too few face indices");
    } else if (word.Is("usemtl") && s_Tokens.Count() > 1) {
        materials->Select(s_Tokens[1]);
    }
    return true;
}

/// Reads the usual lines where they lie in the file: short decimals and whole positive indexes between blanks.
/// Whatever else a line holds, it is left to the tokens, which give the same for these lines, bit by bit.
class UsualLines {
public:
    explicit UsualLines(const cFile& file) : m_File(file) {
        const unsigned char* bytes = file.GetBytes().Data();
        // Numbers are read by words of 8 bytes, which must not pass the end, and are ended by what ends the line.
        int last = file.GetSize() - int(sizeof(uint64_t));
        while (last >= 0 && !IsLineEnd(bytes[last])) {
            last--;
        }
        m_Bytes = bytes;
        m_End = bytes + (last < 0 ? 0 : last);
    }

    /// Takes lines from the cursor of the file on, up to the first that is not usual.
    void Load(cRawMesh* mesh, int material) {
        const unsigned char* p = m_Bytes + m_File.GetPos();
        const unsigned char* start;
        do {
            start = p;
            while (p < m_End && IsLineEnd(*p)) {
                p++;
            }
            p = p < m_End ? LoadLine(p, mesh, material) : nullptr;
        } while (p);
        m_File.SetPos(int(start - m_Bytes));
    }

private:
    static bool IsLineEnd(unsigned char c) { return c == '\n' || c == '\r'; }
    static bool SkipBlanks(const unsigned char** p) {
        if (**p != ' ') {
            return false;
        }
        do {
            ++*p;
        } while (**p == ' ');
        return true;
    }

    /// @return the end of the line; null, and nothing is added, when it is not a usual one
    static const unsigned char* LoadLine(const unsigned char* p, cRawMesh* mesh, int material) {
        float v[3];
        if (p[0] == 'v' && p[1] == ' ') {
            p = TakeNumbers(p + 1, 3, v);
            if (p) {
                mesh->Points.Add({v[0], v[1], v[2]});
            }
            return p;
        }
        if (p[0] == 'v' && p[1] == 't') {
            p = TakeNumbers(p + 2, 2, v);
            if (p) {
                mesh->TexCoords.Add({v[0], v[1]});
            }
            return p;
        }
        if (p[0] == 'v' && p[1] == 'n') {
            p = TakeNumbers(p + 2, 3, v);
            if (p) {
                mesh->Normals.Add({v[0], v[1], v[2]});
            }
            return p;
        }
        return p[0] == 'f' ? TakeFace(p + 1, mesh, material) : nullptr;
    }

    /// Takes a run of digits. @return their number; 0 when it is not from 1 to 7
    static int TakeDigits(const unsigned char** p, uint32_t* value) {
        uint64_t word;
        std::memcpy(&word, *p, sizeof(word));
        const uint64_t t = word ^ 0x3030303030303030;
        // The high bit of each byte that is no digit; those above the first may be wrong.
        const uint64_t others = ((t + 0x7676767676767676) | t) & 0x8080808080808080;
        if (others == 0 || (others & 0x80)) {
            return 0;
        }
        const int count = __builtin_ctzll(others) >> 3;
        uint64_t digits = t << (8 * (8 - count)); // zeros in front, the first byte being the highest digit
        digits = digits * 10 + (digits >> 8);     // pairs, in every other byte
        const uint64_t mask = 0x000000FF000000FF;
        digits = (digits & mask) * (100 + (uint64_t(1000000) << 32)) +
                 ((digits >> 16) & mask) * (1 + (uint64_t(10000) << 32));
        *value = uint32_t(digits >> 32);
        *p += count;
        return count;
    }

    /// What `cStr::ToFloat` gives: digits gathered in a float, rounded at each, over a power of ten. Digits are exact
    /// up to 24 bits, and the power is: one division then rounds as that of a wider type does.
    static bool TakeFloat(const unsigned char** p, float* out) {
        const bool minus = **p == '-';
        *p += minus;
        uint32_t whole, fraction = 0;
        if (!TakeDigits(p, &whole)) {
            return false;
        }
        int decimals = 0;
        if (**p == '.') {
            ++*p;
            decimals = TakeDigits(p, &fraction);
        }
        const uint64_t digits = uint64_t(whole) * s_Powers[decimals] + fraction;
        uint64_t front = digits, unit = 1;
        for (; front >= s_Exact; front /= 10) {
            unit *= 10;
        }
        auto value = float(int(front));
        while (unit > 1) {
            unit /= 10;
            value = value * 10.0f + float(int(digits / unit % 10));
        }
        value /= float(int(s_Powers[decimals]));
        *out = minus ? -value : value;
        return true;
    }

    /// What follows the numbers does not count, be it a comment.
    static const unsigned char* TakeNumbers(const unsigned char* p, int count, float* out) {
        for (int i = 0; i < count; i++) {
            if (!SkipBlanks(&p) || !TakeFloat(&p, &out[i])) {
                return nullptr;
            }
        }
        if (*p == ' ') {
            while (!IsLineEnd(*p)) {
                p++;
            }
        }
        return IsLineEnd(*p) ? p : nullptr;
    }

    static const unsigned char* TakeFace(const unsigned char* p, cRawMesh* mesh, int material) {
        const int header = mesh->Polys.Count();
        mesh->Polys.Add({0, material, 0});
        int count = 0;
        for (; SkipBlanks(&p) && !IsLineEnd(*p); count++) {
            Corner corner = Corner::UNDEFINED;
            p = TakeCorner(p, &corner);
            if (!p) {
                break;
            }
            mesh->Polys.Add(corner);
        }
        if (!p || count < 3 || !IsLineEnd(*p)) {
            mesh->Polys.SetCount(header);
            return nullptr;
        }
        mesh->Polys[header][0] = count;
        return p;
    }

    /// @return the end of the corner; null for other forms than p, p/t, p//n and p/t/n
    static const unsigned char* TakeCorner(const unsigned char* p, Corner* out) {
        for (int i = 0; i < 3; i++, p++) {
            if (i == 1 && *p == '/') {
                continue;
            }
            uint32_t number;
            if (!TakeDigits(&p, &number) || (number == 0 && i == 0)) {
                return nullptr;
            }
            (*out)[i] = number > 0 ? int(number) - 1 : 0;
            if (*p != '/') {
                return p;
            }
        }
        return nullptr; // a fourth number
    }

    static constexpr uint32_t s_Powers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000};
    static constexpr uint64_t s_Exact = 1 << 24;

    const cFile& m_File;
    const unsigned char* m_Bytes;
    const unsigned char* m_End; // at an end of line, or nothing is taken
};

/// Indexes of points may run ahead of their list, so that they can be looked at only when everything is read.
bool CheckPoints(const cRawMesh& mesh) {
    const int points = mesh.Points.Count();
    const Corner* p = mesh.Polys.begin();
    for (const Corner* end = mesh.Polys.end(); p != end;) {
        const int count = (*p++)[0];
        for (const Corner* last = p + count; p != last; p++) {
            if (unsigned((*p)[0]) >= unsigned(points)) {
                return false;
            }
        }
    }
    return true;
}

bool cCodecObj_Decode(const cFile& file, cRawMesh* mesh) {
    Materials materials(mesh);
    UsualLines usual(file);
    while (true) {
        usual.Load(mesh, materials.Current());
        const int count = cCodecObj_LoadLine(file);
        if (count < 0) {
            return CheckPoints(*mesh);
        }
        if (count > 0 && !LoadTokens(mesh, &materials)) {
            return false;
        }
    }
}

void WriteFloats(cFile* out, const char* word, const float* v, int count) {
    out->WriteString(word);
    out->WriteString(cStr::ToString(v, count, 6));
    out->WriteString("\r\n");
}

/// Corners share one number, as the vertices stand in the three lists alike.
void WriteFace(cFile* out, int base, const int* corners) {
    const int a = base + corners[0] + 1, b = base + corners[1] + 1, c = base + corners[2] + 1;
    out->WriteString(cStr::Format("f %d/%d/%d %d/%d/%d %d/%d/%d\r\n", a, a, a, b, b, b, c, c, c));
}

} // namespace

bool cCodecObj::Decode(const cFile& file, cModel* out) {
    out->Free();
    cRawMesh mesh;
    const bool ok = cCodecObj_Decode(file, &mesh);
    s_Buffer.Free(); // a line may have been the whole file
    s_Tokens.Free();
    if (!ok) {
        return false;
    }
    if (mesh.Normals.IsEmpty()) {
        mesh.CalcNormals(false);
    }
    mesh.CalcTangents();
    cList<cRawSplit<cVertex::Bump>*> splits;
    mesh.Split(&splits);
    out->Meshes.SetCount(splits.Count());
    for (int i = 0; i < splits.Count(); i++) {
        const std::unique_ptr<cRawSplit<cVertex::Bump>> split(splits[i]);
        cModel::Mesh& target = out->Meshes[i];
        target.MaterialName = std::move(split->MaterialName);
        target.BumpVertices = std::move(split->Vertices);
        target.Indices = std::move(split->Indices);
    }
    out->UpdateBounds();
    return true;
}

bool cCodecObj::Encode(const cModel& model, cFile* out) {
    cList<cVertex::Bump> vertices;
    cList<int> bases; // number of the first vertex of each mesh
    for (const cModel::Mesh& mesh : model.Meshes) {
        bases.Add(vertices.Count());
        vertices.AddRange(mesh.BumpVertices.Data(), mesh.BumpVertices.Count());
        for (const cVertex::Anim& vertex : mesh.AnimVertices) {
            vertices.Add(vertex);
        }
    }
    out->WriteString("# Wavefront Obj file\r\n");
    out->WriteString(cStr::Format("# %d vertices\r\n", vertices.Count()));
    out->WriteString("# Position\r\n");
    for (const cVertex::Bump& vertex : vertices) {
        WriteFloats(out, "v ", vertex.Pos.ToPtr(), 3);
    }
    out->WriteString("# TexCoord\r\n");
    for (const cVertex::Bump& vertex : vertices) {
        WriteFloats(out, "vt ", vertex.TexCoord.ToPtr(), 2);
    }
    out->WriteString("# Normal\r\n");
    for (const cVertex::Bump& vertex : vertices) {
        WriteFloats(out, "vn ", vertex.Normal.ToPtr(), 3);
    }
    out->WriteString(cStr::Format("\r\n# %d tris\r\n", model.GetTriangleCount()));
    for (int i = 0; i < model.Meshes.Count(); i++) {
        const cModel::Mesh& mesh = model.Meshes[i];
        cStr name = mesh.MaterialName;
        name.ReplaceAny(" /", '_');
        out->WriteString("g ");
        out->WriteString(name);
        out->WriteString("\r\n");
        for (int k = 0; k + 2 < mesh.Indices.Count(); k += 3) {
            WriteFace(out, bases[i], mesh.Indices.Data() + k);
        }
    }
    return true;
}

} // namespace trellis
