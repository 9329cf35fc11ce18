// What a person works on in the workbench: models and paths with their places. Saved as XML.
#pragma once

#include "host/cWorkbenchObject.h"
#include "reflection/cClassList.h"

namespace trellis {

class cWorkbenchScene : public cClass {
    TRELLIS_CLASS(cWorkbenchScene)

public:
    void CustomDtor() override { m_Selected = nullptr; }
    using cClass::ReadFromFile;
    using cClass::WriteToFile;
    bool ReadFromFile(const char* path) override; ///< Names in it are relative to its folder.
    bool WriteToFile(const char* path) override;

    // Buttons
    void AddModel(); ///< Asks for a file.
    void AddPath();

    /// All models of a folder in place of what is there, side by side; an animation of a model's name goes with it,
    /// and a file "Materials.Xml" becomes the table of materials. @return false, and nothing changes, without models
    bool OpenFolder(const char* folder);
    bool Open(const char* modelPn); ///< One model beside the others. @return false when there is none in the file

    /// The folder that names without a path of their own are looked up in, also those of textures. The files of the
    /// scene stay the same ones; those within the folder go by short names from now on.
    void SetFolder(const char* folder);

    bool Step(float sec); ///< Once a frame. @return whether the picture changes by itself
    void Draw(bool grid);

    cWorkbenchObject* Pick(const cSeg& ray); ///< The first one on the way, or null.
    void Select(cWorkbenchObject* object);   ///< It gets the handles that `g_ManipulatorsType` names. Null: none.
    cWorkbenchObject* GetSelected();
    cBounds GetBounds(); ///< In the world.
    int GetTriangleCount() const;

    cClassList<cWorkbenchObject> Objects;

private:
    template <class Call> void ForEach(Call call) const {
        for (int i = 0; i < Objects.Count(); i++) {
            if (cWorkbenchObject* object = Objects.Get(i)) {
                call(object);
            }
        }
    }

    cWorkbenchObject* m_Selected = nullptr; // compared with the objects first
    int m_Handles = 0;                      // the type that it has
};

} // namespace trellis
