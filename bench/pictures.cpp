// SPDX-License-Identifier: MIT
// The picture path on real pictures: converts each through the vector library and through the scalar one, compares the
// bytes, measures both, and writes what came out as PNG files.
#include "pictures/writer.h"
#include "zelt/csc.h"
#include "zelt/imgb.h"

#include <chrono>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <iostream>

using namespace zelt::tool;

namespace {
/// One build of the library, apart from every other in the process
class library {
public:
    explicit library(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND)) {
        if (!handle_) throw std::runtime_error(dlerror());
    }
    zelt_csc_fn converter(const picture& from, const picture& to) const {
        const auto find = reinterpret_cast<decltype(&zelt_imgp_get_fn_csc)>(dlsym(handle_, "zelt_imgp_get_fn_csc"));
        if (zelt_csc_fn fn = find(from.w, from.h, from.fmt->cs, to.w, to.h, to.fmt->cs, nullptr)) return fn;
        throw std::runtime_error("no converter");
    }

private:
    void* handle_;
};

void convert(zelt_csc_fn fn, const picture& from, const picture& to) {
    fn(from.plane, from.w, from.h, from.stride, from.fmt->cs, to.plane, to.w, to.h, to.stride, to.fmt->cs);
}

/// Destination megapixels per second, the best of many short runs
double speed(zelt_csc_fn fn, const picture& from, const picture& to) {
    using clock = std::chrono::steady_clock;
    double best = 0;
    for (const auto start = clock::now(); clock::now() - start < std::chrono::milliseconds(60);) {
        const auto t0 = clock::now();
        convert(fn, from, to);
        const std::chrono::duration<double, std::micro> took = clock::now() - t0;
        best = std::max(best, to.w * static_cast<double>(to.h) / took.count());
    }
    return best;
}

bool same_bytes(const picture& a, const picture& b) {
    for (int i = 0; i < a.fmt->planes; ++i)
        for (int y = 0; y < a.h; ++y)
            if (std::memcmp(a.row(i, y), b.row(i, y), a.row_bytes(i))) return false;
    return true;
}

class demo {
public:
    explicit demo(std::filesystem::path folder) : folder_(std::move(folder)) {
        std::filesystem::create_directories(folder_);
        std::printf("%-10s %-26s %9s %9s %6s  %s\n", "picture", "path", "vector", "scalar", "", "same bytes");
    }

    void run(const std::string& path) {
        name_ = std::filesystem::path(path).stem();
        const auto in = open_reader(path, "");
        const picture& first = in->next();
        const picture yuv = first.fmt->cs == ZELT_CS_YUV444 ? padded_copy(first) : padded_yuv(first);

        const picture rgba = step(yuv, ZELT_CS_RGBA8888);
        save(rgba, "rgba8888");
        for (const int cs : {ZELT_CS_RGB565, ZELT_CS_R8G8B8}) {
            const picture there = step(yuv, cs), back = step(there, ZELT_CS_YUV444);
            save(step(back, ZELT_CS_RGB888), there.fmt->name);
        }
        for (const auto& [w, h] :
             {std::pair{yuv.w / 2, yuv.h / 2}, {yuv.w * 2 / 3, yuv.h * 2 / 3}, {yuv.w * 2, yuv.h * 2}})
            measure(yuv, picture(format_of(ZELT_CS_RGB888), w, h));
    }
    bool all_same() const { return all_same_; }

private:
    /// A YUV 4:4:4 picture whose planes are aligned and have a border, as a decoder would have it
    static picture padded(int w, int h) {
        const uint32_t align[] = {16 << 16 | 8, 16 << 16 | 8, 16 << 16 | 8};
        const uint32_t pad[] = {32 << 16 | 32, 32 << 16 | 32, 32 << 16 | 32};
        return picture(format_of(ZELT_CS_YUV444), w, h, align, pad);
    }
    picture padded_yuv(const picture& from) {
        picture to = padded(from.w, from.h);
        measure(from, to);
        return to;
    }
    static picture padded_copy(const picture& from) {
        picture to = padded(from.w, from.h);
        for (int i = 0; i < from.fmt->planes; ++i)
            for (int y = 0; y < from.h; ++y) std::memcpy(to.row(i, y), from.row(i, y), from.row_bytes(i));
        return to;
    }
    picture step(const picture& from, int cs) {
        picture to(format_of(cs), from.w, from.h);
        measure(from, to);
        return to;
    }
    void measure(const picture& from, const picture& to) {
        const picture other(*to.fmt, to.w, to.h);
        const zelt_csc_fn fast = vector_.converter(from, to), plain = scalar_.converter(from, to);
        convert(fast, from, to), convert(plain, from, other);
        const bool same = same_bytes(to, other);
        all_same_ &= same;
        const bool resized = to.w != from.w || to.h != from.h;
        const std::string size = resized ? ' ' + std::to_string(to.w) + 'x' + std::to_string(to.h) : "";
        const double fast_speed = speed(fast, from, to), plain_speed = speed(plain, from, other);
        std::printf("%-10s %-26s %9.0f %9.0f %5.1fx  %s\n", name_.c_str(),
                    (std::string(from.fmt->name) + " > " + to.fmt->name + size).c_str(), fast_speed, plain_speed,
                    fast_speed / plain_speed, same ? "yes" : "NO");
    }
    void save(const picture& pic, const std::string& what) {
        const std::string path = folder_ / (name_ + "-" + what + ".png");
        std::string code;
        encode_png(code, pic);
        output out(path);
        out.write(code);
        out.commit();
    }

    library vector_{ZELT_VECTOR_LIBRARY}, scalar_{ZELT_SCALAR_LIBRARY};
    std::filesystem::path folder_;
    std::string name_;
    bool all_same_ = true;
};
}  // namespace

int main(int argc, char** argv) try {
    if (argc < 3) {
        std::cerr << "usage: zelt_demo FOLDER PICTURE...\n";
        return 1;
    }
#ifdef __x86_64__
    if (!__builtin_cpu_supports("avx2")) throw std::runtime_error("this processor lacks AVX2: nothing to compare");
#endif
    demo d(argv[1]);
    for (int i = 2; i < argc; ++i) d.run(argv[i]);
    std::printf("Speeds are megapixels made per second on one core.\n");
    return d.all_same() ? 0 : 1;
} catch (const std::exception& e) {
    std::cerr << "zelt_demo: " << e.what() << '\n';
    return 1;
}
