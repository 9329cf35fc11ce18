// The editor of reflected objects: so far, the classes that it knows from the start.
#pragma once

namespace trellis {

class cClassExplorer {
public:
    /// Registers the built-in classes, once. Every construction of a reflected object comes through here.
    static void Init() {
        if (!Inited) [[unlikely]] {
            RegisterBuiltIn();
        }
    }

private:
    static void RegisterBuiltIn();

    static inline bool Inited = false;
};

} // namespace trellis
