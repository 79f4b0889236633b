#include "replay/page/page_report.h"

#include "replay/page/page_json.h"
#include "replay/report/summary_file.h"

namespace KIVRA::TSHARK::REPLAY {

void page_report::begin(const std::string& heading) {
    page_.begin_block("heading");
    page_.write(page_json({{"version", heading_.version},
                           {"tshark", heading_.tshark},
                           {"runner", heading},
                           {"captures", heading_.captures}}));
    page_.end_block();
    page_.begin_block("records");
    page_.write("[");
}

void page_report::add(std::uint64_t number, const trace_record& record, const outcome& result) {
    totals_.add(number, record, result, details_of(result));
    page_.write(totals_.all.records == 1 ? "\n" : ",\n");
    page_.write(rows_.row_of(record, result, totals_.told.connections, number));
}

void page_report::end(const capture_content& captures) {
    page_.write("\n]");
    page_.end_block();
    auto summary = json_of(totals_, profile_, captures);
    if (const auto& open = totals_.told.connections.current()) {
        summary["open_connection"] = {{"first_record", open->first_record}, {"cause", open->cause}};
    }
    page_.begin_block("summary");
    page_.write(page_json(summary));
    page_.end_block();
}

}  // namespace KIVRA::TSHARK::REPLAY
