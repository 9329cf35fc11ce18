// What is brought into the application's data, and what lies there unused.
#include "editor/cSettings.h"

#include "files/cFile.h"
#include "files/cIO.h"
#include "foundation/cLog.h"
#include "mesh/cMaterial_Import.h"
#include "mesh/cMaterials.h"
#include "mesh/cModel.h"

#include <iterator>

namespace trellis {

namespace {

bool EqualsPath(const cStr* a, const cStr* b) {
    return cStr::ComparePath(*a, *b) == 0;
}

/// In one entry, which the log cuts at its usual length.
void Report(const char* label, const cList<cStr>& names) {
    cStr text = cStr::Format("Unused %s (%d):", label, names.Count());
    for (const cStr& name : names) {
        text.Append(cLog::EndLn);
        text.Append(name);
    }
    cLog::Message("%s", text.Text());
}

/// The text between ">" and "<" around the first extension of a line; "" when none stands between tags. Those are
/// passed over: one called "Adds" names no texture.
cStr NameIn(const cStr& line, const cList<cStr>& extensions) {
    for (int open = line.IndexOf(">"); open != -1;) {
        const int end = line.IndexOf("<", open);
        for (const cStr& extension : extensions) {
            int at = end == -1 ? -1 : line.IndexOf(extension, open, end - open, true);
            if (at != -1) {
                while (at > 0 && line[at - 1] != '>') {
                    at--;
                }
                return {line, at, end - at};
            }
        }
        open = end == -1 ? -1 : line.IndexOf(">", end);
    }
    return {};
}

void RemoveNamed(const cStr& scene, const cList<cStr>& extensions, cList<cStr>* files) {
    cFile file;
    if (!cIO::LoadFile(scene, &file)) {
        return;
    }
    for (cStr line; file.ReadString(&line, "\r\n");) {
        const cStr name = NameIn(line, extensions);
        if (!name.IsEmpty()) {
            const int at = files->IndexOf(cIO::EnsureAbsolutePath(name), EqualsPath);
            if (at != -1) {
                files->RemoveAt(at);
            }
        }
    }
}

} // namespace

void cSettings::ListUnusedResources(const char* folder, const char* label, const char* extensions, bool showDialog) {
    cList<cStr> files, scenes, wanted;
    cIO::SearchFilesRecursive(folder, &files, extensions);
    cIO::SearchFilesRecursive("Xmls/Scene", &scenes, "Xml");
    cStr::Split(extensions, &wanted, ";");
    for (const cStr& scene : scenes) {
        RemoveNamed(scene, wanted, &files);
    }
    Report(label, files);
    if (showDialog) {
        cLog::ShowDialog(cLog::Mode::Message);
    }
}

void cSettings::ListUnused() {
    static constexpr struct {
        const char *Folder, *Label, *Extensions;
    } kinds[] = {
        // from `Textures` on
        {"Textures", "Textures", "dds;bmp"}, {"Models", "Models", "cModel"}, {"Models", "Anims", "cAnim"},
        {"Models", "Cameras", "cCamera"},    {"Models", "BSP", "cBSP"},      {"Sounds", "Sounds", "caf"},
    };
    static_assert(std::size(kinds) == Sounds - Textures + 1);
    if (Resources == Materials) {
        ListUnusedMaterials();
    } else if (Resources >= Textures && Resources <= Sounds) {
        const auto& kind = kinds[Resources - Textures];
        ListUnusedResources(kind.Folder, kind.Label, kind.Extensions, false);
    }
    cLog::ShowDialog(cLog::Mode::Message);
}

void cSettings::ListUnusedMaterials() {
    cList<cStr> models, used, unused;
    cIO::SearchFilesRecursive("Models", &models, "cModel");
    for (const cStr& name : models) {
        cModel model;
        cIO::LoadModel(name, &model); // empty when it cannot be loaded
        for (const cModel::Mesh& mesh : model.Meshes) {
            // As `g_Materials` reads it. Asking that would create the textures.
            cList<cStr> words;
            cStr::Split(mesh.MaterialName, &words, "._/\\");
            const cStr material = words.Count() < 2 ? cStr() : words[0] + "/" + words[1];
            if (used.IndexOf(material, cStr::EqualsNoCase) == -1) {
                used.Add(material);
            }
        }
    }
    g_Materials.ListMaterials(&unused);
    for (const cStr& material : used) {
        const int first =
            unused.IndexOf(material, cStr::EqualsNoCase); // of two with one name the other is out of reach
        if (first != -1) {
            unused.RemoveAt(first);
        }
    }
    Report("Materials", unused);
}

void cSettings::ImportParticle() {
    // It is added to what is behind it: black adds nothing, so that it needs no alpha.
    cStr target;
    cMaterial_ImportArgs args;
    args.DiffuseMap = &target;
    cMaterial_Import(&args);
}

} // namespace trellis
