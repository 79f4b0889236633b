/// What a run found in all. Its size does not grow with the number of records.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "replay/record/outcome.h"
#include "replay/record/record.h"
#include "replay/report/record_details.h"
#include "replay/trace/trace.h"

namespace KIVRA::TSHARK::REPLAY {

/// What things are called together that have no entry of their own.
inline constexpr const char* others = "others";

/// Things by their names, in the order in which they came up. Past a hundred names, the rest is one
/// thing by the name of "others".
template <typename Thing>
class named_things {
  public:
    Thing& operator[](const std::string& name) {
        constexpr std::size_t most_names = 100;
        for (auto& [known, thing] : things_) {
            if (known == name) {
                return thing;
            }
        }
        if (things_.size() == most_names) {
            things_.emplace_back(others, Thing{});
        }
        if (things_.size() > most_names) {
            return things_.back().second;
        }
        return things_.emplace_back(name, Thing{}).second;
    }

    bool empty() const { return things_.empty(); }
    auto begin() const { return things_.begin(); }
    auto end() const { return things_.end(); }

  private:
    std::vector<std::pair<std::string, Thing>> things_;
};

struct tally {
    std::uint64_t records = 0;
    std::uint64_t with_result = 0;
    std::uint64_t failed = 0;
};

struct value_change {
    std::uint64_t record = 0;
    std::string value;
};

/// The first values of a name, and the last.
struct value_history {
    std::uint64_t changes = 0;
    std::vector<value_change> first;
    value_change last;
};

/// A failure or a log message.
struct diagnostic {
    std::uint64_t count = 0;
    std::uint64_t first_record = 0;
    /// What it means; empty where nobody knows.
    std::string_view help;
};

/// Records with something in common.
struct sighting {
    std::uint64_t count = 0;
    std::uint64_t first_record = 0;
};

struct run_totals {
    tally all = {};
    named_things<tally> formats = {};
    named_things<std::uint64_t> messages = {};
    sighting malformed = {};
    sighting ciphered = {};
    named_things<value_history> values = {};
    named_things<diagnostic> diagnostics = {};
    trace told = {};

    /// @param details of the record
    void add(std::uint64_t number, const trace_record& record, const outcome& result,
             const std::vector<detail_value>& details);
};

/// How many changes of a value are kept, but for the last.
inline constexpr std::size_t kept_changes = 5;

}  // namespace KIVRA::TSHARK::REPLAY
