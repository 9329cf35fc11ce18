#include "host/cWorkbenchScene.h"

#include "editor/cClassExplorer.h"
#include "files/SourceFolder.h"
#include "files/cIO.h"
#include "foundation/cLog.h"
#include "mesh/cMaterials.h"
#include "render/cRender.h"
#include "view/cManipulator.h"

#include <cmath>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

namespace trellis {

namespace {

namespace fs = std::filesystem;

bool Exists(const cStr& pathName) {
    std::error_code ignored;
    return fs::exists(pathName.Text(), ignored);
}

/// Behind the others: what a relative name is looked up in last.
SourceFolder& Folder() {
    static SourceFolder* s_Folder = nullptr;
    if (!s_Folder) {
        s_Folder = new SourceFolder(""); // to the end of the process
        cIO::GetSourcesMutable().Add(s_Folder);
    }
    return *s_Folder;
}

/// A file of that name with an extension that one of the codecs has; empty without one.
template <class Info> cStr FindBeside(const cStr& filePn, const cList<Info>& codecs) {
    for (const Info& codec : codecs) {
        cStr beside = filePn;
        beside.SetFileExtension(codec.Extension);
        if (Exists(beside)) {
            return beside;
        }
    }
    return {};
}

void Fill(cWorkbenchModel* model, const char* filePn) {
    model->ModelFile = filePn;
    model->AnimFile = FindBeside(filePn, cIO::GetAnimCodecs());
    model->Play = true;
    model->EnsureLoaded();
}

} // namespace

void cWorkbenchScene::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.AddButton(&cWorkbenchScene::AddModel, "&cWorkbenchScene::AddModel");
    members.AddButton(&cWorkbenchScene::AddPath, "&cWorkbenchScene::AddPath");
    members.AddObject(Objects, "Objects");
    const cWorkbenchModel model; // files know a class once there has been an object of it
    const cWorkbenchPath path;
}

void cWorkbenchScene::AddModel() {
    cStr filePn;
    if (cIO::LoadModelDialog(&filePn) && Open(filePn)) {
        Select(Objects.Get(Objects.Count() - 1));
    }
}

bool cWorkbenchScene::Open(const char* modelPn) {
    auto model = std::make_unique<cWorkbenchModel>();
    Fill(model.get(), modelPn);
    if (model->GetTriangleCount() == 0) {
        return false;
    }
    cClassExplorer::ReCreateControls();
    Objects.Add(model.release());
    return true;
}

void cWorkbenchScene::AddPath() {
    auto* path = new cWorkbenchPath;
    cClassExplorer::ReCreateControls();
    Objects.Add(path);
    Select(path);
}

bool cWorkbenchScene::OpenFolder(const char* folder) {
    cStr extensions;
    for (const cIO::ModelCodecInfo& codec : cIO::GetModelCodecs()) {
        extensions += (extensions.IsEmpty() ? "" : ";") + codec.Extension;
    }
    cList<cStr> files;
    cIO::SearchFilesRecursive(folder, &files, extensions);
    if (files.IsEmpty()) {
        cLog::Warning("There are no models in \"%s\".", folder);
        return false;
    }
    cClassExplorer::ReCreateControls();
    Select(nullptr);
    Objects.RemoveAt(0, Objects.Count());
    SetFolder(folder);
    const cStr materials = (fs::path(folder) / "Materials.Xml").c_str();
    if (Exists(materials)) {
        cClassExplorer::ReloadObject(&g_Materials, materials);
    }
    constexpr float Gap = 1;
    float x = 0;
    for (const cStr& filePn : files) {
        auto* model = new cWorkbenchModel;
        Fill(model, filePn);
        const cBounds bounds = model->GetBounds();
        if (!bounds.IsEmpty()) {
            model->Transform.Translate.x = std::round(x - bounds.min[0]);
            x = model->Transform.Translate.x + bounds.max[0] + Gap;
        }
        Objects.Add(model);
    }
    SetFolder(folder);
    ForEach([x](cWorkbenchObject* object) { object->GetTransform()->Translate.x -= std::round((x - Gap) / 2); });
    return true;
}

bool cWorkbenchScene::ReadFromFile(const char* path) {
    SetFolder(fs::path(path).parent_path().c_str());
    return cClass::ReadFromFile(path);
}

bool cWorkbenchScene::WriteToFile(const char* path) {
    const cStr folder = Folder().GetPath();
    SetFolder(fs::path(path).parent_path().c_str());
    if (cClass::WriteToFile(path)) {
        return true;
    }
    SetFolder(folder);
    return false;
}

void cWorkbenchScene::SetFolder(const char* folder) {
    const auto rename = [this](auto call) {
        ForEach([&call](cWorkbenchObject* object) {
            if (auto* model = dynamic_cast<cWorkbenchModel*>(object)) {
                model->EnsureLoaded();
                call(&model->ModelFile);
                call(&model->AnimFile);
                model->KeepLoaded();
            }
        });
    };
    const auto pathOf = [](const cStr& name) { return fs::path(Folder().GetPath().Text()) / name.Text(); };
    rename([&](cStr* name) {
        if (!name->IsEmpty() && !cIO::PathIsAbsolute(*name) && Exists(pathOf(*name).c_str())) {
            *name = pathOf(*name).c_str();
        }
    });
    Folder().SetPath(folder);
    const std::string start = pathOf("").string();
    rename([&start](cStr* name) {
        if (std::strncmp(*name, start.c_str(), start.size()) == 0) {
            *name = name->Text() + start.size();
        }
    });
}

bool cWorkbenchScene::Step(float sec) {
    bool isMoving = false;
    ForEach([&](cWorkbenchObject* object) { isMoving |= object->Step(sec); });
    if (m_Handles != g_ManipulatorsType) {
        Select(GetSelected());
    }
    return isMoving;
}

void cWorkbenchScene::Draw(bool grid) {
    static const int s_Depth = cRender::GetDepthStateID(true, true, cDepthFunc::LessEqual);
    cRender::SetDepthState(s_Depth);
    cRender::SetBlendState(-1);
    cRender::SetCullMode(cCullMode::None);
    cRender::SetWorldMatrix(cMat4::Identity);
    if (grid) {
        cRender::DrawGrid({});
    }
    const cWorkbenchObject* selected = GetSelected();
    ForEach([&](cWorkbenchObject* object) {
        cRender::SetWorldMatrix(object->GetPlace());
        object->Draw();
        if (object == selected) {
            cRender::DrawBounds(object->GetBounds(), cColor::Orange);
        }
    });
    cRender::SetWorldMatrix(cMat4::Identity);
}

cWorkbenchObject* cWorkbenchScene::Pick(const cSeg& ray) {
    cWorkbenchObject* nearest = nullptr;
    float least = 0;
    ForEach([&](cWorkbenchObject* object) {
        float distance;
        if (object->Hit(ray, &distance) && (!nearest || distance < least)) {
            nearest = object;
            least = distance;
        }
    });
    return nearest;
}

cWorkbenchObject* cWorkbenchScene::GetSelected() {
    const cClass* selected = m_Selected;
    return selected && Objects.IndexOf(selected) != -1 ? m_Selected : nullptr;
}

void cWorkbenchScene::Select(cWorkbenchObject* object) {
    if (cWorkbenchObject* former = GetSelected(); former && former->GetTransform()) {
        former->GetTransform()->FreeTools();
    }
    m_Selected = object;
    m_Handles = g_ManipulatorsType;
    if (object && object->GetTransform()) {
        object->GetTransform()->CreateTools();
    }
}

cBounds cWorkbenchScene::GetBounds() {
    cBounds all = cBounds::Empty;
    ForEach([&](cWorkbenchObject* object) {
        const cBounds bounds = object->GetBounds();
        if (!bounds.IsEmpty()) {
            const cBounds placed = cBounds::Transform(bounds, object->GetPlace());
            all.Add(placed.min);
            all.Add(placed.max);
        }
    });
    return all;
}

int cWorkbenchScene::GetTriangleCount() const {
    int count = 0;
    ForEach([&count](cWorkbenchObject* object) {
        if (const auto* model = dynamic_cast<const cWorkbenchModel*>(object)) {
            count += model->GetTriangleCount();
        }
    });
    return count;
}

} // namespace trellis
