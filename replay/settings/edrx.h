/// Extended DRX in idle mode: 3GPP TS 24.008, 10.5.5.32.
#pragma once

#include <array>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// The eDRX value's E-UTRAN cycle, and the paging time window, in s.
struct edrx_tables {
    std::array<std::string_view, 16> cycles;
    std::array<std::string_view, 16> windows;
};

/// WB-S1 mode. The last two cycles are for NB-S1 mode and count as 1101 (note 6).
inline constexpr edrx_tables wb_s1_edrx{
    {"5.12", "10.24", "20.48", "40.96", "61.44", "81.92", "102.4", "122.88", "143.36", "163.84",
     "327.68", "655.36", "1310.72", "2621.44", "2621.44", "2621.44"},
    {"1.28", "2.56", "3.84", "5.12", "6.4", "7.68", "8.96", "10.24", "11.52", "12.8", "14.08",
     "15.36", "16.64", "17.92", "19.2", "20.48"}};

/// NB-S1 mode. The first two cycles are for WB-S1 mode and count as no eDRX (note 4); so are 0100
/// and 0110 to 1000, which count as 0010 (note 5).
inline constexpr edrx_tables nb_s1_edrx{
    {"none", "none", "20.48", "40.96", "20.48", "81.92", "20.48", "20.48", "20.48", "163.84",
     "327.68", "655.36", "1310.72", "2621.44", "5242.88", "10485.76"},
    {"2.56", "5.12", "7.68", "10.24", "12.8", "15.36", "17.92", "20.48", "23.04", "25.6", "28.16",
     "30.72", "33.28", "35.84", "38.4", "40.96"}};

}  // namespace KIVRA::TSHARK::REPLAY
