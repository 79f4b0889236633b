/// The C ABI of the plug-in kivra-tshark-sink, for hosts. Compiles as C11 and as C++.
///
/// Conventions:
///
/// 1. The host loads the plug-in by file name and looks the eight functions up by their plain
///    names. Each has a type for that: `kivra_sink_data_function` for `kivra_sink_data`, and so on.
/// 2. Every record is a fixed binary layout: 64-bit, little-endian, natural alignment. The static
///    assertions at the end hold sizes and offsets. Bytes named `reserved` belong to the host; the
///    plug-in does not interpret them.
/// 3. Texts are NUL-terminated. Texts from the host are in the process's file-system code page
///    (UTF-8 on POSIX). Texts to the host are UTF-8, but for messages of errors: these quote bytes
///    of tshark's output, and messages of the system, as they are, so they may be no valid UTF-8.
///    All are valid only during the callback unless stated otherwise; the host copies what it
///    keeps.
/// 4. A callback receives, unchanged, the user data that the host passed along with it. A null
///    callback is never called. Callbacks return nothing; they may throw (C++; on Windows also from
///    Microsoft's compiler), and what they throw never leaves the plug-in. Errors of other
///    languages must end within the callback.
/// 5. Functions return a `kivra_result`. No exception leaves them.
/// 6. A context is used from one thread at a time; two contexts are independent. Everything happens
///    on the calling thread, which waits while tshark runs.
/// 7. The host owns a context from a successful `kivra_sink_init` until `kivra_sink_release`.
#ifndef KIVRA_TSHARK_SINK_H
#define KIVRA_TSHARK_SINK_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32) && defined(KIVRA_TSHARK_SINK_BUILD)
#define KIVRA_TSHARK_SINK_EXPORT __declspec(dllexport)
#elif defined(_WIN32)
#define KIVRA_TSHARK_SINK_EXPORT
#else
#define KIVRA_TSHARK_SINK_EXPORT __attribute__((visibility("default")))
#endif

/// The version of the release that this header belongs to. It moves with every release.
#define KIVRA_TSHARK_SINK_VERSION_MAJOR 0
#define KIVRA_TSHARK_SINK_VERSION_MINOR 13
#define KIVRA_TSHARK_SINK_VERSION_PATCH 1

/// The version of the interface, which `kivra_sink_version` tells. It stays through releases whose
/// plug-in serves a host of the release before as it did, and moves only with one that does not.
#define KIVRA_TSHARK_SINK_INTERFACE_MAJOR 0
#define KIVRA_TSHARK_SINK_INTERFACE_MINOR 13
#define KIVRA_TSHARK_SINK_INTERFACE_PATCH 1

#ifdef __cplusplus
extern "C" {
#endif

// Results and log levels

/// What the functions return.
enum kivra_result {
    /// Success.
    KIVRA_RESULT_SUCCESS = 0,
    /// `kivra_sink_init` failed; the error callback has received the reason.
    KIVRA_RESULT_INIT_FAILED = 1,
    /// Another function failed; `kivra_sink_get_last_error` gives the reason for `kivra_sink_data`.
    KIVRA_RESULT_FAILED = 100
};

/// Levels of log messages.
enum kivra_log_level {
    /// Information: a value without an entry in its table, or how long tshark took.
    KIVRA_LOG_INFORMATION = 3,
    /// tshark could not be started.
    KIVRA_LOG_ERROR = 5
};

// Records

/// One instance of the sink.
typedef struct kivra_sink_context kivra_sink_context;

/// One trace record: a protocol message or an IP packet. Read-only for the plug-in.
typedef struct kivra_trace_chunk {
    /// The message's bytes, read only during `kivra_sink_data`. May be null when the size is 0.
    const uint8_t* data;
    /// The number of bytes at `data`.
    uint32_t size;
    uint8_t reserved_12[4];
    /// The Wireshark dissector for the message: "nas-eps", a name containing "lte_rrc" (such as
    /// "lte_rrc.ul_dcch"), or "ip" for an IP packet. Records of any other format, and of none
    /// (null), are ignored.
    const char* format;
    uint8_t reserved_24[16];
    /// When the record was captured, in microseconds since 1970-01-01.
    uint64_t timestamp;
    uint8_t reserved_48[16];
} kivra_trace_chunk;

/// A trace record with its result document.
typedef struct kivra_annotated_chunk {
    /// The 64 bytes that the host passed to `kivra_sink_data`.
    kivra_trace_chunk chunk;
    /// The result document: JSON, indented by 4 blanks, UTF-8, no final newline.
    const char* text;
} kivra_annotated_chunk;

/// An error.
typedef struct kivra_error {
    /// What went wrong, for people to read. May hold bytes that are no UTF-8.
    const char* message;
    /// 1 from `kivra_sink_init`; from `kivra_sink_get_last_error` 0 before any failure, else 100.
    uint32_t code;
    /// Padding, zero.
    uint8_t reserved[4];
} kivra_error;

/// The version of the interface. Every byte without a meaning here is zero.
typedef struct kivra_version_info {
    /// What the plug-in is; valid until the plug-in is unloaded.
    const char* description;
    /// 0.
    uint32_t reserved_8;
    uint8_t reserved_12[4];
    uint32_t major;
    uint32_t minor;
    uint32_t patch;
    uint8_t reserved_28[452];
    /// 1.
    uint8_t flag;
    uint8_t reserved_481[7];
} kivra_version_info;

// Callbacks

/// Receives log messages during `kivra_sink_data`.
/// @param caller carries no information for the host
/// @param user_data the parameter block's `log_user_data`
/// @param level a `kivra_log_level`
/// @param message valid during the call
typedef void (*kivra_log_callback)(const void* caller, void* user_data, uint32_t level,
                                   const char* message);

/// Receives an error.
/// @param error valid during the call
typedef void (*kivra_error_callback)(void* user_data, const kivra_error* error);

/// Receives the JSON Schema of the initialisation parameters.
/// @param schema valid until the plug-in is unloaded
typedef void (*kivra_schema_callback)(void* user_data, const char* schema);

/// Receives the version of the interface.
/// @param version valid during the call
typedef void (*kivra_version_callback)(void* user_data, const kivra_version_info* version);

/// Receives a trace record with its result document.
/// @param chunk valid during the call
typedef void (*kivra_chunk_callback)(void* user_data, const kivra_annotated_chunk* chunk);

// Initialisation parameters

/// The capacity of a parameter block, in entries.
enum { KIVRA_INIT_PARAMETER_CAPACITY = 20 };

/// One initialisation parameter.
typedef struct kivra_init_parameter {
    /// "tshark_directory", "file_path" or "tshark_session", case matters; other keys are skipped,
    /// as is a null key.
    const char* key;
    /// The parameter's text; an entry whose value is null is skipped.
    const char* value;
    uint8_t reserved[160];
} kivra_init_parameter;

/// What `kivra_sink_init` needs. The host's, read only during the call.
typedef struct kivra_init_parameters {
    /// The parameters; of a key given twice the later entry counts.
    kivra_init_parameter entries[KIVRA_INIT_PARAMETER_CAPACITY];
    /// How many of the entries are filled, at most 20.
    uint64_t count;
    void* log_user_data;
    /// Called during `kivra_sink_data`. May be null.
    kivra_log_callback log_callback;
    void* error_user_data;
    /// Called once when `kivra_sink_init` fails. May be null.
    kivra_error_callback error_callback;
} kivra_init_parameters;

// Functions that need no context

/// Passes the version of the interface to the callback, once: 0.13.1, whatever the release.
/// @return 0; 100 when the callback throws
KIVRA_TSHARK_SINK_EXPORT int32_t kivra_sink_version(void* user_data,
                                                    kivra_version_callback callback);

/// Passes the JSON Schema of the initialisation parameters to the callback, once.
/// @return 0; 100 when the callback throws
KIVRA_TSHARK_SINK_EXPORT int32_t kivra_sink_init_parameters(void* user_data,
                                                            kivra_schema_callback callback);

// An instance, from its creation to its end

/// Creates an instance: reads the parameters and finds tshark. The first call in a process also
/// reads the operator list, which all instances share.
///
/// "tshark_directory" is the folder of tshark's executable; without it (or when it is empty) an
/// entry whose name begins with "wireshark", whatever the case, is looked for in the folders of
/// PATH (separated by ";") and in "C:\Program Files". "file_path" is the power-profile parameter
/// file; without it none is written. "tshark_session" with the value "on" has one tshark, which
/// stays alive until the release, serve all records; with any other value, and without it, each
/// record has a tshark of its own. The schema does not name this key.
///
/// @param context receives the new instance; not written on failure
/// @return 0; 1 on failure, after one call of the error callback with code 1; 1 without a call
///     when `parameters` is null
KIVRA_TSHARK_SINK_EXPORT int32_t kivra_sink_init(kivra_sink_context** context,
                                                 const kivra_init_parameters* parameters);

/// Analyses one trace record: runs tshark on a NAS or RRC message, takes the prefix of a router
/// advertisement out of an IP packet. Writes the parameter file when the record completes it, and
/// passes the result document to the callback unless it is empty. Waits until tshark has ended.
///
/// Two working files live in the current directory during the call and are deleted before it
/// returns; a working file that cannot be deleted ends the process. A record that a session serves
/// has none.
///
/// @param reserved_1 ignored
/// @param reserved_2 ignored
/// @return 0, also for a record that is ignored or a tshark that cannot be started (which is
///     logged); 100 on failure, the reason is kept for `kivra_sink_get_last_error`; 100 without
///     a reason when `context` is null
KIVRA_TSHARK_SINK_EXPORT int32_t kivra_sink_data(kivra_sink_context* context,
                                                 const kivra_trace_chunk* chunk, void* reserved_1,
                                                 void* reserved_2, void* user_data,
                                                 kivra_chunk_callback callback);

/// Passes the reason of the last failed `kivra_sink_data` to the callback: its text and 100, or the
/// empty text and 0 when none has failed. Neither reading nor a later success clears it. Does
/// nothing when `context` is null.
KIVRA_TSHARK_SINK_EXPORT void kivra_sink_get_last_error(kivra_sink_context* context,
                                                        void* user_data,
                                                        kivra_error_callback callback);

/// For the end of the host's stream. Does nothing: every record is finished when `kivra_sink_data`
/// returns.
/// @return 0
KIVRA_TSHARK_SINK_EXPORT int32_t kivra_sink_complete(kivra_sink_context* context);

/// For a stream that the host gives up. Does nothing, as `kivra_sink_complete`.
/// @return 0
KIVRA_TSHARK_SINK_EXPORT int32_t kivra_sink_cancel(kivra_sink_context* context);

/// Ends an instance and deletes tshark's output file should it exist. Null is accepted.
/// @return 0; 100 should the tear-down fail
KIVRA_TSHARK_SINK_EXPORT int32_t kivra_sink_release(kivra_sink_context* context);

// The functions' types, for hosts that look them up by name

typedef int32_t kivra_sink_version_function(void* user_data, kivra_version_callback callback);
typedef int32_t kivra_sink_init_parameters_function(void* user_data,
                                                    kivra_schema_callback callback);
typedef int32_t kivra_sink_init_function(kivra_sink_context** context,
                                         const kivra_init_parameters* parameters);
typedef int32_t kivra_sink_data_function(kivra_sink_context* context,
                                         const kivra_trace_chunk* chunk, void* reserved_1,
                                         void* reserved_2, void* user_data,
                                         kivra_chunk_callback callback);
typedef void kivra_sink_get_last_error_function(kivra_sink_context* context, void* user_data,
                                                kivra_error_callback callback);
typedef int32_t kivra_sink_complete_function(kivra_sink_context* context);
typedef int32_t kivra_sink_cancel_function(kivra_sink_context* context);
typedef int32_t kivra_sink_release_function(kivra_sink_context* context);

// Layouts

static_assert(sizeof(void*) == 8, "64-bit platforms only");

static_assert(sizeof(kivra_trace_chunk) == 64, "layout");
static_assert(offsetof(kivra_trace_chunk, data) == 0, "layout");
static_assert(offsetof(kivra_trace_chunk, size) == 8, "layout");
static_assert(offsetof(kivra_trace_chunk, format) == 16, "layout");
static_assert(offsetof(kivra_trace_chunk, reserved_24) == 24, "layout");
static_assert(offsetof(kivra_trace_chunk, timestamp) == 40, "layout");
static_assert(offsetof(kivra_trace_chunk, reserved_48) == 48, "layout");

static_assert(sizeof(kivra_annotated_chunk) == 72, "layout");
static_assert(offsetof(kivra_annotated_chunk, chunk) == 0, "layout");
static_assert(offsetof(kivra_annotated_chunk, text) == 64, "layout");

static_assert(sizeof(kivra_error) == 16, "layout");
static_assert(offsetof(kivra_error, message) == 0, "layout");
static_assert(offsetof(kivra_error, code) == 8, "layout");

static_assert(sizeof(kivra_version_info) == 488, "layout");
static_assert(offsetof(kivra_version_info, description) == 0, "layout");
static_assert(offsetof(kivra_version_info, reserved_8) == 8, "layout");
static_assert(offsetof(kivra_version_info, major) == 16, "layout");
static_assert(offsetof(kivra_version_info, minor) == 20, "layout");
static_assert(offsetof(kivra_version_info, patch) == 24, "layout");
static_assert(offsetof(kivra_version_info, flag) == 480, "layout");

static_assert(sizeof(kivra_init_parameter) == 176, "layout");
static_assert(offsetof(kivra_init_parameter, key) == 0, "layout");
static_assert(offsetof(kivra_init_parameter, value) == 8, "layout");
static_assert(offsetof(kivra_init_parameter, reserved) == 16, "layout");

static_assert(sizeof(kivra_init_parameters) == 3560, "layout");
static_assert(offsetof(kivra_init_parameters, entries) == 0, "layout");
static_assert(offsetof(kivra_init_parameters, count) == 3520, "layout");
static_assert(offsetof(kivra_init_parameters, log_user_data) == 3528, "layout");
static_assert(offsetof(kivra_init_parameters, log_callback) == 3536, "layout");
static_assert(offsetof(kivra_init_parameters, error_user_data) == 3544, "layout");
static_assert(offsetof(kivra_init_parameters, error_callback) == 3552, "layout");

#ifdef __cplusplus
}
#endif

#endif
