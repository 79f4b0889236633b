#include "replay/fleet/capture_queue.h"

#include <utility>

namespace KIVRA::TSHARK::REPLAY {

capture_queue::capture_queue(std::size_t jobs, work run) : run_(std::move(run)) {
    for (std::size_t job = 0; job < jobs; ++job) {
        threads_.emplace_back([this, job] { work_through(job); });
    }
}

capture_queue::~capture_queue() {
    join();
}

void capture_queue::add(std::filesystem::path capture) {
    const std::scoped_lock lock(mutex_);
    waiting_.push_back(std::move(capture));
    changed_.notify_one();
}

bool capture_queue::has_ended() const {
    const std::scoped_lock lock(mutex_);
    return has_ended_;
}

void capture_queue::end() {
    join();
    if (failure_) {
        std::rethrow_exception(failure_);
    }
}

void capture_queue::join() {
    {
        const std::scoped_lock lock(mutex_);
        has_ended_ = true;
        changed_.notify_all();
    }
    for (auto& thread : threads_) {
        thread.join();
    }
    threads_.clear();
}

void capture_queue::work_through(std::size_t job) {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return has_ended_ || !waiting_.empty(); });
        if (has_ended_) {
            return;
        }
        const auto capture = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        std::exception_ptr failure;
        try {
            run_(capture, job);
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        if (failure) {
            has_ended_ = true;
            failure_ = failure_ ? failure_ : failure;
            changed_.notify_all();
        }
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
