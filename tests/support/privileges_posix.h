/// A while without the rights of root, which the system's refusals do not stop.
#pragma once

#include <unistd.h>

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::TESTING {

/// Makes the process an ordinary user's, if it is root's, and root's again.
class ordinary_user {
  public:
    ordinary_user() : was_root_(::geteuid() == 0) {
        if (was_root_) {
            EXPECT_EQ(::setresuid(nobody, nobody, 0), 0);
        }
    }
    ~ordinary_user() {
        if (was_root_) {
            EXPECT_EQ(::setresuid(0, 0, 0), 0);
        }
    }
    ordinary_user(const ordinary_user&) = delete;
    ordinary_user& operator=(const ordinary_user&) = delete;

  private:
    static constexpr uid_t nobody = 65534;

    bool was_root_;
};

}  // namespace KIVRA::TSHARK::TESTING
