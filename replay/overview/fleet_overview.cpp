#include "replay/overview/fleet_overview.h"

#include <utility>

#include "replay/overview/fleet_page.h"
#include "replay/page/page_json.h"

namespace KIVRA::TSHARK::REPLAY {

using json = nlohmann::ordered_json;

fleet_overview::fleet_overview(std::filesystem::path file, const overview_heading& heading)
    : page_(std::move(file), fleet_page()), last_(fleet_columns().size()) {
    page_.begin_block("heading");
    page_.write(page_json(
        {{"version", heading.version}, {"tshark", heading.tshark}, {"columns", fleet_columns()}}));
    page_.end_block();
    page_.begin_block("rows");
    page_.write("[");
}

void fleet_overview::add(const fleet_row& row) {
    json cells = json::array();
    for (std::size_t place = 0; place < row.size(); ++place) {
        cells.push_back(row[place] == last_.at(place) ? json(0) : json(row[place]));
    }
    last_ = row;
    page_.write(std::exchange(separator_, ",\n"));
    page_.write(page_json(cells));
}

void fleet_overview::finish(std::size_t captures) {
    page_.write("\n]");
    page_.end_block();
    page_.begin_block("planned");
    page_.write(page_json(captures));
    page_.end_block();
    page_.finish();
}

}  // namespace KIVRA::TSHARK::REPLAY
