#include "unit/malloc_probe.h"
#include "unit/test_allocator.h"
#include "zelt/zelt.h"

#include <atomic>
#include <climits>
#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

// One of each record, made with the default allocators.
ZELT_AUDB* make(ZELT_AUDB*, int32_t* err) { return zelt_audb_create(64, 2, 16, 48000, 0, 0, nullptr, nullptr, err); }
ZELT_BITB* make(ZELT_BITB*, int32_t* err) { return zelt_bitb_create(100, 7, 0, nullptr, nullptr, err); }
ZELT_MFAL* make(ZELT_MFAL*, int32_t* err) { return zelt_mfal_create(99, err); }
ZELT_IMGB* make(ZELT_IMGB*, int32_t* err) {
    return zelt_imgb_create(8, 4, ZELT_CS_YUV420, 3, nullptr, nullptr, nullptr, nullptr, err);
}

template <class R> struct records : testing::Test {
    static R* make_one(int32_t* err = nullptr) { return make(static_cast<R*>(nullptr), err); }
};
using all_records = testing::Types<ZELT_AUDB, ZELT_BITB, ZELT_MFAL, ZELT_IMGB>;
TYPED_TEST_SUITE(records, all_records, );

TYPED_TEST(records, counts_references) {
    int32_t err = 1;
    TypeParam* r = this->make_one(&err);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(err, ZELT_OK);
    EXPECT_EQ(r->refcnt, 1);
    EXPECT_EQ(r->addref(r), 2);
    EXPECT_EQ(r->getref(r), 2);
    EXPECT_EQ(r->release(r), 1);
    for (const auto f : {r->addref, r->getref, r->release}) EXPECT_EQ(f(nullptr), ZELT_ERR_INVALID_ARG);
    for (const uint32_t word : r->user) EXPECT_EQ(word, 0u);
    r->refcnt = -3;  // a count below zero is given back as it is
    EXPECT_EQ(r->release(r), -4);
    r->refcnt = INT_MIN;
    EXPECT_EQ(r->release(r), INT_MAX);
    r->refcnt = 1;
    EXPECT_EQ(r->release(r), 0);
}

// Under the thread checker: what each holder did happens before the free, whoever comes last.
TYPED_TEST(records, is_shared_by_threads) {
    TypeParam* r = this->make_one();
    std::vector<std::thread> threads;
    std::atomic<int> frees = 0;
    for (int t = 0; t < 4; ++t) {
        r->addref(r);
        threads.emplace_back([r, t, &frees] {
            for (int i = 0; i < 2000; ++i) {
                r->addref(r);
                r->release(r);
            }
            r->user[t] = 1;  // seen by whichever thread frees the record
            frees += r->release(r) == 0;
        });
    }
    frees += r->release(r) == 0;
    for (std::thread& t : threads) t.join();
    EXPECT_EQ(frees, 1);
}

// Everything that takes memory, with every allocation failing in turn.
TEST(allocation_failures, give_null_and_leave_nothing_behind) {
    if (!malloc_probe::works) GTEST_SKIP() << "malloc is the sanitizer's";
    struct maker {
        const char* name;
        std::vector<int32_t> errors;  // of each call that fails
        std::function<bool(int32_t*)> make_and_drop;
    };
    const auto record = [](auto create) {
        return [=](int32_t* err) {
            auto* r = create(err);
            return r && (r->release(r), true);
        };
    };
    const auto container = [](auto create, auto drop) {
        return [=](int32_t* err) {
            auto* object = create();
            *err = object ? ZELT_OK : -1;
            return object && (drop(object), true);
        };
    };
    const int32_t memory = ZELT_ERR_OUT_OF_MEMORY, buffer = ZELT_ERR_BUFFER_ALLOC, bits = ZELT_ERR_BITB_ALLOC;
    const maker makers[] = {
        {"planar", {memory, buffer, buffer}, record([](int32_t* err) {
             return make(static_cast<ZELT_AUDB*>(nullptr), err);
         })},
        {"interleaved", {memory, buffer}, record([](int32_t* err) {
             return zelt_audb_create(9, 3, 8, 0, 1, 0, nullptr, nullptr, err);
         })},
        {"bitstream", {memory, bits}, record([](int32_t* err) { return make(static_cast<ZELT_BITB*>(nullptr), err); })},
        {"frame allocator", {memory}, record([](int32_t* err) { return make(static_cast<ZELT_MFAL*>(nullptr), err); })},
        {"picture", {memory, buffer}, record([](int32_t* err) { return make(static_cast<ZELT_IMGB*>(nullptr), err); })},
        {"list", {-1, -1, -1}, container([] { return zelt_list_create(4, nullptr); }, zelt_list_delete)},
        {"ring", {-1, -1}, container([] { return zelt_rbuf_create(4); }, zelt_rbuf_delete)},
        {"pool", {-1, -1, -1, -1}, container([] { return zelt_rlist_create(4, 3); }, zelt_rlist_delete)},
    };
    for (const maker& m : makers) {
        const int calls = static_cast<int>(m.errors.size());
        for (int failing = 0; failing <= calls; ++failing) {
            SCOPED_TRACE(testing::Message() << m.name << ", allocation " << failing << " failing");
            int32_t err = 1;
            int seen, live;
            bool made;
            {
                malloc_probe probe(failing);
                made = m.make_and_drop(&err);
                seen = probe.calls;
                live = probe.live;
            }
            EXPECT_EQ(made, failing == 0);
            EXPECT_EQ(live, 0);
            EXPECT_EQ(err, failing ? m.errors[static_cast<std::size_t>(failing) - 1] : ZELT_OK);
            if (!failing) {
                EXPECT_EQ(seen, calls);
            }
        }
    }
}

TEST(allocation_failures, leave_a_list_as_it_was) {
    if (!malloc_probe::works) GTEST_SKIP() << "malloc is the sanitizer's";
    ZELT_LIST* list = zelt_list_create(4, nullptr);
    zelt_list_add(list, "one");
    void* results[3];
    {
        malloc_probe probe(1);
        results[0] = zelt_list_add(list, "two");
        probe.failing = 2;
        results[1] = zelt_list_add_first(list, "two");
        probe.failing = 3;
        results[2] = zelt_list_insert_at(list, "two", -1);
    }
    for (const void* result : results) EXPECT_EQ(result, nullptr);
    EXPECT_EQ(list->cnt, 1);
    EXPECT_EQ(list->head->next, list->tail->prev);
    zelt_list_delete(list);
}

ZELT_AUDB* audio(int32_t nsamples, int32_t nch, int32_t bits, int32_t fmt, int32_t* err = nullptr) {
    return zelt_audb_create(nsamples, nch, bits, 44100, fmt, 12345, test_allocator::alloc, test_allocator::free, err);
}

TEST(audb, buffers) {
    struct {
        int32_t nch, bits, fmt, buffers, bytes;
    } const cases[] = {{2, 16, 1, 1, 4000},  {2, 16, 99, 1, 4000}, {8, 12, 0, 8, 2000}, {8, 12, 100, 8, 2000},
                       {8, 12, -1, 8, 2000}, {1, 1, 0, 1, 1000},   {1, 8, 0, 1, 1000},  {1, 9, 0, 1, 2000},
                       {1, 24, 0, 1, 3000},  {1, 32, 0, 1, 4000},  {1, 0, 0, 1, 0},     {2, 16, INT_MIN, 2, 2000}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.nch << " channels of " << c.bits << " bits, format " << c.fmt);
        test_allocator allocator;
        ZELT_AUDB* aud = audio(1000, c.nch, c.bits, c.fmt);
        ASSERT_EQ(allocator.calls, c.buffers);
        EXPECT_EQ(allocator.last_size, static_cast<uint32_t>(c.bytes));
        for (int k = 0; k < 8; ++k) {
            const bool used = k < c.buffers;
            EXPECT_EQ(aud->nsamples[k], used ? 1000 : 0);
            EXPECT_EQ(aud->bsize[k], used ? c.bytes : 0);
            EXPECT_EQ(aud->buf_aux[k], used ? 0x1000u + static_cast<uint32_t>(k) * 0x100000 : 0);
            EXPECT_EQ(aud->buf[k] != nullptr, used);
        }
        EXPECT_EQ(aud->interleaved, c.fmt >= 1 && c.fmt <= 99);
        EXPECT_EQ(aud->fmt, c.fmt);
        EXPECT_EQ(aud->nch, c.nch);
        EXPECT_EQ(aud->bits, c.bits);
        EXPECT_EQ(aud->srate, 44100);
        EXPECT_EQ(aud->alloc_cb, test_allocator::alloc);
        EXPECT_EQ(aud->free_cb, test_allocator::free);
        EXPECT_EQ(aud->release(aud), 0);
    }
}

TEST(audb, a_failing_allocator_gets_back_what_it_gave) {
    for (int failing = 1; failing <= 8; ++failing) {
        test_allocator allocator;
        allocator.failing = failing;
        int32_t err = 1;
        EXPECT_EQ(audio(100, 8, 16, 0, &err), nullptr);
        EXPECT_EQ(err, ZELT_ERR_BUFFER_ALLOC);
        EXPECT_EQ(allocator.calls, failing);
    }
}

TEST(audb, sizes_that_no_buffer_can_have) {
    test_allocator allocator;
    struct {
        int32_t nsamples, nch, bits, fmt, err;
    } const cases[] = {
        {100, 9, 16, 0, ZELT_ERR_INVALID_ARG},
        {100, INT_MAX, 16, 100, ZELT_ERR_INVALID_ARG},
        {-1, 1, 8, 0, ZELT_ERR_BUFFER_ALLOC},
        {1, -1, 8, 1, ZELT_ERR_BUFFER_ALLOC},
        {1 << 30, 1, 16, 0, ZELT_ERR_BUFFER_ALLOC},
        {1 << 30, 2, 8, 1, ZELT_ERR_BUFFER_ALLOC},
        {INT_MAX, INT_MAX, INT_MAX, 1, ZELT_ERR_BUFFER_ALLOC},
        {INT_MIN, INT_MIN, INT_MAX, 1, ZELT_ERR_BUFFER_ALLOC},
    };
    for (const auto& c : cases) {
        int32_t err = 1;
        EXPECT_EQ(audio(c.nsamples, c.nch, c.bits, c.fmt, &err), nullptr);
        EXPECT_EQ(err, c.err);
        EXPECT_EQ(allocator.calls, 0);
    }
}

TEST(audb, without_channels_there_is_nothing_to_allocate) {
    test_allocator allocator;
    for (const int nch : {0, -1, INT_MIN}) {
        ZELT_AUDB* aud = audio(INT_MAX, nch, INT_MAX, 0);
        ASSERT_NE(aud, nullptr);
        EXPECT_EQ(aud->nch, nch);
        EXPECT_EQ(aud->release(aud), 0);
    }
    ZELT_AUDB* aud = audio(INT_MAX, 0, INT_MAX, 1);  // an interleaved one of 0 bytes
    EXPECT_EQ(allocator.calls, 1);
    EXPECT_EQ(aud->release(aud), 0);
}

TEST(audb, default_buffers_are_aligned) {
    ZELT_AUDB* aud = zelt_audb_create(33, 3, 8, 0, 0, 0, nullptr, test_allocator::free, nullptr);
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(reinterpret_cast<uintptr_t>(aud->buf[k]) % 32, 0u);
        EXPECT_EQ(aud->buf_aux[k], 0u);
    }
    EXPECT_EQ(aud->release(aud), 0);  // the free routine beside no allocator is ignored
}

TEST(bitb, keeps_tag_and_auxiliary_word) {
    test_allocator allocator;
    int32_t err = 1;
    ZELT_BITB* bit = zelt_bitb_create(77, 0xdeadbeef, 5, test_allocator::alloc, test_allocator::free, &err);
    EXPECT_EQ(err, ZELT_OK);
    EXPECT_EQ(allocator.last_size, 77u);
    EXPECT_EQ(bit->tag, 0xdeadbeef);
    EXPECT_EQ(bit->buf_aux, 0x1000u);
    EXPECT_EQ(bit->reserved[0] | bit->reserved[1], 0u);
    EXPECT_EQ(bit->alloc_cb, test_allocator::alloc);
    EXPECT_EQ(bit->free_cb, test_allocator::free);
    EXPECT_EQ(bit->release(bit), 0);

    allocator.failing = 2;
    EXPECT_EQ(zelt_bitb_create(1, 0, 0, test_allocator::alloc, test_allocator::free, &err), nullptr);
    EXPECT_EQ(err, ZELT_ERR_BITB_ALLOC);
}

// An allocator of memory that nobody has to give back, and without auxiliary words.
uint8_t arena[64];
void* from_arena(uint32_t, uint32_t*) { return arena; }
uint32_t freed_aux;
void note_aux(void*, uint32_t aux) { freed_aux = aux; }

TEST(records, an_allocator_may_leave_the_auxiliary_word_and_come_without_a_free_routine) {
    int32_t err = 1;
    ZELT_BITB* bit = zelt_bitb_create(8, 0, 0, from_arena, nullptr, &err);
    EXPECT_EQ(err, ZELT_OK);
    EXPECT_EQ(bit->buf, arena);
    EXPECT_EQ(bit->buf_aux, 0u);
    EXPECT_EQ(bit->free_cb, nullptr);
    EXPECT_EQ(bit->release(bit), 0);

    ZELT_AUDB* aud = zelt_audb_create(1, 2, 8, 0, 0, 0, from_arena, nullptr, &err);
    EXPECT_EQ(err, ZELT_OK);
    EXPECT_EQ(aud->buf_aux[1], 0u);
    EXPECT_EQ(aud->release(aud), 0);

    freed_aux = 1;
    ZELT_IMGB* img = zelt_imgb_create(8, 4, ZELT_CS_YUV400, 0, nullptr, nullptr, from_arena, note_aux, &err);
    EXPECT_EQ(img->base_aux[0], 0u);
    EXPECT_EQ(img->release(img), 0);
    EXPECT_EQ(freed_aux, 0u);
}

}  // namespace
