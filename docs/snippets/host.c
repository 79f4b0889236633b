/* The host of docs/host-guide.md: sends one record through the plug-in.
 *
 *     host PLUGIN TSHARK_DIRECTORY PROFILE [TSHARK_SESSION]
 */
#include <stdio.h>
#include <string.h>

#include <kivra/tshark_sink.h>
#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

/* [loading] */
#ifdef _WIN32
static void* load(const char* file) {
    return (void*)LoadLibraryA(file);
}

static void look_up(void* library, const char* name, void* function) {
    const FARPROC found = GetProcAddress((HMODULE)library, name);
    memcpy(function, &found, sizeof found);
}
#else
static void* load(const char* file) {
    return dlopen(file, RTLD_NOW | RTLD_LOCAL);
}

static void look_up(void* library, const char* name, void* function) {
    void* const found = dlsym(library, name);
    memcpy(function, &found, sizeof found);
}
#endif
/* [/loading] */

/* [callbacks] */
static void on_log(const void* caller, void* user_data, uint32_t level, const char* message) {
    (void)caller;
    (void)user_data;
    fprintf(stderr, "log, level %u: %s\n", (unsigned)level, message);
}

static void on_error(void* user_data, const kivra_error* error) {
    fprintf(stderr, "%s failed with %u: %s\n", (const char*)user_data, (unsigned)error->code,
            error->message);
}

static void on_chunk(void* user_data, const kivra_annotated_chunk* chunk) {
    (void)user_data;
    printf("%s at %llu us:\n%s\n", chunk->chunk.format, (unsigned long long)chunk->chunk.timestamp,
           chunk->text);
}
/* [/callbacks] */

/* [run] */
static int run(void* library, const char* tshark_directory, const char* profile,
               const char* tshark_session) {
    kivra_sink_init_function* init = NULL;
    kivra_sink_data_function* data = NULL;
    kivra_sink_get_last_error_function* get_last_error = NULL;
    kivra_sink_complete_function* complete = NULL;
    kivra_sink_release_function* release = NULL;
    look_up(library, "kivra_sink_init", &init);
    look_up(library, "kivra_sink_data", &data);
    look_up(library, "kivra_sink_get_last_error", &get_last_error);
    look_up(library, "kivra_sink_complete", &complete);
    look_up(library, "kivra_sink_release", &release);
    if (!init || !data || !get_last_error || !complete || !release) {
        return 1;
    }

    kivra_init_parameters parameters = {0};
    parameters.entries[0].key = "tshark_directory";
    parameters.entries[0].value = tshark_directory;
    parameters.entries[1].key = "file_path";
    parameters.entries[1].value = profile;
    parameters.entries[2].key = "tshark_session";
    parameters.entries[2].value = tshark_session; /* "on": one tshark for all records */
    parameters.count = 3;
    parameters.log_callback = on_log;
    parameters.error_user_data = "init";
    parameters.error_callback = on_error;
    kivra_sink_context* context = NULL;
    if (init(&context, &parameters) != KIVRA_RESULT_SUCCESS) {
        return 1;
    }

    static const uint8_t sib2[] = {0x00, 0x00, 0x4c, 0xa1, 0xbf, 0x6c, 0x88, 0x00, 0xca, 0x12,
                                   0x72, 0x02, 0x00, 0x00, 0x10, 0x01, 0x82, 0x9a, 0xa5, 0xab,
                                   0x84, 0x88, 0x00, 0x48, 0x00, 0x8b, 0x6e, 0x20, 0x07};
    kivra_trace_chunk chunk = {0};
    chunk.data = sib2;
    chunk.size = sizeof sib2;
    chunk.format = "lte_rrc.bcch_dl_sch_br";
    chunk.timestamp = 1764000000000000;
    const int32_t result = data(context, &chunk, NULL, NULL, NULL, on_chunk);
    if (result != KIVRA_RESULT_SUCCESS) {
        get_last_error(context, "data", on_error); /* and on with the next record */
    }

    complete(context);
    release(context);
    return result == KIVRA_RESULT_SUCCESS ? 0 : 1;
}
/* [/run] */

int main(int count, char** arguments) {
    void* const library = count == 4 || count == 5 ? load(arguments[1]) : NULL;
    if (library == NULL) {
        fprintf(stderr, "host PLUGIN TSHARK_DIRECTORY PROFILE [TSHARK_SESSION]\n");
        return 1;
    }
    return run(library, arguments[2], arguments[3], count == 5 ? arguments[4] : "off");
}
