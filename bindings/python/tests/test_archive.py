# SPDX-License-Identifier: MIT
"""The example that tables archives: what it finds, and what it does when programs die."""
import csv
import os
import shutil
import signal
import time
from pathlib import Path

import numpy as np
import pytest

import archive


@pytest.fixture
def folder(samples, tmp_path):
    """Seven clips: two of the samples, three made here that have a cut each, and two broken ones"""
    clips = tmp_path / "clips"
    (clips / "below").mkdir(parents=True)
    shutil.copy(samples / "pan420.y4m", clips)
    shutil.copy(samples / "pan444.y4m", clips / "below")
    (clips / "broken.y4m").write_bytes((samples / "pan444.y4m").read_bytes()[:100_000])
    (clips / "headless.y4m").write_bytes(b"YUV4MPEG2 C420\nFRAME\n")
    random = np.random.default_rng(17)
    for n in range(3):
        frames = random.integers(0, 60, (12, 24, 16), np.uint8)
        frames[5 + n:] += 150
        (clips / f"made{n}_16x16_nv12.raw").write_bytes(frames.tobytes())
    return clips


def read(path):
    with path.open(newline="") as file:
        return [tuple(row.values()) for row in csv.DictReader(file)]


def make(folder, table, pool, work=archive.work, run=4):
    archive.process(folder, list(archive.tasks_of(folder, run)), archive.Table(table), pool, 24, work)
    return sorted(read(table))


def alone(folder, table):
    with archive.LocalPool(1) as pool:
        return make(folder, table, pool)


def killing(folder, task, cut):
    """Dies at its first attempt at one clip, and at every one at another."""
    marker = Path(folder).with_name("attempt")
    if task.clip.startswith("made2") or (task.clip.startswith("made1") and task.first == 4 and not marker.exists()):
        marker.touch()
        os.kill(os.getpid(), signal.SIGKILL)
    return archive.work(folder, task, cut)


def note_of(notes, task):
    return notes / f"{task.clip.replace('/', ' ')} {task.first}"


def noting(folder, task, cut):
    """Leaves a note of who does what; the first attempt at the first task never ends."""
    notes = Path(folder).with_name("notes")
    notes.mkdir(exist_ok=True)
    first = not note_of(notes, task).exists()
    with note_of(notes, task).open("a") as note:
        print(os.getpid(), file=note)
    if first and task == next(archive.tasks_of(Path(folder), 4)):
        time.sleep(60)
    return archive.work(folder, task, cut)


def test_what_the_table_says(folder, tmp_path, zelt):
    rows = alone(folder, tmp_path / "table.csv")
    closed = {row[:2]: row[7] for row in rows if row[7]}
    assert len(closed) == 4 * 2 + 1 + 1 + 3 * 3
    assert closed.pop(("broken.y4m", "0-3")) == "broken: ends within picture 1, or has no mark before it"
    assert closed.pop(("headless.y4m", "all")) == "broken: is no Y4M file of 8 bits"
    assert all(status.startswith("done, ") for status in closed.values())
    for n in range(3):
        assert [int(row[2]) for row in rows if row[0].startswith(f"made{n}") and row[4] == "1"] == [5 + n]
    digests = zelt("md5", "-i", folder / "pan420.y4m", "--per-frame").splitlines()[9:]
    found = sorted((int(row[2]), row[6]) for row in rows if row[0] == "pan420.y4m" and not row[7])
    assert [digest for _, digest in found] == [line.split(", ")[-1] for line in digests]
    with archive.LocalPool(1) as pool:  # a clip is the same whether it is done in runs or not
        whole = make(folder, tmp_path / "whole.csv", pool, run=0)
    assert {row[:1] + row[2:] for row in whole if not row[7]} == {row[:1] + row[2:] for row in rows if not row[7]}


def test_containers(samples, tmp_path):
    pytest.importorskip("av")
    shutil.copy(samples / "pan_h264.mp4", tmp_path)
    (tmp_path / "junk.mp4").write_bytes(b"junk" * 99)
    rows = alone(tmp_path, tmp_path / "table.csv")
    assert sorted(int(row[2]) for row in rows if row[3] == "1") == [0, 12, 24, 36, 48]
    assert sum(row[7].startswith("broken: ") for row in rows) == 1


def test_a_table_is_gone_on_with(folder, tmp_path):
    table = tmp_path / "table.csv"
    want = alone(folder, table)
    lines = table.read_text().splitlines(keepends=True)
    done = []

    def counting(folder, task, cut):
        done.append(task)
        return archive.work(folder, task, cut)

    for cut_at in (1, len(lines) // 2, len(lines) - 1):
        table.write_text("".join(lines[:cut_at]) + lines[cut_at][:9])  # killed within a line
        kept = sum(line.rstrip().endswith((" pictures\"", "before it\"", "8 bits")) for line in lines[:cut_at])
        done.clear()
        with archive.ThreadPoolExecutor(1) as pool:
            assert make(folder, table, pool, counting) == want
        assert len(done) == 19 - kept
    (tmp_path / "other.csv").write_text("a,b\n")
    with pytest.raises(ValueError, match="not a table of this program"):
        archive.Table(tmp_path / "other.csv")


def test_processes_that_die_repeat_their_own_task(folder, tmp_path):
    want = alone(folder, tmp_path / "want.csv")
    with archive.LocalPool(2) as pool:
        rows = make(folder, tmp_path / "table.csv", pool, killing)
    assert (folder.with_name("attempt")).exists()
    killers = [row for row in rows if row[0].startswith("made2")]
    assert [row[7] for row in killers] == ["broken: RuntimeError: killed 3 workers"] * 3
    assert [row for row in rows if row not in killers] == [row for row in want if not row[0].startswith("made2")]


def test_a_worker_of_a_cluster_that_is_killed(folder, tmp_path):
    distributed = pytest.importorskip("distributed")
    want = alone(folder, tmp_path / "want.csv")
    notes, killed, in_table = folder.with_name("notes"), [], set()

    tasks = list(archive.tasks_of(folder, 4))

    class Killing(archive.Table):
        """Kills the worker that hangs when the fourth of the other tasks comes in."""

        def add(self, rows):
            super().add(rows)
            if len(self.done) == 4:
                hangs = note_of(notes, tasks[0])
                until = time.monotonic() + 30
                while not (hangs.exists() and hangs.read_text()) and time.monotonic() < until:
                    time.sleep(0.05)  # its worker may have been slow to start
                killed.append(int(hangs.read_text()))
                in_table.update(self.done)
                os.kill(killed[0], signal.SIGKILL)

    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster, \
            archive.workers(None, cluster.scheduler_address) as pool:
        archive.process(folder, tasks, Killing(tmp_path / "table.csv"), pool, 24, noting)
    attempts = {task: [int(pid) for pid in note_of(notes, task).read_text().split()] for task in tasks}
    repeated = {task: pids for task, pids in attempts.items() if len(pids) > 1}
    print(f"killed worker {killed[0]} when {len(in_table)} of {len(tasks)} tasks were in the table; done twice:",
          *(f"{task.clip} {task.run} by {' and '.join(map(str, pids))}" for task, pids in repeated.items()), sep="\n  ")
    assert sorted(read(tmp_path / "table.csv")) == want
    assert tasks[0] in repeated and all(pids[0] == killed[0] for pids in repeated.values())
    assert not any((task.clip, task.run) in in_table for task in repeated)
