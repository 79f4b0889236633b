/// Calls of a host's callbacks. No state; any thread may call.
///
/// What a callback throws is to unwind the plug-in as any exception does. Where the compiler's
/// `catch (...)` does not see the C++ exceptions of other compilers, a call turns them into one
/// that it sees.
#pragma once

#include <type_traits>

namespace KIVRA::TSHARK::PLATFORM {

/// Stands for a C++ exception of another compiler, of which nothing more is known.
class foreign_exception {};

/// Calls the body with the argument.
/// @throws what the body throws; foreign_exception instead of an exception of Microsoft's compiler
void call_guarded(void (*body)(void*), void* argument);

/// Calls a host's callback, which is not null.
/// @throws as `call_guarded`. Faults of the processor, such as an access violation, are the host's.
template <typename... Parameters>
void call_host(void (*callback)(Parameters...), std::type_identity_t<Parameters>... arguments) {
    auto call = [&] { callback(arguments...); };
    call_guarded([](void* self) { (*static_cast<decltype(call)*>(self))(); }, &call);
}

}  // namespace KIVRA::TSHARK::PLATFORM
