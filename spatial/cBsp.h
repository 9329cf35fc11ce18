// Tree of triangles: so far, its file form's place.
#pragma once

namespace trellis {

class cFile;

class cBsp {
public:
    bool Load(const cFile& file); ///< False until the tree exists.
    bool Save(cFile* file) const;
    void Free();
};

} // namespace trellis
