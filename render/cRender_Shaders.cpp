// Shader sources: splitting, replacing, compiling beforehand, and the names that devices fill by themselves.
#include "files/cFile.h"
#include "files/cIO.h"
#include "foundation/cImmortal.h"
#include "foundation/cLog.h"
#include "render/cRender.h"

namespace trellis {

namespace {

/// A text to be replaced in all sources.
struct cRender_ReplaceInShaders_t {
    cStr From;
    cStr To;

    static int Compare(cRender_ReplaceInShaders_t* const* a, cRender_ReplaceInShaders_t* const* b) {
        return cStr::Compare((*a)->From, (*b)->From);
    }
};

constexpr const char* cRender_CacheFolder = "Shaders/PC";
constexpr const char* VertexMarker = "// Vertex shader";
constexpr const char* FragmentMarker = "// Fragment shader";
constexpr const char* PixelMarker = "// Pixel shader";
constexpr const char* PrecompileMarker = "// Precompile";
constexpr const char* s_NoVertexShader = "No vertex shader found.";
constexpr const char* s_NoPixelShader = "No fragment / pixel shader found";

constinit cImmortal<cList<cRender_ReplaceInShaders_t*>> s_ReplaceStore;
constinit cList<cRender_ReplaceInShaders_t*>& cRender_ReplaceInShaders = s_ReplaceStore.Value;
constinit cImmortal<cList<cStr>> s_CacheStore;
constinit cList<cStr>& cRender_ShadersCache = s_CacheStore.Value;
bool s_CacheIsRead;

constexpr const char* s_AutoConsts[] = {
    "g_ViewportWidth",
    "g_ViewportHeight",
    "g_ViewportInvWidth",
    "g_ViewportInvHeight",
    "g_WorldMatrix",
    "g_WorldMatrixInverse",
    "g_ViewerPos",
    "g_WorldViewMatrix",
    "g_ViewProjectionMatrix",
    "g_WorldViewProjectionMatrix",
    "g_ProjectionMatrix",
    "g_ScreenMatrix",
    "g_ScreenMatrixInverse",
    "g_NormalMatrix",
    "g_NormalViewMatrix",
    "g_TimeSec",
    "g_FrameTimeSec",
    "g_TextureMatrix0",
    "g_TextureMatrix1",
    "g_TextureMatrix2",
    "g_TextureMatrix3",
};
static_assert(std::size(s_AutoConsts) == cRender::AutoConst::Count);

cStr TextOf(const cFile& file) {
    cStr text;
    if (file.GetSize() > 0) {
        text.Append(reinterpret_cast<const char*>(file.GetBytes().Data()), 0, file.GetSize());
    }
    return text;
}

/// Where the two programs of a source begin; -1 for one that is missing.
struct Markers {
    Markers(const cStr& text, bool noCase) {
        Vertex = text.IndexOf(VertexMarker, 0, -1, noCase);
        const int fragment = text.IndexOf(FragmentMarker, 0, -1, noCase);
        const int pixel = text.IndexOf(PixelMarker, 0, -1, noCase);
        Pixel = fragment == -1 || (pixel != -1 && pixel < fragment) ? pixel : fragment;
    }

    /// Logs the first that is missing.
    bool BothFound() const {
        if (Vertex == -1 || Pixel == -1) {
            cLog::Warning("%s", Vertex == -1 ? s_NoVertexShader : s_NoPixelShader);
            return false;
        }
        return true;
    }

    /// Each program reaches to the other's marker, or to the end.
    void Split(const cStr& text, cStr* vertexSrc, cStr* pixelSrc) const {
        const int first = Vertex < Pixel ? Pixel : Vertex;
        const auto cut = [&](int from, cStr* out) {
            const int end = from < first ? first : text.Length();
            out->Clear();
            out->Append(text, from, end - from);
        };
        cut(Vertex, vertexSrc);
        cut(Pixel, pixelSrc);
    }

    int Vertex, Pixel;
};

int LineOf(const cStr& text, int offset) {
    int line = 1;
    for (int i = 0; i < offset; i++) {
        line += text[i] == '\n';
    }
    return line;
}

void ReplaceAll(cStr* source) {
    for (const cRender_ReplaceInShaders_t* pair : cRender_ReplaceInShaders) {
        source->Replace(pair->From, pair->To);
    }
}

// ---- Compiling beforehand

/// The compiler of a platform. In its arguments SRC and OBJ stand for absolute paths.
struct Compiler {
    const char* Command;
    const char* VertexArguments;
    const char* PixelArguments;
};
constexpr Compiler s_Desktop = {"../Libs/PrecompileShaders/PC.exe", "/T vs_3_0 /Fo OBJ SRC", "/T ps_3_0 /Fo OBJ SRC"};
constexpr Compiler s_Console = {"../Libs/PrecompileShaders/Xbox360.exe", "\"SRC\" /Tvs_3_0 /Fo\"OBJ\"",
                                "\"SRC\" /Tps_3_0 /Fo\"OBJ\""};

/// One line of a source's announcements: the names to define for one binary of the source.
struct Variant {
    cStr Defines; ///< Names between blanks, for the index.
    cStr Text;    ///< The same as lines of the language.
};

cStr InCacheFolder(const char* name) {
    return cStr::Format("%s/%s", cRender_CacheFolder, name);
}

/// Where a file that `cIO::SaveFile` writes really stands: the compiler knows nothing of the redirect.
cStr WrittenPath(const char* path) {
    cStr absolute = cIO::EnsureAbsolutePath(path);
    cIO::ReplaceReadPath(&absolute);
    return absolute;
}

/// The variants between the head line and the first program. Lines that are no comments are left alone.
void ReadVariants(const cList<cStr>& lines, cList<Variant>* out) {
    for (int i = 1; i < lines.Count(); i++) {
        const Markers markers(lines[i], false);
        if (markers.Vertex != -1 || markers.Pixel != -1) {
            return;
        }
        cList<cStr> tokens;
        cStr::Split(lines[i], &tokens, " ,;\t");
        if (tokens.Count() < 2 || !(tokens[0] == "//")) {
            continue;
        }
        Variant variant; // the format's name is for devices that bind it when compiling: ours is told when drawing
        for (int k = 2; k < tokens.Count(); k++) {
            variant.Text.AppendFormat("#define %s\n", tokens[k].Text());
        }
        variant.Defines = cStr::Join(" ", tokens, 2);
        out->Add(variant);
    }
}

bool Compile(const Compiler& compiler, bool vertex, const Variant& variant, const cStr& source, int index,
             const char* name) {
    const cStr temp = InCacheFolder("Temp.txt");
    const cStr text = variant.Text + source;
    const cStr object = InCacheFolder(cStr::Format("%d.%s", index, vertex ? "VS" : "PS"));
    cStr arguments = vertex ? compiler.VertexArguments : compiler.PixelArguments;
    const int src = arguments.IndexOf("SRC"), obj = arguments.IndexOf("OBJ");
    const auto put = [&arguments](int at, const cStr& file) {
        const cStr path = WrittenPath(file);
        const bool isQuoted = at > 0 && arguments[at - 1] == '"';
        arguments.Remove(at, 3);
        arguments.Insert(at, isQuoted ? path : cStr::Format("\"%s\"", path.Text())); // it may hold blanks
    };
    put(src > obj ? src : obj, src > obj ? temp : object); // the later one first, as a path may hold either word
    put(src > obj ? obj : src, src > obj ? object : temp);
    cStr output;
    if (cIO::SaveFile(temp, text.Text(), unsigned(text.Length())) && cIO::Exec(compiler.Command, arguments, &output)) {
        return true;
    }
    cLog::Warning(vertex ? "Can't compile vertex shader \"%s\"%s%s" : "Can't compile pixel shader \"%s\"%s%s", name,
                  output.IsEmpty() ? "" : ": ", output.Text());
    return false;
}

/// @param index  number of the next binary of all sources
void PrecompileShader(const Compiler& compiler, const cStr& path, int* index) {
    cFile file;
    if (!cIO::LoadFile(path, &file)) {
        return;
    }
    cList<cStr> lines;
    for (cStr line; file.ReadString(&line, "\r\n");) {
        lines.Add(line);
    }
    if (lines.IsEmpty() || !(lines[0] == PrecompileMarker)) {
        return;
    }
    const cStr text = cStr::Join("\n", lines);
    const Markers markers(text, false);
    if (!markers.BothFound()) {
        return;
    }
    cStr sources[2];
    markers.Split(text, &sources[0], &sources[1]);
    for (cStr& source : sources) {
        source.TrimStart(" \t\n");
        source.TrimEnd(" \t\n");
    }
    cStr name = path;
    name.RemoveFileAbsPath(cIO::EnsureAbsolutePath("Shaders"));
    name.RemoveFileExtension();

    cList<Variant> variants;
    ReadVariants(lines, &variants);
    for (const Variant& variant : variants) {
        const bool vertex = Compile(compiler, true, variant, sources[0], *index, name);
        const bool pixel = Compile(compiler, false, variant, sources[1], *index, name);
        if (vertex && pixel) {
            cRender_ShadersCache.Add(cStr::Format("%s\t%s\t%d", name.Text(), variant.Defines.Text(), *index));
        }
        ++*index;
    }
}

} // namespace

bool cRender_Stub::LoadShader(const char* filePn, cStr* vertexSrc, cStr* pixelSrc, int* vertexLine, int* pixelLine) {
    *vertexLine = *pixelLine = 1;
    cFile file;
    if (!cIO::LoadFile(filePn, &file, false)) {
        return false;
    }
    cLog::Message(" * Loading shader \"%s\"...", filePn);
    const cStr text = TextOf(file);
    const Markers markers(text, true);
    if (!markers.BothFound()) {
        return false;
    }
    markers.Split(text, vertexSrc, pixelSrc);
    *vertexLine = LineOf(text, markers.Vertex);
    *pixelLine = LineOf(text, markers.Pixel);
    ReplaceAll(vertexSrc);
    ReplaceAll(pixelSrc);
    return true;
}

const char* cRender::AutoConst::ToString(int id) {
    return id >= 0 && id < Count ? s_AutoConsts[id] : nullptr;
}

int cRender::AutoConst::FromString(const char* name) {
    for (int i = 0; name && i < Count; i++) {
        if (cStr::Compare(s_AutoConsts[i], name) == 0) {
            return i;
        }
    }
    return -1;
}

void cRender::ReplaceInShaders(const char* from, const char* to) {
    if (!from || !*from) {
        return; // nothing would match everywhere
    }
    cRender_ReplaceInShaders.Add(new cRender_ReplaceInShaders_t{from, to});
    cRender_ReplaceInShaders.Sort(cRender_ReplaceInShaders_t::Compare);
}

const cList<cStr>& cRender::GetShadersCache() {
    if (!s_CacheIsRead) {
        s_CacheIsRead = true;
        cFile file;
        if (cIO::LoadFile(InCacheFolder("Cache.txt"), &file, false)) {
            cStr::Split(TextOf(file), &cRender_ShadersCache, "\r\n");
        }
    }
    return cRender_ShadersCache;
}

void cRender::PrecompileShaders(int platform) {
    const Compiler& compiler = platform == 0 ? s_Desktop : s_Console;
    cIO::RemoveFolder(cRender_CacheFolder, false);
    cIO::CreatePath(cRender_CacheFolder);
    s_CacheIsRead = true;
    cRender_ShadersCache.Clear();

    cList<cStr> paths;
    cIO::SearchFilesRecursive("Shaders", &paths, "hlsl");
    int index = 0;
    for (const cStr& path : paths) {
        PrecompileShader(compiler, path, &index);
    }
    const cStr text = cStr::Join("\n", cRender_ShadersCache);
    cIO::SaveFile(InCacheFolder("Cache.txt"), text.Text(), unsigned(text.Length()));
    cIO::RemoveFile(InCacheFolder("Temp.txt"));
}

} // namespace trellis
