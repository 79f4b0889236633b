/// The rows of the tables of settings: from a field of tshark to a name, a unit and values.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// The part of a message in which a row counts; a row's are or-ed.
using places = std::uint16_t;

inline constexpr places in_mib = 1U << 0U;
inline constexpr places in_sib1 = 1U << 1U;
inline constexpr places in_further_bands = 1U << 2U;
inline constexpr places in_sib2 = 1U << 3U;
inline constexpr places in_ce_thresholds = 1U << 4U;
/// RRC connection setup, reconfiguration, resume and reestablishment.
inline constexpr places in_connection = 1U << 5U;
inline constexpr places in_release = 1U << 6U;
inline constexpr places in_reject = 1U << 7U;
inline constexpr places in_nas_request = 1U << 8U;
inline constexpr places in_nas_answer = 1U << 9U;
/// The wake-up signal of groups of modems.
inline constexpr places in_group_wus = 1U << 10U;
inline constexpr places in_nas = in_nas_request | in_nas_answer;

/// What makes a value of the field.
enum class reading : std::uint8_t {
    /// The field's number counts the values of the row, from 0; an empty one is reserved.
    indexed,
    /// A number between `least` and `greatest`; `offset` is added to it.
    number,
    /// The same, and the name ends in the number of the CE level that the list's item stands for.
    ce_level_number,
    /// The first `greatest` bits of octets such as "4e:21", as a number.
    bits,
    /// That the field is there: the only value.
    presence,
    /// The field's text.
    text,
    /// An object with a unit and a value; see gprs_timers.h.
    gprs_timer,
    gprs_timer_2,
    gprs_timer_3,
    /// See edrx.h.
    edrx,
    /// See apn_ambr.h.
    apn_ambr,
    extended_apn_ambr,
    /// The country code of an operator, its network code beside it; see operator_names.h.
    operator_code,
    /// An object with the digits of both codes.
    plmn_identity,
    /// A cause and its name.
    emm_cause,
    esm_cause,
};

struct table_row {
    /// The member in tshark's output, without "lte-rrc.", "nas_eps." or "nas-eps.". A choice of
    /// setup and release is CHOICE, the value within its setup "CHOICE.setup".
    std::string_view field;
    places where;
    std::string_view name;
    std::string_view unit;
    std::string_view clause;
    reading how;
    std::span<const std::string_view> values = {};
    std::int32_t least = 0;
    std::int32_t greatest = 0;
    std::int32_t offset = 0;
    /// A setting of a higher rank replaces those with its name.
    std::uint8_t rank = 0;
};

/// "yes", for fields whose only value is true.
inline constexpr auto only_yes = std::to_array<std::string_view>({"yes"});
inline constexpr auto no_or_yes = std::to_array<std::string_view>({"no", "yes"});

}  // namespace KIVRA::TSHARK::REPLAY
