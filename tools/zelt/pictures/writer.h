// SPDX-License-Identifier: MIT
#pragma once
// Pictures to files: the kinds of file, the names of a numbered series, and everything or nothing.
#include "pictures/reader.h"

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace zelt::tool {

/// A kind of output file.
struct file_kind {
    const char* name;
    std::vector<std::string_view> extensions;
    std::vector<int32_t> formats;  // what it can hold, the usual one first, with alpha last; empty for any
    bool single;                   // one picture to a file
    bool piped;                    // several pictures may follow each other on a pipe
    void (*header)(output&, const clip&);
    void (*encode)(std::string& to, const picture&);  // the bytes of a picture's file, where they are not its own
    void (*write)(output&, const picture&);           // elsewhere
};

/// The kind of a name, or of a path's extension where the name is empty; a failure where there is none.
const file_kind& kind_of_output(std::string_view name, const std::string& path);

/// The format of a name, which the kind must be able to hold.
const format& asked_format(const file_kind& kind, const std::string& asked);

/// The format that a kind of file gets for pictures of another one: the same, or the planar form of it, or the kind's
/// own for pictures with or without alpha. Raw files have none.
const format& default_format(const file_kind& kind, const format& given);

/// Writes pictures. Files get their names in finish(), when all are complete, or none does.
class writer {
public:
    writer(const file_kind& kind, std::string path, const clip& about);
    /// What a picture takes beside its own bytes, which may be made of several pictures at once
    void encode(std::string& code, const picture& pic) const {
        if (kind_.encode) kind_.encode(code, pic);
    }
    void write(const picture& pic, const std::string& code, bool more);  // `more`: whether others follow
    void write(const picture& pic, bool more) {
        std::string code;
        encode(code, pic);
        write(pic, code, more);
    }
    void finish();
    std::string summary() const;  // the names written, for the user

private:
    std::string numbered(int n) const;
    const file_kind& kind_;
    std::string path_;
    clip about_;
    std::size_t at_ = 0, length_ = 0;  // where the number goes in path_, and what it replaces
    int digits_ = 4, count_ = 0;
    bool separate_, series_ = false;  // a file for each picture; with numbers in their names
    std::deque<output> files_;
    std::string first_, last_;
};

void write_y4m_header(output& out, const clip& about);
void write_y4m(output& out, const picture& pic);
void write_ppm(output& out, const picture& pic);
void encode_png(std::string& to, const picture& pic);
void write_raw(output& out, const picture& pic);

}  // namespace zelt::tool
