// SPDX-License-Identifier: MIT
// Any sequence of ring calls with any lengths: nothing but the caller's bytes is touched and indices stay where they
// may stand; while both are inside the storage, contents, results and lengths are those of a queue.
#include "zelt/rbuf.h"

#include "input.h"

#include <algorithm>
#include <deque>
#include <memory>

namespace {
class ring {
public:
    explicit ring(int size) : size_(size), rb_(zelt_rbuf_create(size)) { std::fill_n(rb_->buf, size, 0); }

    void call(fuzz::input& in) {
        const uint8_t kind = in.byte();
        // mostly lengths that fit; now and then any at all
        const int len = kind >= 0xF0 ? in.wild() : in.byte() % (size_ + 3);
        switch (kind % 8) {
        case 0:
        case 1: put(in, len); break;
        case 2: get(len); break;
        case 3: skip_tail(len); break;
        case 4:
        case 5: skip_head(in, len); break;
        case 6: line(len); break;
        default: zelt_rbuf_empty(rb_.get()), drop(fill()); break;
        }
        check();
    }

private:
    void put(fuzz::input& in, int len) {
        auto data = in.bytes(static_cast<size_t>(std::clamp(len, 0, size_ + 2)));
        const int n = static_cast<int>(data.size());
        const bool whole = tail_ == 0 && room() > 0 && head_ + n == size_;  // fills the storage to its last byte
        const int done = zelt_rbuf_put(rb_.get(), data.data(), len < 0 ? len : n);
        fuzz::require(done == 0 || done == n);
        if (!strict_) return;
        fuzz::require((done == n) == (n <= room() || whole));
        if (whole)
            head_ = size_, strict_ = false;
        else if (done)
            append(data);
    }
    void get(int len) {
        std::vector<uint8_t> to(static_cast<size_t>(std::clamp(len, 0, size_ + 2)));
        const int done = zelt_rbuf_get(rb_.get(), to.data(), std::min(len, static_cast<int>(to.size())));
        fuzz::require(done <= static_cast<int>(to.size()));
        if (!strict_) return;
        fuzz::require(done == std::clamp(len, 0, fill()));
        fuzz::require(std::equal(to.begin(), to.begin() + done, model_.begin()));
        drop(done);
    }
    void skip_tail(int len) {
        const int done = zelt_rbuf_skip_tail(rb_.get(), len);
        if (!strict_) return;
        fuzz::require(done == std::clamp(len, 0, fill()));
        drop(done);
    }
    void skip_head(fuzz::input& in, int len) {
        uint8_t* at;
        int n;
        zelt_rbuf_get_head(rb_.get(), &at, &n);
        const auto data = in.bytes(static_cast<size_t>(std::clamp(n, 0, std::max(len, 0))));
        std::copy(data.begin(), data.end(), at);
        const bool uncommitted = tail_ == 0 && len >= size_ - head_;  // to the end of the storage: counts only
        const int done = zelt_rbuf_skip_head(rb_.get(), len);
        if (!strict_) return;
        fuzz::require(done == std::clamp(len, 0, room()));
        std::vector<uint8_t> committed;
        for (int i = 0; i < done && !uncommitted; ++i) committed.push_back(rb_->buf[(head_ + i) % size_]);
        fuzz::require(std::equal(data.begin(), data.end(), rb_->buf + head_));
        append(committed);
    }
    void line(int max) {
        max = std::min(max, 2 * size_);
        std::vector<char> to(static_cast<size_t>(std::max(max + 2, size_ + 1)));
        const int done = zelt_rbuf_get_one_line(rb_.get(), to.data(), max);
        fuzz::require(done >= 0 && done < static_cast<int>(to.size()));
        if (!done) return;
        fuzz::require(to[static_cast<size_t>(done)] == 0);
        const auto feed = std::find(to.begin(), to.begin() + done, '\n') - to.begin();
        fuzz::require(feed == done - 1 || feed == done - 2);  // of one between two ends, one byte more is counted
        strict_ = false;                                      // it may have taken a byte too many
    }

    int fill() const { return static_cast<int>(model_.size()); }
    int room() const { return size_ - 1 - fill(); }
    void append(const std::vector<uint8_t>& data) {
        model_.insert(model_.end(), data.begin(), data.end());
        head_ = (head_ + static_cast<int>(data.size())) % size_;
    }
    void drop(int n) {
        model_.erase(model_.begin(), model_.begin() + n);
        tail_ = (tail_ + n) % size_;
    }

    void check() {
        ZELT_RBUF* rb = rb_.get();
        fuzz::require(rb->head >= 0 && rb->head <= size_ && rb->tail >= 0 && rb->tail <= size_ + 1);
        if (!strict_) {  // once both are inside again, what lies between them is the contents
            strict_ = rb->head < size_ && rb->tail < size_;
            model_.clear();
            head_ = tail_ = rb->tail;
            if (!strict_) return;
            std::vector<uint8_t> data;
            for (int i = rb->tail; i != rb->head; i = (i + 1) % size_) data.push_back(rb->buf[i]);
            append(data);
        }
        const bool wrapped = head_ < tail_;
        const int ahead = std::min(room(), size_ - head_), behind = std::min(fill(), size_ - tail_);
        fuzz::require(rb->head == head_ && rb->tail == tail_ && rb->size == size_);
        fuzz::require(zelt_rbuf_get_tot_len(rb) == size_ - 1);
        fuzz::require(zelt_rbuf_is_full(rb) == (room() == 0) && zelt_rbuf_is_empty(rb) == model_.empty());
        fuzz::require(zelt_rbuf_get_fill_len(rb) == fill() - wrapped);
        fuzz::require(zelt_rbuf_get_free_len(rb) == (wrapped ? room() : room() + 2));
        fuzz::require(zelt_rbuf_get_freec_len(rb) == ahead && zelt_rbuf_get_fillc_len(rb) == behind);
        uint8_t* p;
        int len;
        fuzz::require(zelt_rbuf_get_head(rb, &p, &len) == 0 && len == ahead &&
                      p == (ahead ? rb->buf + head_ : nullptr));
        fuzz::require(zelt_rbuf_get_tail(rb, &p, &len) == 0 && len == behind &&
                      p == (behind ? rb->buf + tail_ : nullptr));
        fuzz::require(std::equal(p, p + len, model_.begin()));
    }

    struct deleter {
        void operator()(ZELT_RBUF* rb) const { zelt_rbuf_delete(rb); }
    };
    int size_, head_ = 0, tail_ = 0;
    std::unique_ptr<ZELT_RBUF, deleter> rb_;
    std::deque<uint8_t> model_;
    bool strict_ = true;  // both indices are inside the storage
};
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::input in(data, size);
    ring r(1 + in.byte() % 32);
    while (!in.empty()) r.call(in);
    return 0;
}
