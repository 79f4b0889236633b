// Messages as the real tshark shows them, and what is not from tshark.
#include "replay/message/describe_message.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "replay/runner/message_reader.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;
using nlohmann::json;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// The names of a file's messages, a name and how often it comes in a row; malformed ones are
/// marked.
using name_runs = std::vector<std::pair<int, std::string>>;

class described_messages : public scratch_test {
  protected:
    name_runs names_of(const char* file) {
        name_runs names;
        for (const auto& message : read_json(data_file(file))) {
            const auto payload = bytes_of(message.at("hex").get<std::string>());
            trace_record record;
            record.format = message.at("format").get<std::string>();
            record.payload = {reinterpret_cast<const std::uint8_t*>(payload.data()),
                              payload.size()};
            outcome result;
            reader_.read(record, result);
            const auto& description = result.message;
            auto name = description.name + (description.is_malformed ? " [malformed]" : "");
            if (names.empty() || names.back().second != name) {
                names.emplace_back(0, std::move(name));
            }
            ++names.back().first;
        }
        return names;
    }

  private:
    message_reader reader_{tshark_directory() / "tshark"};
};

TEST_F(described_messages, are_named_in_an_lte_m_attach) {
    EXPECT_THAT(names_of("ltem_attach_psm.json"),
                ElementsAreArray(name_runs{
                    {1, "BCCH-DL-SCH BR, SystemInformation-BR-r13 [SIB2]"},
                    {1, "UL-CCCH, RRCConnectionRequest"},
                    {1, "DL-CCCH, RRCConnectionSetup"},
                    {1, "UL-DCCH, RRCConnectionSetupComplete"},
                    {1, "Attach request, PDN connectivity request"},
                    {1, "Authentication request"},
                    {1, "Authentication response"},
                    {1, "Security mode command"},
                    {1, "Security mode complete"},
                    {1, "ESM information request"},
                    // tshark leaves it alone, since it is not integrity protected.
                    {1, "NAS message"},
                    {1, "DL-DCCH, RRCConnectionReconfiguration"},
                    {1, "Attach accept, Activate default EPS bearer context request"},
                    {1, "Attach complete, Activate default EPS bearer context accept"},
                    {1, "IPv6 packet"},
                    {1, "BCCH-DL-SCH BR, SystemInformation-BR-r13 [SIB2]"},
                    {1, "DL-DCCH, RRCConnectionRelease"},
                    {1, "UL-CCCH, RRCConnectionRequest"},
                    {1, "DL-CCCH, RRCConnectionSetup"},
                    {1, "Tracking area update accept"},
                    {1, "Detach request"},
                    {1, "DL-DCCH, RRCConnectionRelease"},
                }));
}

TEST_F(described_messages, are_named_in_an_nb_iot_attach) {
    EXPECT_THAT(names_of("nbiot_attach.json"),
                ElementsAreArray(name_runs{
                    {1, "BCCH-DL-SCH NB, SystemInformation-NB [SIB2]"},
                    {1, "UL-CCCH NB, RRCConnectionRequest-NB"},
                    {1, "DL-CCCH NB, RRCConnectionSetup-NB"},
                    {1, "UL-DCCH NB, RRCConnectionSetupComplete-NB"},
                    {1, "Attach request, PDN connectivity request"},
                    {1, "Attach accept, Activate default EPS bearer context request"},
                    {1, "Attach reject, PDN connectivity reject"},
                    {1, "DL-DCCH NB, RRCConnectionRelease-NB"},
                }));
}

TEST_F(described_messages, are_named_in_each_channel) {
    EXPECT_THAT(names_of("rrc_messages.json"),
                ElementsAreArray(name_runs{
                    {4, "BCCH-DL-SCH, SystemInformation [SIB2]"},
                    {9, "BCCH-DL-SCH BR, SystemInformation-BR-r13 [SIB2]"},
                    {16, "BCCH-DL-SCH NB, SystemInformation-NB [SIB2]"},
                    {23, "DL-CCCH, RRCConnectionSetup"},
                    {1, "DL-DCCH, RRCConnectionReconfiguration"},
                    {1, "PCCH, Paging"},
                    {3, "UL-CCCH, RRCConnectionRequest"},
                    {1, "UL-CCCH"},
                    {2, "NAS message [malformed]"},
                }));
}

TEST(descriptions, take_the_spelling_of_every_tshark) {
    for (const auto* layer : {"nas-eps", "nas_eps"}) {
        EXPECT_EQ(
            describe_packet(
                {{"_source", {{"layers", {{layer, {{"nas-eps.nas_msg_emm_type", "0x42"}}}}}}}})
                .name,
            "Attach accept");
    }
}

TEST(descriptions, prefer_the_outer_message) {
    EXPECT_EQ(describe_packet({{"_source",
                                {{"layers",
                                  {{"lte_rrc", {{"lte-rrc.PCCH_Message_element", {}}}},
                                   {"nas-eps", {{"nas_eps.nas_msg_emm_type", "0x42"}}}}}}}})
                  .name,
              "PCCH");
}

TEST(descriptions, tell_what_becomes_of_the_registration) {
    const auto registration_of = [](const char* type, const json& more = json::object()) {
        json layer = more;
        layer["nas_eps.nas_msg_emm_type"] = type;
        return describe_packet({{"_source", {{"layers", {{"nas-eps", layer}}}}}}).registration;
    };
    EXPECT_EQ(registration_of("0x41"), registration_event::none);
    EXPECT_EQ(registration_of("0x42"), registration_event::accept);
    EXPECT_EQ(registration_of("0x43"), registration_event::none);
    EXPECT_EQ(registration_of("0x44"), registration_event::reject);
    EXPECT_EQ(registration_of("0x48"), registration_event::none);
    EXPECT_EQ(registration_of("0x49"), registration_event::accept);
    EXPECT_EQ(registration_of("0x4b"), registration_event::reject);
    EXPECT_EQ(registration_of("0x4e"), registration_event::none);
    const auto detach_of = [&](const char* direction, const char* type) {
        return registration_of("0x45",
                               {{std::string("nas_eps.emm.detach_type_") + direction, type}});
    };
    EXPECT_EQ(detach_of("ul", "1"), registration_event::detach);
    EXPECT_EQ(detach_of("ul", "2"), registration_event::none);
    EXPECT_EQ(detach_of("ul", "3"), registration_event::detach);
    EXPECT_EQ(detach_of("dl", "1"), registration_event::detach);
    EXPECT_EQ(detach_of("dl", "2"), registration_event::detach);
    EXPECT_EQ(detach_of("dl", "3"), registration_event::none);
}

TEST(descriptions, mark_malformed_messages) {
    const json layers{{"nas-eps", {{"nas_eps.nas_msg_emm_type", "0x42"}}}};
    EXPECT_FALSE(describe_packet({{"_source", {{"layers", layers}}}}).is_malformed);
    auto malformed = layers;
    malformed["_ws.malformed"] = json::object();
    EXPECT_TRUE(describe_packet({{"_source", {{"layers", malformed}}}}).is_malformed);
}

TEST(descriptions, are_there_for_every_packet) {
    for (const json& packet :
         {json(), json(1), json::array(), json::object(), json({{"_source", 1}}),
          json({{"_source", {{"layers", 1}}}}), json({{"_source", {{"layers", {{"http", 1}}}}}})}) {
        const auto description = describe_packet(packet);
        EXPECT_EQ(description.name, "unknown message") << packet;
        EXPECT_THAT(description.causes, IsEmpty());
    }
}

TEST(descriptions, of_records_that_tshark_does_not_see_are_their_formats) {
    const auto name_of = [](const char* format, const std::vector<std::uint8_t>& payload) {
        trace_record record;
        record.format = format;
        record.payload = payload;
        return describe_record(record).name;
    };
    EXPECT_EQ(name_of("ip", {0x60, 0}), "IPv6 packet");
    EXPECT_EQ(name_of("ip", {0x45}), "IPv4 packet");
    EXPECT_EQ(name_of("ip", {0x00}), "IP packet");
    EXPECT_EQ(name_of("ip", {}), "IP packet");
    EXPECT_EQ(name_of("http", {}), "http");
    EXPECT_EQ(name_of("", {}), "unknown message");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
