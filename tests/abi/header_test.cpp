#include <cstddef>
#include <type_traits>

#include <gtest/gtest.h>
#include <kivra/tshark_sink.h>

extern "C" int kivra_header_compiles_as_c11();

namespace {

TEST(header, compiles_as_c11) {
    EXPECT_EQ(kivra_header_compiles_as_c11(), 1);
}

TEST(header, gives_the_error_record_its_layout) {
    EXPECT_EQ(sizeof(kivra_error), 16U);
    EXPECT_EQ(offsetof(kivra_error, message), 0U);
    EXPECT_EQ(offsetof(kivra_error, code), 8U);
    EXPECT_EQ(sizeof(kivra_error::code), 4U);
}

TEST(header, gives_the_version_record_its_layout) {
    EXPECT_EQ(sizeof(kivra_version_info), 488U);
    EXPECT_EQ(offsetof(kivra_version_info, description), 0U);
    EXPECT_EQ(offsetof(kivra_version_info, major), 16U);
    EXPECT_EQ(offsetof(kivra_version_info, minor), 20U);
    EXPECT_EQ(offsetof(kivra_version_info, patch), 24U);
    EXPECT_EQ(offsetof(kivra_version_info, flag), 480U);
}

TEST(header, gives_the_trace_chunk_its_layout) {
    EXPECT_EQ(sizeof(kivra_trace_chunk), 64U);
    EXPECT_EQ(offsetof(kivra_trace_chunk, data), 0U);
    EXPECT_EQ(offsetof(kivra_trace_chunk, size), 8U);
    EXPECT_EQ(sizeof(kivra_trace_chunk::size), 4U);
    EXPECT_EQ(offsetof(kivra_trace_chunk, format), 16U);
    EXPECT_EQ(offsetof(kivra_trace_chunk, timestamp), 40U);
    EXPECT_EQ(sizeof(kivra_trace_chunk::timestamp), 8U);
}

TEST(header, gives_the_annotated_chunk_its_layout) {
    EXPECT_EQ(sizeof(kivra_annotated_chunk), 72U);
    EXPECT_EQ(offsetof(kivra_annotated_chunk, chunk), 0U);
    EXPECT_EQ(offsetof(kivra_annotated_chunk, text), 64U);
}

TEST(header, gives_the_parameter_block_its_layout) {
    EXPECT_EQ(sizeof(kivra_init_parameter), 176U);
    EXPECT_EQ(offsetof(kivra_init_parameter, key), 0U);
    EXPECT_EQ(offsetof(kivra_init_parameter, value), 8U);
    EXPECT_EQ(sizeof(kivra_init_parameters), 3560U);
    EXPECT_EQ(offsetof(kivra_init_parameters, entries), 0U);
    EXPECT_EQ(offsetof(kivra_init_parameters, count), 3520U);
    EXPECT_EQ(sizeof(kivra_init_parameters::count), 8U);
    EXPECT_EQ(offsetof(kivra_init_parameters, log_user_data), 3528U);
    EXPECT_EQ(offsetof(kivra_init_parameters, log_callback), 3536U);
    EXPECT_EQ(offsetof(kivra_init_parameters, error_user_data), 3544U);
    EXPECT_EQ(offsetof(kivra_init_parameters, error_callback), 3552U);
}

TEST(header, has_a_type_for_each_function) {
    EXPECT_TRUE((std::is_same_v<decltype(kivra_sink_version), kivra_sink_version_function>));
    EXPECT_TRUE((
        std::is_same_v<decltype(kivra_sink_init_parameters), kivra_sink_init_parameters_function>));
    EXPECT_TRUE((std::is_same_v<decltype(kivra_sink_init), kivra_sink_init_function>));
    EXPECT_TRUE((std::is_same_v<decltype(kivra_sink_data), kivra_sink_data_function>));
    EXPECT_TRUE(
        (std::is_same_v<decltype(kivra_sink_get_last_error), kivra_sink_get_last_error_function>));
    EXPECT_TRUE((std::is_same_v<decltype(kivra_sink_complete), kivra_sink_complete_function>));
    EXPECT_TRUE((std::is_same_v<decltype(kivra_sink_cancel), kivra_sink_cancel_function>));
    EXPECT_TRUE((std::is_same_v<decltype(kivra_sink_release), kivra_sink_release_function>));
}

TEST(header, has_records_of_plain_memory) {
    EXPECT_TRUE(std::is_trivial_v<kivra_trace_chunk>);
    EXPECT_TRUE(std::is_standard_layout_v<kivra_annotated_chunk>);
    EXPECT_TRUE(std::is_trivial_v<kivra_init_parameters>);
}

}  // namespace
