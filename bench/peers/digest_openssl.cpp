// SPDX-License-Identifier: MIT
// OpenSSL's MD5, by the calls that cost least.
#define OPENSSL_SUPPRESS_DEPRECATED
#include "memory.h"

#include <openssl/md5.h>

namespace zelt::bench {
namespace {
const bool added = [] {
    for (const int size : message_sizes)
        add_candidate("digest", sized("MD5", size), [=] {
            return digest_candidate("OpenSSL MD5", size, [](const u8* p, std::size_t n, u8* digest) {
                MD5_CTX ctx;
                MD5_Init(&ctx);
                MD5_Update(&ctx, p, n);
                MD5_Final(digest, &ctx);
            });
        });
    return true;
}();
}  // namespace
}  // namespace zelt::bench
