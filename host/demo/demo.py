#!/usr/bin/env python3
"""`./orvel demo`: runs real programs without and with the library and writes a page that shows what changed.

usage: demo.py [--out DIR]     DIR is demo-out by default
Exits non-zero when something that should have happened did not.
"""
import argparse
import contextlib
import json
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import dynamic_resolution  # one module a chapter
import filters
import frame_repetition
import page
import real_program
import render_sizes
import scenes
import shading_rates
import small_window
import super_resolution

CHAPTERS = [module.chapter for module in (real_program, dynamic_resolution, super_resolution, frame_repetition, scenes,
                                         render_sizes, small_window, filters, shading_rates)]
PROJECT = pathlib.Path(__file__).resolve().parents[2]


class Stage:
    """What the chapters share: folders, the launcher, a display that needs no screen."""

    def __init__(self, out, scratch):
        self.out = out
        self.scratch = scratch
        self.launcher = PROJECT / "orvel"
        self.tools = pathlib.Path(os.environ.get("ORVEL_BUILD", PROJECT / "build/release")) / "bin"
        self.environment = {k: v for k, v in os.environ.items() if k not in ("LD_LIBRARY_PATH", "DISPLAY")}

    def run(self, command, log, **more):
        """Runs a command; its output goes to a file of the page's folder. Raises with the output's end on failure."""
        path = self.out / log
        with open(path, "w") as file:
            done = subprocess.run([str(word) for word in command], stdout=file, stderr=subprocess.STDOUT,
                                  env={**self.environment, **more})
        if done.returncode != 0:
            raise RuntimeError(f"{command[0]} ended with {done.returncode}:\n{path.read_text()[-2000:]}")

    def run_under_library(self, name, program, configuration=None, package="com.miHoYo.Yuanshen", properties=None, options=(),
                          **more):
        """Runs a program through the launcher and answers its report. configuration None: the library is left out."""
        root = self.scratch / name
        root.mkdir()
        command = [self.launcher, "run", "--package", package, "--root", root, "--json", root / "report.json"]
        if configuration is None:
            command += ["--without"]
        else:
            (self.out / f"{name}.config.json").write_text(json.dumps(configuration, indent=4) + "\n")
            command += ["--config", self.out / f"{name}.config.json"]
        for key, value in (properties or {}).items():
            command += ["--prop", f"{key}={value}"]
        command += options
        self.run([*command, "--", *program], f"{name}.log", **more)
        report = json.loads((root / "report.json").read_text())
        if not report["processes"]:
            raise RuntimeError(f"{name}: {report['summary']}")
        return root, report

    @contextlib.contextmanager
    def display(self):
        read, write = os.pipe()
        server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x720x24", "-noreset", "-nolisten", "tcp"],
            pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        try:
            number = os.read(read, 16).decode().strip()
            if not number:
                raise RuntimeError("Xvfb did not start")
            self.environment["DISPLAY"] = ":" + number
            yield
        finally:
            self.environment.pop("DISPLAY", None)
            server.terminate()
            server.wait()

    def size(self, picture):
        """Width and height of a PNG file, as 1280x720."""
        width, height = struct.unpack(">II", pathlib.Path(picture).read_bytes()[16:24])
        return f"{width}x{height}"

    def compare(self, a, b, difference, where_equal=()):
        command = [self.tools / "orvel-compare", a, b, difference, *(["--where-equal", *where_equal] if where_equal else [])]
        done = subprocess.run(command, check=True, capture_output=True, text=True)
        return json.loads(done.stdout)


def main():
    parser = argparse.ArgumentParser(prog="./orvel demo")
    parser.add_argument("--out", default="demo-out", help="folder of the page; what an earlier demo left there goes")
    out = pathlib.Path(parser.parse_args().out).resolve()
    if out.exists() and any(out.iterdir()) and not (out / "index.html").exists():
        sys.exit(f"orvel: {out} holds something that is no demo; name another folder")
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir(parents=True)
    chapters = []
    problems = []
    with tempfile.TemporaryDirectory() as scratch:
        stage = Stage(out, pathlib.Path(scratch))
        for chapter in CHAPTERS:
            try:
                title, content, found = chapter(stage)
            except (RuntimeError, subprocess.CalledProcessError, OSError) as error:
                title, content, found = chapter.__module__, f"<pre>{page.escape(error)}</pre>", [str(error)]
            chapters.append((title, content))
            problems += found
    page.write(out, chapters)
    for problem in problems:
        print(f"orvel: demo: {problem}", file=sys.stderr)
    print(f"demo: {out / 'index.html'}")
    sys.exit(bool(problems))


if __name__ == "__main__":
    main()
