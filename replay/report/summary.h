/// What a run found in all. Its size does not grow with the number of records.
#pragma once

#include <cstdint>
#include <deque>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "replay/record/capture_content.h"
#include "replay/record/outcome.h"
#include "replay/record/record.h"
#include "replay/report/profile_file.h"
#include "replay/report/profile_sources.h"
#include "replay/report/record_details.h"

namespace KIVRA::TSHARK::REPLAY {

/// What things are called together that have no entry of their own.
constexpr const char* others = "others";

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

class summary {
  public:
    /// @param details of the record
    void add(std::uint64_t number, const trace_record& record, const outcome& result,
             const std::vector<detail_value>& details);

    /// @param captures what was read
    /// @throws std::runtime_error when the profile was written but can't be read
    void print(std::ostream& out, const profile_file& profile,
               const capture_content& captures) const;

  private:
    struct tally {
        std::uint64_t records = 0;
        std::uint64_t with_result = 0;
        std::uint64_t failed = 0;
    };
    struct value_change {
        std::uint64_t record = 0;
        std::string value;
    };
    struct value_history {
        std::uint64_t changes = 0;
        std::vector<value_change> first;
        value_change last;
    };
    struct diagnostic {
        std::uint64_t count = 0;
        std::uint64_t first_record = 0;
        std::string_view help;
    };

    /// Records with something in common.
    struct sighting {
        std::uint64_t count = 0;
        std::uint64_t first_record = 0;

        void add(std::uint64_t number);
    };

    static void count(tally& counts, const outcome& result);
    void add_value(std::uint64_t number, const detail_value& value);
    void add_diagnostic(std::uint64_t number, const std::string& text, std::string_view help);

    void print_formats(std::ostream& out) const;
    void print_messages(std::ostream& out) const;
    void print_unreadable(std::ostream& out, const capture_content& captures) const;
    std::string reason_for_no_profile() const;
    void print_values(std::ostream& out) const;
    void print_diagnostics(std::ostream& out) const;
    void print_profile(std::ostream& out, const profile_file& profile) const;
    void print_members(std::ostream& out, const profile_content& content) const;

    tally all_;
    named_things<tally> formats_;
    named_things<std::uint64_t> messages_;
    sighting malformed_;
    sighting ciphered_;
    named_things<value_history> values_;
    named_things<diagnostic> diagnostics_;
    profile_sources sources_;
};

}  // namespace KIVRA::TSHARK::REPLAY
