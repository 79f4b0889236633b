#!/usr/bin/env python3
"""A small host in Python: loads the plug-in, hands it one record, and prints what comes back.

    host.py PLUGIN TSHARK_DIRECTORY PROFILE

The classes follow the C header kivra/tshark_sink.h.
"""
import ctypes
import os
import sys
from ctypes import POINTER, c_char_p, c_int32, c_uint8, c_uint32, c_uint64, c_void_p

# System information of an LTE-M cell with block 2: the idle paging cycle and the repetitions.
SYSTEM_INFORMATION = bytes.fromhex(
    "00004ca1bf6c8800ca12720200001001829aa5ab84880048008b6e2007")


class Error(ctypes.Structure):
    _fields_ = [("message", c_char_p), ("code", c_uint32), ("reserved", c_uint8 * 4)]


class VersionInfo(ctypes.Structure):
    _fields_ = [("description", c_char_p), ("reserved_8", c_uint32), ("reserved_12", c_uint8 * 4),
                ("major", c_uint32), ("minor", c_uint32), ("patch", c_uint32),
                ("reserved_28", c_uint8 * 452), ("flag", c_uint8), ("reserved_481", c_uint8 * 7)]


class TraceChunk(ctypes.Structure):
    _fields_ = [("data", c_char_p), ("size", c_uint32), ("reserved_12", c_uint8 * 4),
                ("format", c_char_p), ("reserved_24", c_uint8 * 16), ("timestamp", c_uint64),
                ("reserved_48", c_uint8 * 16)]


class AnnotatedChunk(ctypes.Structure):
    _fields_ = [("chunk", TraceChunk), ("text", c_char_p)]


class InitParameter(ctypes.Structure):
    _fields_ = [("key", c_char_p), ("value", c_char_p), ("reserved", c_uint8 * 160)]


LogCallback = ctypes.CFUNCTYPE(None, c_void_p, c_void_p, c_uint32, c_char_p)
ErrorCallback = ctypes.CFUNCTYPE(None, c_void_p, POINTER(Error))
SchemaCallback = ctypes.CFUNCTYPE(None, c_void_p, c_char_p)
VersionCallback = ctypes.CFUNCTYPE(None, c_void_p, POINTER(VersionInfo))
ChunkCallback = ctypes.CFUNCTYPE(None, c_void_p, POINTER(AnnotatedChunk))


class InitParameters(ctypes.Structure):
    _fields_ = [("entries", InitParameter * 20), ("count", c_uint64),
                ("log_user_data", c_void_p), ("log_callback", LogCallback),
                ("error_user_data", c_void_p), ("error_callback", ErrorCallback)]


def load(file):
    """The plug-in with its functions' types. Without them ctypes would cut pointers short."""
    plugin = ctypes.CDLL(file)
    for name, result, arguments in [
            ("version", c_int32, [c_void_p, VersionCallback]),
            ("init_parameters", c_int32, [c_void_p, SchemaCallback]),
            ("init", c_int32, [POINTER(c_void_p), POINTER(InitParameters)]),
            ("data", c_int32, [c_void_p, POINTER(TraceChunk), c_void_p, c_void_p, c_void_p,
                               ChunkCallback]),
            ("complete", c_int32, [c_void_p]),
            ("get_last_error", None, [c_void_p, c_void_p, ErrorCallback]),
            ("release", c_int32, [c_void_p])]:
        function = getattr(plugin, "kivra_sink_" + name)
        function.restype = result
        function.argtypes = arguments
    return plugin


# The callback objects stay alive as long as the plug-in may call them.

@VersionCallback
def print_version(_, version):
    about = version.contents
    print(f"{about.description.decode()} {about.major}.{about.minor}.{about.patch}")


@SchemaCallback
def print_schema(_, schema):
    print(schema.decode())


@LogCallback
def print_log(_caller, _, level, message):
    print(f"log ({level}): {message.decode()}", file=sys.stderr)


@ErrorCallback
def print_error(_, error):
    print(f"error {error.contents.code}: {error.contents.message.decode()}", file=sys.stderr)


@ChunkCallback
def print_document(_, chunk):
    print(chunk.contents.text.decode())


def main():
    if len(sys.argv) != 4:
        sys.exit("usage: host.py PLUGIN TSHARK_DIRECTORY PROFILE")
    plugin_file, tshark_directory, profile = sys.argv[1:]

    try:
        plugin = load(plugin_file)
    except OSError as error:
        sys.exit(str(error))
    plugin.kivra_sink_version(None, print_version)
    plugin.kivra_sink_init_parameters(None, print_schema)

    parameters = InitParameters(count=2, log_callback=print_log, error_callback=print_error)
    parameters.entries[0] = InitParameter(b"tshark_directory", os.fsencode(tshark_directory))
    parameters.entries[1] = InitParameter(b"file_path", os.fsencode(profile))
    context = c_void_p()
    if plugin.kivra_sink_init(ctypes.byref(context), ctypes.byref(parameters)) != 0:
        sys.exit(1)

    chunk = TraceChunk(data=SYSTEM_INFORMATION, size=len(SYSTEM_INFORMATION),
                       format=b"lte_rrc.bcch_dl_sch_br", timestamp=1_764_000_000_000_000)
    result = plugin.kivra_sink_data(context, ctypes.byref(chunk), None, None, None, print_document)
    if result != 0:
        plugin.kivra_sink_get_last_error(context, None, print_error)
    plugin.kivra_sink_complete(context)
    plugin.kivra_sink_release(context)
    sys.exit(0 if result == 0 else 1)


if __name__ == "__main__":
    main()
