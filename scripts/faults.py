#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Plants faults in the library and the tool, one at a time, and tells which of them the tests catch.

A fault is a one-line edit that changes what is promised. Each is made in a copy of the tree, under build/faults; what
it touches is built again, the tests that can see it run until one fails, and the copy is put right again. This measures
the tests and is no part of the gate. Faults whose `what` begins with "quirk:" put a deliberate oddity right.

  --list          one line per fault: file, line, what
  --check         whether every fault still fits the files; nothing is built
  --only REGEX    those faults whose "file: what" matches
  --log FILE      a line per fault is added to FILE, and faults that it has already are left out
  --minutes N     stop after so long; with the same log the next run goes on from there
  --levels LIST   of x86-64 that are built: what one level's tests catch need not be looked for in the others
  --table LOG...  the table of earlier runs
"""
from __future__ import annotations

import argparse
import collections
import fcntl
import hashlib
import json
import os
import re
import resource
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parent.parent
TREE = ROOT / "build" / "faults"  # the copy that faults are planted in


class Fault(NamedTuple):
    file: str
    text: str  # found once in the file, within a line
    replacement: str
    what: str
    preset: str

    def name(self) -> str:
        return f"{self.file}: {self.what}"


# By file: the text that is replaced, what replaces it, what is then wrong, and the preset if not the usual one.
# fmt: off
CATALOGUE: dict[str, list[tuple[str, ...]]] = {
    "src/bitstream/bsr.cpp": [
        ("return __builtin_bswap32(v);", "return v;", "words are loaded in the processor's byte order"),
        ("bs->flush_fn != zelt_bsr_flush || bytes_left(bs) < 4",
         "bytes_left(bs) < 4", "the caller's refill is not asked while there are four bytes"),
        ("bytes_left(bs) < 4) return bs->flush_fn(bs, 4);",
         "bytes_left(bs) < 3) return bs->flush_fn(bs, 4);", "a whole word is loaded with three bytes left"),
        ("size <= bs->leftbits; }", "size <= bs->leftbits + 1; }", "one bit more than is cached counts as cached"),
        ("-left & 63) & mask);", "-left & 31) & mask);", "a read of 32 bits from an empty cache leaves the word in it"),
        ("if (left < size) {", "if (left <= size) {", "a read of all that is cached refills first"),
        ("? ~u32{0} : value;", "? 0 : value;", "a failed read gives 0"),
        ("? ~u32{1} : value - 1;", "? ~u32{0} : value - 1;", "a failed Exp-Golomb read gives -1 instead of -2"),
        ("add(zeros, 2 * more + 1)", "add(zeros, 2 * more)", "a long Exp-Golomb code is read one bit short"),
        ("std::min(room, 4)", "room", "peeking with a negative count asks the refill for more than four bytes"),
        ("if (size > bs->leftbits && bytes_left(bs) > 0)",
         "if (size > bs->leftbits)", "peeking looks at the byte past the end"),
        ("sub(31, bs->leftbits)) != 0; }",
         "sub(32, bs->leftbits)) != 0; }", "quirk: a run of ones that fills the cache goes on in the next word"),
        ("bs->end = advance(advance(buf, size), -1);", "bs->end = advance(buf, size);", "the buffer ends a byte late"),
        ("if (n < 1) return -1;", "if (n < 0) return -1;", "a refill without data succeeds"),
        ("if (read_bits(bs, size, value)) return 0;",
         "if (read_bits(bs, size, value)) return ~u32{0};", "skip_peek gives all ones where skipping fails"),
        ("if (bs->leftbits == 0 && refill(bs)) return -1;",
         "if (bs->leftbits <= 0 && refill(bs)) return -1;", "quirk: reading a bit refills a cache below 0, too"),
        ("bs->leftbits & 7); }", "bs->leftbits & 15); }", "skip_align8 aligns to 16 bits"),
        ("if (nbits) *nbits = n;", "*nbits = n;", "read_align8 takes no null for the count"),
        ("return k & 1 ? half + 1 : -half;",
         "return k == ~u32{1} ? -2 : k & 1 ? half + 1 : -half;", "quirk: a failed signed Exp-Golomb read gives -2"),
        ("static_cast<u32>(1 - zelt_bsr_read1(bs))",
         "static_cast<u32>(!zelt_bsr_read1(bs))", "quirk: a failed truncated code of range 1 gives 0"),
        ("if (range < 1) return 0;", "if (range < 0) return 0;", "a truncated code of range 0 is read"),
        ("ones = bs->leftbits;  // Kept",
         "ones = std::countl_one(bs->code);  // Kept", "quirk: the cached bits of a long unary code are looked at"),
        ("if (ones >= max) {", "if (ones > max) {", "a truncated unary code of all cached bits refills"),
        ("const bool whole = count <= max;",
         "const bool whole = count < max;", "quirk: the zero after exactly `max` ones is left"),
        ("consume(bs, whole ? more + 1 : max);",
         "consume(bs, whole ? more + 1 : max + 1);", "the bit after a longer run than `max` is consumed"),
    ],
    "src/bitstream/bsw.cpp": [
        ("sub(39, bs->leftbits) >> 3", "sub(32, bs->leftbits) >> 3", "a partial byte is not flushed"),
        ("bs->leftbits = 0;", ";", "the caller's flush is not told that the cache is full"),
        ("if (left > len) {", "if (left >= len) {", "a cache that becomes full is not flushed"),
        ("if (bytes_left(bs) < 5) return -1;",
         "if (bytes_left(bs) < 4) return -1;", "quirk: a write fills the last byte of the buffer"),
        ("stored = static_cast<s32>(std::clamp<std::intptr_t>(bytes_left(bs), 0, n));",
         "stored = n;", "the flush stores past the end"),
        ("bs->cur = advance(bs->cur, n);",
         "bs->cur = advance(bs->cur, stored);", "the flush advances by what it stored only"),
        ("if (occupied_bytes(bs) >= bytes_left(bs)) return -1;",
         "if (occupied_bytes(bs) > bytes_left(bs)) return -1;", "quirk: sink fills the last byte of the buffer"),
        ("shl(static_cast<u32>(val) & 1, bs->leftbits);",
         "shl(static_cast<u32>(val), bs->leftbits);", "write1 takes more than the lowest bit"),
        ("if (bytes_left(bs) < 1) return -1;",
         "if (bytes_left(bs) < 4) return -1;", "quirk: write1 does not flush with fewer than four bytes left"),
        ("else if (range > 1)", "else if (range >= 0)", "a truncated code of range 0 is written"),
        ("if (val <= 254) return", "if (val <= 255) return", "the length of value 255 is read past the table"),
        ("codeword_bits[std::min<u32>((val + 1) >> 8, 255)]",
         "codeword_bits[(val + 1) >> 8]", "lengths beyond 65534 are read past the table"),
    ],
    "src/bitstream/cache.h": [
        ("return count < shift_limit ? static_cast<u32>(shift_word{v} << count) : 0;",
         "return static_cast<u32>(shift_word{v} << count % shift_limit);", "left shifts by 64 and more wrap"),
        ("reinterpret_cast<std::uintptr_t>(bs->cur) + 1);",
         "reinterpret_cast<std::uintptr_t>(bs->cur));", "the last byte of the buffer does not count"),
        ("? static_cast<u32>(shift_word{v} >> count) : 0;",
         "? static_cast<u32>(shift_word{v} >> count) : v;", "right shifts by 64 and more leave the word"),
    ],
    "src/bitstream/golomb.h": [
        ("return v <= 0 ? 0 - twice", "return v < 0 ? 0 - twice", "the signed code of 0"),
    ],
    "src/buffer/audb.cpp": [
        ("if (!aud->free_cb) return;",
         "if (!aud->free_cb) aud->free_cb = default_free;", "without a free callback the library's own is called"),
        ("for (int k = 0; k < max_buffers; ++k)", "for (int k = 0; k < 1; ++k)", "only the first buffer is freed"),
        ("if (size < 0 || size > INT32_MAX) return false;",
         "if (size < 0) return false;", "sizes of 2^31 and more are not refused"),
        ("((s64{aud->bits} + 7) >> 3)", "(s64{aud->bits} >> 3)", "bits of a sample are rounded down to bytes"),
        (": channel * aud->nch);", ": channel);", "interleaved audio gets one channel's memory"),
        ("fmt >= 1 && fmt <= 99;", "fmt >= 1 && fmt <= 100;", "format 100 is interleaved"),
        ("if (aud) free_buffers(aud);",
         "if (aud && status != ZELT_ERR_BUFFER_ALLOC) free_buffers(aud);", "a failing buffer leaks those before it"),
        ("nch > max_buffers)", "nch > max_buffers + 1)", "nine planar channels are not refused"),
        ("alloc_cb ? free_cb : default_free;",
         "free_cb ? free_cb : default_free;", "a free callback counts without an allocator"),
    ],
    "src/buffer/bitb.cpp": [
        ("if (bit->buf && bit->free_cb)", "if (bit->buf)", "a null free callback is called"),
        ("        std::free(bit);", "        ;", "the record leaks where its buffer cannot be had"),
        ("return fail(ZELT_ERR_BITB_ALLOC);",
         "return fail(ZELT_ERR_BUFFER_ALLOC);", "another error than documented without a buffer"),
    ],
    "src/buffer/expand.cpp": [
        ("default: stop();", "default: return;", "quirk: border widths that the kernels do not take are ignored"),
        ("fast::expand_rows<24>", "fast::expand_rows<16>", "borders of 24 are 16 wide"),
        ("count > 0 ? 2 * static_cast<std::size_t>(count)",
         "count > 0 ? static_cast<std::size_t>(count)", "16-bit borders are half as wide"),
        ("return (stride + 1) >> 1 << 1;", "return stride >> 1 << 1;", "odd strides of 16-bit rows are rounded down"),
        ("extend_side_of(row, row - s64{by} * element, n, step);",
         "extend_side_of(row, row - s64{bx} * element, n, step);",
         "quirk: the left border starts where its width says"),
        ("extend_side_of(row + (w - 1) * element,",
         "extend_side_of(row + (w - 2) * element,", "the right border repeats the column before the last"),
        ("const s64 batch = bx == by ? 32 : h;",
         "const s64 batch = 32;", "with unequal halves left and right alternate"),
        ("stride % 4) stop();", "stride % 2) stop();", "strides of an odd multiple of 2 are not refused"),
        ("r <= by; ++r) repeat_row(first,",
         "r < by; ++r) repeat_row(first,", "the outermost row of the upper border is missing"),
        ("last = first + (h - 1) * stride;",
         "last = first + h * stride;", "the lower border repeats the row below the picture"),
        ("return from >= 0 && from + bytes <= size; }",
         "return from + bytes <= size; }", "borders may begin before the memory"),
        ("const s64 left = std::max({s64{0}, -src, -dst}),",
         "const s64 left = std::max(s64{0}, -dst),", "a row is repeated from before the memory"),
        ("end = std::min(run, size - dst);", "end = run;", "a border ends past the memory"),
        ("const s64 own_w = stride / element - 2 * bx,",
         "const s64 own_w = stride / element - bx,", "a plane's own width counts one border"),
        ("sample - (bx * element + by * stride);",
         "sample - (bx + by * stride);", "16-bit planes without a base start in their border"),
        ("const s64 rows = width % 8 ? (s64{count} + 7) / 8 * 8 : count;",
         "const s64 rows = count;", "quirk: rows of an odd multiple of 4 are not rounded up to eight"),
        ("if (width % 4) stop();", "if (width % 2) stop();", "widths of an odd multiple of 2 are not refused"),
    ],
    "src/buffer/geometry.cpp": [
        ("{ZELT_CS_YUV422, 3, 1, 1, 0},", "{ZELT_CS_YUV422, 3, 1, 1, 1},", "4:2:2 chroma has half the rows"),
        ("{ZELT_CS_YUV411, 3, 1, 2, 0},", "{ZELT_CS_YUV411, 3, 1, 1, 0},", "4:1:1 chroma has half the width"),
        ("{300, 1, 4, 0, 0}", "{300, 1, 3, 0, 0}", "packed formats from 300 have three bytes a pixel"),
        ("if (cs >= 100 && cs < 600)", "if (cs > 100 && cs < 600)", "format 100 is unknown"),
        ("static_cast<s32>((s64{size} + (1 << shift) - 1) >> shift)", "size >> shift", "chroma sizes are rounded down"),
        ("const bool chroma = i == 1 || i == 2;", "const bool chroma = i > 0;", "alpha is reduced like chroma"),
        ("u32{f.bytes_per_sample} << 16 | 1;",
         "u32{f.bytes_per_sample} << 16;", "the low half of a sample's size is 0"),
        ("return (size + step - 1) & -step; }",
         "return step ? (size + step - 1) & -step : size; }", "quirk: an alignment of 0 leaves the size"),
        ("return n >= 0 && n <= 0x7fffffff; }",
         "return n >= 0 && n <= 0xffffffff; }", "pictures of 2 GiB and more are not refused"),
        ("cs < 100 || cs == ZELT_CS_RGB888 ? find_format(cs)",
         "cs < 100 ? find_format(cs)", "quirk: RGB888 has no planar dimensions"),
        ("g->size = -1;", "g->size = 0;", "pictures that cannot be allocated have no size"),
        ("high(pad[i]) * f->bytes_per_sample : 0;", "high(pad[i]) : 0;", "padding of 16-bit planes is in bytes"),
        ("aw * f->bytes_per_sample + 2 * pad_bytes;",
         "aw * f->bytes_per_sample + pad_bytes;", "rows have padding on one side"),
    ],
    "src/buffer/imgb.cpp": [
        ("img->x = img->y = 0;", "img->x = 0;", "rebirth keeps the old y"),
        ("used && aux ? aux +", "used ? aux +", "quirk: an auxiliary address of 0 counts like any other"),
        ("aux += static_cast<u32>(bytes);",
         "if (aux) aux += static_cast<u32>(bytes);", "quirk: planes after the first have no auxiliary address either"),
        ("std::min(bytes, size - offset))", "bytes)", "clearing goes on past the plane"),
        ("bytes += (rows - 1) * stride;", "bytes += rows * stride;", "clearing whole rows takes one more"),
        ("(aw - w) * bytes, h);", "aw - w, h);", "alignment of 16-bit planes is cleared half"),
        ("bytes_below, ah - h);", "bytes_below, ah - h - 1);", "the last row of the alignment is not cleared"),
        ("bps[0] >> 16, aw[0]);",
         "bps[0] >> 16, s64{count(aw[0])} * (bps[0] >> 16));", "quirk: rows below a packed picture are cleared whole"),
        ("memory.clear((ah + py) * stride, stride, py);",
         "memory.clear((ah + py + 1) * stride, stride, py);", "the first padding row below is not cleared"),
        ("if (g.size < 0 || g.size > img->size)",
         "if (g.size > img->size)", "rebirth takes a size that cannot be allocated"),
        ("img->cs >= 600) return", "img->cs > 600) return", "alignment of planar RGB is not refused"),
        ("if (alloc_cb && !free_cb)", "if (free_cb && !alloc_cb)", "an allocator without its counterpart is taken"),
        ("if (g.size < 0) return fail(ZELT_ERR_BUFFER_ALLOC, img);",
         "if (g.size < 0) return fail(ZELT_ERR_BUFFER_ALLOC);", "the record leaks where the size is impossible"),
        ("if (!block) return fail(ZELT_ERR_BUFFER_ALLOC, img);",
         "if (!block) return fail(ZELT_ERR_BUFFER_ALLOC);", "the record leaks where the block cannot be had"),
        ("    img->release(img);", "    ;", "rebirth keeps a reference"),
        ("u32 aux = 0;", "u32 aux = 1;", "an allocator that leaves the auxiliary word alone hands out 1"),
    ],
    "src/buffer/md5.cpp": [
        ("0xfd469501", "0xfd469502", "a constant of the first round"),
        ("STEPS(H, 4, 11, 16, 23,  5,", "STEPS(H, 4, 11, 16, 22,  5,", "a rotation of the third round"),
        ("return c ^ (b | ~d); } };", "return c ^ (b | d); } };", "the function of the last round"),
        ("ctx->bits_hi += (len >> 29) + (",
         "ctx->bits_hi += (", "an update of 512 MiB does not count into the high word"),
        ("(len >> 29) + (ctx->bits_lo + (len << 3) < ctx->bits_lo);", "(len >> 29);", "a carry of the length is lost"),
        ("if (pending + n < block_size) return;",
         "if (pending + n <= block_size) return;", "a block that is just full is lost"),
        ("if (count > 0) update(", "if (count > 1) update(", "a single sample is not digested"),
        ("pending < block_size - 8 ?", "pending <= block_size - 8 ?", "the padding of 56 pending bytes"),
        ("store_unaligned(tail + size - 4, ctx->bits_hi);",
         "store_unaligned(tail + size - 4, u32{0});", "the high word of the length is not digested"),
        ("0, sizeof *ctx);", "0, sizeof ctx);", "the context is not cleared"),
    ],
    "src/buffer/md5_imgb.cpp": [
        ("if (!sample || bytes <= 0) return;", "if (bytes <= 0) return;", "null planes are digested"),
        ("std::max<s64>(origin + r * stride, 0)", "origin + r * stride", "rows before the block are read"),
        ("std::min(origin + r * stride + bytes, size)", "origin + r * stride + bytes", "rows past the block are read"),
        ("y, h, w - x);", "y, h, w);", "quirk: x does not shorten the rows"),
        ("y >> 1, (h + 1) >> 1,", "y >> 1, h >> 1,", "the last chroma row of an odd height is left out"),
        ("for (const int plane : {1, 2})", "for (const int plane : {1, 2, 3})", "quirk: alpha is digested"),
        ("img->cs > 99)", "img->cs > 100)", "format 100 is digested"),
    ],
    "src/container/list.cpp": [
        ("list->cur = next_or_null(list, node);", "list->cur = nullptr;", "removing at the cursor loses it"),
        ("if (list->free_fn) list->free_fn",
         "if (list->free_fn && list->cnt) list->free_fn", "the last element is not given to free_fn"),
        ("while (++idx < list->cnt) node = node->prev;",
         "while (++idx <= list->cnt) node = node->prev;", "positions of the second half are one off"),
        ("std::free(tail);", ";", "a failing creation leaks the tail"),
        ("return idx == list->cnt ? zelt_list_add(list, data) : nullptr;",
         "return idx > list->cnt ? nullptr : idx == list->cnt ? zelt_list_add(list, data) : insert_after(list, node_at(list, idx)->prev, data);",
         "quirk: positions inside the list take an element"),
        ("return empty(list) || idx >= list->cnt ?",
         "return empty(list) || idx < 0 || idx >= list->cnt ?", "quirk: a negative position is refused"),
        ("idx >= list->cnt ? nullptr : node_at(list, idx); }",
         "idx > list->cnt ? nullptr : node_at(list, idx); }", "the position behind the last has an id"),
        ("idx >= list->cnt ? list->cnt : remove(",
         "idx >= list->cnt ? -1 : remove(", "removing outside the list gives -1"),
        ("prev_or_null(list, list->cur ? list->cur : list->tail);",
         "list->cur ? prev_or_null(list, list->cur) : nullptr;", "quirk: without a cursor nothing goes"),
        ("if (!list->cur) return 0;", "if (!list->cur) return -1;", "removing the next without a cursor gives -1"),
    ],
    "src/container/rbuf.cpp": [
        ("rb->head == (rb->tail == 0 ? rb->size - 1 :",
         "rb->head == (rb->tail == 0 ? rb->size :", "full one byte late with the read index at 0"),
        ("m = std::min<s64>(len - e, rb->head);", "m = len - e;", "more than there is is taken behind a wrap"),
        ("if (at + k >= 0) line[at + k]", "line[at + k]", "a joined line is written from before its start"),
        ("if (k > 0 && src[k - 1] == '\\r')",
         "if (src[k - 1] == '\\r')", "the byte before the data may be a carriage return"),
        ("k < n && src[k]; ++k)", "k < n; ++k)", "a zero byte does not end the search of a line"),
        ("if (size < 1) return nullptr;", "if (size < 0) return nullptr;", "a ring of no bytes can be had"),
        ("std::free(buf);", ";", "a failing creation leaks the storage"),
        ("{ return rb->size - 1; }", "{ return rb->size; }", "the capacity is one more"),
        ("rb->head - 1 - rb->tail)", "rb->head - rb->tail)", "quirk: wrapped data counts in full"),
        ("rb->tail + 1 - rb->head);",
         "rb->tail - 1 - rb->head);", "quirk: free space without a wrap is what can be stored"),
        ("rb->size - rb->head - (rb->tail == 0);", "rb->size - rb->head;", "contiguous space with the read index at 0"),
        ("if (rb->tail == 0) return std::min(len, e - 1);",
         "if (rb->tail == 0) return rb->head += std::min(len, e - 1), std::min(len, e - 1);",
         "quirk: skipping the rest with the read index at 0 commits it"),
        ("std::min(len - e, rb->tail - 1);", "std::min(len - e, rb->tail);", "skipping may fill the ring"),
        ("if (e > len || (e == len && rb->tail == 0)) {",
         "if (e > len) {", "quirk: the whole rest of the storage cannot be filled"),
        ("if (rb->tail <= r) return 0;", "if (rb->tail < r) return 0;", "data that wraps may fill the ring"),
        ("rb->tail = (rb->tail + len) % rb->size;", "rb->tail = rb->tail + len;", "the read index does not wrap"),
        ("before < 0 ? -before : 0;", "0;", "data lands before the caller's buffer"),
        ("wrapped(rb) ? e : std::min<s64>(e, max - 1), line, 0))",
         "std::min<s64>(e, max - 1), line, 0))", "quirk: a line before a wrap heeds max"),
        ("rb->tail += n;  // Kept",
         "rb->tail = static_cast<s32>(std::find(rb->buf + rb->tail, rb->buf + rb->size, '\\n') - rb->buf) + 1;  // Kept",
         "quirk: what was added to a line is not taken from the ring"),
        ("return end_line(line, e + 2);",
         "return end_line(line, e + 1);", "quirk: a joined line counts what is written"),
        ("std::min<s64>(rb->head, max - e), line, e);", "rb->head, line, e);", "a joined line does not heed max"),
    ],
    "src/container/rlist.cpp": [
        ("*rl = {std::max(cnt, 1),", "*rl = {cnt,", "a pool of no nodes can be had"),
        ("            zelt_rlist_delete(rl);", "            std::free(rl);", "a failing creation leaks the nodes"),
        ("if (rl->used >= rl->cnt) return nullptr;",
         "if (rl->used > rl->cnt) return nullptr;", "one node more than there is"),
        ("for (int i = 1; i < free; ++i)",
         "for (int i = 1; i <= free; ++i)", "the free node from the front is one off"),
        ("if (!rl->used) return;", ";", "removing from an empty pool counts below 0"),
        ("rl->last->next = nullptr;", ";", "a released node stays linked behind the last"),
        ("return rl->used ? data_of(rl->last) : nullptr;", "return data_of(rl->last);", "an unused pool has data"),
    ],
    "src/core/alloc.cpp": [
        ("overhead = 36;", "overhead = 32;", "no room for the address before the block"),
        ("~std::uintptr_t{31}", "~std::uintptr_t{15}", "blocks at multiples of 16"),
    ],
    "src/core/atomic.cpp": [
        ("return atomic_add(p, -1);", "return atomic_add(p, -1) + 1;", "a decrement gives the old value"),
    ],
    "src/core/copy_simd.h": [
        ("load_unaligned<u8xn>(src + (n - lanes));",
         "load_unaligned<u8xn>(src + (n - lanes - 1));", "the end of a copy is one byte off"),
        ("} else if (n >= 8) {", "} else if (n >= 7) {", "copies of 7 bytes write before the start"),
        ("store_unaligned(dst + i * s_dst, v[i]);",
         "store_unaligned(dst + i * s_dst, v[0]);", "rows of a block copy are all the first"),
        ("column(u16{});", "static_cast<void>(column);", "the last two bytes of a block's rows are not copied"),
    ],
    "src/core/fill_scalar.h": [
        ("for (; n > 0; --n, word >>= 8)", "for (; n > 0; --n)", "the tail of a fill repeats the low byte"),
    ],
    "src/core/fill_simd.h": [
        ("fill_ends(dst, u64{word} << 32 | word, n);",
         "fill_ends(dst, u64{word}, n);", "short fills have zeros in every second word"),
        ("    else if (n >= 8)", "    else if (n >= 7)", "fills of 7 bytes write before the start"),
        ("if (n <= 4 * lanes) return;", "if (n <= 5 * lanes) return;", "a hole in fills of five registers"),
        ("const u32 turned = std::rotr(word, static_cast<int>(first % 4) * 8);",
         "const u32 turned = word;", "the phase of a word at odd addresses"),
        ("(n - first - lanes - 1) / lanes;",
         "(n - first - 2 * lanes - 1) / lanes;", "a hole before the end of longer fills"),
        ("for (std::size_t i = rest % 4; i; --i)",
         "for (std::size_t i = rest % 2; i; --i)", "two registers of a fill are missing"),
        ("return string_fill(p, turned, rest * lanes / 4);",
         "return string_fill(p, turned, (rest - 1) * lanes / 4);", "a hole before the end of the longest fills"),
        ("store_unaligned(dst + N - 8,", "store_unaligned(dst + N - 16,", "the last eight bytes of a border"),
    ],
    "src/core/log2.cpp": [
        ("return (x & (x - 1)) == 0 ?",
         "return x && (x & (x - 1)) == 0 ?", "quirk: the ceiling of the logarithm of 0 is 0"),
    ],
    "src/core/mac.h": [
        ("if (n < 6) return false;", "if (n < 4) return false;", "four octets are an address"),
    ],
    "src/core/mem.cpp": [
        ("? n : n + rest;", "? n : n;", "quirk: the rest of a 16-bit run is copied once"),
        ("rest == 32 && !contiguous", "rest == 32", "a rest of 32 bytes of a run is a piece of its own"),
        ("return n < 64 ||", "return n < 32 ||", "runs under 64 bytes have a doubled rest"),
        ("a.s_src == a.w && a.s_dst == a.w;", "a.s_src == a.w;", "a gap in the destination is copied over"),
        ("if (h & 2) rows.template operator()<2>();",
         "if (h & 2) rows.template operator()<1>();", "a row of a block copy is missing"),
        ("to = std::ptrdiff_t{s_dst} * Element,",
         "to = std::ptrdiff_t{s_dst < 0 ? -s_dst : s_dst} * Element,",
         "a negative stride of a block copy is taken as positive"),
        ("all.fill(copy_block<64 *", "all.fill(copy_block<32 *", "unlisted widths of a block copy are 32"),
        ("from_zero(std::max(size, 1)) + 127,",
         "from_zero(size) + 127,", "quirk: zelt_mset_x128 of no bytes writes nothing"),
        ("static_cast<u8>(val), whole_steps(from_zero(size), 128));",
         "static_cast<u8>(val), whole_steps(from_zero(size), 64));", "quirk: zelt_mset_x64 has steps of 64"),
        ("from_zero(std::max(size, 32)),", "from_zero(size),", "quirk: zelt_mset_x32ax4 of no bytes writes nothing"),
        ("fast::fill_bytes(bytes_at(dst) + steps, static_cast<u8>(val), all - steps);",
         "for (std::size_t i = steps; i < all; ++i) bytes_at(dst)[i] = static_cast<u8>(val >> i % 4 * 8);",
         "quirk: the tail of zelt_mset_x32ax4 goes on with the word"),
        ("4 * whole_steps(from_zero(n), 64)",
         "whole_steps(4 * from_zero(n), 64)", "zelt_mclr_x64 has steps of 64 bytes"),
    ],
    "src/core/refcount.h": [
        ("zelt_atomic_inc(&r->refcnt) : ZELT_ERR_INVALID_ARG",
         "zelt_atomic_inc(&r->refcnt) : 0", "addref of null gives 0"),
        ("    std::free(r);", "    ;", "the last release leaks the record"),
        ("std::calloc(1, sizeof(R))", "std::malloc(sizeof(R))", "records do not start as zeros"),
        ("if (err) *err = status;", "*err = status;", "a null status is written"),
    ],
    "src/core/sync.cpp": [
        ("now == v || now == stop) return now;", "now == v) return now;", "a wait does not heed the stop value"),
        ("constexpr u32 stop = 0xffffffff;", "constexpr u32 stop = 0x7fffffff;", "the stop value"),
        ("if (now == v) return 0;", "if (now == v) return v;", "quirk: a wait that ends at once gives the value"),
        ("if (now == stop) return stop;", "if (now == stop) return 0;", "a stopped wait gives 0"),
        ("if (now == v || store_exclusive(", "if (now != v || store_exclusive(", "waking stores nothing"),
    ],
    "src/core/system.cpp": [
        ("return sizeof path - 1;", "return sizeof path;", "the length of the temporary path counts its end"),
        ("std::memset(out, 0, 4);", ";", "without an address the bytes are as they were"),
    ],
    "src/core/vdata.cpp": [
        ("    v->data = data;", "    std::free(v->data), v->data = data;", "quirk: previous data is freed"),
        ("if (!data) return ZELT_ERR_OUT_OF_MEMORY;",
         "if (!data) return ZELT_OK;", "a failed allocation counts as done"),
        ("static_cast<std::size_t>(size) + 2));",
         "static_cast<std::size_t>(size) + 1));", "no room for the second zero"),
        ("if (!bytes || size < 1)", "if (!bytes || size < 0)", "no bytes are taken"),
    ],
    "src/core/version.cpp": [
        ("\"Mar 16 2019\", \"18:27:20\");", "__DATE__, __TIME__);", "quirk: the text has the time of the build"),
    ],
    "src/csc/convert.cpp": [
        ("dst_cs >= ZELT_CS_ARGB8888 ?", "dst_cs == ZELT_CS_ARGB8888 ?", "quirk: only ARGB8888 puts alpha first"),
        ("to_rgb, planar<3>)", "repack, planar<3>)", "YUV444 is copied to R8G8B8"),
        ("X(x8y8z8a8_to_xyz565a8,     planar<4>,",
         "X(x8y8z8a8_to_xyz565a8,     planar<3>,", "R8G8B8A8 loses its alpha in RGB565A8"),
    ],
    "src/csc/convert.h": [
        ("const bool packed = !a[1];",
         "const bool packed = false;", "a picture of one plane has no component pointers"),
        ("if (p[i] != p[0] + i) return false;",
         "if (p[1] != p[0] + 1) return false;", "components with strides of their own go in registers"),
        ("put4(place, v.a, v.c0, v.c1, v.c2)", "put4(place, v.a, v.c2, v.c1, v.c0)", "ARGB8888 has blue first"),
        ("high << 5 | (low >> 3 & 0x1C)", "high << 5 | (low >> 3 & 0x18)", "RGB565 has five bits of green"),
        ("shift_insert<5>(v.c0, v.c1); }",
         "shift_insert<5>(v.c0, static_cast<V>(v.c1 << 1)); }", "the high bits of green in RGB565"),
        ("if (x < w) dst.put(at{w - step},",
         "if (x < w - 1) dst.put(at{w - step},", "a single pixel is left at the end of a row"),
        ("s < d + static_cast<std::uintptr_t>(w * Dest::step[j])",
         "s < d + static_cast<std::uintptr_t>(w)", "an overlap of packed rows is not seen"),
        ("    for (int i = 0; i < Layout::count; ++i)",
         "    for (int i = 0; i < 1; ++i)", "planes after the first count as contiguous"),
    ],
    "src/csc/dispatch.cpp": [
        ("{ZELT_CS_RGBA5658,  F(r8g8b8a8_to_rgba8888)}", "{ZELT_CS_RGBA5658,  F(r8g8b8a8_to_rgba5658)}",
         "quirk: the cell of RGBA5658 has its converter"),
        ("{{ZELT_CS_R10G10B10, F(r10g10b10_to_p410)}}", "{}", "quirk: R10G10B10 is not converted to itself"),
        ("{none,              {{ZELT_CS_YUV444A8,",
         "{ZELT_CS_R8G8B8A8,  {{ZELT_CS_YUV444A8,", "quirk: R8G8B8A8 becomes YUV444A8 by the dispatch"),
        ("if (!fn && err) *err = ZELT_ERR_UNSUPPORTED;",
         "if (err) *err = fn ? ZELT_OK : ZELT_ERR_UNSUPPORTED;", "quirk: success sets *err"),
        ("if (dst_cs >= 200 && dst_cs <= 799)", "if (dst_cs > 200 && dst_cs <= 799)", "RGB565 is no destination"),
        ("src_w != dst_w || src_h != dst_h;", "src_w != dst_w;", "another height is the same size"),
        ("ZELT_CS_ARGB8888, ZELT_CS_BGRA8888, ZELT_CS_RGB888_ALT,",
         "ZELT_CS_BGRA8888, ZELT_CS_ARGB8888, ZELT_CS_RGB888_ALT,", "two columns of the exported table change places"),
        ("F(yuv444a8_to_argb8888)", "F(yuv444a8_to_bgra8888)", "YUV444A8 becomes BGRA8888 instead of ARGB8888"),
    ],
    "src/csc/high_depth.cpp": [
        ("half_w = src_w / 2 + src_w % 2,", "half_w = src_w / 2,", "the last chroma column of an odd width"),
        ("dst_cs == ZELT_CS_YUV444A8 ? 4 : 3;", "3;", "alpha is not copied"),
        ("std::memmove(dst, src, run);",
         "for (std::size_t i = run; i-- > 0;) dst[i] = src[i];", "planes within one buffer are copied backwards"),
        ("if (src_stride == src_w && dst_stride == src_w && src_h > 0)",
         "if (src_stride == src_w && src_h > 0)", "a gap in the destination is copied over"),
        ("    if (src_w < 1) return;", "    if (src_w == 0) return;", "a negative width is copied"),
    ],
    "src/csc/pixel10_scalar.h": [
        ("static_cast<u8>(word >> 2);", "static_cast<u8>((word + 2) >> 2);", "10-bit samples are rounded to bytes"),
        ("std::clamp(v, 0, 1023); };", "std::clamp(v, 0, 1024); };", "10-bit colours up to 1024"),
        ("std::clamp(512 + std::min((v + 512) >> 10, 1023), 0, 65535)",
         "std::clamp(512 + ((v + 512) >> 10), 0, 1023)", "quirk: 10-bit chroma never gives 1024"),
        ("600 * g + 116 * b", "601 * g + 115 * b", "a coefficient of 10-bit luma"),
    ],
    "src/csc/pixel10_simd.h": [
        ("mul_q15(e << 5, 1436)", "mul_q15(e << 5, 1435)", "the coefficient of 10-bit red"),
    ],
    "src/csc/pixel_scalar.h": [
        ("((359 * e + 128) >> 8)", "((359 * e + 127) >> 8)", "the rounding of red"),
        ("183 * e + 128", "182 * e + 128", "a coefficient of green"),
        ("std::min(128 + ((v + 128) >> 8), 255)", "128 + ((v + 128) >> 8)", "pure blue and pure red wrap"),
    ],
    "src/csc/pixel_simd.h": [
        ("dot<73, -88>(v, u) + 2047)", "dot<73, -88>(v, u) + 2046)", "the rounding of green"),
        ("high(sub_sat(splat(128), dot<43, 85, -128>(rgb)))",
         "high(splat(128) - dot<43, 85, -128>(rgb))", "pure blue wraps"),
    ],
    "src/media/fcc2mt.cpp": [
        ("X(VID_H264, \"x264\")", "X(VID_HEVC, \"x264\")", "x264 is HEVC"),
        ("mt = zelt_fcc2mt_vid(fcc);  // Kept",
         "mt = zelt_fcc2mt_drm(fcc) != ZELT_MT_DRM_UNKNOWN ? zelt_fcc2mt_drm(fcc) : zelt_fcc2mt_vid(fcc);  // Kept",
         "quirk: DIVX is rights management"),
        ("X(AUD_WMA, 353)", "X(AUD_WMA_PRO, 353)", "the second code of WMA"),
        ("for (int i = 3; i >= 0; --i)", "for (int i = 0; i <= 3; ++i)", "codes have their first character high"),
    ],
    "src/media/keyframe.cpp": [
        ("size - i >= need - 1 + fast::places", "size - i >= fast::places", "the fast search reads past the data"),
        ("for (; size - i >= need; ++i)", "for (; size - i > need; ++i)", "a start code at the end is not seen"),
        ("h263_variant = 111;", "h263_variant = 112;", "quirk: type 111 has no key frames"),
        ("if (type == 1 || type == 5) return",
         "if (type == 5) return", "an H.264 slice before an IDR slice does not decide"),
        ("return type == 19 || type == 20;",
         "return type == 19 || type == 20 || type == 21;", "quirk: clean random access is a key frame"),
        ("return data[0] < 0x40;  // Kept",
         "return size > 0 && data[0] < 0x40;  // Kept", "quirk: no data is no key frame of DIV3"),
        ("return i < size - 7 && (picture[7]", "return (picture[7]", "an H.263 header cut short is read past its end"),
        ("if (update != 1)", "if (update == 0)", "reserved values of UFEP"),
        ("if (mt == ZELT_MT_VID_HFYU) return 1;",
         "if (mt == ZELT_MT_VID_HFYU) return data != nullptr;", "HuffYUV without data is no key frame"),
    ],
    "src/media/start_code_scalar.h": [
        ("pair_bits = 0xFEFF;", "pair_bits = 0xFFFF;", "the quick test of start codes wants three zeros"),
        ("for (s32 i = 0; i < places; ++i)",
         "for (s32 i = 0; i < places - 1; ++i)", "the last place tested at once is left out"),
    ],
    "src/media/start_code_simd.h": [
        ("load(p + i + 1, v);", "load(p + i, v);", "the quick test of start codes looks at even places"),
    ],
    "src/media/str.cpp": [
        ("c == ' ' || c == '\\t' ||", "c == ' ' ||", "a tab is no space"),
        ("return s && s[1] ? s : nullptr;", "return s;", "quirk: the last byte can be a word"),
        ("if (s && s[0] && !s[1]) return s;",
         "if (s && s[0] && !s[1] && !is_space(*s)) return s;", "quirk: a single space is no word"),
        ("for (++s; s[1]; ++s)", "for (++s; s[0]; ++s)", "quirk: the last byte ends a word"),
        ("return s[0] && s[1] ? s : nullptr;",
         "return s[0] ? s : nullptr;", "quirk: an end of line that is the last byte counts"),
        ("if (s[0] == '\\r' && s[1] == '\\n') ++s;", ";", "CR LF are two ends of line"),
        ("(found ? token : 1)", "token", "after a line end as much is passed over as after the token"),
        ("s[i] == '\\r' && s[i + 1] == '\\n' ? 2 : 0;",
         "s[i] == '\\r' ? 1 + (s[i + 1] == '\\n') : 0;", "a CR alone ends a line"),
        ("after && *after ?", "after ?", "the end of the text is a rest of its own"),
    ],
    "src/media/uri.cpp": [
        ("? c - '0' : 0; }",
         "? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : 0; }", "quirk: hexadecimal letters count"),
        ("if (*src != '/') *dst++ = '/';", "*dst++ = '/';", "paths begin with two slashes"),
        ("if (text[len] == ':' && next) {",
         "if (text[len] == ':' && next && !std::memchr(text, '/', static_cast<std::size_t>(len))) {",
         "quirk: a colon in the path is part of it"),
        ("static_cast<s32>(std::strlen(text))",
         "static_cast<s32>(std::strcspn(text, \"\\r\\n\"))", "quirk: a path without a host ends with its line"),
        ("if (len == 0) return -1;", ";", "an empty port is taken"),
        ("if (!s[1] || !s[2]) break;", "if (!s[1]) break;", "an escape of one digit is read past the end"),
        ("? 2 : s[0] ? 1 : 0); }", "? 2 : 1); }", "the rest of a text without a line end begins past its end"),
    ],
    "src/metric/diff_simd.h": [
        ("store_rows_16<W, rows>(p, sd, v), p += rows * sd;",
         "store_rows_16<W, rows>(p, sd, v), p += rows * sa;", "results go on by the first block's stride"),
        ("const B* pb = b + y * std::ptrdiff_t{sb} + x;",
         "const B* pb = b + y * std::ptrdiff_t{sa} + x;", "strips of the second block go on by the first one's stride"),
        ("last ? columns - W + sd : columns;",
         "last ? columns - W + sa : columns;", "results of wide rows go on by the first block's stride"),
    ],
    "src/metric/sad.cpp": [
        ("return w == 8 ?", "return w <= 8 ?", "quirk: widths under 8 are 8 columns"),
        ("fast::sad_rows<8>(h, src1, src2, s_src1, s_src2)",
         "fast::sad_rows<8>(h, src1, src2, s_src2, s_src1)", "the strides of 8 columns change places"),
        ("src1, src2, s_src1, s_src2, threshold);",
         "src1, src2, s_src1, s_src2, threshold + 1);", "a sum one above the threshold does not end early"),
    ],
    "src/metric/sad_scalar.h": [
        ("std::is_same_v<B, s16> ? 15 : 31);",
         "std::is_same_v<B, s16> ? 31 : 31);", "quirk: large differences of 16-bit samples are exact"),
        ("if (static_cast<int>(sum) > threshold) break;",
         "if (static_cast<int>(sum) >= threshold) break;", "a sum that equals the threshold ends early"),
    ],
    "src/metric/sad_simd.h": [
        ("return sum + scalar::sad(w, 1, a, b, 0, 0);", "return sum;", "what is left of a row of any width"),
        ("at_once = 8;", "at_once = 16;", "sums of magnitudes overflow 16 bits"),
        ("if (n > 0) add_abs_diff(part,", "if (n > 1) add_abs_diff(part,", "the last row of an odd number"),
        ("if (!all.exact()) [[unlikely]]", "if (false)", "large 16-bit differences are not summed again"),
        ("case 4: return sad_eskip<4>(", "case 4: return sad_eskip<8>(", "four columns with early exit are eight"),
        ("W > 32 ? 4 : 8;", "8;", "running sums of rows of 64 columns overflow 16 bits"),
        ("-1, 65534) + 1", "-1, 65534)", "early exit where a row reaches the threshold and does not exceed it"),
    ],
    "src/metric/satd.cpp": [
        ("KERNEL(8x8, _16, u16, u16)",
         "KERNEL(8x8, _16, s16, s16)", "quirk: 16-bit samples of the 8x8 SATD are signed"),
    ],
    "src/metric/satd_scalar.h": [
        ("(hadamard_sum<N>(v) + 2) >> 2;", "hadamard_sum<N>(v) >> 2;", "the 8x8 SATD is not rounded"),
        ("std::conditional_t<N == 4, u16, u32> v[N * N];",
         "u32 v[N * N];", "quirk: the 4x4 SATD does not wrap in 16 bits"),
        ("b += 4 * std::ptrdiff_t{sb})",
         "b += 4 * std::ptrdiff_t{sa})", "tiles of the second block go on by the first one's stride"),
    ],
    "src/metric/satd_simd.h": [
        ("return (half + 1) >> 1; }", "return half >> 1; }", "the 8x8 SATD is not rounded"),
        ("range::of_bytes ? 32 : 64;", "range::of_bytes ? 64 : 64;", "sums of bytes of 64 rows overflow 16 bits"),
        ("!any_sign_bit(seen | (seen + seen)); }", "!any_sign_bit(seen); }", "coefficients up to 2^15 count as exact"),
        ("seen |= va | vb;", ";", "unsigned samples above 32767 count as signed"),
        ("if (any_sign_bit(seen | (peak + 1)))",
         "if (any_sign_bit(seen | peak))", "a saturated coefficient counts as exact"),
        ("if (w - x > 4) add_strip<8>", "if (w - x >= 4) add_strip<8>", "four columns are eight"),
    ],
    "src/metric/ssd.cpp": [
        ("default: return fast::ssd<64>(w,",
         "default: return fast::ssd<4>(w,", "quirk: an unlisted width of bytes is 4 columns"),
        ("fast::ssd_of_square_or_two_rows<8>(h,",
         "fast::ssd<8>(w, h,", "quirk: 8 columns of 16 bits have all their rows"),
        ("fast::ssd_of_square_or_two_rows<4>(h,",
         "fast::ssd<4>(w, h,", "quirk: 4 columns of 16 bits have all their rows"),
    ],
    "src/metric/ssd_simd.h": [
        ("return reduce_add(sum) + scalar::ssd<W>(W, left, pa, pb, s_a, s_b);",
         "return reduce_add(sum);", "the last rows of an odd number"),
        ("        return scalar::ssd<W>(W, h, a, b, s_a, s_b);",
         "        return reduce_add(sum);", "large 16-bit differences are not squared again"),
        ("        return ssd_of_rows<W>(W, H, a, b, sa, sb);",
         "        return reduce_add(sum);", "large 16-bit differences of a square are not squared again"),
    ],
    "src/resize/bilinear.h": [
        ("ratio < 3 ? 0 :", "ratio < 4 ? 0 :", "the sampling grid of a ratio of 3"),
        ("static_cast<s64>((src - 1) >> shift)",
         "static_cast<s64>(src >> shift)", "the last samples lie outside the picture"),
        ("(position >> 15 & 7)", "((position + (1 << 14)) >> 15 & 7)", "phases are rounded"),
        ("next = step ? 1 << shift : 0;", "next = 1 << shift;", "a second sample is read of a picture of one column"),
        ("next(increment ? second : 0)",
         "next(second)", "a second sample is read of one column that a packed step has"),
    ],
    "src/resize/columns_simd.h": [
        ("if (limit < 16 * windows || x.next", "if (x.next", "windows may be wider than the source row"),
        ("std::min(start, row.limit - 16 * row.windows);", "start;", "the last window reads past the source row"),
        ("static_cast<int>((span + 15) / 16)", "static_cast<int>((span + 14) / 16)", "a window too few"),
        ("+ 2 * x.next) * Channels <= row.limit;",
         "+ x.next) * Channels <= row.limit;", "a run reads past the source row"),
        ("8 - phase, phase);", "8 - phase, phase & 3);", "the right weights of the upper phases"),
    ],
    "src/resize/handle.cpp": [
        ("return i >= 0 && i < rows ? start", "return i >= 0 ? start", "rows past the end of the picture are read"),
        ("z.pending = z.carried >= z.band_rows;",
         "z.pending = false;", "quirk: a row that waits for yet another band is made"),
        ("if (lower < z.band_rows) return true;",
         "if (lower <= z.band_rows) return true;", "the first row of the next band counts as there"),
        ("batch.flush();  // what", ";  // what", "the row buffer is overwritten before its rows are made"),
        ("(z.row < z.dst_h || z.pending)", "z.row < z.dst_h", "the last row does not wait for its band"),
        ("std::min<s64>(rows, s64{z.src_h} - y0)}", "rows}", "the last band has all of its rows"),
        ("if (z.enlarging && !within(", "if (!within(", "rows are carried over where nothing is enlarged"),
        ("of(irsz).format == id ? resize", "true ? resize", "a handle of another format is taken"),
        ("if (count_ == size) flush();", "if (count_ > size) flush();", "a batch of rows has one too many"),
        ("~row_batch() { flush(); }", "~row_batch() {}", "the last rows of a band are not made"),
        ("if (!f) return -4;", "if (!f) return -3;", "an unknown format is out of memory"),
        ("s64{p.src_pitch} * (in_bytes ? 1 : f->src_bytes);",
         "s64{p.src_pitch} * f->src_bytes;", "quirk: pitches of RGB565 pictures are in pixels"),
        ("std::max(p.band_rows, 1);", "p.band_rows;", "bands of no rows"),
        ("    std::free(irsz->row_buffer);", "    ;", "the row buffer leaks"),
        ("    destroy(irsz);", "    ;", "the handle leaks where its row buffer cannot be had"),
        ("std::calloc(1, static_cast<std::size_t>(row_size))",
         "std::malloc(static_cast<std::size_t>(row_size))", "the row buffer does not start as zeros"),
        ("* static_cast<u64>(f->src_bytes);", "* 1;", "the row buffer has a byte a pixel"),
    ],
    "src/resize/resize.cpp": [
        ("if (x_step < 0) return;", ";", "row kernels write with a negative step"),
        ("weights[2] >> 3 & 7,", "weights[2] >> 3 & 3,", "row kernels know four vertical phases"),
    ],
    "src/resize/tables.cpp": [
        ("fx * (8 - fy), (8 - fx) * fy,", "(8 - fx) * fy, fx * (8 - fy),", "two weights of the tables change places"),
        ("return *y_packed = axis(src_h, dst_h).packed();",
         "return *y_packed = axis(src_h, dst_w).packed();", "the step down is computed from the width"),
    ],
    "src/resize/resize.h": [
        ("X(8b8b8b_5b6b5b, ZELT_IRSZ_8B8B8B_5B6B5B, rgb888_to_565)",
         "X(8b8b8b_5b6b5b, ZELT_IRSZ_8B8B8B_5B6B5B, rgb565_words)", "RGB888 is read as RGB565"),
        ("return start + i * stride; }",
         "return start + i * (stride < 0 ? -stride : stride); }",
         "a negative pitch of the result is taken as positive"),
        ("{src_stride}, y, {dst, dst_stride}};",
         "{src_stride}, y, {dst, src_stride}};", "results have the source's pitch"),
        ("fast::resize_rows<Format>(rows, dst_h, x, dst_w);",
         "fast::resize_rows<Format>(rows, dst_h - 1, x, dst_w);", "the last row of a whole picture is missing"),
    ],
    "src/resize/resize_convert.cpp": [
        ("rows.src_stride[p] = src_s[p];", "rows.src_stride[p] = src_s[0];", "all planes have the first one's stride"),
        ("dst.p[p] += i * dst.stride[p];",
         "dst.p[p] += i * dst.stride[0];", "the planes of a destination have the first one's stride"),
        ("rsz::axis(src_h, dst_h), {Layout(",
         "rsz::axis(src_h, dst_w), {Layout(", "the step down comes from the width"),
        ("CONVERTER(r8g8b8a8_to_rgba8888, 4,", "CONVERTER(r8g8b8a8_to_rgba8888, 3,", "R8G8B8A8 loses its alpha"),
    ],
    "src/resize/resize_scalar.h": [
        ("sample(2), 255};", "sample(2), 0};", "pictures without alpha become transparent"),
        ("(p[1] & 7) << 3 | p[0] >> 5", "(p[1] & 7) << 3 | p[0] >> 6", "the low bits of green in RGB565"),
        ("{v[0] >> 3, v[1] >> 2,", "{v[0] >> 3, std::min((v[1] + 2) >> 2, 63),", "green is rounded to RGB565"),
        ("bl * w[2] + br * w[3]) >> 6;", "bl * w[2] + br * w[3] + 32) >> 6;", "interpolation is rounded"),
    ],
    "src/resize/resize_simd.h": [
        ("N == 4 ? v[N - 1] : csc::opaque<u8xn>", "v[N - 1]", "the last colour serves as alpha"),
        ("static_cast<V>((high & 7) << 3 | low >> 5)",
         "static_cast<V>((high & 3) << 3 | low >> 5)", "the high bit of green in RGB565"),
        ("if (size_ >= lanes)", "if (size_ > 0)", "rows shorter than a register are taken apart in one"),
        ("v[0] << 3 | v[1] >> 3);", "v[0] << 3 | v[1] >> 2);", "the high bits of green in the result"),
        ("const_cast<u8*>(*row) + start_ * Bytes;",
         "const_cast<u8*>(*row) + start_;", "pixels of several bytes are taken from the wrong place"),
    ],
    "src/resize/rows_simd.h": [
        ("const int i = same(rows_[0], other);", "const int i = 0;", "cached sums of the other row are overwritten"),
        ("if (samples < lanes ||", "if (samples < lanes / 2 ||", "rows shorter than a register are made in one"),
        ("if (phase == phase_) return;",
         "if (phase_ >= 0) return;", "the weights of a run stay those of its first row"),
        ("s64 most = cached ? row_cache<source>::max_samples : 1 << 16;",
         "s64 most = 1 << 16;", "more sums are cached than there is room for"),
        ("if (c.run_end < c.groups) filter_groups",
         "if (c.run_end < c.groups - 1) filter_groups", "the last group after a run is missing"),
    ],
    "src/simd/block.h": [
        ("return f(f(t, va.first, vb.first), va.second, vb.second);",
         "return f(t, va.first, vb.first);", "every second register of a wide row is left out"),
        ("h -= most, y += most)", "h -= most, y += most - 1)", "areas of more than 64 rows"),
        ("if (w - x >= 1) strip(", "if (w - x > 1) strip(", "the last column of an odd width"),
        ("lanes_16 > 8 && w - x >= 8)", "lanes_16 > 8 && w - x > 8)", "a strip of exactly eight columns"),
        ("b = sub_sat(a, b), a = sum;", "b = a - b, a = sum;", "a butterfly's difference does not saturate"),
    ],
    "src/simd/neon.h": [
        ("round_high, s16x2n, vrshrn, n_u16, uint16x8_t, \"vrshrn.i16\",",
         "round_high, s16x2n, vshrn, n_u16, uint16x8_t, \"vshrn.i16\",", "round_high does not round"),
        ("(s16xn)vqsubq_s16((int16x8_t)a.hi,",
         "(s16xn)vsubq_s16((int16x8_t)a.hi,", "half of a saturating difference wraps"),
        ("low8(mask) | high8(mask)", "low8(mask)", "half of a register is looked at"),
        ("sums, vrshrn, n_s32, int32x4_t, \"vrshrn.i32\",",
         "sums, vshrn, n_s32, int32x4_t, \"vshrn.i32\",", "10-bit products do not round"),
    ],
    "src/simd/neon_block.h": [
        ("return !any_sign_bit(seen); }", "return true; }", "magnitudes always count as exact"),
        ("vqaddq_u16((uint16x8_t)s, a)", "vaddq_u16((uint16x8_t)s, a)", "sums of magnitudes do not saturate"),
        ("(u16xn)vabsq_s16(", "(u16xn)vqabsq_s16(", "the magnitude of -32768 is 32767"),
        ("load_as<u16>(p + 3 * stride), v, 3)", "load_as<u16>(p + 2 * stride), v, 3)", "the fourth row of two columns"),
    ],
    "src/simd/neon_pairs.h": [
        ("vtbx4_u8(p.right, table, right)}",
         "vtbl4_u8(table, right)}", "right bytes are lost that an earlier window has"),
    ],
    "src/simd/vocabulary.h": [
        ("static_cast<s16>(value);", "static_cast<s8>(value);", "constants above 127 are cut"),
        ("{ return {a.lo >> n, a.hi >> n}; }",
         "{ return {(V)((bits)a.lo >> n), (V)((bits)a.hi >> n)}; }", "right shifts are not arithmetic"),
        ("a = {a.lo < most ? a.lo : most, a.hi < most ? a.hi : most};",
         "a = {a.lo < most ? a.lo : most, a.hi};", "half of the samples have no upper limit"),
        ("return {a.lo > least ? a.lo : least, a.hi > least ? a.hi : least};",
         "return {a.lo, a.hi > least ? a.hi : least};", "half of the samples have no lower limit"),
    ],
    "src/simd/x86.h": [
        ("narrow_ordered({v.lo >> 2 & 255, v.hi >> 2 & 255});",
         "narrow_ordered(v >> 2);", "samples of more than 10 bits saturate"),
        ("blend3(y, x, z), reg(gather3<1>)",
         "blend3(y, z, x), reg(gather3<1>)", "the middle of three interleaved channels"),
        ("lanes> spread3 = per_place([](int i) { return 11 * (i + 16 - Channel)",
         "lanes> spread3 = per_place([](int i) { return 11 * (i + Channel)", "the order in which three channels are interleaved"),
        ("return (u8xn)packs_epi16(v.lo, v.hi);",
         "return (u8xn)packus_epi16(v.lo, v.hi);", "signed narrowing saturates as unsigned"),
        ("inline u8xn round_high(s16x2n v) { return high(v + 128); }",
         "inline u8xn round_high(s16x2n v) { return high(v); }", "round_high does not round"),
        ("(s16xn)subs_epi16(v.hi, w.hi)",
         "(s16xn)((u16xn)v.hi - (u16xn)w.hi)", "half of a saturating difference wraps"),
        ("(C & 0xFFFF) | 512 << 16);", "(C & 0xFFFF) | 511 << 16);", "the rounding of 10-bit products"),
        ("- splat(product_offset(F));", "- splat(product_offset(F) - 1);", "products that have an offset are one more"),
        ("return (a & ~low) | (shifted & low);", "return (a & ~low) | shifted;", "bits shift into the byte beside"),
        ("last + 16 * i), masks[i])",
         "last + 16 * i), masks[i - 1])", "the second window has the masks of the first"),
        ("return movemask_epi8(mask) != 0; }",
         "return (movemask_epi8(mask) & 255) != 0; }", "eight bytes of a register are looked at"),
        ("narrow_ordered(s16x2n v) { return in_order(narrow(v)); }",
         "narrow_ordered(s16x2n v) { return narrow(v); }", "the order of narrowed eights"),
        ("constexpr int even = 0x88, odd = 0xDD;",
         "constexpr int even = 0x88, odd = 0x88;", "the odd 32 bits of two registers are the even ones"),
    ],
    "src/simd/x86_block.h": [
        ("_mm_insert_epi32(v, row(I + 1), (I + 1) % 4)",
         "_mm_insert_epi32(v, row(I < 2 ? I + 1 : 2), (I + 1) % 4)", "the fourth row of four columns"),
        ("load_blocks(p, 2 * stride)", "load_blocks(p, stride)", "a stride of 16-bit rows is taken in bytes"),
        ("static_cast<int>(0xAAAAAAAA);", "static_cast<int>(0x2AAAAAAA);", "the highest value is not looked at"),
        ("<0xE000E000>", "<0xC000C000>", "pairs of magnitudes up to 16383 count as exact"),
        ("multiply_neighbours(V{} - a, V{} + static_cast<u16>(-1));",
         "multiply_neighbours(a, V{} + 1);", "a value of 2^15 is added as negative"),
        ("<7u << 29>", "<6u << 29>", "a square of a saturated difference counts as exact"),
        ("_mm_slli_si128(sums, 8)", "_mm_slli_si128(sums, 10)", "the running sums of the last four rows"),
        ("const V one = abs(sub_sat(a, b));", "const V one = abs(a - b);", "a single magnitude does not saturate"),
        ("_mm256_permute2x128_si256(va, vb, 0x21);",
         "_mm256_permute2x128_si256(va, vb, 0x20);", "the exchange of lanes"),
        ("reinterpret_cast<__m64*>(p + stride), _mm_castsi128_ps((__m128i)v)",
         "reinterpret_cast<__m64*>(p + 4), _mm_castsi128_ps((__m128i)v)",
         "the second of two rows is stored beside the first"),
    ],
    "src/resize/part_scalar.h": [
        ("const s64 position = (first + i) * y.step;",
         "const s64 position = first * y.step + i;", "rows of a strip are next to one another in the source"),
        ("{{top}, {top + y.next * src_stride}",
         "{{top}, {top + src_stride}", "the lower neighbour is the next row whatever the ratio"),
    ],
    "src/resize/part_simd.h": [
        ("n * f.bytes < lanes || w", "n * f.bytes < 2 || w", "strips narrower than a register are made in registers"),
        ("columns_.first -= start, columns_.last -= start;",
         "columns_.first -= start;", "the last columns of a strip are where they are in the picture"),
        ("shape.samples = start + n * Bytes;",
         "shape.samples = n * Bytes;", "tables of a strip end with its own columns"),
        ("if (columns_.source_end(windows_) > unpacked::most) windows_ = 0;",
         "", "more of a row is unpacked than there is room for"),
    ],
    "src/video/area.h": [
        ("{first, last, dst - begin.rest, p.rest ? p.rest : dst};",
         "{first, last, dst, p.rest ? p.rest : dst};", "the first sample counts whole"),
        ("(p.sample) - (p.rest == 0);", "(p.sample);", "what ends with a sample covers the next one"),
        ("sum = sum + n / 2;", "", "means are cut off"),
        ("return quotient + ((n - 1 - (sum - quotient * n)) >> 31);",
         "return quotient;", "quotients lack what shifting cut off"),
        ("words_.factor = (65536 << words_.shift) / words_.n + 1;",
         "words_.factor = (65536 << words_.shift) / words_.n;", "quotients of words are too small"),
        ("most_in_words = 257;", "most_in_words = 270;", "sums of bytes overflow 16 bits"),
        ("std::min(most_bytes, most_unpacked / tallest)", "most_bytes", "more rows are unpacked than there is room for"),
        ("add_pair_sums(pair_sums(upper[i]), lower[i]);", "pair_sums(upper[i]) << 1;", "halves are made of upper rows"),
        ("(second) store(second + k, odd_first ? even : odd);",
         "(second) store(second + k, odd);", "NV21 of half the size has V twice"),
        ("totals[k] + sum * factors;", "totals[k] + sum;", "rows of too many weights have none"),
    ],
    "src/video/area_scalar.h": [
        ("return of(a.v * b); }", "return of(a.v); }", "columns that are covered in part count whole"),
    ],
    "src/video/area_simd.h": [
        ("quotient + ((sum + by.n / 2 - quotient * by.n) >> 15)", "quotient", "quotients of words are too large"),
        ("[row / lanes_16 * 2 + row % 2]", "[row / lanes_16 * 2]", "odd rows have the weights of even ones"),
        ("(u32xn)words.v[i / 2] & 0xFFFF,", "(u32xn)words.v[i / 2],", "sums of even rows take those of odd ones along"),
    ],
    "src/video/back_rows.h": [
        ("mul_q15(dot<64, 0>(v.c2, v.c2), m.blue)",
         "mul_q15(dot<32, 0>(v.c2, v.c2), m.blue)", "half of blue enters luma"),
        ("mul_q15(r, f[0]) + mul_q15(g, f[1])",
         "mul_q15(g, f[0]) + mul_q15(r, f[1])", "red and green are exchanged in chroma"),
        ("put(u8{}, x, x + 1 < n ? 1 : 0);", "put(u8{}, x, 1);", "a pixel alone takes another one along"),
        ("constexpr int shift = Rows == 2 ? 5 : 6;",
         "constexpr int shift = 5;", "chroma of one row has half of its weight"),
    ],
    "src/video/chroma.h": [
        ("c.template put<V>(rows[row].g + i, m.green(d[row], e[row]) + constant);",
         "c.template put<V>(rows[row].g + i, m.green(e[row], d[row]) + constant);", "U and V are exchanged in green"),
        ("const int constant = Chroma::halves ? m.constant >> 1 : m.constant;",
         "const int constant = m.constant;", "half terms have the whole constant"),
        ("a = narrow_ordered((v + 2) >> 2), b = narrow_ordered((v + next + 4) >> 3);",
         "a = narrow_ordered((v + 2) >> 2), b = narrow_ordered((v + next + 3) >> 3);",
         "means between samples are rounded down"),
        ("for (std::ptrdiff_t x = 0; x < whole; x += step) body(widest{}, std::min(x, whole - step));",
         "for (std::ptrdiff_t x = 0; x < whole - step + 1; x += step) body(widest{}, x);",
         "what is left of pixels in registers"),
        ("d[1] = dot<32 * Far, 32 * Near>(u, u_far)",
         "d[1] = dot<32 * Near, 32 * Far>(u, u_far)", "both rows between two have the same U"),
    ],
    "src/video/convert.cpp": [
        ("(src->ten && !src->rgb);", "src->ten;", "RGB of 10 bits becomes YUV of 8"),
        ("begin = std::max<s64>(begin, 0);", "", "bands begin above the picture"),
        ("if (v.dst_w && dst.ten) return false;", "", "bytes are to become another size of 10 bits"),
        ("(src->rgb ? dst : between)->cs", "between->cs", "RGB of another size has no transform of csc.h"),
        ("src.cs == ZELT_CS_RGB565 ? find(ZELT_CS_RGBA8888) : &src;", "&src;", "RGB565 of another size is read as words again"),
        ("return !(v.turn & 1) || dst.half_w == dst.half_h;", "return true;", "4:2:2 is turned by 90 degrees"),
    ],
    "src/video/direct.h": [
        ("r.luma += Rows * r.luma_stride;", "r.luma += r.luma_stride;", "luma of every second row twice"),
        ("{sum(r), sum(g), sum(b), csc::opaque<u8xn>}",
         "{sum(b), sum(g), sum(r), csc::opaque<u8xn>}", "red and blue are exchanged where pixels share chroma"),
        ("s16xn &first = Sharing == sharing::paired ? d : e,", "s16xn &first = d,", "V first in pairs is taken as U"),
    ],
    "src/video/formats.h": [
        ("{ZELT_CS_NV21,     kind::paired, true,  true,  true},",
         "{ZELT_CS_NV21,     kind::paired, true,  true},", "NV21 is NV12"),
        ("{ZELT_CS_YUV440,   kind::planar, false, true},",
         "{ZELT_CS_YUV440,   kind::planar, true, false},", "4:4:0 is 4:2:2"),
        ("&reader_of<wide_rgb565>", "&reader_of<rgb565>", "white of RGB565 is not white"),
    ],
    "src/video/from_rgb.h": [
        ("two = to.half_h && y + 1 < b.h,",
         "two = to.half_h && y + 1 < b.end,", "a row of chroma is that of one row where a band ends"),
        ("to.half_w && to.kind == kind::planar ? s.x / 2 : s.x;",
         "s.x / 2;", "strips of pairs begin at half of their place"),
        ("p.back.with_v_first() : p.back)", "p.back : p.back)", "pairs have U first, whatever their order"),
    ],
    "src/video/from_ten.h": [
        ("return Apart ? (near << 2) - near + far : (near + far) << 1;",
         "return Apart ? (near << 1) + (far << 1) : (near + far) << 1;",
         "smooth chroma of 10 bits has both rows in equal parts"),
        ("+ (ten ? 512 : 128);", "+ 128;", "chroma of 10 bits has the middle of 8"),
        ("shift(to.ten ? of_sums : of_sums + 2)", "shift(of_sums)", "10 bits become 8 by their low ones"),
        ("return ten && high ? v << 6 : v;", "return v;", "words of pairs have their bits at the low end"),
        ("sums[1] = all + (far << 1);", "sums[1] = sums[0];", "both rows between two of 10 bits have the same chroma"),
        ("y % 2 == apart &&", "", "rows of 10 bits go together, whatever they share"),
    ],
    "src/video/matrix.h": [
        ("+ (to_ten ? 8 : 32) - 1e-6;", "+ 32 - 1e-6;", "results of 10 bits are 1.5 too large"),
        ("fixed(-blue_u * kb / kg),", "fixed(-blue_u * kr / kg),", "green takes the share of red for U"),
        ("std::swap(m.u, m.v);", "", "V first is U first on the way from RGB"),
        ("m.black = full ? 0 : 16;", "m.black = 16;", "black of full range is 16"),
    ],
    "src/video/picture.h": [
        ("{1, 3, 2, 1, f.rgb ? f.rgb->planes : 0};",
         "{1, 3, 2, 2, f.rgb ? f.rgb->planes : 0};", "a second plane of packed pictures is read"),
    ],
    "src/video/place.h": [
        ("const std::ptrdiff_t above = std::min<std::ptrdiff_t>(y, 2);",
         "const std::ptrdiff_t above = 0;", "smooth chroma of tiles begins anew"),
        ("std::min((rows + 1) & -2, up_h_ - y);", "rows;", "chroma at a band's end is that of one row of RGB"),
        ("resized_plan_.matrix = p.matrix_of_bytes;", "", "bytes of 10 bits are converted as words of 10"),
        ("resized_plan_.as_csc = p.between_as_csc;",
         "resized_plan_.as_csc = p.as_csc;", "resized pictures are converted as their sources would be"),
        ("for (std::ptrdiff_t top = begin & -2, bottom;",
         "for (std::ptrdiff_t top = begin, bottom;", "bands of resized pictures begin at odd rows"),
        ("all.w += all.x & 1, all.x &= -2,", "", "tiles of turned pictures begin at odd pixels"),
    ],
    "src/video/repack.h": [
        ("v = {average(v.first, w.first), average(v.second, w.second)};",
         "v = {average(v.first, w.first), v.second};", "the second channel is that of one row"),
        ("as_pairs::put<InTurn>(place, r, {v.second, v.first});",
         "as_pairs::put<InTurn>(place, r, v);", "NV12 to NV21 keeps the order"),
        ("pairs_ = packed_ ? b.columns / 2 : (b.columns + 1) / 2;",
         "pairs_ = b.columns / 2;", "the last sample of an odd row is not copied"),
    ],
    "src/video/rows.h": [
        ("place.load(p[0], v.a, v.c0, v.c1, v.c2);",
         "place.load(p[0], v.c0, v.c1, v.c2, v.a);", "ARGB is read as RGBA"),
        ("store_pixels_16(p[2] + 2 * place.x, v.c2);",
         "store_pixels_16(p[2] + 2 * place.x, v.c1);", "blue of 10 bits is green"),
        ("load_term(e, e + 1, x, next);", "load_term(e, e, x, next);", "smooth chroma has no neighbour to its right"),
    ],
    "src/video/samples_scalar.h": [
        ("return static_cast<u8>((v + 32) >> 6); }", "return static_cast<u8>(v >> 6); }", "luma from RGB is cut off"),
        ("inline int mul_q15(int v, int b) { return (v * b + (1 << 14)) >> 15; }",
         "inline int mul_q15(int v, int b) { return (v * b) >> 15; }", "products are cut off"),
        ("(high ? word >> 6 : word & 1023)", "(high ? word >> 6 : word)", "bits above the 10 count"),
    ],
    "src/video/samples_simd.h": [
        ("high ? words & 0xFFC0 : words << 6", "high ? words : words << 6", "bits below the 10 count"),
        ("return round_q7_signed(v) ^ 128; }", "return round_q7_signed(v); }", "chroma from RGB has no middle"),
        ("narrow_q6_even_odd(add_sat(luma, chroma)); }",
         "narrow_q6_even_odd(luma + chroma); }", "bright pixels wrap round"),
    ],
    "src/video/scale.h": [
        ("chroma_(axis_of(chroma_sizes_.w, chroma_sizes_.to_w), chroma_y_, chroma_sizes_.to_w, dst.half_w ? x / 2 : x,",
         "chroma_(axis_of(chroma_sizes_.w, chroma_sizes_.to_w), chroma_y_, chroma_sizes_.to_w, x,",
         "tiles of halved chroma begin twice as far"),
    ],
    "src/video/source.h": [
        ("to_half ? std::min(y + 1, h - 1) : y, false};",
         "to_half ? y + 1 : y, false};", "the row below the last one is averaged"),
        ("std::clamp(y % 2 ? near + 1 : near - 1, std::ptrdiff_t{0}, last)",
         "std::clamp(y % 2 ? near - 1 : near + 1, std::ptrdiff_t{0}, last)", "smooth chroma leans to the wrong row"),
        ("for (auto& channel : even_) channel[n] = channel[n - 1];",
         "", "what is beyond the last sample is of another strip"),
        ("out[2 * n + second] = luma[n - 1];",
         "out[2 * n + second] = 0;", "a packed pixel without another has black beside it"),
    ],
    "src/video/to_rgb.h": [
        ("if (y > b.begin) convert(b.begin, 1, 1);", "", "a band's first row of odd number is left out"),
        ("if (end < b.end) convert(end, 1, 1);", "", "the last row of an odd number is left out"),
        ("for (int i = 0; i <= from.apart; ++i)", "for (int i = 0; i < 1; ++i)", "the second row's last smooth pixel"),
    ],
    "src/video/to_ten.h": [
        ("put_luma(y, high ? 6 : 0);", "put_luma(y, 0);", "luma of pairs has its bits at the low end"),
        ("std::min(y + 1, b.h - 1)",
         "std::min(y + 1, b.end - 1)", "chroma of 10 bits is that of one row where a band ends"),
        ("if (w_ % 2) convert(u8{}, w_ / 2, 0);", "", "the last chroma of an odd row of 10 bits"),
    ],
    "src/video/to_yuv.h": [
        ("if (dst_.s[0] == b.columns && src_.s[0] == b.columns)",
         "if (dst_.s[0] == b.columns)", "rows with gaps are copied as a run"),
        ("std::memset(pairs_, 128, 2 * size);",
         "std::memset(pairs_, 0, 2 * size);", "grey pictures are green in packed formats"),
        ("out[s.pixels - 1] = even;", "out[s.pixels - 1] = odd;", "the last chroma of an odd row"),
    ],
    "src/video/turn.h": [
        ("from_right((turn >> 1 ^ turn >> 2) & 1)", "from_right((turn >> 1) & 1)", "mirrored pictures are not"),
        ("from_bottom((turn ^ turn >> 1) & 1)", "from_bottom((turn >> 1) & 1)", "a turn by 90 degrees is mirrored"),
        ("if (t.from_right) a.x = w - a.x - a.w;",
         "if (t.from_right) a.x = w - a.x;", "tiles from the right begin where they end"),
    ],
    "src/video/turn_scalar.h": [
        ("src + (n - 1 - i) * Bytes, Bytes);",
         "src + (n - i) * Bytes, Bytes);", "rows are reversed from beyond their end"),
    ],
    "src/video/turn_simd.h": [
        ("if constexpr (n > 8) stage(w, v);", "", "single bytes are transposed by halves"),
        ("std::min(k, w - columns), y = std::min(i, h - rows);",
         "k, y = std::min(i, h - rows);", "blocks reach beyond the right edge"),
        ("from = src + (n - at - step) * Bytes;",
         "from = src + (n - at - step) * Bytes + 1;", "reversed registers begin a byte late"),
    ],
    "src/video/unpack.h": [
        ("return {1, 2, (channel == 2) != f.second};", "return {1, 2, channel == 2};", "NV21 is resized as NV12"),
        ("{0, 4, 2 * channel - 1 - f.second};", "{0, 4, 2 * channel - 1};", "chroma of UYVY is its luma"),
        ("((((v >> 6) + 2) >> 2) + 128)", "(((v >> 6) >> 2) + 128)", "10 bits are cut off on the way to another size"),
        ("(f.cs == ZELT_CS_ARGB8888) +", "", "the alpha of ARGB is its red in another size"),
    ],
    "tools/zelt/bench.cpp": [
        ("{\"yuv420\", \"yuv420\", 1, 3}", "{\"yuv420\", \"yuv420\", 1, 2}", "a size is measured twice, another one never"),
        ("|| times.size() < 3;", "|| times.size() < 1;", "the median of a single run"),
        ("wide ? format_of(ZELT_CS_NV12) : from", "from", "words of 10 bits are widened from bytes that are none"),
    ],
    "tools/zelt/compare.cpp": [
        ("plane[1].psnr(bits).c_str(), plane[2].psnr(bits).c_str(),",
         "plane[2].psnr(bits).c_str(), plane[1].psnr(bits).c_str(),", "PSNR of U and V change places"),
        ("y.mean(y.transformed));", "y.mean(y.absolute));", "the SATD column has the absolute difference"),
        ("all.add(s.apart);", "all = s.apart;", "the line over all pictures is that of the last"),
        ("squares += d.squares, absolute += d.absolute,",
         "squares += d.squares, absolute = d.absolute,", "the absolute difference over all is the last picture's"),
        ("if (a.w != b.w || a.h != b.h)", "if (a.w != b.w)", "pictures of two heights are compared"),
        ("    if (in[0]->more() || in[1]->more())", "    if (in[0]->more())", "a longer second clip is not told"),
        ("(1 << bits) - 1;", "1 << bits;", "the peak of PSNR is 256"),
        ("if (!n) throw", "if (n < 0) throw", "clips without pictures are compared"),
        ("*sb = pb.at(x, y);", "*sb = pb.at(x, 0);", "differences are always with the first blocks"),
        ("planar_a.cs == planar_b.cs && !rgb ?", "planar_a.planes == planar_b.planes && !rgb ?",
         "planes of 4:2:0 and 4:4:4 are compared as they are"),
        ("a.fmt->yuv ? a : b, told", "a.fmt->yuv ? b : a, told", "RGB has a range of its own"),
        ("if (first < 0 && s.apart.", "if (s.apart.", "the last picture that differs is the first"),
    ],
    "tools/zelt/completion.cpp": [
        ("values.empty() ? \"compopt +o default\"", "values.empty() ? \"\"", "files are offered for a number"),
        ("if (value_of(option) != \"FORMAT\") return", "if (true) return", "formats are not completed"),
        ("value == \"FILE\" ? \"_files\"", "value == \"FILE\" ? \"\"", "zsh completes no files after an option"),
        ("'*:FILE:_files'", "", "zsh completes no files without an option"),
    ],
    "tools/zelt/container.h": [
        ("int32_t size;", "int16_t size;", "units above 32767 bytes"),
        ("uint32_t code; ", "uint16_t code; ", "codes have 16 bits"),
        ("int32_t media_type; ", "int8_t media_type; ", "media types above 127"),
    ],
    "tools/zelt/container_libav.cpp": [
        ("MKTAG('h', 'v', 'c', '1')", "MKTAG('h', 'e', 'v', '1')", "the usual code of HEVC"),
        (": audio ? zelt_fcc2mt_aud", ": audio ? zelt_fcc2mt_vid", "audio codes are looked up as video"),
        ("if (own != unknown || ", "if (", "the container's own code counts last"),
        ("if (par.extradata_size < 1 || par.extradata[0] != 1)",
         "if (par.extradata_size < 1)", "streams that have start codes are filtered"),
        ("if (error == AVERROR_EOF) return false;", "if (error < 0) return false;", "a damaged file ends in silence"),
        ("packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;", "packet->dts;", "times are those of decoding"),
        ("packet->flags & AV_PKT_FLAG_KEY;",
         "packet->flags & AV_PKT_FLAG_CORRUPT;", "the container's mark of key frames"),
        ("} while (packet->stream_index != stream_->index);", "} while (false);", "units of other tracks are listed"),
        ("nb_channels == 1 ?", "nb_channels < 1 ?", "one channel is several"),
        ("\", %.5g frames/s\"", "\", %.2g frames/s\"", "the frame rate has two digits"),
    ],
    "tools/zelt/convert.cpp": [
        ("&& value >= least) return value;", ") return value;", "a limit of 0 is taken"),
        ("more = ++n < opt.limit && in.more();",
         "more = n++ < opt.limit && in.more();", "one picture more than the limit"),
        ("if (w < 1 || h < 1)", "if (w < 0 || h < 0)", "a size of 0 is taken"),
        ("n < opt.skip && in->more();", "n <= opt.skip && in->more();", "one picture more is passed over"),
        ("opt.bands <= 1 << 30 && (opt.bands", "(opt.bands", "bands of 2^32 rows"),
        ("if (opt.bands && opt.size.empty())", "if (false)", "bands are taken without a size"),
        ("if (error == std::errc() && end == text.data() + text.size()",
         "if (error == std::errc()", "text after a number is ignored"),
        ("result.w = at.w, result.h = at.h;", "result.w = at.w;", "the header has the old height"),
        ("about.fmt->yuv ? given.h : at.h", "given.h", "the matrix of what is made from RGB is by the input's rows"),
        ("result.range = meaning.range;", ";", "clips made from RGB have no range"),
        ("== \"smooth\" ?", "!= \"smooth\" ?", "smooth and replicated chroma change places"),
        ("if (about.fmt->alpha && !to.alpha)", "if (about.fmt->alpha)", "alpha that is kept is said to be dropped"),
    ],
    "tools/zelt/decoder_libav.cpp": [
        ("(i + 2) % 3", "(i + 1) % 3", "the planes of RGB change places"),
        ("else if (count_ || is_key(*f))", "else", "pictures before the first key frame come grey"),
        ("f.width != about.w || f.height != about.h || f.format != format_", "false", "sizes change on the way"),
        ("avcodec_send_packet(codec_.get(), nullptr);", ";", "the last pictures stay in the decoder"),
        ("case AVCOL_SPC_BT709: about.matrix = ZELT_VIDEO_BT709;",
         "case AVCOL_SPC_BT709: about.matrix = ZELT_VIDEO_BT601;", "the file's BT.709"),
        ("|| name.starts_with(\"yuvj\")", "", "the range of JPEG pictures"),
    ],
    "tools/zelt/drawing/difference.cpp": [
        ("i % across * side, y = i / across * side;", "i / across * side, y = i % across * side;", "the frame is around another block"),
    ],
    "tools/zelt/drawing/motion.cpp": [
        ("to.x + b.from.x * s.times", "to.x - b.from.x * s.times", "arrows start on the other side"),
        ("(29 * p[0] + 150 * p[1] + 77 * p[2])", "(77 * p[0] + 150 * p[1] + 29 * p[2])", "red and blue change places in grey"),
        ("if (length(b) > 0)", "if (true)", "blocks that did not move have arrows"),
    ],
    "tools/zelt/formats.cpp": [
        ("resized ? \"*\" : \"\"", "\"\"", "conversions that resize, too, are not marked"),
        ("f.alias ? f.alias : \"-\"", "f.name", "the aliases are the names"),
        ("picture_bytes(f, 2, 2)", "f.row_bytes(0, 4)", "the bytes of the first plane only"),
    ],
    "tools/zelt/help.cpp": [
        ("std::max(width, left.size() + 2)", "left.size() + 40", "rows are longer than a line"),
        ("said[0] + '\\n';", "of.get_footer() + '\\n';", "the notes are in the help, too"),
    ],
    "tools/zelt/interrupt.cpp": [
        ("&& old.sa_handler != SIG_IGN)", ")", "an ignored signal is caught"),
        ("SIGHUP, SIGQUIT}", "SIGHUP}", "SIGQUIT leaves files behind"),
        ("{SIGPIPE, SIGXFSZ}", "{SIGPIPE}", "a limit on file sizes ends the program"),
    ],
    "tools/zelt/keyframes.cpp": [
        ("n, time, unit.size, media_type,", "n, \"\", unit.size, media_type,", "the time column of CSV is empty"),
        ("t.differing += key != unit.marked_key;",
         "t.differing += key > unit.marked_key;", "key frames that only the container has do not differ"),
        ("why && t.differing)", "why)", "the reason is told where nothing differs"),
        ("\"%.3f\", unit.time", "\"%.2f\", unit.time", "times have two digits"),
        ("t.marked += unit.marked_key;", "t.marked += key;", "the container's key frames are counted by the rule"),
        ("media_type, key, unit.marked_key);",
         "media_type, unit.marked_key, key);", "the key columns of CSV change places"),
    ],
    "tools/zelt/main.cpp": [
        ("c = '?';", "c = c;", "control characters reach the terminal"),
        ("return report(status::wrong_use, std::string(e.what())",
         "return report(status::bad_input, std::string(e.what())", "wrong use has another exit status"),
        ("\"zelt \" ZELT_TOOL_VERSION", "\"zelt\"", "the version has no number"),
        ("throw failure(status::wrong_use, \"no verb is given",
         "throw failure(status::unsupported, \"no verb is given", "no verb has another exit status"),
    ],
    "tools/zelt/manual.cpp": [
        ("result += \"\\\\(aq\";", "result += c;", "a line that begins with a quote is a request"),
        ("i = 1; i < said.size()", "i = 2; i < said.size()", "the first paragraph of the notes is missing"),
    ],
    "tools/zelt/match.cpp": [
        ("return 2 * cost; }},", "return cost; }},", "places are given up too early by SATD"),
        ("return n * std::sqrt(cost); }},", "return std::sqrt(cost); }},", "places are given up too early by SSD"),
        ("return v.x * v.x + v.y * v.y; });", "return v.x * v.x; });", "of equal costs not the shortest way wins"),
        ("if (cost < best.cost)", "if (cost <= best.cost)", "of equal costs the last wins"),
        ("margin_(opt.block + opt.range)", "margin_(opt.range)", "places beyond the edge lie outside the memory"),
        ("for (int y = -range; y <= range; ++y)",
         "for (int y = -range; y < range; ++y)", "the lowest places are not tried"),
        ("b.x, b.y, b.from.x, b.from.y, b.cost);",
         "b.x, b.y, b.from.y, b.from.x, b.cost);", "the vectors of CSV are turned"),
        ("n <= opt.frame); ++n)", "n < opt.frame); ++n)", "the chosen picture is not reached"),
        ("100 * most->second / blocks);", "100 * most->second / (blocks + 1));", "the share of the most frequent way"),
        ("best.cost - 1.0)", "best.cost - 2.0)", "a place that is better by one is given up"),
    ],
    "tools/zelt/md5.cpp": [
        ("opt->input.raw, true, opt", "opt->input.raw, false, opt", "only layouts with a name have digests"),
        
        ("if (line.empty() || line[0] == '#') continue;", "if (line.empty()) continue;", "comments are digests"),
        ("if (hex.size() != 32 || hex.find", "if (hex.find", "digests of any length"),
        ("++i, ++differing)", "++i)", "missing pictures do not count"),
        ("ratio(about.rate, true);", "ratio(about.rate, false);", "the time base is the rate"),
        ("ratio(about.aspect, false)", "ratio(about.aspect, true)", "the aspect is turned"),
        ("if (const std::string is = all.result().text(); expected.whole != is)",
         "if (const std::string is = all.result().text(); expected.whole != is && expected.pictures.empty())", "a digest of the whole beside others is not compared"),
        ("if (differing) throw", "if (differing > 1) throw", "one difference is forgiven"),
    ],
    "tools/zelt/media_type.cpp": [
        ("if (!t.code) return \"none\";", ";", "no code is printed as one"),
        ("t.code >> 8 * i & 255", "t.code >> 8 * (3 - i) & 255", "codes have their first character high"),
        ("return printable ? text :",
         "return text.size() ? text :", "codes that are numbers are printed as characters"),
    ],
    "tools/zelt/output.h": [
        ("if (std::fflush(stdout) != 0 || std::ferror(stdout))",
         "if (false)", "a full disk behind standard output counts as done"),
    ],
    "tools/zelt/plane.h": [
        ("std::fill_n(to + w, margin, to[w - 1]);", "std::fill_n(to + w, margin, to[0]);",
         "the right edge goes on as the left one"),
    ],
    "tools/zelt/probe.cpp": [
        ("n++, t.kind.c_str()", "++n, t.kind.c_str()", "tracks are numbered from 1"),
    ],
    "tools/zelt/progress.cpp": [
        ("now < next_ || !::isatty(STDERR_FILENO)", "now < next_", "progress goes into pipes"),
        ("if (!shown_ || !::isatty(STDOUT_FILENO)) return;", "return;", "rows are printed behind the line"),
    ],
    "tools/zelt/resize.cpp": [
        ("return fmt.cs == ZELT_CS_RGBA5658 ? 0 : ZELT_IRSZ_8B8B8B;",
         "return ZELT_IRSZ_8B8B8B;", "RGBA5658 is resized as RGB888"),
        ("kind == ZELT_IRSZ_5B6B5B ? 1 :", "kind == ZELT_IRSZ_5B6B5B ? 2 :", "the pitch of RGB565 is in pixels"),
        ("band_rows < 128;", "band_rows < 64;", "bands of 64 rows count as exact at equal heights"),
        ("if (band_rows <= rows / rows_to + 1",
         "if (band_rows < rows / rows_to + 1", "bands of just too few rows count as exact"),
        ("byte < step; ++byte)", "byte < 1; ++byte)", "only the first byte of a pixel is shrunk by area"),
    ],
    "tools/zelt/route.cpp": [
        ("return zelt_csc_r8g8b8a8_to_rgba5658;",
         "return zelt_csc_r8g8b8a8_to_rgba8888;", "RGBA5658 is written four bytes a pixel"),
        ("if (!bands_are_exact(", "if (false && !bands_are_exact(", "bands that are too short are taken"),
        ("if (now != at) {", "{", "every step says a size"),
        ("c.range == ZELT_VIDEO_FULL", "true", "limited range goes through the dispatch"),
        ("2 * int64_t{to_size.w} < from_size.w", "4 * int64_t{to_size.w} < from_size.w", "area comes too late"),
        ("(from.alpha && to.alpha && !mid.alpha)", "false", "alpha is lost on the way"),
        ("filter == ZELT_VIDEO_BILINEAR && ways.by_dispatch(from, to)", "filter == ZELT_VIDEO_BILINEAR",
         "limited range is resized by the dispatch"),
    ],
    "tools/zelt/route.h": [
        ("bool operator==(const size&) const = default;",
         "bool operator==(const size& s) const { return w == s.w; }", "another height is the same size"),
        ("int band_rows = 0;", "signed char band_rows = 0;", "bands of more than 127 rows"),
    ],
    "tools/zelt/workers.cpp": [
        ("return put_ == turn || stopped_; });", "return true; });", "results come in any order"),
        ("if (error) stop(error);", "", "a failure is forgotten"),
        ("for (std::jthread& one : all) wake(one.native_handle());", ";", "threads that wait for a pipe are not woken"),
    ],
    "tools/zelt/suggest.cpp": [
        ("typed.size() / 3 + 1;", "typed.size();", "names that have nothing in common are near"),
        ("a[i - 2] == b[j - 1])", "false)", "letters that changed places are two faults"),
        ("name.size() > 1 && has(of, \"--\" + name)", "false", "-input is -i with a file nput"),
        ("h.typed == name && applies(of, h.advice)", "h.typed == name", "options are advised that the verb has not"),
        ("> 0 && !attached) ++i;", "> 0) ++i;", "what follows an attached value is taken for one"),
        ("if (typed == \"--\") return;", ";", "files whose names begin with a dash are options"),
    ],
    "tools/zelt/pictures/format.cpp": [
        ("\"rgb565le\",    ZELT_CS_RGB565,", "\"rgb565be\",    ZELT_CS_RGB565,", "an alias of RGB565"),
        ("quarter = {1, 1, 1};", "quarter = {1, 1, 0};", "4:2:0 has the rows of 4:2:2"),
        ("case ZELT_CS_P010LE: return format_of(ZELT_CS_P010);",
         "case ZELT_CS_P010LE: return format_of(ZELT_CS_P010LE);", "P010LE is no planar layout's"),
        ("<= std::numeric_limits<int32_t>::max();",
         "<= std::numeric_limits<uint32_t>::max();", "pictures of 2 GiB are taken"),
        ("if (row && rows > (most - bytes) / row) return most;", ";", "the bytes of the largest pictures overflow"),
    ],
    "tools/zelt/pictures/format.h": [
        ("n / 2 + n % 2", "n / 2", "chroma of odd sizes"),
    ],
    "tools/zelt/pictures/colours.cpp": [
        ("rows >= 720 ?", "rows > 720 ?", "720 rows are BT.601"),
        ("about.range, ZELT_VIDEO_LIMITED,", "about.range, ZELT_VIDEO_FULL,", "clips without a range are full"),
        ("said.value_or(usual)", "usual", "what the file says does not count"),
    ],
    "tools/zelt/pictures/picture.cpp": [
        ("stride[i] = static_cast<int32_t>(row_bytes(i));", "stride[i] = w;", "rows of several bytes a pixel lie on each other"),
    ],
    "tools/zelt/pictures/picture.h": [
        ("whole ? pic.rows(i) : 1;", "whole ? pic.h : 1;", "planes without gaps have the rows of luma"),
    ],
    "tools/zelt/pictures/png.cpp": [
        ("png_set_scale_16(libpng_.png);", "png_set_strip_16(libpng_.png);", "16-bit PNG samples are cut"),
        ("png_read_end(libpng_.png, nullptr);", ";", "damage after the samples is not seen"),
        ("png_set_gray_to_rgb(libpng_.png);", ";", "grey PNG pictures"),
        ("if (!done) throw failure(status::output_failed,", "if (false) throw failure(status::output_failed,", "a PNG picture that is not made counts as one"),
    ],
    "tools/zelt/pictures/pnm.cpp": [
        ("if (most != 255) in_", "if (most > 255) in_", "a smaller maxval is taken as 255"),
        ("if (next.kind != kind_ || next.w != into.w || next.h != into.h)",
         "if (next.kind != kind_ || next.w != into.w)", "pictures of another height in a row"),
        ("return c == '#' || std::isspace(c) ? header_number(digits) : -1;",
         "return header_number(digits);", "letters end a number"),
        ("while (std::isspace(in_.peek())) in_.get();", ";", "white space after a picture is another one"),
        ("most > 65535) in_.bad", "most > 99999) in_.bad", "a maxval above 65535 is no damage"),
    ],
    "tools/zelt/pictures/raw.cpp": [
        ("if (in_.peek() == EOF) in_.bad(\"is empty\");", ";", "an empty raw file has no pictures"),
        ("if (fits(fmt, w, h)) return", "if (w > 0 && h > 0) return", "raw pictures of more than 2 GiB are tried"),
    ],
    "tools/zelt/pictures/reader.cpp": [
        ("return error == std::errc() && end == digits.data() + digits.size() && value >= 0 ?",
         "return error == std::errc() && value >= 0 ?", "text after a header's number is ignored"),
        ("if (!fits(fmt, w, h))", "if (w < 1 || h < 1)", "pictures of more than 2 GiB are tried"),
        ("case EOF: in.bad(", "case EOF: in.unsupported(", "an empty file has another exit status"),
    ],
    "tools/zelt/pictures/reader.h": [
        ("rate = \"25:1\"", "rate = \"30:1\"", "the rate of pictures without one"),
        ("siting = \"jpeg\";", "siting = \"mpeg2\";", "where chroma lies that RGB has become"),
        ("aspect = \"1:1\"", "aspect = \"0:0\"", "the aspect of pictures without one"),
    ],
    "tools/zelt/pictures/stream.cpp": [
        ("if (none) return path;", "return path;", "a symbolic link is replaced"),
        ("replaces ? 0600 : 0666);", "0600);", "new files are for their owner alone"),
        ("take_after(fd, old);", ";", "a replaced file loses its permissions"),
        ("if (!committed_) ::unlink(temporary_.c_str());", ";", "temporary files stay behind"),
        ("::rename(former_.c_str(), target_.c_str());", ";", "a series is replaced in part"),
        ("if (rest >= 0 && rest < bytes)",
         "if (rest >= 0 && rest <= bytes)", "a file that ends with its picture is cut short"),
        ("if (text.size() == longest)", "if (false)", "header lines have no limit"),
        ("std::fclose(f)) != 0)", "(std::fclose(f), 0)) != 0)", "a failing close counts as done"),
        ("if (c == EOF) check();", ";", "a failing read is the end of the file"),
        ("std::fwrite(from, 1, bytes, handle()) != bytes)",
         "std::fwrite(from, 1, bytes, handle()) > bytes)", "a failing write counts as done"),
    ],
    "tools/zelt/pictures/stream.h": [
        ("write(text.data(), text.size()); }",
         "write(text.data(), text.size() < 64 ? text.size() : 64); }", "headers end after 64 bytes"),
        ("int64_t size_ = -1;", "int64_t size_ = 0;", "devices are empty files"),
        ("int64_t size_ =", "int32_t size_ =", "files of 2 GiB and more"),
    ],
    "tools/zelt/pictures/writer.cpp": [
        ("dot <= name ? path.size() : dot;", "dot < name ? path.size() : dot;", "a hidden file is an extension"),
        ("return std::tolower(c); });", "return c; });", "extensions in capitals"),
        ("given.alpha ? kind.formats.back() : kind.formats.front()", "kind.formats.front()",
         "alpha is lost by default"),
        ("{given.cs, planar_yuv(given).cs}", "{planar_yuv(given).cs}", "RGBA becomes RGB"),
        ("digits_ = wide ? path_[percent + 2] - '0' : 1;",
         "digits_ = wide ? path_[percent + 2] - '0' : 4;", "%d in a name is four digits"),
        ("if (more && !separate_ && !kind_.piped)", "if (false)", "several PNG pictures go into one pipe"),
        ("for (output& file : files_) file.commit();",
         "files_.back().commit();", "only the last of a series gets its name"),
        ("length_ = letter + 1 - percent;", "length_ = letter - percent;", "the letter of a number's place stays"),
        ("if (series_) throw failure(", "if (false) throw failure(", "a name with two places for a number"),
    ],
    "tools/zelt/pictures/writer.h": [
        ("int digits_ = 4,", "int digits_ = 3,", "numbers of a series have three digits"),
        ("count_ = 0;", "count_ = -1;", "series begin with 0"),
        ("series_ = false;", "series_ = true;", "a single picture has a number"),
    ],
    "tools/zelt/pictures/y4m.cpp": [
        ("kind_ = \"420\";", "kind_ = \"444\";", "a Y4M header without a kind means 4:4:4"),
        ("about_.range = ZELT_VIDEO_LIMITED;", "about_.range = ZELT_VIDEO_FULL;", "limited range is taken as full"),
        ("!text.starts_with(\"FRAME \"))", "!text.starts_with(\"FRAME\"))", "anything that begins like a frame is one"),
        ("if (about.range) text +=", "if (false) text +=", "written clips have no range"),
        ("*about.matrix != usual_matrix(about.h))", "false)", "written clips have no matrix"),
        ("case 'A': about_.aspect = value; break;", "case 'A': break;", "the aspect is not passed on"),
        ("kind += about.siting;", "kind += \"jpeg\";", "where chroma lies is not passed on"),
        ("{\"422p10\", ZELT_CS_P210}", "{\"422p10\", ZELT_CS_P010}", "a kind of 10 bits"),
    ],
}
# fmt: on
# Which tests run first: those whose names hold one of these, otherwise the first word of the file's name.
NEAREST = [
    ("src/core/(copy|fill|mem|unaligned)", "*mset*:*mcpy*:*mclr*:mem.*"),
    ("src/simd/.*block", "operations.*:*sad*:*satd*:*ssd*:*diff*:*hadamard*"),
    ("src/simd/", "operations.*:*csc*:*irsz*:*sad*:*satd*:*ssd*:*diff*"),
    ("src/core/(system|mac)", "system.*"),
    ("src/core/sync", "sync.*"),
    ("src/core/", "core.*:vdata.*:records.*:allocation_failures.*"),
    ("src/buffer/(audb|bitb|mfal|imgb|geometry)", "audb.*:bitb.*:imgb.*:geometry.*:records.*:allocation_failures.*"),
    ("src/bitstream/", "bsr.*:bsw.*"),
    ("src/resize/", "*irsz*:*rsz*:bands*:resize*"),
    ("src/csc/", "*csc*:exhaustive.*:overlap.*"),
    ("src/metric/satd", "*satd*:*hadamard*"),
    ("src/media/(str|uri)", "str.*:uri.*"),
    ("src/media/(keyframe|start)", "keyframe.*"),
    ("tools/zelt/(bench|completion|help|manual|suggest)", "manners.*:bench.*"),
    ("tools/zelt/(match|plane)", "match.*:compare.*"),
    ("tools/zelt/compare", "compare.*"),
    ("tools/zelt/(keyframes|container|decoder|media_type|probe)", "clips.*:tool.*probe*"),
    ("tools/zelt/(resize|route)", "resizing.*:conversions.*:match.*:compare.*"),
    ("tools/zelt/pictures/", "conversions.*:tool.*:robustness.*:compare.*"),
]

# What tests of a kind never call.
UNRELATED = {
    "kernels": "src/(bitstream|container|media|buffer/(?!expand)|core/(alloc|atomic|log2|ref|sync|system|mac|v))",
    "tool": "src/(bitstream|container|core/(sync|system|mac|vdata))|src/media/(str|uri)",
    "fuzz": "src/metric",
}


def faults() -> list[Fault]:
    """What only ARM compiles is seen under emulation alone."""
    return [Fault(file, text, replacement, what, *(preset or ["armv7-softfp" if "neon" in file else "x86-64"]))
            for file, rows in CATALOGUE.items() for text, replacement, what, *preset in rows]


def line_of(fault: Fault) -> int:
    """The line that a fault changes, or 0 if its text is not there exactly once or it is no edit of one line."""
    path = ROOT / fault.file
    before, *after = path.read_text().split(fault.text) if path.exists() else [""]
    edit = len(after) == 1 and fault.text != fault.replacement and "\n" not in fault.text + fault.replacement
    return before.count("\n") + 1 if edit else 0


def check(table: list[Fault]) -> bool:
    wrong = [f"{f.name()}: not found once: {f.text}" for f in table if not line_of(f)]
    wrong += [f"{name}: named twice" for name, n in collections.Counter(f.name() for f in table).items() if n > 1]
    quirks = sum(f.what.startswith("quirk:") for f in table)
    print(*wrong, f"{len(table)} faults, {quirks} of them quirks put right; {len(wrong)} wrong", sep="\n")
    return not wrong


def copy_tree() -> str:
    """Brings the copy up to date, touching only what differs; returns a digest of it."""
    listed = subprocess.run(["git", "ls-files", "-z", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                            capture_output=True, text=True).stdout.split("\0")
    digest, kept = hashlib.sha256(), set()
    for source in sorted(ROOT / name for name in listed if name and (ROOT / name).is_file()):
        name, content = source.relative_to(ROOT), source.read_bytes()
        target = TREE / name
        kept.add(target)
        if name.suffix in (".h", ".cpp", ".c", ".txt", ".cmake", ".json"):
            digest.update(f"{name}\0".encode() + content)
        if not target.exists() or target.read_bytes() != content:
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(content)
            target.chmod(source.stat().st_mode)
    for target in TREE.rglob("*"):
        if target.is_file() and target not in kept and (TREE / "build") not in target.parents:
            target.unlink()
    return digest.hexdigest()


class Test(NamedTuple):
    name: str
    command: list[str]
    env: dict[str, str]
    folder: str
    pattern: str  # that the output must match, or empty

    def kind(self) -> str:
        return self.name.split(".")[0]

    def is_gtest(self) -> bool:
        return self.kind() in ("unit", "kernels", "tool")

    def run(self, timeout: float, *arguments: str, sharded: bool = True) -> str:
        """What failed, or nothing."""
        env = {k: v for k, v in self.env.items() if sharded or not k.startswith("GTEST_")}
        with tempfile.TemporaryFile() as out:
            child = subprocess.Popen([*self.command, *arguments], cwd=self.folder, env={**os.environ, **env},
                                     stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.STDOUT,
                                     start_new_session=True, preexec_fn=limit)
            try:
                how = "" if (code := child.wait(timeout)) >= 0 else f" (signal {-code})"
            except subprocess.TimeoutExpired:
                code, how = -1, " (never ends)"
            finally:
                if child.poll() is None:
                    os.killpg(child.pid, signal.SIGKILL)
                    child.wait()
            out.seek(0)
            text = out.read(64 << 20).decode(errors="replace")
        if re.search(self.pattern, text, re.M) if self.pattern else code == 0:
            return ""
        case = re.search(r"^\[  FAILED  \] ([^\s,]+)", text, re.M) or re.search(
            r"^\[ RUN      \] (\S+)(?![\s\S]*^\[ RUN)", text, re.M)
        return self.name + (f" {case[1]}" if case else "") + how


def limit() -> None:
    """A fault may take memory or write without an end."""
    resource.setrlimit(resource.RLIMIT_AS, (12 << 30, 12 << 30))
    resource.setrlimit(resource.RLIMIT_FSIZE, (5 << 30, resource.RLIM_INFINITY))  # a test makes a hole of 4 GiB
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def cmake(*arguments: str) -> None:
    done = subprocess.run(["cmake", *arguments], cwd=TREE, capture_output=True, text=True)
    if done.returncode:
        raise RuntimeError(done.stdout[-4000:] + done.stderr[-4000:])


class Build:
    """A preset's build of the copy."""

    def __init__(self, preset: str, jobs: int, digest: str, levels: str) -> None:
        self.folder, self.jobs = TREE / "build" / "-".join([preset, *levels.split(";")]).strip("-"), str(jobs)
        cmake("--preset", preset, "-B", str(self.folder), "-DZELT_BENCH=OFF", "-DZELT_FUZZ=OFF", "-DZELT_WERROR=OFF",
              *[f"-DZELT_LEVELS={levels}"] * bool(levels))
        self.make("all")
        emulated = {"QEMU_CPU": "cortex-a9"} if preset.startswith("arm") else {}  # as in the test presets
        self.tests = self.find_tests(emulated)
        # If there are several shared libraries, each has its programs.
        self.variants = [t.name.split(".")[1] for t in self.tests if re.fullmatch(r"unit\.\w+\.1", t.name)] or ["zelt"]
        self.stale: set[str] = set()  # test programs that hold the last fault
        self.binaries = self.digests()
        self.times = self.baseline(digest)

    def make(self, *targets: str) -> None:
        cmake("--build", str(self.folder), "-j", self.jobs, "--target", *targets)

    def find_tests(self, env: dict[str, str]) -> list[Test]:
        """All but those of the installation, of the levels and of the checks themselves, the slow ones last."""
        shown = subprocess.run(["ctest", "--show-only=json-v1"], cwd=self.folder, check=True, capture_output=True)
        tests = []
        for entry in json.loads(shown.stdout)["tests"]:
            of = {p["name"]: p["value"] for p in entry.get("properties", [])}
            own = dict(e.split("=", 1) for e in of.get("ENVIRONMENT", []))
            if not re.match(r"consumer|levels|abi\.complains", entry["name"]):
                tests.append(Test(entry["name"], [word for word in entry["command"] if word], own | env,
                                  of["WORKING_DIRECTORY"], "|".join(of.get("PASS_REGULAR_EXPRESSION", []))))
        return sorted(tests, key=lambda t: {"kernels": 1, "tool": 2}.get(t.kind(), 0))

    def digests(self) -> dict[str, str]:
        """Of each library with the test programs that may hold parts of it, and of the tool."""
        files = {v: [Path("" if v == "zelt" else v, "libzelt.so"), f"tests/{v}_unit", f"tests/{v}_kernels"]
                 for v in self.variants}
        files |= {"tool": ["tools/zelt/zelt"], "module": ["tools/zelt/zelt_containers.so"]}
        paths = {name: [self.folder / path for path in of] for name, of in files.items()}
        return {name: hashlib.sha256(b"".join(path.read_bytes() for path in of if path.exists())).hexdigest()
                for name, of in paths.items() if of[0].exists()}

    def baseline(self, digest: str) -> dict[str, float]:
        """How long each test takes; without a fault all must pass."""
        stamp = self.folder / "baseline.json"
        if stamp.exists() and (known := json.loads(stamp.read_text()))["digest"] == digest:
            return known["times"]
        times = {}
        for test in self.tests:
            started = time.monotonic()
            if failed := test.run(3600):
                raise RuntimeError(f"fails without a fault: {failed}")
            times[test.name] = time.monotonic() - started
        stamp.write_text(json.dumps({"digest": digest, "times": times}))
        return times

    def rebuild(self, file: str) -> set[str]:
        """Builds what a file is part of; returns which binaries differ."""
        of_tool, header = file.startswith("tools/"), file.removeprefix("src/")
        if file.startswith("src/simd/"):  # vocabulary.h includes the other headers
            header = "simd/vocabulary.h"
        kinds = [kind for kind in ("unit", "kernels") if any(f'#include "{header}"' in path.read_text()
                                                             for path in (TREE / "tests" / kind).glob("*.cpp"))]
        held = {program for kind in kinds for v in self.variants
                if (self.folder / "tests" / (program := f"{v}_{kind}")).exists()}
        self.stale |= held
        self.make(*(["zelt_tool"] if of_tool else self.variants), *sorted(self.stale))
        self.stale = held
        now = self.digests()
        parts = {"tool", "module"} if of_tool else set(self.variants)
        return {name for name in parts & now.keys() if now[name] != self.binaries[name]}

    def can_see(self, test: Test, file: str, changed: set[str]) -> bool:
        variant = next((v for v in self.variants if v in test.name.split(".")), None)
        if re.match(UNRELATED.get(test.kind(), "$"), file):
            return False
        if file.startswith("tools/"):
            return test.kind() == "tool" and variant in (None, self.variants[0])
        return (variant or self.variants[0]) in changed

    def run_tests(self, file: str, changed: set[str]) -> str:
        """The nearest cases first, then everything."""
        tests = [t for t in self.tests if self.can_see(t, file, changed)]
        stem = re.split(r"[_.]", Path(file).name)[0]
        nearest = next((names for pattern, names in NEAREST if re.match(pattern, file)), f"*{stem}*")
        for test in {tuple(t.command): t for t in tests if t.is_gtest()}.values():
            longest = 20 + 3 * sum(self.times[t.name] for t in tests if t.command == test.command)
            if failed := test.run(longest, "--gtest_fail_fast", f"--gtest_filter={nearest}", sharded=False):
                return failed
        for test in tests:
            if failed := test.run(20 + 3 * self.times[test.name], *["--gtest_fail_fast"] * test.is_gtest()):
                return failed
        return ""

    def plant(self, fault: Fault) -> tuple[str, str]:
        """Returns "caught" and by what, "missed", or "unseen" if no binary differs."""
        path = TREE / fault.file
        original = path.read_text()
        try:
            path.write_text(original.replace(fault.text, fault.replacement))
            changed = self.rebuild(fault.file)
            failed = self.run_tests(fault.file, changed)
        finally:
            path.write_text(original)
        return "caught" if failed else "missed" if changed else "unseen", failed


def print_table(lines: list[list[str]]) -> None:
    """By file, by folder and in all, of lines (outcome, file, what, ...)."""
    planted, caught = collections.Counter[str](), collections.Counter[str]()
    for outcome, file, what, *_ in lines:
        for key in [file, f"{Path(file).parent}/", "quirks put right" if what.startswith("quirk:") else "others", "all"]:
            planted[key] += 1
            caught[key] += outcome == "caught"
    print(f"\n{'':42} planted  caught")
    for key in sorted(planted, key=lambda k: (k.endswith("/"), "/" not in k, k == "all", k)):
        print(f"{key:42} {planted[key]:7} {caught[key]:7} {100 * caught[key] / planted[key]:5.0f} %")
    print(*[f"{outcome}: {file}: {what}" for outcome, file, what, *_ in lines if outcome != "caught"], sep="\n")


def read_log(*paths: Path) -> dict[tuple[str, str], list[str]]:
    """By file and what; later lines replace earlier ones."""
    lines = [line.split("\t") for path in paths if path.exists() for line in path.read_text().splitlines()]
    return {(fields[1], fields[2]): fields for fields in lines}


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--only", default="", metavar="REGEX")
    parser.add_argument("--log", type=Path)
    parser.add_argument("--minutes", type=float, default=1e9)
    parser.add_argument("--levels", default="", metavar="LIST")
    parser.add_argument("--jobs", default=1, type=int, help="compilers at a time")
    parser.add_argument("--table", type=Path, nargs="+", metavar="LOG")
    args = parser.parse_args()
    if args.table:
        print_table(list(read_log(*args.table).values()))
        return 0
    table = [f for f in faults() if re.search(args.only, f.name())]
    if args.list:
        print(*[f"{f.file}:{line_of(f)}: {f.what}" for f in table], sep="\n")
        return 0
    if not (sound := check(table)) or args.check:
        return 0 if sound else 1

    known = read_log(args.log) if args.log else {}
    started, lines, builds, errors = time.monotonic(), [], {}, 0
    TREE.mkdir(parents=True, exist_ok=True)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    lock = (TREE.parent / "faults.lock").open("w")
    fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)  # one run at a time has the copy
    digest = copy_tree()
    for fault in table:
        if (fault.file, fault.what) in known:
            continue
        if time.monotonic() - started > 60 * args.minutes:
            print("there is more to do")
            break
        if fault.preset not in builds:
            builds[fault.preset] = Build(fault.preset, args.jobs, digest, args.levels)
        begun = time.monotonic()
        try:
            outcome, by = builds[fault.preset].plant(fault)
        except RuntimeError as error:
            print(f"{fault.name()}: does not build:\n{error}")
            errors += 1
            continue
        lines.append([outcome, fault.file, fault.what, by, f"{time.monotonic() - begun:.0f} s"])
        print(*lines[-1], sep="  ", flush=True)
        if args.log:
            with args.log.open("a") as log:
                log.write("\t".join(lines[-1]) + "\n")
    print_table(lines)
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
