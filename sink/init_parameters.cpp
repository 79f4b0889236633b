#include "sink/init_parameters.h"

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace KIVRA::TSHARK::SINK {

namespace {

std::span<const kivra_init_parameter> entries_of(const kivra_init_parameters& parameters) {
    if (parameters.count > KIVRA_INIT_PARAMETER_CAPACITY) {
        throw std::runtime_error("parameter block claims " + std::to_string(parameters.count) +
                                 " entries but has room for " +
                                 std::to_string(KIVRA_INIT_PARAMETER_CAPACITY));
    }
    return std::span(parameters.entries).first(static_cast<std::size_t>(parameters.count));
}

}  // namespace

const char* const init_parameter_schema =
    R"({  "$schema": "https://json-schema.org/draft/2020-12/schema",)"
    R"(  "title": "tshark init parameters",  "type": "object",  "properties": {)"
    R"(    "name": { "const": "kivra-tshark-sink" },    "path": { "type": "string" },)"
    R"(    "init_parameters": {      "type": "object",      "properties": {)"
    R"(        "tshark_directory": {          "description": "path to location where tshark )"
    R"(executable is, if not set PATH is used to try to discover tshark location",)"
    R"(          "type": "string"        },        "file_path": {)"
    R"(          "description": "creates or overrides file target json file with vek parameters",)"
    R"(          "type": "string"        }      },      "additionalProperties": false    }  },)"
    R"(  "additionalProperties": false,  "required": ["init_parameters"]})";

init_values read_init_parameters(const kivra_init_parameters& parameters) {
    init_values values;
    for (const auto& entry : entries_of(parameters)) {
        if (entry.key == nullptr || entry.value == nullptr) {
            continue;
        }
        const std::string_view key = entry.key;
        if (key == "tshark_directory") {
            values.tshark_directory = PLATFORM::path_from_narrow(entry.value);
        } else if (key == "file_path") {
            values.parameter_file = PLATFORM::path_from_narrow(entry.value);
        } else if (key == "tshark_session") {
            values.tshark_session = entry.value == std::string_view("on");
        }
    }
    return values;
}

}  // namespace KIVRA::TSHARK::SINK
