/// What a run found, altogether. Its size does not grow with the number of records.
#pragma once

#include <cstdint>
#include <deque>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

#include "replay/learnt.h"
#include "replay/profile_file.h"
#include "replay/profile_sources.h"
#include "replay/record_runner.h"

namespace KIVRA::TSHARK::REPLAY {

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
            things_.emplace_back("others", Thing{});
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
    /// @param said what the record's result document says
    void note(std::uint64_t number, const record& packet, const outcome& result,
              const learnt& said);

    std::uint64_t records() const { return all_.records; }
    std::uint64_t failed() const { return all_.failed; }

    /// @throws std::runtime_error when the profile was written but can't be read
    void print(std::ostream& out, const profile_file& profile) const;

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
    struct complaint {
        std::uint64_t count = 0;
        std::uint64_t first_record = 0;
    };

    static void add(tally& counts, const outcome& result);
    void note_value(std::uint64_t number, const learnt_value& learnt);
    void note_complaint(std::uint64_t number, const std::string& text);

    void print_formats(std::ostream& out) const;
    void print_messages(std::ostream& out) const;
    void print_values(std::ostream& out) const;
    void print_complaints(std::ostream& out) const;
    void print_profile(std::ostream& out, const profile_file& profile) const;
    void print_members(std::ostream& out, const profile_content& content) const;

    tally all_;
    named_things<tally> formats_;
    named_things<std::uint64_t> messages_;
    named_things<value_history> values_;
    named_things<complaint> complaints_;
    profile_sources sources_;
};

}  // namespace KIVRA::TSHARK::REPLAY
