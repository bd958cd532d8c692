# SPDX-License-Identifier: MIT
"""Bit fields and Exp-Golomb codes, most significant bit first."""
from __future__ import annotations

from ctypes import byref, c_uint8
from typing import Any

from ._library import BitReaderRecord, BitWriterRecord, quick
from .arrays import address, as_bytes

_LONGEST = 65534  # the largest number that an Exp-Golomb code of the library has


class BitReader:
    """Reads bits out of bytes, which it keeps alive and does not copy.

    A read that the data is too short for raises EOFError and leaves the reader where it was.

    >>> bits = BitReader(bytes([0b10100110, 0b01000000]))
    >>> bits.read(2), bits.read_ue(), bits.read_ue(), bits.read_se(), bits.bits_left
    (2, 0, 5, 1, 5)
    """

    def __init__(self, data: Any) -> None:
        self._data = as_bytes(data)
        if self._data.nbytes >= 1 << 28:
            raise ValueError("a reader takes less than 2^28 bytes at once: pass a part of them")
        self._record = BitReaderRecord()
        self._context = byref(self._record)
        self._beg = address(self._data) if self._data.nbytes else None
        quick.zelt_bsr_init(self._context, self._beg, self._data.nbytes, None)

    @property
    def position(self) -> int:
        """Bits read so far"""
        cur: int = self._record.cur or 0
        left: int = self._record.leftbits
        return (cur - (self._beg or 0)) * 8 - left

    @property
    def bits_left(self) -> int:
        return self._data.nbytes * 8 - self.position

    def _need(self, count: int, most: int = 32) -> None:
        if not 0 <= count <= most:
            raise ValueError(f"from 0 to {most} bits can be read at once, not {count}")
        if count > self.bits_left:
            raise EOFError(f"{count} bits are wanted and {self.bits_left} left")

    def read(self, count: int) -> int:
        """A number of `count` bits, 0 to 32"""
        self._need(count)
        value: int = quick.zelt_bsr_read(self._context, count)
        return value

    def peek(self, count: int) -> int:
        """The same without consuming them"""
        self._need(count)
        value: int = quick.zelt_bsr_peek(self._context, count) if count else 0
        return value

    def skip(self, count: int) -> None:
        """Passes over any number of bits."""
        self._need(count, self.bits_left if count > 32 else 32)
        while count > 0:
            quick.zelt_bsr_skip(self._context, min(count, 32))
            count -= 32

    def align(self) -> None:
        """Passes over the bits up to the next byte."""
        self.skip(-self.position % 8)

    def read_ue(self) -> int:
        """An unsigned Exp-Golomb code, ue(v) of Rec. ITU-T H.264, up to 65534"""
        record, start = self._record, self.position
        before = record.code, record.leftbits, record.cur
        value: int = quick.zelt_bsr_read_ue(self._context)
        length = 2 * (value + 1).bit_length() - 1
        if self.position - start == length <= self._data.nbytes * 8 - start:
            return value
        record.code, record.leftbits, record.cur = before
        rest = self.bits_left
        if rest > 15 and not self.peek(16):
            raise ValueError("an Exp-Golomb code is longer than 31 bits")
        raise EOFError(f"the data ends within an Exp-Golomb code, of which it has {rest} bits")

    def read_se(self) -> int:
        """A signed one, se(v)"""
        index = self.read_ue()
        return (index + 1) // 2 if index % 2 else -(index // 2)

    def read_te(self, largest: int) -> int:
        """A truncated one, te(v), of an element whose largest value is known"""
        if largest < 1:
            raise ValueError(f"the largest value of an element is at least 1, not {largest}")
        return 1 - self.read(1) if largest == 1 else self.read_ue()


class BitWriter:
    """Writes bits into a buffer that grows.

    >>> bits = BitWriter()
    >>> bits.write(2, 2)
    >>> bits.write_ue(0)
    >>> bits.write_se(-3)
    >>> bits.bit_length, bits.getvalue().hex()
    (8, 'a7')
    """

    def __init__(self, capacity: int = 256) -> None:
        self._record = BitWriterRecord()
        self._context = byref(self._record)
        self._start(bytearray(max(capacity, 16)))

    def _start(self, buffer: bytearray) -> None:
        self._buffer = buffer
        self._memory = (c_uint8 * len(buffer)).from_buffer(buffer)
        quick.zelt_bsw_init(self._context, self._memory, len(buffer), None)

    def _room(self) -> None:
        """Makes room for the longest code and the byte at the end that the library keeps free."""
        record = self._record
        if record.end - record.cur >= 16:
            return
        written, code, left = record.cur - record.beg, record.code, record.leftbits
        self._start(self._buffer + bytes(len(self._buffer)))
        record.cur += written
        record.code, record.leftbits = code, left

    @property
    def bit_length(self) -> int:
        """Bits written so far"""
        written: int = self._record.cur - self._record.beg
        pending: int = 32 - self._record.leftbits
        return written * 8 + pending

    def write(self, value: int, count: int) -> None:
        """Appends a number of `count` bits, 0 to 32."""
        if not 0 <= count <= 32 or not 0 <= value < 1 << count:
            raise ValueError(f"{value} is not a number of {count} bits, at most 32")
        self._room()
        if count:
            quick.zelt_bsw_write(self._context, value, count)

    def write_ue(self, value: int) -> None:
        """Appends an unsigned Exp-Golomb code, ue(v) of Rec. ITU-T H.264."""
        if not 0 <= value <= _LONGEST:
            raise ValueError(f"an unsigned code is from 0 to {_LONGEST}, not {value}")
        self._room()
        quick.zelt_bsw_write_ue(self._context, value)

    def write_se(self, value: int) -> None:
        """Appends a signed one, se(v)."""
        if abs(value) > _LONGEST // 2:
            raise ValueError(f"a signed code is from -{_LONGEST // 2} to {_LONGEST // 2}, not {value}")
        self._room()
        quick.zelt_bsw_write_se(self._context, value)

    def write_te(self, value: int, largest: int) -> None:
        """Appends a truncated one, te(v), of an element whose largest value is known."""
        if not 0 <= value <= min(largest, _LONGEST) or largest < 1:
            raise ValueError(f"{value} is not from 0 to {min(largest, _LONGEST)}")
        self._room()
        quick.zelt_bsw_write_te(self._context, value, largest)

    def align(self) -> None:
        """Appends zeros up to the next byte."""
        self.write(0, -self.bit_length % 8)

    def getvalue(self) -> bytes:
        """What is written so far, with zeros up to a whole byte"""
        record = self._record
        pending = (39 - record.leftbits) >> 3
        code: int = record.code
        return bytes(self._buffer[:record.cur - record.beg]) + code.to_bytes(4, "big")[:pending]
