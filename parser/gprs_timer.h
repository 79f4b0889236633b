/// The timers that govern a modem's power saving, each one octet: three bits that name a unit, then
/// five bits of value.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::PARSER {

struct gprs_timer_unit {
    /// Bits 8 to 6 of the octet, most significant first.
    std::string_view bits;
    std::uint8_t multiplier;
    std::string_view word;
};

using gprs_timer_unit_table = std::span<const gprs_timer_unit>;

/// 3GPP TS 24.008, 10.5.7.3 (GPRS timer) and 10.5.7.4 (GPRS timer 2). A decihour is stored as its
/// 6 minutes.
inline constexpr std::array<gprs_timer_unit, 4> gprs_timer_units{{
    {"000", 2, "seconds"},
    {"001", 1, "minutes"},
    {"010", 6, "decihours"},
    {"111", 1, "deactivated"},
}};

/// 3GPP TS 24.008, 10.5.7.4a (GPRS timer 3), but for "110": the multiplier is 8 bits wide, so the
/// 320 hours of that unit count as 64.
inline constexpr std::array<gprs_timer_unit, 8> gprs_timer_3_units{{
    {"000", 10, "minutes"},
    {"001", 1, "hour"},
    {"010", 10, "hours"},
    {"011", 2, "seconds"},
    {"100", 30, "seconds"},
    {"101", 1, "minute"},
    {"110", 64, "hours"},
    {"111", 1, "deactivated"},
}};

/// Where tshark shows a timer, and where it goes.
struct gprs_timer {
    gprs_timer_unit_table units;
    /// The label of the information element, which alone tells timers of one kind apart.
    std::string_view element;
    /// The member of the result's "nas-eps".
    std::string_view member;
    std::string_view tree_field;
    std::string_view unit_field;
    std::string_view value_field;
};

/// 3GPP TS 24.301, 8.2.1 (attach accept) and 8.2.26 (tracking area update accept), in the order in
/// which they are decoded.
inline constexpr std::array<gprs_timer, 4> gprs_timers{{
    {gprs_timer_units, "GPRS Timer 2 - T3324 value", "gprs_timer_2_T3324_value",
     "gsm_a.gm.gmm.gprs_timer2_tree", "gsm_a.gm.gmm.gprs_timer2_unit",
     "gsm_a.gm.gmm.gprs_timer2_value"},
    {gprs_timer_3_units, "GPRS Timer 3 - T3412 extended value", "gprs_timer_3_T3412_extended_value",
     "gsm_a.gm.gmm.gprs_timer3_tree", "gsm_a.gm.gmm.gprs_timer3_unit",
     "gsm_a.gm.gmm.gprs_timer3_value"},
    {gprs_timer_units, "GPRS Timer - T3412 value", "gprs_timer_T3412_value",
     "gsm_a.gm.gmm.gprs_timer_tree", "gsm_a.gm.gmm.gprs_timer_unit",
     "gsm_a.gm.gmm.gprs_timer_value"},
    {gprs_timer_units, "GPRS Timer - T3402 value", "gprs_timer_T3402_extended_value",
     "gsm_a.gm.gmm.gprs_timer_tree", "gsm_a.gm.gmm.gprs_timer_unit",
     "gsm_a.gm.gmm.gprs_timer_value"},
}};

/// Finds the timer in the packet's NAS EPS layer and stores under its member of the result's
/// "nas-eps", each replaced on its own:
///
/// - "value": the value times the unit's multiplier, modulo 2^32;
/// - "unit": the unit's word; these two only where the table has the unit;
/// - "bitmask": the octet as eight binary digits.
///
/// A packet without the timer changes nothing.
/// @throws nlohmann::json::type_error 302 for a unit or a value that is not a text, 305 when the
///     result holds no object where one is to be written into
/// @throws std::invalid_argument "invalid stoul argument", std::out_of_range "stoul argument out of
///     range", both before anything is written
void decode_gprs_timer(const nlohmann::json& packet, nlohmann::json& result,
                       const gprs_timer& timer);

}  // namespace KIVRA::TSHARK::PARSER
