#include "replay/fleet/scratch_folder.h"

#include <random>
#include <string>
#include <system_error>

namespace KIVRA::TSHARK::REPLAY {

namespace fs = std::filesystem;

scratch_folder::scratch_folder() {
    const fs::path folder = fs::temp_directory_path();
    std::random_device chance;
    do {
        path_ = folder / ("kivra-replay-" + std::to_string(chance()) + std::to_string(chance()));
    } while (!fs::create_directory(path_));
    fs::permissions(path_, fs::perms::owner_all);
}

scratch_folder::~scratch_folder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

}  // namespace KIVRA::TSHARK::REPLAY
