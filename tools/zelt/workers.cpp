// SPDX-License-Identifier: MIT
#include "workers.h"

#include "interrupt.h"
#include "pictures/failure.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace zelt::tool {
namespace {

class crew {
public:
    explicit crew(const stages& todo) : todo_(todo) {}

    void run(std::size_t slots) {
        std::vector<std::jthread> all;
        try {
            for (std::size_t slot = 0; slot < slots; ++slot) all.emplace_back([this, slot] { serve(slot); });
        } catch (const std::system_error&) {  // fewer will do
            if (all.empty()) throw failure(status::unsupported, "no thread can be started");
        }
        watch(all);
        all.clear();
        if (error_) std::rethrow_exception(error_);
    }

private:
    void serve(std::size_t slot) {
        while (!stopped_ && serve_one(slot)) continue;
        const std::lock_guard lock(order_);
        ++gone_;
        over_.notify_one();
    }

    /// Whether there was an item, and all went well
    bool serve_one(std::size_t slot) {
        std::exception_ptr error;
        uint64_t turn;
        {
            const std::lock_guard lock(taking_);
            if (!std::exchange(more_, false)) return false;
            error = attempt([&] { more_ = todo_.take(slot); });
            if (!more_ && !error) return false;
            turn = taken_++;
        }
        if (!error && !stopped_) error = attempt([&] { todo_.work(slot); });
        std::unique_lock lock(order_);
        turn_.wait(lock, [&] { return put_ == turn || stopped_; });
        if (stopped_) return false;
        lock.unlock();  // nobody else has this turn
        if (!error) error = attempt([&] { todo_.put(slot); });
        lock.lock();
        ++put_;
        if (error) stop(error);
        turn_.notify_all();
        return !error;
    }

    template <class F> static std::exception_ptr attempt(const F& stage) {
        try {
            stage();
            return nullptr;
        } catch (...) {
            return std::current_exception();
        }
    }

    void stop(const std::exception_ptr& why) {
        if (!error_) error_ = why;
        stopped_ = true;
        turn_.notify_all();
    }

    /// Waits for the end. Threads that are to stop may wait for a pipe, or be about to, so they are woken until they
    /// have.
    void watch(std::vector<std::jthread>& all) {
        std::unique_lock lock(order_);
        const auto all_gone = [&] { return gone_ == all.size(); };
        while (!over_.wait_for(lock, std::chrono::milliseconds(20), all_gone)) {
            if (caught_signal()) stop(std::make_exception_ptr(failure(status::output_failed, "interrupted")));
            if (stopped_)
                for (std::jthread& one : all) wake(one.native_handle());
        }
    }

    const stages& todo_;
    std::mutex taking_;  // of the next two
    bool more_ = true;
    uint64_t taken_ = 0;
    std::mutex order_;  // of the next ones
    std::condition_variable turn_, over_;
    uint64_t put_ = 0;
    std::size_t gone_ = 0;
    std::exception_ptr error_;
    std::atomic<bool> stopped_ = false;
};

}  // namespace

void run_in_order(std::size_t slots, const stages& todo) { crew(todo).run(slots); }

int processors() { return std::max(1, static_cast<int>(std::thread::hardware_concurrency())); }

}  // namespace zelt::tool
