// SPDX-License-Identifier: MIT
// Rows of the kernels in the test registry: whole pictures, and blocks as a motion search picks them.
#include "bench.h"
#include "operands.h"

#include <algorithm>
#include <limits>
#include <map>

namespace zelt::bench {
namespace {
constexpr shape large = {1920, 1080}, small = {320, 240};
const std::vector<shape> pictures = counting ? std::vector{small} : std::vector{large, small};
constexpr int search_range = 16, places = counting ? 2 * blocks::candidates : 4096;

std::multimap<std::string, picture_peer>& picture_peers() {
    static std::multimap<std::string, picture_peer> all;
    return all;
}
std::multimap<std::string, block_peer>& block_peers() {
    static std::multimap<std::string, block_peer> all;
    return all;
}

// ------------------------------------------------------------------------------------------------------------ pictures

std::vector<u8> written_bytes(const std::vector<operand>& operands, const view* v) {
    std::vector<u8> all;
    for (std::size_t i = 0; i < operands.size(); ++i)
        if (operands[i].written)
            for (int y = 0; y < operands[i].rows; ++y) {
                const u8* row_start = v[i].p + y * v[i].stride;
                all.insert(all.end(), row_start, row_start + operands[i].width * operands[i].element);
            }
    return all;
}

std::vector<candidate> picture_candidates(const kernel& k, shape s, const std::string& title) {
    const std::vector<operand> operands = k.operands(s);
    const auto data = std::make_shared<memory>(operands);
    std::vector<u8> ours;
    std::vector<candidate> all;
    const auto add = [&](const std::string& name, std::function<void()> run, comparison near_enough) {
        for (std::size_t i = 0; i < operands.size(); ++i)
            if (operands[i].written)
                std::memset(data->views()[i].p, 0x55,
                            static_cast<std::size_t>(data->views()[i].stride * operands[i].rows));
        run();
        const std::vector<u8> result = written_bytes(operands, data->views());
        if (all.empty()) ours = result;
        if (near_enough(ours.data(), result.data(), static_cast<int>(ours.size())))
            all.push_back({name, std::move(run)});
        else
            reject(title, name);
    };
    for (const library& l : libraries())
        add(
            l.name, [=, call = k.call, f = l.find(exported_name(k))] { call(f, s, data->views()); }, bytes_within<0>);
    const auto [first, last] = picture_peers().equal_range(k.name);
    for (auto p = first; p != last; ++p)
        add(
            p->second.name, [=, run = p->second.run] { run(s, data->views()); }, p->second.near_enough);
    return all;
}

/// What the operands are, each of them once
work work_of(const std::vector<operand>& operands) {
    work all;
    for (const operand& o : operands) {
        const double bytes = static_cast<double>(o.width) * o.rows * o.element;
        (o.written ? all.written : all.read) += bytes;
        all.footprint += bytes;
    }
    return all;
}

void add_picture_rows(const kernel& k) {
    const auto [family, rest] = family_and_rest(k.name);
    for (const shape s : pictures) {
        const std::string title = rest + ' ' + std::to_string(s.w) + 'x' + std::to_string(s.h);
        add_row({family, title, "pixel", static_cast<double>(s.w) * s.h,
                 [=] { return picture_candidates(k, s, title); }, work_of(k.operands(s))});
    }
}

// -------------------------------------------------------------------------------------------------------------- blocks

/// Blocks of a grid in one plane, each with ones around its place in the other, at multiples of `step`
std::vector<std::pair<int, int>> search_places(shape picture, shape block, int a_stride, int b_stride, int step) {
    std::minstd_rand random;
    const auto near = [&](int at, int last) {
        const int moved = at - search_range + static_cast<int>(random() % (2 * search_range + 1));
        return (moved < 0 ? 0 : moved > last ? last : moved) / step * step;
    };
    std::vector<std::pair<int, int>> all;
    const int across = picture.w / block.w;
    for (int i = 0; i < places; ++i) {
        const int n = i / blocks::candidates;
        const int x = n % across * block.w, y = n / across * block.h;
        all.emplace_back(y * a_stride + x, near(y, picture.h - block.h) * b_stride + near(x, picture.w - block.w));
    }
    return all;
}

struct block_data {
    std::shared_ptr<memory> planes;
    blocks visited;

    explicit block_data(const kernel& k, bool aligned = false) {
        const shape picture = pictures.front(), size = k.shapes.front();
        std::vector<operand> operands = k.operands(size);
        if (operands.size() == 1) operands.push_back(operands[0]);
        for (int i = 0; i < 2; ++i)
            operands[static_cast<std::size_t>(i)].width = picture.w,
            operands[static_cast<std::size_t>(i)].rows = picture.h;
        planes = std::make_shared<memory>(operands);
        const view* v = planes->views();
        const int ae = operands[0].element, be = operands[1].element;
        visited = {.size = size,
                   .a = v[0].p,
                   .b = v[1].p,
                   .a_element = ae,
                   .b_element = be,
                   .a_stride = static_cast<int>(v[0].stride) / ae,
                   .b_stride = static_cast<int>(v[1].stride) / be,
                   .d_stride = 0,
                   .d = nullptr,
                   .places = {}};
        if (operands.size() > 2) {
            visited.d = reinterpret_cast<s16*>(v[2].p);
            visited.d_stride = static_cast<int>(v[2].stride) / 2;
        }
        visited.places = search_places(picture, size, visited.a_stride, visited.b_stride, aligned ? 16 : 1);
    }

    /// The results of the first places, one by one
    std::vector<u64> results(const std::function<u64(const blocks&)>& run) const {
        std::vector<u64> all;
        for (std::size_t i = 0; i < 2 * blocks::candidates; ++i) {
            blocks one = visited;
            one.places = {visited.places[i]};
            all.push_back(run(one));
            for (int n = 0; visited.d && n < visited.size.h * visited.d_stride; ++n)
                all.push_back(static_cast<u64>(visited.d[n]));
        }
        return all;
    }
};

/// A run over all places of a kernel of ours
std::function<u64(const blocks&)> over_places(timing signature, function f) {
    using pair_fn = u32(const void*, const void*, int, int);
    using sized_pair_fn = u32(int, int, const void*, const void*, int, int);
    using early_exit_fn = int(int, int, const void*, const void*, int, int, int);
    using residual_fn = u32(const void*);
    using difference_fn = void(const void*, const void*, int, int, int, s16*);
    using sized_difference_fn = void(int, int, const void*, const void*, int, int, int, s16*);
    const auto over = [](auto call) {
        return [=](const blocks& k) {
            return k.visit([&, one = call](const u8* a, const u8* b) mutable { return one(k, a, b); });
        };
    };
    switch (signature) {
    case timing::pair:
        return over([f = reinterpret_cast<pair_fn*>(f)](const blocks& k, const u8* a, const u8* b) {
            return f(a, b, k.a_stride, k.b_stride);
        });
    case timing::sized_pair:
        return over([f = reinterpret_cast<sized_pair_fn*>(f)](const blocks& k, const u8* a, const u8* b) {
            return f(k.size.w, k.size.h, a, b, k.a_stride, k.b_stride);
        });
    case timing::early_exit:
        return over([f = reinterpret_cast<early_exit_fn*>(f), n = 0, best = 0](const blocks& k, const u8* a,
                                                                               const u8* b) mutable {
            if (n++ % blocks::candidates == 0) best = std::numeric_limits<int>::max();
            return best = std::min(best, f(k.size.w, k.size.h, a, b, k.a_stride, k.b_stride, best));
        });
    case timing::residual:
        return over([f = reinterpret_cast<residual_fn*>(f)](const blocks&, const u8* a, const u8*) { return f(a); });
    case timing::difference:
        return over([f = reinterpret_cast<difference_fn*>(f)](const blocks& k, const u8* a, const u8* b) {
            f(a, b, k.a_stride, k.b_stride, k.d_stride, k.d);
            return 0;
        });
    case timing::sized_difference:
        return over([f = reinterpret_cast<sized_difference_fn*>(f)](const blocks& k, const u8* a, const u8* b) {
            f(k.size.w, k.size.h, a, b, k.a_stride, k.b_stride, k.d_stride, k.d);
            return 0;
        });
    default: std::abort();
    }
}

std::vector<candidate> block_candidates(const kernel& k, const std::string& title) {
    std::shared_ptr<block_data> made[2];  // the second for peers that take aligned blocks only
    const auto ours = over_places(k.timed, libraries().front().find(exported_name(k)));
    std::vector<candidate> all;
    const auto add = [&](const block_peer& p) {
        auto& data = made[p.aligned];
        if (!data) data = std::make_shared<block_data>(k, p.aligned);
        if (data->results(p.run) != data->results(ours)) return reject(title, p.name);
        all.push_back({p.name, [data, run = p.run] { run(data->visited); }});
    };
    for (const library& l : libraries()) add({l.name, over_places(k.timed, l.find(exported_name(k)))});
    const auto [first, last] = block_peers().equal_range(k.name);
    for (auto p = first; p != last; ++p) add(p->second);
    if (const std::string suffix = "_bi"; k.name.ends_with(suffix)) {  // what mixed samples cost, which no other has
        const std::string of_bytes = k.name.substr(0, k.name.size() - suffix.size());
        const std::vector<kernel> kernels = all_kernels();
        const auto found = std::ranges::find(kernels, of_bytes, &kernel::name);
        const auto planes = std::make_shared<block_data>(*found);
        all.push_back({of_bytes, [=, run = over_places(found->timed, found->exported)] { run(planes->visited); }});
    }
    return all;
}

void add_block_row(const kernel& k) {
    const auto [family, title] = family_and_rest(k.name);
    std::vector<operand> operands = k.operands(k.shapes.front());
    for (operand& o : operands)  // a row takes as long as whole registers
        o.width = (o.width * o.element + 31) / 32 * 32, o.element = 1;
    work all = work_of(operands);
    all.read *= places, all.written *= places, all.footprint = 0;  // neighbours have most of a block in common
    add_row({family, title, "block", places, [=, title = title] { return block_candidates(k, title); }, all});
}

}  // namespace

void add_kernel_rows() {
    for (const kernel& k : all_kernels())
        if (k.timed == timing::picture)
            add_picture_rows(k);
        else if (k.timed != timing::none)
            add_block_row(k);
}

bool add_peer(const std::string& kernel_name, picture_peer p) {
    picture_peers().emplace(kernel_name, std::move(p));
    return true;
}

bool add_peer(const std::string& kernel_name, block_peer p) {
    block_peers().emplace(kernel_name, std::move(p));
    return true;
}
}  // namespace zelt::bench
