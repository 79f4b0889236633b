#include "replay/fleet/scratch_folder.h"

#include <random>
#include <system_error>
#include <vector>

#include "replay/record/path_text.h"

namespace KIVRA::TSHARK::REPLAY {

namespace fs = std::filesystem;

namespace {

bool is_called(const fs::path& folder, const std::string& name) {
    const auto text = text_of(folder.filename());
    return text.size() > name.size() && text.starts_with(name) &&
           text.find_first_not_of("0123456789", name.size()) == std::string::npos;
}

}  // namespace

scratch_folder::scratch_folder() : scratch_folder(fs::temp_directory_path(), "kivra-replay-") {}

scratch_folder::scratch_folder(const fs::path& parent, const std::string& name) {
    std::random_device chance;
    do {
        path_ = parent / path_of(name + std::to_string(chance()) + std::to_string(chance()));
    } while (!fs::create_directory(path_));
    fs::permissions(path_, fs::perms::owner_all);
}

scratch_folder::~scratch_folder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

void remove_scratch_folders(const fs::path& parent, const std::string& name) {
    std::vector<fs::path> found;
    std::error_code ignored;
    for (fs::directory_iterator entry(parent, ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        if (is_called(entry->path(), name)) {
            found.push_back(entry->path());
        }
    }
    for (const auto& folder : found) {
        fs::remove_all(folder, ignored);
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
