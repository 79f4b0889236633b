#include "replay/record/write_error.h"

#include <string>
#include <system_error>

namespace KIVRA::TSHARK::REPLAY {

std::runtime_error write_error(std::string_view name, int error) {
    auto message = "can't write " + std::string(name);
    if (error != 0) {
        message += ": " + std::generic_category().message(error);
    }
    return std::runtime_error(message);
}

}  // namespace KIVRA::TSHARK::REPLAY
