#include "replay/runner/dissection_reader.h"

#include "replay/message/describe_message.h"
#include "replay/settings/settings_of.h"

namespace KIVRA::TSHARK::REPLAY {

void dissection_reader::read(const trace_record& record, const nlohmann::json& packet,
                             outcome& result) {
    result.message = describe_packet(packet);
    if (!record.carried_nas_is_record) {
        add_carried_nas(packet, result.message);
    }
    if (const auto access = access_of(packet); access != radio_access::unknown) {
        access_ = access;
    }
    result.message.access = access_;
    result.settings = settings_of(packet, access_);
}

}  // namespace KIVRA::TSHARK::REPLAY
