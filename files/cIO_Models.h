// Entry of the models' registry.
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"

namespace trellis {

class cModel;

/// An ID is the position in `cIO_Models`.
struct cIO_Model {
    ~cIO_Model();

    cModel* Model = nullptr; ///< Null while unloaded.
    cStr Path;               ///< Relative to the read folder.
    cStr AbsolutePath;
    bool Proxy = false; ///< The same file is kept once as a model and once as a proxy.
};

extern cList<cIO_Model*>& cIO_Models;

} // namespace trellis
