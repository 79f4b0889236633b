#include "platform/command_interpreter_windows.h"
#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {

std::optional<std::uint32_t> run_program(const std::filesystem::path& program,
                                         const std::vector<std::string>& arguments,
                                         const std::filesystem::path& output) {
    return run_command_line(cmd_command_line(program, arguments, output));
}

}  // namespace KIVRA::TSHARK::PLATFORM
