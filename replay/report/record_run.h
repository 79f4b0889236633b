/// Records in a row that tell nothing new, as one line.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace KIVRA::TSHARK::REPLAY {

/// Its size does not grow with the number of records.
class record_run {
  public:
    /// @param name of the message
    void add(std::uint64_t number, const std::string& name);

    std::uint64_t size() const { return size_; }

    /// "5-40".
    std::string numbers() const;

    /// "23 x BCCH-DL-SCH, SystemInformationBlockType1; 13 x PCCH, Paging; 2 x others".
    std::string text() const;

  private:
    std::uint64_t first_ = 0;
    std::uint64_t last_ = 0;
    std::uint64_t size_ = 0;
    /// In the order in which they came up.
    std::vector<std::pair<std::string, std::uint64_t>> names_;
    std::uint64_t others_ = 0;
};

}  // namespace KIVRA::TSHARK::REPLAY
