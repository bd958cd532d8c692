// SPDX-License-Identifier: MIT
#pragma once
// Several threads on one sequence of pictures, or of other items. The result is that of one thread.
#include <cstddef>
#include <functional>
#include <vector>

namespace zelt::tool {

/// What is done with items, by the number of the slot that holds one
struct stages {
    std::function<bool(std::size_t slot)> take;  // by one thread at a time; false if there is no other item
    std::function<void(std::size_t slot)> work;  // by all at once
    std::function<void(std::size_t slot)> put;   // by one at a time, in the order in which items were taken
};
void run_in_order(std::size_t slots, const stages& todo);

/// Runs items through the stages, by a thread for each slot: as many items are in memory as there are slots. If a stage
/// throws, the items before are put, the threads end, and it throws the same; likewise if a signal is caught.
template <class Slot, class Take, class Work, class Put>
void run_in_order(std::vector<Slot>& slots, const Take& take, const Work& work, const Put& put) {
    run_in_order(slots.size(), {[&](std::size_t i) { return take(slots[i]); }, [&](std::size_t i) { work(slots[i]); },
                                [&](std::size_t i) { put(slots[i]); }});
}

int processors();  // that the process may use

}  // namespace zelt::tool
