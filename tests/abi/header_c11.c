/* The header as a C11 host compiles it. */
#include <kivra/tshark_sink.h>

int kivra_header_compiles_as_c11(void);

int kivra_header_compiles_as_c11(void) {
    const kivra_init_parameters parameters = {.count = 0};
    kivra_sink_release_function* const release = NULL;
    return parameters.count == 0 && release == NULL && KIVRA_RESULT_SUCCESS == 0 &&
           KIVRA_RESULT_INIT_FAILED == 1 && KIVRA_RESULT_FAILED == 100;
}
