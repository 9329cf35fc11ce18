// Storage for globals that other threads, and destructors of later globals, still use while the process exits.
#pragma once

#include <utility>

namespace trellis {

/// Constructs a T and never destroys it. With a constexpr constructor the global is constant-initialised.
///
/// The usual pattern hides the wrapper behind a reference that is itself constant-initialised:
///
///     constinit cImmortal<cStr> s_LogStore;
///     constinit cStr& s_Log = s_LogStore.Value;
template <class T> union cImmortal {
    template <class... Args> constexpr explicit cImmortal(Args&&... args) : Value(std::forward<Args>(args)...) {}
    constexpr cImmortal() : Value() {}
    constexpr ~cImmortal() {}

    cImmortal(const cImmortal&) = delete;
    cImmortal& operator=(const cImmortal&) = delete;

    T Value;
};

} // namespace trellis
