/// The initialisation parameters: their JSON Schema, and what a host's parameter block says.
#pragma once

#include <filesystem>

#include <kivra/tshark_sink.h>

namespace KIVRA::TSHARK::SINK {

/// One line of JSON Schema (draft 2020-12) that describes the host's configuration object. It is
/// the host that validates against it.
extern const char* const init_parameter_schema;

/// The parameters' values; a path is empty when its parameter was not given.
struct init_values {
    std::filesystem::path tshark_directory;
    std::filesystem::path parameter_file;
};

/// Reads "tshark_directory" and "file_path"; the later entry of a key counts, other keys and
/// entries with a null key or value are skipped.
/// @throws std::runtime_error when the block claims more entries than its capacity,
///     std::system_error for a value that is not valid in the file-system code page
init_values read_init_parameters(const kivra_init_parameters& parameters);

}  // namespace KIVRA::TSHARK::SINK
