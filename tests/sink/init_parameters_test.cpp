#include "sink/init_parameters.h"

#include <cstring>
#include <limits>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::SINK {
namespace {

using testing::StrEq;
using testing::ThrowsMessage;

/// A block of the given entries, with rubbish in what is not read.
kivra_init_parameters block_of(
    std::initializer_list<std::pair<const char*, const char*>> parameters) {
    kivra_init_parameters block;
    std::memset(&block, 0xA5, sizeof block);
    block.count = 0;
    for (const auto& [key, value] : parameters) {
        block.entries[block.count].key = key;
        block.entries[block.count].value = value;
        ++block.count;
    }
    return block;
}

TEST(schema, is_one_line_of_740_characters) {
    EXPECT_EQ(std::strlen(init_parameter_schema), 740U);
    EXPECT_EQ(init_parameter_schema,
              TESTING::read_file(TESTING::data_file("init_parameter_schema.json")));
}

TEST(schema, describes_the_two_parameters_and_allows_no_other) {
    const auto schema = nlohmann::json::parse(init_parameter_schema);
    const auto& parameters = schema["properties"]["init_parameters"];
    EXPECT_EQ(parameters["properties"].size(), 2U);
    EXPECT_TRUE(parameters["properties"].contains("tshark_directory"));
    EXPECT_TRUE(parameters["properties"].contains("file_path"));
    EXPECT_EQ(parameters["additionalProperties"], false);
}

TEST(init_parameters, are_empty_without_entries) {
    const init_values values = read_init_parameters(block_of({}));
    EXPECT_TRUE(values.tshark_directory.empty());
    EXPECT_TRUE(values.parameter_file.empty());
}

TEST(init_parameters, are_read_in_any_order) {
    const init_values values =
        read_init_parameters(block_of({{"file_path", "p.json"}, {"tshark_directory", "dir"}}));
    EXPECT_EQ(values.tshark_directory, "dir");
    EXPECT_EQ(values.parameter_file, "p.json");
}

TEST(init_parameters, skip_keys_that_differ) {
    const init_values values = read_init_parameters(block_of({{"TSHARK_DIRECTORY", "a"},
                                                              {"tshark_directory ", "b"},
                                                              {"tshark", "c"},
                                                              {"", "d"},
                                                              {"File_path", "e"},
                                                              {"file_paths", "f"}}));
    EXPECT_TRUE(values.tshark_directory.empty());
    EXPECT_TRUE(values.parameter_file.empty());
}

TEST(init_parameters, take_the_later_of_two_entries) {
    const init_values values = read_init_parameters(block_of({{"file_path", "first"},
                                                              {"tshark_directory", "a"},
                                                              {"file_path", "second"},
                                                              {"tshark_directory", ""}}));
    EXPECT_EQ(values.parameter_file, "second");
    EXPECT_TRUE(values.tshark_directory.empty());
}

TEST(init_parameters, take_the_later_of_two_words_on_the_session) {
    EXPECT_FALSE(
        read_init_parameters(block_of({{"tshark_session", "on"}, {"tshark_session", "off"}}))
            .tshark_session);
    EXPECT_TRUE(
        read_init_parameters(block_of({{"tshark_session", "off"}, {"tshark_session", "on"}}))
            .tshark_session);
}

TEST(init_parameters, skip_null_keys_and_null_values) {
    const init_values values =
        read_init_parameters(block_of({{"file_path", "kept"},
                                       {nullptr, "a"},
                                       {"file_path", nullptr},
                                       {"tshark_directory", "behind them"}}));
    EXPECT_EQ(values.parameter_file, "kept");
    EXPECT_EQ(values.tshark_directory, "behind them");
}

TEST(init_parameters, may_fill_all_20_entries) {
    kivra_init_parameters block = block_of({});
    for (auto& entry : block.entries) {
        entry.key = "other";
        entry.value = "value";
    }
    block.entries[19].key = "file_path";
    block.count = 20;
    EXPECT_EQ(read_init_parameters(block).parameter_file, "value");
}

TEST(init_parameters, do_not_read_entries_behind_the_count) {
    kivra_init_parameters block = block_of({{"file_path", "first"}, {"file_path", "second"}});
    block.count = 1;
    EXPECT_EQ(read_init_parameters(block).parameter_file, "first");
}

TEST(init_parameters, refuse_a_count_above_20) {
    kivra_init_parameters block = block_of({});
    block.count = 21;
    EXPECT_THAT([&block] { read_init_parameters(block); },
                ThrowsMessage<std::runtime_error>(
                    StrEq("parameter block claims 21 entries but has room for 20")));
    block.count = std::numeric_limits<std::uint64_t>::max();
    EXPECT_THROW(read_init_parameters(block), std::runtime_error);
}

}  // namespace
}  // namespace KIVRA::TSHARK::SINK
