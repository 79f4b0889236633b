#include "replay/fleet/fleet_run.h"

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace KIVRA::TSHARK::REPLAY {

namespace {

class fleet {
  public:
    explicit fleet(const fleet_work& work) : work_(work) {}
    ~fleet() {
        give_up();
        for (auto& thread : threads_) {
            thread.join();
        }
    }
    fleet(const fleet&) = delete;
    fleet& operator=(const fleet&) = delete;

    std::exception_ptr run() {
        const auto jobs = std::min(work_.jobs, work_.captures);
        running_ = jobs;
        for (std::size_t job = 0; job < jobs; ++job) {
            threads_.emplace_back([this, job] { work_through(job); });
        }
        std::unique_lock lock(mutex_);
        while (running_ != 0 || !news_.empty()) {
            changed_.wait(lock, [this] { return running_ == 0 || !news_.empty(); });
            auto news = std::exchange(news_, {});
            lock.unlock();
            for (auto& [capture, row] : news) {
                work_.ended(capture);
                waiting_.emplace(capture, std::move(row));
            }
            take_in_order();
            lock.lock();
        }
        lock.unlock();
        for (const auto& [capture, row] : waiting_) {
            work_.take(capture, row);
        }
        return failure_;
    }

  private:
    void give_up() {
        const std::scoped_lock lock(mutex_);
        next_ = work_.captures;
    }

    std::optional<std::size_t> next_capture() {
        const std::scoped_lock lock(mutex_);
        return next_ < work_.captures ? std::optional(next_++) : std::nullopt;
    }

    std::optional<fleet_row> row_of(std::size_t capture, std::size_t job) {
        try {
            return work_.run(capture, job);
        } catch (...) {
            const std::scoped_lock lock(mutex_);
            failure_ = failure_ ? failure_ : std::current_exception();
            return std::nullopt;
        }
    }

    void work_through(std::size_t job) {
        while (const auto capture = next_capture()) {
            auto row = row_of(*capture, job);
            if (!row) {
                give_up();
                break;
            }
            const std::scoped_lock lock(mutex_);
            news_.emplace_back(*capture, std::move(*row));
            changed_.notify_one();
        }
        const std::scoped_lock lock(mutex_);
        --running_;
        changed_.notify_one();
    }

    void take_in_order() {
        for (auto first = waiting_.find(taken_); first != waiting_.end();
             first = waiting_.find(taken_)) {
            work_.take(taken_, first->second);
            waiting_.erase(first);
            ++taken_;
        }
    }

    const fleet_work& work_;
    std::mutex mutex_;
    std::condition_variable changed_;
    // Of these the mutex takes care.
    std::size_t next_ = 0;
    std::size_t running_ = 0;
    std::vector<std::pair<std::size_t, fleet_row>> news_;
    std::exception_ptr failure_;
    // The others belong to the thread that waits.
    std::map<std::size_t, fleet_row> waiting_;
    std::size_t taken_ = 0;
    std::vector<std::thread> threads_;
};

}  // namespace

std::exception_ptr run_fleet(const fleet_work& work) {
    return fleet(work).run();
}

}  // namespace KIVRA::TSHARK::REPLAY
