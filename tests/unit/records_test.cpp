// SPDX-License-Identifier: MIT
#include "unit/malloc_probe.h"
#include "unit/test_allocator.h"
#include "zelt/zelt.h"

#include <atomic>
#include <climits>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

// One of each record.
template <class R> R* make(int32_t* err = nullptr, zelt_alloc_fn alloc = nullptr, zelt_free_fn free = nullptr);
template <> ZELT_AUDB* make(int32_t* err, zelt_alloc_fn alloc, zelt_free_fn free) {
    return zelt_audb_create(64, 2, 16, 48000, 0, 0, alloc, free, err);
}
template <> ZELT_BITB* make(int32_t* err, zelt_alloc_fn alloc, zelt_free_fn free) {
    return zelt_bitb_create(100, 7, 0, alloc, free, err);
}
template <> ZELT_MFAL* make(int32_t* err, zelt_alloc_fn, zelt_free_fn) { return zelt_mfal_create(99, err); }
template <> ZELT_IMGB* make(int32_t* err, zelt_alloc_fn alloc, zelt_free_fn free) {
    return zelt_imgb_create(8, 4, ZELT_CS_YUV420, 3, nullptr, nullptr, alloc, free, err);
}

template <class R> struct records : testing::Test {};
using all_records = testing::Types<ZELT_AUDB, ZELT_BITB, ZELT_MFAL, ZELT_IMGB>;
TYPED_TEST_SUITE(records, all_records, );

TYPED_TEST(records, counts_references) {
    int32_t err = 1;
    auto* r = make<TypeParam>(&err);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(err, ZELT_OK);
    EXPECT_EQ(r->refcnt, 1);
    EXPECT_EQ(r->addref(r), 2);
    EXPECT_EQ(r->getref(r), 2);
    EXPECT_EQ(r->release(r), 1);
    for (const auto f : {r->addref, r->getref, r->release}) EXPECT_EQ(f(nullptr), ZELT_ERR_INVALID_ARG);
    for (const uint32_t word : r->user) EXPECT_EQ(word, 0u);
    // A count below zero is given back as it is.
    for (const auto& [count, less] : {std::pair{-3, -4}, {INT_MIN, INT_MAX}, {1, 0}}) {
        r->refcnt = count;
        EXPECT_EQ(r->release(r), less);
    }
}

// Under the thread checker: what each holder did happens before the free, whoever comes last.
TYPED_TEST(records, is_shared_by_threads) {
    auto* r = make<TypeParam>();
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

bool drop(auto* record) { return record && (record->release(record), true); }
template <class R> bool make_and_drop(int32_t* err) { return drop(make<R>(err)); }

bool fill_list(int32_t* err) {
    ZELT_LIST* list = zelt_list_create(4, nullptr);
    *err = -3;
    if (!list) return false;
    const int made =
        !!zelt_list_add(list, "one") + !!zelt_list_add_first(list, "two") + !!zelt_list_insert_at(list, "six", INT_MIN);
    *err = list->cnt - 3;
    zelt_list_delete(list);
    return made == 3;
}

/// Of what has no status, which becomes -3 if it could not be made
template <auto create, auto del> bool make_and_delete(int32_t* err) {
    auto* object = create();
    *err = object ? ZELT_OK : -3;
    del(object);
    return object;
}

bool set_data(int32_t* err) {
    uint8_t kept[3] = {1, 2, 3};
    ZELT_VDATA v{5, 6, kept};
    *err = zelt_vdata_set(&v, kept, 3, 7);
    const bool made = v.data, set = v.type == 7 && v.size == 3, as_it_was = v.type == 5 && v.size == 6;
    zelt_vdata_free(&v);
    return made ? set : !as_it_was;
}

template <int mode> bool make_resizer(int32_t* err) {
    const ZELT_IRSZ_PARAM grey = {ZELT_IRSZ_8B, mode, 4, 2, 4, 0, 2, 2, 2, nullptr};
    ZELT_IRSZ* irsz = zelt_irsz_create(&grey, err);
    zelt_irsz_delete(irsz);
    return irsz;
}

// Everything that takes memory, with every allocation failing in turn, and none.
TEST(allocation_failures, give_null_and_leave_nothing_behind) {
    if (!malloc_probe::works) GTEST_SKIP() << "malloc is the sanitizer's";
    const int32_t memory = ZELT_ERR_OUT_OF_MEMORY, buffer = ZELT_ERR_BUFFER_ALLOC, bits = ZELT_ERR_BITB_ALLOC;
    const struct {
        const char* name;
        bool (*make)(int32_t*);
        std::vector<int32_t> statuses;  // when the first allocation fails, the second ..., none
    } rows[] = {
        {"audio", make_and_drop<ZELT_AUDB>, {memory, buffer, buffer, 0}},
        {"bitstream", make_and_drop<ZELT_BITB>, {memory, bits, 0}},
        {"frame allocator", make_and_drop<ZELT_MFAL>, {memory, 0}},
        {"picture", make_and_drop<ZELT_IMGB>, {memory, buffer, 0}},
        {"impossible picture",
         [](int32_t* err) { return drop(zelt_imgb_create(-1, 1, 10, 0, nullptr, nullptr, nullptr, nullptr, err)); },
         {memory, buffer}},
        {"list", fill_list, {-3, -3, -3, -1, -1, -1, 0}},
        {"ring", make_and_delete<[] { return zelt_rbuf_create(4); }, zelt_rbuf_delete>, {-3, -3, 0}},
        {"pool", make_and_delete<[] { return zelt_rlist_create(4, 3); }, zelt_rlist_delete>, {-3, -3, -3, -3, 0}},
        {"block", make_and_delete<[] { return zelt_malloc_align32(9); }, zelt_mfree_align32>, {-3, 0}},
        {"data", set_data, {memory, 0}},
        {"resizer", make_resizer<ZELT_IRSZ_WHOLE>, {-3, 0}},
        {"resizer of bands", make_resizer<ZELT_IRSZ_BANDS>, {-3, -3, 0}},
    };
    for (const auto& row : rows)
        for (size_t i = 0; i < row.statuses.size(); ++i) {
            int32_t err = 1;
            bool made;
            int live;
            {
                malloc_probe probe(static_cast<int>(i) + 1);
                made = row.make(&err);
                live = probe.live;
            }
            SCOPED_TRACE(testing::Message() << row.name << ", allocation " << i << " failing");
            EXPECT_EQ(made, row.statuses[i] == ZELT_OK);
            EXPECT_EQ(err, row.statuses[i]);
            EXPECT_EQ(live, 0);
        }
}

TEST(audb, buffers) {
    constexpr int32_t max = INT_MAX, min = INT_MIN, refused = ZELT_ERR_BUFFER_ALLOC, invalid = ZELT_ERR_INVALID_ARG;
    // Without channels there is nothing to allocate, or an interleaved buffer of 0 bytes. The last ones are sizes that
    // no buffer can have.
    const struct {
        int32_t nsamples, nch, bits, fmt, buffers, bytes, err;
    } rows[] = {
        {1000, 2, 16, 1, 1, 4000, 0},      {1000, 2, 16, 99, 1, 4000, 0},     {1000, 8, 12, 0, 8, 2000, 0},
        {1000, 8, 12, 100, 8, 2000, 0},    {1000, 8, 12, -1, 8, 2000, 0},     {1000, 1, 1, 0, 1, 1000, 0},
        {1000, 1, 8, 0, 1, 1000, 0},       {1000, 1, 9, 0, 1, 2000, 0},       {1000, 1, 24, 0, 1, 3000, 0},
        {1000, 1, 32, 0, 1, 4000, 0},      {1000, 1, 0, 0, 1, 0, 0},          {1000, 2, 16, min, 2, 2000, 0},
        {max, 0, max, 0, 0, 0, 0},         {max, -1, max, 0, 0, 0, 0},        {max, min, max, 0, 0, 0, 0},
        {max, 0, max, 1, 1, 0, 0},         {100, 9, 16, 0, 0, 0, invalid},    {100, max, 16, 100, 0, 0, invalid},
        {-1, 1, 8, 0, 0, 0, refused},      {1, -1, 8, 1, 0, 0, refused},      {1 << 30, 1, 16, 0, 0, 0, refused},
        {1 << 30, 2, 8, 1, 0, 0, refused}, {max, max, max, 1, 0, 0, refused}, {min, min, max, 1, 0, 0, refused},
    };
    for (const auto& row : rows)
        for (int failing = row.buffers; failing >= 0; --failing) {  // 0: none
            SCOPED_TRACE(testing::Message() << row.nsamples << " samples of " << row.bits << " bits, " << row.nch
                                            << " channels, format " << row.fmt << ", failing " << failing);
            test_allocator allocator;
            allocator.failing = failing;
            int32_t err = 1;
            ZELT_AUDB* aud = zelt_audb_create(row.nsamples, row.nch, row.bits, 44100, row.fmt, 12345,
                                              test_allocator::alloc, test_allocator::free, &err);
            EXPECT_EQ(allocator.calls, failing ? failing : row.buffers);
            EXPECT_EQ(err, failing ? refused : row.err);
            ASSERT_EQ(aud != nullptr, err == ZELT_OK);
            if (!aud) continue;
            EXPECT_EQ(allocator.last_size, static_cast<uint32_t>(row.bytes));
            for (int k = 0; k < 8; ++k) {
                const bool used = k < row.buffers;
                EXPECT_EQ(aud->nsamples[k], used ? row.nsamples : 0);
                EXPECT_EQ(aud->bsize[k], used ? row.bytes : 0);
                EXPECT_EQ(aud->buf_aux[k], used ? 0x1000u + static_cast<uint32_t>(k) * 0x100000 : 0);
                EXPECT_EQ(aud->buf[k] != nullptr, used);
            }
            EXPECT_EQ(aud->interleaved, row.fmt >= 1 && row.fmt <= 99);
            EXPECT_EQ(aud->fmt, row.fmt);
            EXPECT_EQ(aud->nch, row.nch);
            EXPECT_EQ(aud->bits, row.bits);
            EXPECT_EQ(aud->srate, 44100);
            EXPECT_EQ(aud->alloc_cb, test_allocator::alloc);
            EXPECT_EQ(aud->free_cb, test_allocator::free);
            EXPECT_EQ(aud->release(aud), 0);
        }
}

TEST(bitb, keeps_tag_and_auxiliary_word) {
    test_allocator allocator;
    ZELT_BITB* bit = zelt_bitb_create(77, 0xdeadbeef, 5, test_allocator::alloc, test_allocator::free, nullptr);
    EXPECT_EQ(allocator.last_size, 77u);
    EXPECT_EQ(bit->tag, 0xdeadbeef);
    EXPECT_EQ(bit->buf_aux, 0x1000u);
    EXPECT_EQ(bit->reserved[0] | bit->reserved[1], 0u);
    EXPECT_EQ(bit->alloc_cb, test_allocator::alloc);
    EXPECT_EQ(bit->free_cb, test_allocator::free);
    EXPECT_EQ(bit->release(bit), 0);
}

// An allocator of memory that nobody has to give back, and without auxiliary words.
alignas(32) void* arena[64];
void* from_arena(uint32_t, uint32_t*) { return arena + 8; }
uint32_t freed_aux;
void note_aux(void*, uint32_t aux) { freed_aux = aux; }

TEST(records, an_allocator_may_leave_the_auxiliary_word_and_come_without_a_free_callback) {
    arena[7] = arena + 2;  // the default free callback would hand this to free(), which stops the program
    for (const zelt_alloc_fn alloc : {zelt_alloc_fn{}, zelt_alloc_fn{from_arena}}) {
        freed_aux = 1;
        // A free callback alone is ignored.
        auto* aud = make<ZELT_AUDB>(nullptr, alloc, alloc ? nullptr : note_aux);
        auto* bit = make<ZELT_BITB>(nullptr, alloc, alloc ? nullptr : note_aux);
        auto* img = make<ZELT_IMGB>(nullptr, alloc, note_aux);
        for (const void* buffer : {aud->buf[0], aud->buf[1], img->base[0]})
            EXPECT_EQ(reinterpret_cast<uintptr_t>(buffer) % 32, 0u);
        EXPECT_EQ(bit->buf == arena + 8, alloc != nullptr);
        EXPECT_EQ(aud->buf_aux[0] | aud->buf_aux[1] | bit->buf_aux | img->base_aux[0], 0u);
        EXPECT_TRUE(drop(aud) && drop(bit) && drop(img));
        EXPECT_EQ(freed_aux, alloc ? 0u : 1u);
    }
    int32_t err = 1;  // pictures need both
    EXPECT_EQ(make<ZELT_IMGB>(&err, from_arena), nullptr);
    EXPECT_EQ(err, ZELT_ERR_INVALID_ARG);
    EXPECT_EQ(make<ZELT_IMGB>(nullptr, from_arena), nullptr);
}

}  // namespace
