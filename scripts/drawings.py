#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""drawings.py [FOLDER]: draws the figures of docs/guide/, from the rules that the library follows."""
import pathlib
import sys

from charts import COLOURS, INK, RULE, Figure

BLUE, RED, GREEN, VIOLET, GREY = COLOURS


class Drawing(Figure):
    def __init__(self, width, height):
        super().__init__(width, height)
        self.parts.append('<defs><marker id="tip" viewBox="0 0 8 8" refX="7" refY="4" markerWidth="8" markerHeight="8" '
                          f'orient="auto-start-reverse"><path d="M0,0 L8,4 L0,8 z" fill="{INK}"/></marker></defs>')

    def frame(self, x, y, width, height, colour, tint=0.25):
        """A rectangle with an outline"""
        self.parts.append(f'<rect x="{x}" y="{y}" width="{width}" height="{height}" fill="{colour}" '
                          f'fill-opacity="{tint}" stroke="{colour}"/>')

    def cells(self, x, y, width, labels, colours):
        for i, (label, colour) in enumerate(zip(labels, colours)):
            self.frame(x + i * width, y, width, 24, colour)
            self.text(x + (i + 0.5) * width, y + 17, label, "middle")

    def arrow(self, x0, y0, x1, y1, both=False):
        start = ' marker-start="url(#tip)"' if both else ""
        self.parts.append(f'<line x1="{x0}" y1="{y0}" x2="{x1}" y2="{y1}" stroke="{INK}" marker-end="url(#tip)"{start}/>')


def plane():
    f = Drawing(500, 330)
    f.frame(60, 40, 360, 230, GREY)
    f.frame(110, 80, 260, 150, GREEN)
    f.frame(110, 80, 215, 120, BLUE, 0.4)
    f.text(217, 138, "w x h", "middle")
    f.text(217, 157, "the picture", "middle", size=12)
    f.text(240, 220, "alignment: aw x ah", "middle")
    f.text(240, 62, "border: rows above and below", "middle")
    f.text(85, 160, "left", "middle", size=12)
    f.text(395, 160, "right", "middle", size=12)
    f.dot(60, 40, RED)
    f.dot(110, 80, RED)
    f.text(56, 30, "base[i]", "middle")
    f.text(116, 95, "plane[i]", size=12)
    f.arrow(60, 288, 420, 288, both=True)
    f.text(240, 306, "stride = bytes per sample x (aw + 2 x border)", "middle")
    f.arrow(438, 40, 438, 270, both=True)
    f.text(446, 150, "rows =")
    f.text(446, 168, "ah + 2 x", size=12)
    f.text(446, 184, "border", size=12)
    return f


def layouts():
    colour = {"R": RED, "G": GREEN, "B": BLUE, "A": GREY, "Y": GREY, "U": BLUE, "V": RED}
    top, left, width, step = 44, 120, 45, 34
    rows = [("RGB888", "R G B R G B R G"), ("RGBA8888", "R G B A R G B A"), ("BGRA8888", "B G R A B G R A"),
            ("ARGB8888", "A R G B A R G B"), ("YUYV", "Y0 U0 Y1 V0 Y2 U2 Y3 V2"), ("UYVY", "U0 Y0 V0 Y1 U2 Y2 V2 Y3"),
            ("NV12, plane 0", "Y0 Y1 Y2 Y3 Y4 Y5 Y6 Y7"), ("plane 1", "U0 V0 U2 V2 U4 V4 U6 V6"),
            ("NV21, plane 1", "V0 U0 V2 U2 V4 U4 V6 U6")]
    f = Drawing(500, top + step * (len(rows) + 3) + 30)
    for i in range(8):
        f.text(left + (i + 0.5) * width, top - 8, f"byte {i}", "middle", size=11)
    for i, (name, labels) in enumerate(rows):
        f.text(left - 10, top + i * step + 17, name, "end")
        f.cells(left, top + i * step, width, labels.split(), [colour[label[0]] for label in labels.split()])
    y = top + len(rows) * step + 22
    f.text(left, y - 8, "bit 15, the second byte in memory", size=11)
    f.text(left + 8 * width, y - 8, "bit 0", "end", size=11)
    words = [("RGB565", [(5, "R", RED), (6, "G", GREEN), (5, "B", BLUE)]),
             ("P010", [(6, "not read", GREY), (10, "sample", BLUE)]), ("P010LE", [(10, "sample", BLUE), (6, "not read", GREY)])]
    for i, (name, fields) in enumerate(words):
        f.text(left - 10, y + i * step + 17, name, "end")
        x, bit = left, 8 * width / 16
        for bits, label, tint in fields:
            f.frame(x, y + i * step, bits * bit, 24, tint)
            f.text(x + bits * bit / 2, y + i * step + 17, f"{label}, {bits} bits" if bits > 5 else f"{label}, {bits}", "middle")
            x += bits * bit
    return f


def siting():
    f = Drawing(500, 250)
    for left, title, across in ((50, "as it is taken here", 0), (300, "JPEG", 0.5)):
        f.text(left + 75, 30, title, "middle")
        for row in range(4):
            for column in range(4):
                x, y = left + 50 * column, 60 + 40 * row
                f.parts.append(f'<circle cx="{x}" cy="{y}" r="8" fill="none" stroke="{INK}"/>')
                if row % 2 == 0 and column % 2 == 0:
                    f.frame(x + 50 * across - 5, y + 15, 10, 10, RED, 0.8)
    f.text(250, 230, "circles: luma; squares: the chroma that four of them share", "middle")
    return f


def phases():
    src, dst, left, unit = 6, 9, 40, 84
    step = ((src - 1) << 18) // dst
    f = Drawing(500, 190)
    f.line([(left, 70), (left + (src - 1) * unit, 70)], INK)
    for eighth in range(8 * (src - 1)):
        f.line([(left + eighth * unit / 8, 70), (left + eighth * unit / 8, 75)], GREY)
    for i in range(src):
        f.frame(left + i * unit - 6, 64, 12, 12, BLUE, 0.8)
        f.text(left + i * unit, 54, str(i), "middle", colour=BLUE)
    for i in range(dst):
        position = i * step
        x = left + position / 2 ** 18 * unit
        f.line([(x, 76), (x, 102)], RED)
        f.dot(x, 106, RED)
        f.text(x, 124, str(i), "middle", colour=RED)
        f.text(x, 142, str(position >> 15 & 7), "middle", size=12)
    f.text(left - 6, 30, f"{src} source samples, and eighths between them", colour=BLUE)
    f.text(left - 6, 174, f"{dst} destination samples, and the phase of each")
    return f


def bands():
    rows, made, band = 64, 40, 16
    step = ((rows - 1) << 18) // made
    finished = [sum((i * step >> 18) + 1 < end for i in range(made)) for end in range(band, rows + 1, band)]
    f = Drawing(500, 250)
    f.text(105, 24, f"{rows} source rows", "middle")
    f.text(365, 24, f"{made} destination rows", "middle")
    done = 0
    for i, (end, colour) in enumerate(zip(finished, COLOURS)):
        top, height = 36 + 48 * i, 48
        low, high = 36 + 192 * done / made, 36 + 192 * end / made
        f.frame(40, top, 130, height, colour)
        f.text(105, top + 29, f"rows {band * i} to {band * (i + 1) - 1}", "middle")
        f.frame(300, low, 130, high - low, colour)
        f.text(365, (low + high) / 2 + 5, f"{done} to {end - 1}", "middle")
        f.arrow(176, top + height / 2, 294, (low + high) / 2)
        done = end
    return f


def search():
    f = Drawing(500, 300)
    f.frame(40, 20, 420, 240, GREY)
    f.frame(100, 70, 300, 140, BLUE)
    f.frame(65, 45, 150, 130, RED, 0.1)
    f.frame(115, 85, 50, 50, GREEN, 0.6)
    f.frame(90, 55, 50, 50, RED, 0.4)
    f.arrow(140, 110, 115, 80)
    f.text(172, 126, "block")
    f.text(146, 62, "candidate", size=12)
    f.text(222, 160, "window of candidates")
    f.text(390, 200, "picture before", "end")
    f.text(450, 250, "border, filled by zelt_imgb_expand", "end")
    return f


def bits():
    read, loaded, size = 13, 32, 8
    left, width = 40, 52
    f = Drawing(500, 240)
    f.cells(left, 60, width, [f"byte {i}" for i in range(size)], [GREY] * (loaded // 8) + [BLUE] * (size - loaded // 8))
    for at, name in ((0, "beg"), (loaded // 8, "cur"), (size - 1, "end")):
        f.text(left + at * width, 30, name)
        f.arrow(left + at * width + 10, 34, left + at * width + 10, 58)
    bit = size * width / 32
    valid = loaded - read
    f.frame(left, 150, valid * bit, 24, GREEN, 0.5)
    f.frame(left + valid * bit, 150, read * bit, 24, GREY, 0.1)
    f.text(left + valid * bit / 2, 167, f"leftbits = {valid}", "middle")
    f.text(left + (valid + read / 2) * bit, 167, "zeros", "middle")
    f.text(left, 143, "code, bit 31: the next bit")
    f.text(left + 32 * bit, 143, "bit 0", "end")
    f.text(left, 206, f"read so far: (cur - beg) * 8 - leftbits = {loaded} - {valid} = {read} bits")
    f.line([(left, 88), (left, 130)], RULE)
    f.line([(left + loaded // 8 * width, 88), (left + 32 * bit, 130)], RULE)
    return f


def main(arguments):
    folder = pathlib.Path(arguments[0] if arguments else pathlib.Path(__file__).parent.parent / "docs/guide")
    folder.mkdir(parents=True, exist_ok=True)
    for draw in (plane, layouts, siting, phases, bands, search, bits):
        draw().save(folder / f"{draw.__name__}.svg")


if __name__ == "__main__":
    main(sys.argv[1:])
