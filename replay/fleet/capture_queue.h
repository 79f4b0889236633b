/// Captures that are run as they come, some at a time.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <filesystem>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace KIVRA::TSHARK::REPLAY {

class capture_queue {
  public:
    /// Runs one, in any of the threads.
    /// @param job the number of the thread, from 0
    using work = std::function<void(const std::filesystem::path& capture, std::size_t job)>;

    /// @param jobs how many threads there are, at least 1
    /// @param run when it throws, nothing more is begun
    capture_queue(std::size_t jobs, work run);
    /// As `end`, without what was thrown.
    ~capture_queue();
    capture_queue(const capture_queue&) = delete;
    capture_queue& operator=(const capture_queue&) = delete;

    /// Runs it as soon as a thread has nothing else to do; those that come first are run first.
    void add(std::filesystem::path capture);

    /// Whether nothing more is begun, since a run has thrown or the end was asked for.
    bool has_ended() const;

    /// Begins nothing more and waits for what has begun.
    /// @throws what the first run threw that did
    void end();

  private:
    void work_through(std::size_t job);
    void join();

    const work run_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    // Of these the mutex takes care.
    std::deque<std::filesystem::path> waiting_;
    bool has_ended_ = false;
    std::exception_ptr failure_;
    std::vector<std::thread> threads_;
};

}  // namespace KIVRA::TSHARK::REPLAY
