/// Limits of the process, lowered for a while.
#pragma once

#include <sys/resource.h>

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::TESTING {

/// Keeps a resource's soft limit at a value, and puts the former one back.
class limit_guard {
  public:
    limit_guard(__rlimit_resource resource, rlim_t value) : resource_(resource) {
        EXPECT_EQ(::getrlimit(resource_, &former_), 0);
        const rlimit changed{value, former_.rlim_max};
        EXPECT_EQ(::setrlimit(resource_, &changed), 0);
    }
    ~limit_guard() { EXPECT_EQ(::setrlimit(resource_, &former_), 0); }
    limit_guard(const limit_guard&) = delete;
    limit_guard& operator=(const limit_guard&) = delete;

  private:
    __rlimit_resource resource_;
    rlimit former_{};
};

}  // namespace KIVRA::TSHARK::TESTING
