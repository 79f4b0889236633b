/// A small host in C11: loads the plug-in, hands it one record, and prints what comes back.
///
///     host_c PLUGIN TSHARK_DIRECTORY PROFILE
///
/// Link with dl where the C library asks for it, never with the plug-in. On Windows LoadLibraryA,
/// GetProcAddress and FreeLibrary stand for dlopen, dlsym and dlclose.
#include <dlfcn.h>
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <kivra/tshark_sink.h>

// System information of an LTE-M cell with block 2: the idle paging cycle and the repetitions.
static const uint8_t system_information[] = {
    0x00, 0x00, 0x4c, 0xa1, 0xbf, 0x6c, 0x88, 0x00, 0xca, 0x12, 0x72, 0x02, 0x00, 0x00, 0x10,
    0x01, 0x82, 0x9a, 0xa5, 0xab, 0x84, 0x88, 0x00, 0x48, 0x00, 0x8b, 0x6e, 0x20, 0x07};

typedef struct sink_functions {
    kivra_sink_version_function* version;
    kivra_sink_init_parameters_function* init_parameters;
    kivra_sink_init_function* init;
    kivra_sink_data_function* data;
    kivra_sink_complete_function* complete;
    kivra_sink_get_last_error_function* get_last_error;
    kivra_sink_release_function* release;
} sink_functions;

static void find(void* library, const char* name, void* function) {
    void* symbol = dlsym(library, name);
    if (symbol == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        exit(EXIT_FAILURE);
    }
    // ISO C has no conversion from an object's address to a function's.
    memcpy(function, &symbol, sizeof symbol);
}

static sink_functions find_functions(void* library) {
    sink_functions sink;
    find(library, "kivra_sink_version", &sink.version);
    find(library, "kivra_sink_init_parameters", &sink.init_parameters);
    find(library, "kivra_sink_init", &sink.init);
    find(library, "kivra_sink_data", &sink.data);
    find(library, "kivra_sink_complete", &sink.complete);
    find(library, "kivra_sink_get_last_error", &sink.get_last_error);
    find(library, "kivra_sink_release", &sink.release);
    return sink;
}

// Every callback gets back the user data passed along with it; here, the stream to print to.

static void print_version(void* stream, const kivra_version_info* version) {
    fprintf(stream, "%s %" PRIu32 ".%" PRIu32 ".%" PRIu32 "\n", version->description,
            version->major, version->minor, version->patch);
}

static void print_schema(void* stream, const char* schema) {
    fprintf(stream, "%s\n", schema);
}

static void print_log(const void* caller, void* stream, uint32_t level, const char* message) {
    (void)caller;
    fprintf(stream, "log (%" PRIu32 "): %s\n", level, message);
}

static void print_error(void* stream, const kivra_error* error) {
    fprintf(stream, "error %" PRIu32 ": %s\n", error->code, error->message);
}

static void print_document(void* stream, const kivra_annotated_chunk* chunk) {
    fprintf(stream, "%s\n", chunk->text);
}

static int32_t hand_over_one_record(const sink_functions* sink, kivra_sink_context* context) {
    const kivra_trace_chunk chunk = {
        .data = system_information,
        .size = sizeof system_information,
        .format = "lte_rrc.bcch_dl_sch_br",
        .timestamp = UINT64_C(1764000000000000),
    };
    const int32_t result = sink->data(context, &chunk, NULL, NULL, stdout, print_document);
    if (result != KIVRA_RESULT_SUCCESS) {
        sink->get_last_error(context, stderr, print_error);
    }
    return result;
}

int main(int argc, char** argv) {
    if (argc != 4) {
        fprintf(stderr, "usage: host_c PLUGIN TSHARK_DIRECTORY PROFILE\n");
        return EXIT_FAILURE;
    }

    void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (library == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        return EXIT_FAILURE;
    }
    const sink_functions sink = find_functions(library);
    sink.version(stdout, print_version);
    sink.init_parameters(stdout, print_schema);

    const kivra_init_parameters parameters = {
        .entries = {{.key = "tshark_directory", .value = argv[2]},
                    {.key = "file_path", .value = argv[3]}},
        .count = 2,
        .log_user_data = stderr,
        .log_callback = print_log,
        .error_user_data = stderr,
        .error_callback = print_error,
    };
    kivra_sink_context* context = NULL;
    int32_t result = sink.init(&context, &parameters);
    if (result == KIVRA_RESULT_SUCCESS) {
        result = hand_over_one_record(&sink, context);
        sink.complete(context);
        sink.release(context);
    }
    dlclose(library);
    return result == KIVRA_RESULT_SUCCESS ? EXIT_SUCCESS : EXIT_FAILURE;
}
