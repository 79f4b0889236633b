// The columns of the table and what people call them.

/**
 * A group's name, whether it is shown at first, and its columns: the name in the table for programs, a title,
 * and the width in rem.
 */
const GROUPS = [
  ["capture", true, [["capture", "capture", 20], ["status", "status", 15]]],
  ["network", true, [["mcc_mnc", "network", 7], ["operator", "operator", 13]]],
  ["PSM", true, [
    ["psm", "PSM", 9], ["t3324_requested_s", "T3324 requested (s)", 7],
    ["t3324_granted_s", "T3324 granted (s)", 7],
    ["t3412_extended_requested_s", "T3412 ext. requested (s)", 7.5],
    ["t3412_extended_granted_s", "T3412 ext. granted (s)", 7.5],
    ["t3412_granted_s", "T3412 granted (s)", 7],
  ]],
  ["eDRX", true, [
    ["edrx_requested_s", "eDRX cycle requested (s)", 7.5], ["edrx_granted_s", "eDRX cycle granted (s)", 7.5],
    ["paging_time_window_requested_s", "paging time window requested (s)", 8.5],
    ["paging_time_window_granted_s", "paging time window granted (s)", 8.5],
  ]],
  ["time", false, [["begin", "begin", 14.5], ["end", "end", 14.5], ["duration_s", "duration (s)", 8]]],
  ["records", false, [
    ["records", "records", 6], ["failed_records", "failed records", 6], ["malformed", "malformed", 7],
    ["error", "error", 24],
  ]],
  ["cell", false, [
    ["tracking_area", "tracking area", 6], ["cell_identity", "cell identity", 7],
    ["paging_cycle_s", "paging cycle (s)", 6], ["paging_repetitions", "paging repetitions", 7],
    ["paging", "paging messages", 7],
  ]],
  ["connected-mode DRX", false, [
    ["drx_long_cycle_ms", "long cycle (ms)", 6],
    ["drx_on_duration_subframes", "on-duration (subframes)", 7.5],
    ["drx_on_duration_periods", "on-duration (periods)", 7.5],
    ["drx_inactivity_subframes", "inactivity (subframes)", 7.5],
    ["drx_inactivity_periods", "inactivity (periods)", 7.5],
  ]],
  ["PDN and causes", false, [
    ["apn", "APN", 17], ["pdn_type", "PDN type", 6], ["emm_cause", "EMM cause", 12],
    ["esm_cause", "ESM cause", 12],
  ]],
  ["connections", false, [
    ["connections", "connections", 7.5], ["connected_median_s", "connected, median (s)", 7.5],
    ["silence_before_release_median_s", "silence before release, median (s)", 8.5],
    ["idle_median_s", "idle, median (s)", 7], ["time_connected_percent", "time connected (%)", 8],
    ["area_updates", "area updates", 6],
  ]],
  ["files", false, [["profile_written", "profile written", 6], ["page", "page", 18]]],
];

/** What paper has room for. */
const PRINTED = ["capture", "status", "mcc_mnc", "psm", "t3324_granted_s", "t3412_extended_granted_s",
  "edrx_granted_s", "silence_before_release_median_s"];
