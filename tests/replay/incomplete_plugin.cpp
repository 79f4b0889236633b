// A plug-in with one export of eight.
#include <kivra/tshark_sink.h>

extern "C" int32_t kivra_sink_version(void*, kivra_version_callback) {
    return KIVRA_RESULT_SUCCESS;
}
