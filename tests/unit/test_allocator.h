// SPDX-License-Identifier: MIT
#pragma once  // an allocator pair for the records under test: guarded blocks, and failures on demand
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <memory>

/// State of the pair, of which one test at a time makes use. Blocks hold `fill` at first and lie between two guards.
/// Every block has an auxiliary word of its own, which has to come back with it.
class test_allocator {
public:
    static constexpr std::uint8_t fill = 0xa5;

    test_allocator() { current = this; }
    ~test_allocator() {
        EXPECT_EQ(blocks.size(), 0u) << "blocks that nobody freed";
        current = nullptr;
    }
    test_allocator(const test_allocator&) = delete;

    int failing = 0;  ///< the call (from 1) that gives null
    int calls = 0;
    std::uint32_t largest = 1 << 20;  ///< anything larger is refused
    std::uint32_t next_aux = 0x1000;
    std::uint32_t last_size = 0;

    /// Whether the guards of all blocks are as they were.
    bool intact() const {
        for (const auto& [start, b] : blocks)
            for (std::size_t i = 0; i < guard; ++i)
                if (b.memory[i] != fill || b.memory[guard + b.size + i] != fill) return false;
        return true;
    }

    static void* alloc(std::uint32_t size, std::uint32_t* aux) {
        test_allocator& self = *current;
        EXPECT_EQ(*aux, 0u) << "the word is 0 on entry";
        self.last_size = size;
        if (++self.calls == self.failing || size > self.largest) return nullptr;
        block b{std::make_unique<std::uint8_t[]>(size + 2 * guard), size, self.next_aux};
        std::memset(b.memory.get(), fill, size + 2 * guard);
        *aux = self.next_aux;
        self.next_aux += 0x100000;
        std::uint8_t* start = b.memory.get() + guard;
        self.blocks.emplace(start, std::move(b));
        return start;
    }

    static void free(void* start, std::uint32_t aux) {
        const auto it = current->blocks.find(start);
        ASSERT_NE(it, current->blocks.end()) << "a block that is not one";
        EXPECT_EQ(it->second.aux, aux);
        EXPECT_TRUE(current->intact());
        current->blocks.erase(it);
    }

private:
    static constexpr std::size_t guard = 4096;
    struct block {
        std::unique_ptr<std::uint8_t[]> memory;
        std::size_t size;
        std::uint32_t aux;
    };
    std::map<void*, block> blocks;
    inline static test_allocator* current = nullptr;
};
