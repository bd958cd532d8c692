#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Tables an archive of clips: the digest of every picture, key frames and cuts.

Clips are Y4M, raw pictures whose names say what they hold (NAME_640x480_nv12.raw) and, where PyAV is installed, what
FFmpeg reads. The work is done by processes of this machine, or by the workers of a Dask scheduler that see the same
folder. A task is a clip, or --run pictures of one in Y4M or raw.

The table gets the rows of a task when it is done, and then one that closes it: whatever is killed, the same command
goes on from there. The row that closes a broken clip says what is wrong with it.

A digest is that of a picture's samples, as ffmpeg's framemd5 has it (of formats that libzelt does not know, after
conversion to yuv444p). The difference is the mean magnitude by which luma differs from the picture before, of 255."""
from __future__ import annotations

import argparse
import csv
import re
import sys
import threading
from concurrent.futures import Executor, Future, ProcessPoolExecutor, ThreadPoolExecutor, as_completed
from concurrent.futures.process import BrokenProcessPool
from contextlib import contextmanager
from multiprocessing import get_context
from pathlib import Path
from typing import Any, Callable, Iterator, NamedTuple, Optional

import libzelt

try:
    import av
except ImportError:
    av = None

COLUMNS = ("clip", "run", "picture", "key", "cut", "difference", "md5", "status")
CONTAINERS = {".3gp", ".avi", ".h264", ".hevc", ".m4v", ".mkv", ".mov", ".mp4", ".mpg", ".ts", ".webm"}
RAW_NAME = re.compile(r"_(\d+)x(\d+)_(\w+)\.raw$")
Y4M_KINDS = {"420": "yuv420", "420jpeg": "yuv420", "420mpeg2": "yuv420", "420paldv": "yuv420", "422": "yuv422",
             "440": "yuv440", "444": "yuv444", "mono": "yuv400"}
ATTEMPTS = 3  # after which a task is one that kills its workers

Row = tuple[str, ...]


class Task(NamedTuple):
    """So many pictures of a clip, from `first` on; 0 are all"""
    clip: str
    first: int = 0
    pictures: int = 0

    @property
    def run(self) -> str:
        return f"{self.first}-{self.first + self.pictures - 1}" if self.pictures else "all"


class Frames:
    """Pictures that stand at fixed places of a file: Y4M and raw"""

    def __init__(self, path: Path) -> None:
        self.path, self.head, self.mark = path, 0, b""
        name = RAW_NAME.search(path.name)
        if name:
            width, height, self.format = int(name[1]), int(name[2]), name[3]
        else:
            with path.open("rb") as file:
                line = file.readline(4096)
            fields = {field[:1]: field[1:] for field in line.decode("ascii", "replace").split()[1:]}
            kind = fields.get("C", "420")
            if not line.startswith(b"YUV4MPEG2 ") or kind not in Y4M_KINDS or not {"W", "H"} <= fields.keys():
                raise ValueError("is no Y4M file of 8 bits")
            width, height, self.format = int(fields["W"]), int(fields["H"]), Y4M_KINDS[kind]
            self.head, self.mark = len(line), b"FRAME\n"
        self.size = width, height
        self.bytes = len(self.mark) + sum(p.nbytes for p in self.planes())

    def planes(self) -> list[Any]:
        return libzelt.planes(libzelt.empty(self.format, self.size), self.format)

    def __len__(self) -> int:
        return -(-(self.path.stat().st_size - self.head) // self.bytes)

    def read(self, first: int, count: int) -> Iterator[list[Any]]:
        with self.path.open("rb") as file:
            file.seek(self.head + first * self.bytes)
            for n in range(first, min(first + count, len(self)) if count else len(self)):
                planes = self.planes()
                mark = file.read(len(self.mark))
                if mark != self.mark or any(file.readinto(plane) != plane.nbytes for plane in planes):
                    raise ValueError(f"ends within picture {n}, or has no mark before it")
                yield planes


def decoded(path: Path) -> Iterator[tuple[Any, str, bool]]:
    """Pictures that PyAV decodes, with their formats, and whether they are key frames"""
    with av.open(str(path)) as container:
        stream = container.streams.video[0]
        for frame in container.decode(stream):
            name = frame.format.name.replace("yuvj", "yuv")
            if name not in KNOWN:
                frame, name = frame.reformat(format="yuv444p"), "yuv444p"
            yield frame, name, bool(frame.key_frame)


KNOWN = {name for pair in libzelt.formats().items() for name in pair if name}


def pictures(path: Path, first: int, count: int) -> Iterator[tuple[Any, str, bool]]:
    if path.suffix not in CONTAINERS:
        frames = Frames(path)
        return ((planes, frames.format, True) for planes in frames.read(first, count))
    if av is None:
        raise ValueError("needs PyAV to be read")
    return decoded(path)


def luma_of(picture: Any, name: str) -> Any:
    if name.startswith(("yuv", "nv", "p", "gray")):
        return libzelt.planes(picture, name)[0]
    return libzelt.convert(picture, name, "yuv400")


def work(folder: str, task: Task, cut: float) -> list[Row]:
    """The rows of a task; what goes wrong with its clip becomes the row that closes it."""
    rows: list[Row] = []
    before: Optional[Any] = None
    number = first = max(task.first - 1, 0)  # the picture before is for the difference alone
    try:
        for number, (picture, name, key) in enumerate(
                pictures(Path(folder) / task.clip, first, task.pictures and task.first - first + task.pictures), first):
            luma = luma_of(picture, name)
            if number >= task.first:
                full = 1023 if luma.itemsize == 2 else 255
                change = None if before is None else libzelt.sad(luma, before) / luma.size * 255 / full
                rows.append((task.clip, task.run, str(number), str(int(key)),
                             str(int(change is not None and change >= cut)),
                             "" if change is None else f"{change:.2f}", libzelt.md5(picture, name), ""))
            before = luma
        status = f"done, {len(rows)} pictures" if rows else "broken: has no picture"
    except Exception as error:  # whatever a decoder raises
        status = f"broken: {error}"
    return [*rows, (task.clip, task.run, "", "", "", "", "", status)]


class Table:
    """A CSV file of rows, in which a task counts if its rows are followed by one with a status"""

    def __init__(self, path: Path) -> None:
        self.path, self.done = path, set[tuple[str, str]]()
        rows: list[Row] = []
        if path.exists():
            with path.open(newline="") as file:
                lines = list(csv.reader(file))
            if lines and tuple(lines[0]) != COLUMNS:
                raise ValueError(f"{path} is not a table of this program")
            rows = [tuple(line) for line in lines[1:] if len(line) == len(COLUMNS)]
            self.done = {row[:2] for row in rows if row[7]}  # type: ignore[misc]
        # Rows of a task that was being written when the program was killed go.
        whole = path.with_name(path.name + ".new")
        with whole.open("w", newline="") as file:
            csv.writer(file).writerows([COLUMNS, *(row for row in rows if row[:2] in self.done)])
        whole.replace(path)

    def add(self, rows: list[Row]) -> None:
        with self.path.open("a", newline="") as file:
            csv.writer(file).writerows(rows)
        self.done.add(rows[-1][:2])  # type: ignore[arg-type]


class LocalPool(ThreadPoolExecutor):
    """Processes of this machine. A thread looks after each, and repeats the task of one that was killed."""

    def __init__(self, workers: Optional[int]) -> None:
        super().__init__(workers)
        self._mine = threading.local()

    def submit(self, function: Callable[..., Any], *arguments: Any) -> Future[Any]:  # type: ignore[override]
        return super().submit(self._attend, function, arguments)

    def _attend(self, function: Callable[..., Any], arguments: tuple[Any, ...]) -> Any:
        for attempt in range(ATTEMPTS):
            if not hasattr(self._mine, "process"):
                self._mine.process = ProcessPoolExecutor(1, get_context("forkserver"))
            try:
                return self._mine.process.submit(function, *arguments).result()
            except BrokenProcessPool:
                del self._mine.process
        raise RuntimeError(f"killed {ATTEMPTS} workers")


@contextmanager
def workers(number: Optional[int], scheduler: Optional[str]) -> Iterator[Executor]:
    if scheduler is None:
        with LocalPool(number) as pool:
            yield pool
    else:
        from distributed import Client
        with Client(scheduler) as client, client.get_executor() as pool:
            yield pool


def tasks_of(folder: Path, run: int) -> Iterator[Task]:
    for path in sorted(folder.rglob("*")):
        clip = path.relative_to(folder).as_posix()
        if path.suffix in CONTAINERS:
            yield Task(clip)
        elif path.suffix == ".y4m" or RAW_NAME.search(path.name):
            try:
                count = len(Frames(path)) if run else 0
            except ValueError:
                count = 0  # the task says what is wrong
            yield from (Task(clip, first, run) for first in range(0, count, run)) if count else (Task(clip),)


def process(folder: Path, tasks: list[Task], table: Table, pool: Executor, cut: float,
            work: Callable[[str, Task, float], list[Row]] = work, show: bool = False) -> None:
    """Does what the table does not have yet."""
    open_tasks = [task for task in tasks if (task.clip, task.run) not in table.done]
    futures = {pool.submit(work, str(folder), task, cut): task for task in open_tasks}
    for n, future in enumerate(as_completed(futures), 1):
        task = futures.pop(future)
        try:
            rows = future.result()
        except Exception as error:  # of its workers: Dask's KilledWorker
            rows = [(task.clip, task.run, "", "", "", "", "", f"broken: {type(error).__name__}: {error}")]
        del future  # Dask would do the task again if a worker died that still has the result of a future
        table.add(rows)
        if show:
            filled = 40 * n // len(open_tasks)
            print(f"\r[{'#' * filled:40}] {n} of {len(open_tasks)} tasks", end="", file=sys.stderr, flush=True)
    if show and open_tasks:
        print(file=sys.stderr)


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=Path)
    parser.add_argument("-o", "--output", type=Path, required=True, help="the table, .csv; gone on with if it exists")
    parser.add_argument("--workers", type=int, help="processes of this machine; one a processor")
    parser.add_argument("--scheduler", help="a Dask scheduler, tcp://HOST:8786")
    parser.add_argument("--run", type=int, default=0, help="pictures a task, of Y4M and raw clips; the same if gone on")
    parser.add_argument("--cut", type=float, default=24, help="difference that makes a cut (%(default)s)")
    parser.add_argument("--parquet", action="store_true", help="also as Parquet, with pyarrow")
    options = parser.parse_args()
    table, tasks = Table(options.output), list(tasks_of(options.folder, options.run))
    with workers(options.workers, options.scheduler) as pool:
        process(options.folder, tasks, table, pool, options.cut, show=True)
    if options.parquet:
        from pyarrow import csv as arrow, parquet
        parquet.write_table(arrow.read_csv(options.output), options.output.with_suffix(".parquet"))


if __name__ == "__main__":
    main()
