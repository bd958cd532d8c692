// Any sequence of ring calls with any lengths: indices stay where they may stand, nothing but the caller's bytes is
// touched, lengths follow their formulas, and while nothing stretches the rules what comes out is what went in.
#include "zelt/rbuf.h"

#include "input.h"

#include <algorithm>
#include <deque>
#include <memory>

namespace {
class ring {
public:
    explicit ring(int size) : rb_(zelt_rbuf_create(size)) { std::fill_n(rb_->buf, size, 0); }

    void call(fuzz::input& in) {
        const uint8_t kind = in.byte();
        // mostly lengths that fit; now and then any at all
        const int len = kind >= 0xF0 ? static_cast<int>(in.word()) : in.byte() % (rb_->size + 3);
        switch (kind % 7) {
        case 0:
        case 1: put(in, len); break;
        case 2: get(len); break;
        case 3: skip_tail(len); break;
        case 4: skip_head(len); break;
        case 5: line(len); break;
        default: zelt_rbuf_empty(rb_.get()), model_.clear(); break;
        }
        check();
    }

private:
    void put(fuzz::input& in, int len) {
        const auto data = in.bytes(static_cast<size_t>(std::clamp(len, 0, rb_->size + 2)));
        const int n = static_cast<int>(data.size());
        const int done = zelt_rbuf_put(rb_.get(), data.data(), len < 0 ? len : n);
        fuzz::require(done == 0 || done == n);
        if (n && rb_->head == rb_->size) strict_ = false;  // the storage is full to its last byte
        if (strict_) fuzz::require((done == n) == (n <= room()));
        if (done) model_.insert(model_.end(), data.begin(), data.end());
    }
    void get(int len) {
        std::vector<uint8_t> to(static_cast<size_t>(std::clamp(len, 0, rb_->size + 2)));
        const int done = zelt_rbuf_get(rb_.get(), to.data(), std::min(len, static_cast<int>(to.size())));
        fuzz::require(done <= static_cast<int>(to.size()));
        if (strict_)
            fuzz::require(done == std::clamp(len, 0, fill()) &&
                          std::equal(to.begin(), to.begin() + done, model_.begin()));
        drop(done);
    }
    void skip_tail(int len) {
        const int done = zelt_rbuf_skip_tail(rb_.get(), len);
        if (strict_) fuzz::require(done == std::clamp(len, 0, fill()));
        drop(done);
    }
    void skip_head(int len) {
        const bool uncommitted = rb_->tail == 0 && len >= rb_->size - rb_->head;
        const int head = rb_->head, done = zelt_rbuf_skip_head(rb_.get(), len);
        if (strict_ && !uncommitted) fuzz::require(done == std::clamp(len, 0, room()));
        if (rb_->head == head) return;  // nothing, or a count that is not committed
        for (int i = 0; i < done; ++i) model_.push_back(rb_->buf[(head + i) % rb_->size]);
    }
    void line(int max) {
        max = std::min(max, 2 * rb_->size);
        std::vector<char> to(static_cast<size_t>(std::max(max + 2, rb_->size + 1)));
        const int tail = rb_->tail, done = zelt_rbuf_get_one_line(rb_.get(), to.data(), max);
        fuzz::require(done >= 0 && done < static_cast<int>(to.size()));
        if (!done) return fuzz::require(rb_->tail == tail);
        fuzz::require(to[static_cast<size_t>(done)] == 0);
        strict_ = false;  // it may have taken a byte too many
    }
    void drop(int n) {
        if (strict_) model_.erase(model_.begin(), model_.begin() + n);
    }

    int fill() const { return static_cast<int>(model_.size()); }
    int room() const { return rb_->size - 1 - fill(); }

    void check() const {
        ZELT_RBUF* rb = rb_.get();
        fuzz::require(rb->head >= 0 && rb->head <= rb->size && rb->tail >= 0 && rb->tail <= rb->size + 1);
        uint8_t* p;
        int len;
        zelt_rbuf_get_head(rb, &p, &len);
        fuzz::require((p == nullptr) == (zelt_rbuf_is_full(rb) == 1) &&
                      (!p || (p == rb->buf + rb->head && len == zelt_rbuf_get_freec_len(rb))));
        zelt_rbuf_get_tail(rb, &p, &len);
        fuzz::require((p == nullptr) == (zelt_rbuf_is_empty(rb) == 1) &&
                      (!p || (p == rb->buf + rb->tail && len == zelt_rbuf_get_fillc_len(rb))));
        if (strict_) fuzz::require(zelt_rbuf_get_fill_len(rb) == fill() - (rb->tail > rb->head));
    }

    struct deleter {
        void operator()(ZELT_RBUF* rb) const { zelt_rbuf_delete(rb); }
    };
    std::unique_ptr<ZELT_RBUF, deleter> rb_;
    std::deque<uint8_t> model_;
    bool strict_ = true;  // until a rule is stretched
};
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::input in(data, size);
    ring r(1 + in.byte() % 32);
    while (!in.empty()) r.call(in);
    return 0;
}
