// SPDX-License-Identifier: MIT
#pragma once
// Bytes in and out: an input that knows its name for messages, and an output that appears only when complete.
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace zelt::tool {

struct close_file {
    void operator()(FILE* f) const;  // standard streams stay open
};
using file = std::unique_ptr<FILE, close_file>;

/// Whether output goes to something that takes bytes as they come: "-", standard output, a pipe or a device.
bool is_stream(const std::string& path);

/// A file or, for "-", standard input.
class input {
public:
    explicit input(const std::string& path);

    FILE* handle() const { return file_.get(); }
    const std::string& name() const { return name_; }  // for messages
    int peek();                                        // the next byte, left where it is, or EOF
    int get();                                         // the next byte, or EOF
    void read(void* to, std::size_t bytes);            // exactly so many, or a failure
    int64_t left() const;                              // bytes of a regular file from here on, or -1
    void expect(int64_t bytes);                        // a failure where a regular file holds fewer from here on
    /// Up to a line feed, which is taken and dropped; with `or_end` the end of the input does as well.
    std::string line(std::size_t longest, bool or_end = false);

    [[noreturn]] void bad(const std::string& text) const;
    [[noreturn]] void unsupported(const std::string& text) const;

private:
    void check() const;  // a failure where reading failed
    std::string name_;
    file file_;
    int64_t size_ = -1;  // of a regular file
};

/// A file that gets its name only when commit() finds it complete; until then it is a temporary one in the same folder,
/// which is removed if commit() is never reached. Without keep() the name goes back to what had it before. A file that
/// is replaced hands on its permissions, a symbolic link stays one. Streams are written directly.
class output {
public:
    explicit output(const std::string& path);
    output(const output&) = delete;
    ~output();

    FILE* handle() const { return file_.get(); }
    void write(const void* from, std::size_t bytes);
    void write(std::string_view text) { write(text.data(), text.size()); }
    void close();   // everything is on its way, or a failure
    void commit();  // takes the name
    void keep();    // for good
    [[noreturn]] void fail(const std::string& text) const;

private:
    std::string name_, target_, temporary_, former_;  // former_: where the file that had the name is
    bool committed_ = false;
    file file_;
};

}  // namespace zelt::tool
