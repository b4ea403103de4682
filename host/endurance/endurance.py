#!/usr/bin/env python3
"""`./orvel endure`: plays every game for long while everything that can change changes, and looks for what grows.

usage: endurance.py [--minutes N] [--games NAME,...] [--seed N] [--out DIR]
All games run at once. Every half second some live value changes; now and then the tuning service is killed and started
again; contexts are made and destroyed all the time. DIR, endurance-out by default, keeps the logs and table.md.
Exits non-zero when memory or GL objects grow, when a game meets a GL error or ends early, or when the log holds an
error that the changes do not explain.
"""
import argparse
import collections
import csv
import json
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

PROJECT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(PROJECT / "host/conform"))
import conform

CHANGE_SECONDS = 0.5
SERVICE_SECONDS = 20  # between two deaths of the service
SETTLED_SECONDS = 60  # memory is to be flat from then on
GROWTH_KIB = 4096     # the allocator's own ups and downs
GROWTH_OBJECTS = 16   # images that are first needed late
REPLACED_KIB = 176    # a render target that dynamic resolution replaced, which is kept: RGBA8, the mean of both sizes
SIZES = {"--base": "320x180", "--window": "480x270"}

# game: package, events, what short-lived contexts do; the features of the first three know one drawing context
GAMES = {"yuanshen": ("com.miHoYo.Yuanshen", ["boss", "teleport", "launch", "none"], "load"),
         "hkrpg": ("com.miHoYo.hkrpg", ["city", "x2", "x21", "square", "none"], "load"),
         "harrypotter": ("com.netease.harrypotter", ["teleport", "none"], "load"),
         "sgame": ("com.tencent.tmgp.sgame", ["heroes", "loading", "battle", "masked", "result", "none"], "draw"),
         "pubg": ("com.tencent.tmgp.pubgmhd", ["discard", "resolve", "crosshair", "loading", "none"], "draw"),
         "video": ("tv.danmaku.bili", ["none"], "draw")}

OBJECTS = ["textures", "buffers", "framebuffers", "vertex arrays", "programs"]

# Lines of error priority that the changes explain, and what explains them.
EXPLAINED = [
    (r": Orvel parse game infoType error: ", "a line of nonsense is written into the game-information file"),
    (r": OrvelDRR, DR open fail: No data available$", "the file is read while it is written again in place"),
    (r": remote service died!$|: orvel:call remote service failed\.$", "the tuning service is killed and comes back"),
]


def change(chance):
    """One of the values that a device changes while a game runs."""
    number = lambda low, high: str(chance.randint(low, high))
    return chance.choice([
        ["scene", chance.choice(["4", "5", "6", "7", "8", "101", "102", "111", "1000"])],
        ["quality", number(0, 3)],
        ["picture-key", "10", number(0, 3)],
        ["picture-key", "54", number(0, 3)],
        ["vrs-level", number(0, 3)],
        ["window", chance.choice(["small", "full"])],
        ["filter", number(0, 9), "--strength", number(0, 100)],
        ["filter", number(1, 8), "--dark-edge"],
        ["dr", chance.choice(["320x180", "240x136"])],
        ["sr", number(0, 1)],
        ["dfi", chance.choice(["0", "16", "50"])],
        ["info", "nonsense", number(0, 9)],
    ])


class Run:
    """One game, its service and its tormentor."""

    def __init__(self, game, seconds, seed, out, scratch):
        self.game = game
        self.package, self.events, self.contexts = GAMES[game]
        self.seconds = seconds
        self.chance = random.Random(f"{seed}-{game}")
        self.out = out
        self.root = scratch / game
        self.tools = pathlib.Path(os.environ.get("ORVEL_BUILD", PROJECT / "build/release")) / "bin"
        self.memory = []  # seconds, KiB
        self.changes = collections.Counter()
        self.frames = self.resident = self.growth = self.replaced = 0
        self.objects = [0] * len(OBJECTS)
        self.problems = []

    def command(self):
        config = self.out / f"{self.game}.config.json"
        config.write_text(json.dumps({"configs": conform.GAMES[self.package]}, indent=4) + "\n")
        sample = [self.tools / "orvel-sample", "--game", self.game, "--frames", 1000000, "--min-frame-ms", 15,
                  "--short-contexts", self.contexts, "--names", self.out / f"{self.game}.names.csv"]
        for option, value in SIZES.items():
            sample += [option, value]
        frame = 30
        while frame < self.seconds * 70: # at most so many frames
            sample += ["--event-at", f"{frame}:{self.chance.choice(self.events)}"]
            frame += self.chance.randint(20, 400)
        return [PROJECT / "orvel", "run", "--package", self.package, "--config", config, "--root", self.root,
                "--shading-rate", "both", "--multisampled", "--", *sample]

    def game_process(self):
        """The sample's process id: the one that left a report."""
        for path in (self.root / "orvel").glob("report.*"):
            return int(path.suffix[1:])
        return None

    def service_process(self):
        for path in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
            try:
                words = path.read_bytes().split(b"\0")
            except OSError: # just ended
                continue
            if words[0].endswith(b"/orvel-service") and bytes(self.root) in words:
                return int(path.parts[2])
        return None

    def restart_service(self):
        if process := self.service_process():
            os.kill(process, signal.SIGKILL)
            time.sleep(self.chance.uniform(0, 1))
        with open(self.out / f"{self.game}.service.log", "a") as log:
            self.service = subprocess.Popen([self.tools / "orvel-service", "--configs", self.root / "orvel/configs", "--root",
                                             self.root], stdout=log, stderr=subprocess.STDOUT)
        self.changes["service"] += 1

    def play(self):
        log = open(self.out / f"{self.game}.log", "w")
        self.service = None
        launcher = subprocess.Popen([str(word) for word in self.command()], stdout=log, stderr=subprocess.STDOUT)
        start = time.monotonic()
        service_at = SERVICE_SECONDS
        process = None
        while (passed := time.monotonic() - start) < self.seconds and launcher.poll() is None:
            time.sleep(CHANGE_SECONDS)
            process = process or self.game_process()
            if not process:
                continue
            words = change(self.chance)
            subprocess.run([self.tools / "orvel-set", self.root, *words], stdout=subprocess.DEVNULL, check=True)
            self.changes[words[0]] += 1
            if passed > service_at:
                self.restart_service()
                service_at += SERVICE_SECONDS
            try:
                status = pathlib.Path(f"/proc/{process}/status").read_text()
                self.memory.append((passed, int(re.search(r"VmRSS:\s+(\d+)", status).group(1))))
            except (OSError, AttributeError):
                pass
        if launcher.poll() is not None:
            self.problems.append(f"ended early, status {launcher.returncode}")
        elif process:
            os.kill(process, signal.SIGTERM)
        launcher.wait()
        if self.service:
            self.service.kill()
            self.service.wait()

    def judge(self):
        """Fills problems and what the row tells."""
        log = (self.out / f"{self.game}.log").read_text(errors="replace")
        # Copying a depth texture for another size names its attachment to glReadBuffer, which refuses it: agreed upon.
        gl_errors = [line for line in log.splitlines() if "GL error" in line and "0x0500" not in line]
        self.problems += gl_errors[:5]
        lines = (self.root / "orvel/log").read_text(errors="replace").splitlines() if (self.root / "orvel/log").exists() else []
        shutil.copy(self.root / "orvel/log", self.out / f"{self.game}.library.log") if lines else None
        errors = collections.Counter(re.sub(r"\d+", "N", line.split(" ", 2)[2]) for line in lines if re.match(r"\d+ E ", line))
        for line, count in errors.items():
            if not any(re.search(pattern, line) for pattern, _ in EXPLAINED):
                self.problems.append(f"{count} times in the log: {line}")
        self.judge_growth()

    def judge_growth(self):
        """What more there is at the end than after the first minute."""
        names = [list(map(int, row)) for row in list(csv.reader(open(self.out / f"{self.game}.names.csv")))[1:]]
        if not names:
            self.problems.append("drew no 100 frames")
            return
        self.frames = names[-1][0]
        first = names[min(int(len(names) * SETTLED_SECONDS / self.seconds), len(names) - 1)]
        self.objects = [names[-1][i] - first[i] for i in (1, 3, 5, 7, 9)]
        # The rig counts what the library replaces, from the start.
        told = re.search(r"(\d+) textures replaced", (self.out / f"{self.game}.log").read_text(errors="replace"))
        self.replaced = int(told.group(1)) if told else 0
        for kind, more in zip(OBJECTS, self.objects):
            if more > GROWTH_OBJECTS + (self.replaced if kind == "textures" else 0):
                self.problems.append(f"{more} more {kind}")
        settled = [kib for at, kib in self.memory if at >= SETTLED_SECONDS]
        if len(settled) >= 20:
            part = len(settled) // 5
            median = lambda values: sorted(values)[len(values) // 2]
            self.resident = median(settled[:part])
            self.growth = median(settled[-part:]) - self.resident
            if self.growth > GROWTH_KIB + self.replaced * REPLACED_KIB:
                self.problems.append(f"memory grew by {self.growth} KiB, {self.replaced} textures were replaced")
        with open(self.out / f"{self.game}.memory.csv", "w") as file:
            file.write("seconds,KiB\n" + "".join(f"{at:.1f},{kib}\n" for at, kib in self.memory))

    def row(self):
        return (f"| {self.game} | {self.frames} | {sum(self.changes.values())} | {self.resident} | {self.growth:+} | "
                f"{' '.join(f'{n:+}' for n in self.objects)} | {self.replaced} | {len(self.problems)} |")


def main():
    parser = argparse.ArgumentParser(prog="./orvel endure", description=__doc__.split("\n")[0])
    parser.add_argument("--minutes", type=float, default=30)
    parser.add_argument("--games", default=",".join(GAMES))
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--out", default="endurance-out")
    arguments = parser.parse_args()
    games = arguments.games.split(",")
    if unknown := [game for game in games if game not in GAMES]:
        parser.error(f"no game {', '.join(unknown)}")
    out = pathlib.Path(arguments.out).resolve()
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir(parents=True)
    rows = []
    problems = 0
    with tempfile.TemporaryDirectory() as scratch:
        runs = [Run(game, arguments.minutes * 60, arguments.seed, out, pathlib.Path(scratch)) for game in games]
        threads = [threading.Thread(target=run.play) for run in runs]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        for run in runs:
            run.judge()
            rows.append(run.row())
            for problem in run.problems:
                print(f"{run.game}: {problem}")
            problems += len(run.problems)
    table = (f"| game | frames | changes | resident KiB after a minute | more at the end | {', '.join(OBJECTS)} more at the end "
             "| replaced textures that are kept | problems |\n|---|---|---|---|---|---|---|---|\n" + "\n".join(rows) + "\n")
    (out / "table.md").write_text(table)
    print(table)
    sys.exit(bool(problems))


if __name__ == "__main__":
    main()
