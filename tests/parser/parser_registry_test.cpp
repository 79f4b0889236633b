#include "parser/parser_registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "parser/lte_rrc_parser.h"
#include "parser/nas_eps_parser.h"
#include "tests/support/parser_probe.h"

namespace KIVRA::TSHARK::PARSER {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using TESTING::log_recorder;
using TESTING::packet_with;

class parser_registry_of_two : public testing::Test {
  protected:
    /// The places of the parsers that accept the packet.
    std::vector<std::size_t> accepting(const json& packet) const {
        std::vector<std::size_t> places;
        for (std::size_t place = 0; place < parsers_.size(); ++place) {
            if (parsers_[place]->accepts(packet)) {
                places.push_back(place);
            }
        }
        return places;
    }

    log_recorder log_;
    parser_registry parsers_ = make_parser_registry(&log_, &log_recorder::callback);
};

TEST_F(parser_registry_of_two, holds_lte_rrc_first_and_nas_eps_second) {
    ASSERT_EQ(parsers_.size(), 2);
    EXPECT_NE(dynamic_cast<const lte_rrc_parser*>(parsers_[0].get()), nullptr);
    EXPECT_NE(dynamic_cast<const nas_eps_parser*>(parsers_[1].get()), nullptr);
}

TEST_F(parser_registry_of_two, offers_a_packet_of_both_protocols_to_lte_rrc_first) {
    const json packet = json::parse(R"({"_source": {"layers": {
        "lte_rrc": {"lte-rrc.rrcConnectionSetup_element": {}},
        "nas-eps": {"nas_eps.emm.switch_off": "1"}}}})");
    EXPECT_THAT(accepting(packet), ElementsAre(0, 1));
    json result;
    parsers_.front()->parse(packet, result);
    EXPECT_EQ(result, json::parse(R"({"lte-rrc": {"connection_state": "rrcConnectionSetup"}})"));
}

TEST_F(parser_registry_of_two, has_one_parser_for_each_protocol_alone) {
    EXPECT_THAT(accepting(packet_with("lte_rrc", "{}")), ElementsAre(0));
    EXPECT_THAT(accepting(packet_with("nas-eps", "{}")), ElementsAre(1));
}

TEST_F(parser_registry_of_two, has_no_parser_for_other_packets) {
    for (const char* packet :
         {R"({"_source": {"layers": {"lte-rrc": {}, "nas_eps": {}}}})", R"({"_source": {}})",
          R"({"_source": [{"layers": {"lte_rrc": {}, "nas-eps": {}}}]})", R"({})", "[]", "null"}) {
        EXPECT_THAT(accepting(json::parse(packet)), ElementsAre()) << packet;
    }
}

TEST_F(parser_registry_of_two, gives_every_parser_the_hosts_log) {
    for (const auto& parser : parsers_) {
        parser->log("from the parser");
        EXPECT_EQ(log_.entries.back().caller, parser.get());
        EXPECT_EQ(log_.entries.back().level, 3);
        EXPECT_EQ(log_.entries.back().message, "from the parser");
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
