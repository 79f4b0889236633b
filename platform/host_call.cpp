#include "platform/host_call.h"

namespace KIVRA::TSHARK::PLATFORM {

void call_guarded(void (*body)(void*), void* argument) {
    body(argument);
}

}  // namespace KIVRA::TSHARK::PLATFORM
