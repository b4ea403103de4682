#!/usr/bin/env python3
"""`./orvel conform`: runs piglit's GLES and EGL programs without and with the library and tells where results differ.

usage: conform.py [--out DIR] [--only NAME,...] [--tests REGEX]
Installs piglit from Debian first (2 GB). DIR, conform-out by default, keeps every run's results and table.md.
Exits non-zero when a result differs that is not accepted below.
"""
import argparse
import bz2
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

PROJECT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(PROJECT / "host/demo"))
import filters
import shading_rates

# GLES 1 is not offered by the rig; egl_khr_fence_sync passes or crashes by chance, without us, too.
PROGRAMS = re.compile(r"/bin/(egl[-_]\S*|\S*gles[23]\S*)")
LEFT_OUT = re.compile(r"egl_khr_fence_sync|gles1")

LEGACY = {"drr_enable": "1", "drr_update_interval": "10", "drr_base_size": "320x180", "drr_available_size": "320x180;240x136",
          "drr_illegal_size": "1x1", "orvel_sr_config": "320x180;480x270", "dfi_interval": "50", "ys_scene_recognize": "1",
          "ys_transfer_recognize": "1", "ys_launch_recognize": "1", "hkrpg_scene_recognize": "1", "hp_transfer_recognize": "1",
          "shader_replace_config": "1", "tex_param_anisotropy": "2", "max_resolution": "320x180", "tex_size": "400x225",
          "shader_rate": "3"}
SGAME = {**shading_rates.CONFIGURATION["configs"], **filters.sgame().configuration["configs"], "xrender_BaseInfo": "262147"}
PUBG = {**filters.pubg().configuration["configs"], "xrender_BaseInfo": "262147", "tex_param_anisotropy": "2"}
SHARED = {"xrender_BaseInfo": "262144"}
GAMES = {"com.tencent.tmgp.sgame": SGAME, "com.tencent.tmgp.pubgmhd": PUBG, "com.miHoYo.Yuanshen": LEGACY,
         "com.miHoYo.hkrpg": LEGACY, "com.netease.harrypotter": LEGACY, "com.ss.android.ugc.aweme": SHARED,
         "com.tencent.qqlive": SHARED, "tv.danmaku.bili": SHARED}
LIVE = ["scene 7", "quality 1", "picture-key 10 2", "vrs-level 2", "filter 1", "window small"]

# name: package, configuration (None: the library is left out), options, whether live values are set
RUNS = {"without": ("com.miHoYo.Yuanshen", None, ["--without"], False),
        "disabled": ("org.example.unknown", {}, [], False)}
for package, configs in GAMES.items():
    short = package.rsplit(".", 1)[1]
    # Idle: hooks, contexts and modules are there, but nothing that a module acts on.
    idle = {key: value for key, value in configs.items() if key == "xrender_BaseInfo"}
    RUNS[f"idle-{short}"] = (package, idle, [], False)
    RUNS[f"everything-{short}"] = (package, configs, ["--shading-rate", "both"], True)

# A result that may differ from the one without the library, and why.
ACCEPTED = [
    (r"@eglcreatesurface$", "a window of the rig's may have two surfaces, a driver's must refuse the second"),
]


def tests():
    """Names of the GLES and EGL tests."""
    listed = subprocess.run(["piglit", "print-cmd", "--format", "{name} ::: {command}", "all"], check=True, capture_output=True,
                            text=True).stdout
    names = []
    for line in listed.splitlines():
        name, _, command = line.partition(" ::: ")
        program = PROGRAMS.search(command)
        if program and not LEFT_OUT.search(program.group(1)):
            names.append(name)
    return sorted(set(names))


def results(folder):
    for path in (folder / "results.json.bz2", folder / "results.json"):
        if path.exists():
            text = bz2.open(path, "rt").read() if path.suffix == ".bz2" else path.read_text()
            return {name: test["result"] for name, test in json.loads(text)["tests"].items()}
    raise RuntimeError(f"{folder} holds no results")


def run(name, out, listed, launcher, scratch, kept=None, jobs=os.cpu_count()):
    """Runs the listed tests; answers their results by name, and keeps them under the run's name or another."""
    package, configuration, options, is_live = RUNS[name]
    folder = pathlib.Path(tempfile.mkdtemp(dir=scratch))
    root = folder / "root"
    (root / "orvel").mkdir(parents=True)
    (root / "orvel/package").write_text(package + "\n")
    command = [launcher, "run", "--package", package, "--root", root, *options]
    if configuration is not None and name != "disabled":
        config = out / f"{name}.config.json"
        config.write_text(json.dumps({"configs": configuration}, indent=4) + "\n")
        command += ["--config", config]
    if is_live:
        for words in LIVE:
            subprocess.run([launcher, "set", "--root", root, *words.split()], check=True, stdout=subprocess.DEVNULL)
    (folder / "tests.txt").write_text("".join(test + "\n" for test in listed))
    piglit = ["piglit", "run", "-l", "quiet", "-j", jobs, "--timeout", "120", "-p", "x11_egl", "--test-list",
              folder / "tests.txt", "all", folder / "results"]
    with open(out / f"{name}.log", "a") as log:
        subprocess.run([str(word) for word in [*command, "--", *piglit]], stdout=log, stderr=subprocess.STDOUT, check=False)
    found = results(folder / "results")
    shutil.move(folder / "results", out / (kept or name))
    shutil.rmtree(folder)
    return found


def differences(base, found):
    return [test for test in sorted({*base, *found}) if base.get(test) != found.get(test)]


def main():
    parser = argparse.ArgumentParser(prog="./orvel conform", description=__doc__.split("\n")[0])
    parser.add_argument("--out", default="conform-out", help="folder of the results")
    parser.add_argument("--only", help="names of runs, separated by commas: " + ", ".join(RUNS))
    parser.add_argument("--tests", default=".", help="only tests whose name matches")
    arguments = parser.parse_args()
    wanted = ["without", *(name for name in (arguments.only.split(",") if arguments.only else RUNS) if name != "without")]
    if unknown := [name for name in wanted if name not in RUNS]:
        parser.error(f"no run {', '.join(unknown)}")
    out = pathlib.Path(arguments.out).resolve()
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir(parents=True)
    listed = [name for name in tests() if re.search(arguments.tests, name)]
    print(f"conform: {len(listed)} tests, {len(wanted)} runs", flush=True)
    rows = []
    problems = 0
    base = {}
    with tempfile.TemporaryDirectory() as scratch:
        for name in wanted:
            found = run(name, out, listed, PROJECT / "orvel", scratch)
            base = base or found
            by_chance = 0
            if differing := differences(base, found):
                # Some pass or fail by chance when two run at once: these run again, alone, without the library, too.
                again = [run(n, out, differing, PROJECT / "orvel", scratch, f"{name}-again-{n}", jobs=1) for n in ("without", name)]
                still = differences(*again)
                by_chance = len(differing) - len(still)
                differing = still
            unexpected = [test for test in differing if not any(re.search(pattern, test) for pattern, _ in ACCEPTED)]
            counts = {kind: list(found.values()).count(kind) for kind in ("pass", "fail", "crash", "timeout", "skip")}
            rows.append(f"| {name} | {' | '.join(str(n) for n in counts.values())} | {by_chance} "
                        f"| {len(differing) - len(unexpected)} | {len(unexpected)} |")
            print(rows[-1], flush=True)
            for test in differing:
                note = "" if test in unexpected else " (accepted)"
                print(f"  {test}: {again[0].get(test)}, then {again[1].get(test)}{note}", flush=True)
            problems += len(unexpected)
    (out / "table.md").write_text("| run | pass | fail | crash | timeout | skip | differ by chance | accepted | others |\n"
                                  "|---|---|---|---|---|---|---|---|---|\n" + "\n".join(rows) + "\n")
    print(f"conform: {out / 'table.md'}")
    sys.exit(bool(problems))


if __name__ == "__main__":
    main()
