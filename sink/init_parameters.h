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
    /// One tshark for all records, instead of one for each.
    bool tshark_session = false;
};

/// Reads "tshark_directory", "file_path" and "tshark_session", which the schema does not name and
/// which is on with the value "on" alone; the later entry of a key counts, other keys and
/// entries with a null key or value are skipped.
/// @throws std::runtime_error when the block claims more entries than its capacity,
///     std::system_error for a value that is not valid in the file-system code page
init_values read_init_parameters(const kivra_init_parameters& parameters);

}  // namespace KIVRA::TSHARK::SINK
