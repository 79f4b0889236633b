/// A process of its own for what a test can't undo.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::TESTING {

/// Runs a body in a forked process; what fails there fails the test.
inline void in_child(const std::function<void()>& body) {
    static_cast<void>(std::fflush(nullptr));
    const pid_t child = ::fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        body();
        static_cast<void>(std::fflush(nullptr));
        ::_exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace KIVRA::TSHARK::TESTING
