#include "replay/input/extraction/extraction_arguments.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

std::string filter_for(const extraction_options& options) {
    std::string filter =
        "lte_rrc || nas-eps || icmpv6.type == 134 || pdcp-lte.signalling-data || (user_dlt";
    for (const auto& link_type : options.user_link_types) {
        const int place = link_type.number - first_user_link_type;
        filter += " && frame.encap_type != " + std::to_string(first_user_encapsulation + place);
    }
    return filter + ")";
}

/// A row of Wireshark's table "DLT_USER": link type, protocol, size and protocol of a header, size
/// and protocol of a trailer.
std::string table_row(const user_link_type& link_type) {
    const auto number = std::to_string(link_type.number);
    const auto place = std::to_string(link_type.number - first_user_link_type);
    return "uat:user_dlts:\"User " + place + " (DLT=" + number + ")\",\"" + link_type.protocol +
           R"(","0","","0","")";
}

}  // namespace

std::vector<std::string> extraction_arguments(const std::string& capture, extraction_depth depth,
                                              const extraction_options& options) {
    std::vector<std::string> list{"-r", capture, "-T", "json", "-x", "--no-duplicate-keys", "-l"};
    if (depth == extraction_depth::frames) {
        list.insert(list.end(), {"-j", "frame"});
    } else {
        list.insert(list.end(), {"-Y", filter_for(options), "-z", "io,phs"});
        // A NAS message within an RRC message becomes a layer behind that one.
        list.insert(list.end(), {"-o", "lte_rrc.nas_in_root_tree:TRUE"});
    }
    if (depth == extraction_depth::layers) {
        list.insert(list.end(), {"-j", "frame lte_rrc"});
    }
    for (const auto& link_type : options.user_link_types) {
        list.insert(list.end(), {"-o", table_row(link_type)});
    }
    list.insert(list.end(), options.tshark_options.begin(), options.tshark_options.end());
    return list;
}

}  // namespace KIVRA::TSHARK::REPLAY
