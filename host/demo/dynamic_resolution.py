"""Chapter: a game's render targets shrink and grow while it runs, its interface stays sharp.

The sample game draws by frame number, so a run without the library shows what each frame would have been.
"""
import csv
import json
import shlex

import page

BASE = "1920x1080"
SIZES = ["1280x720", "960x540"]
CONFIGURATION = {"configs": {
    "drr_enable": "1", "drr_update_interval": "10", "drr_base_size": BASE,
    "drr_available_size": ";".join([BASE, *SIZES]), "drr_illegal_size": "1x1"}}
SWITCH_AT = [15, 30]  # frames before which the watched file changes
RESTORE_AT = 45  # frame in which the restore-trigger texture is bound
FRAMES = 56
SHOWN = {12: "full size", 27: SIZES[0], 42: SIZES[1], 54: "restored"}
GAMES = {"yuanshen": "com.miHoYo.Yuanshen", "hkrpg": "com.miHoYo.hkrpg"}


def play(stage, game, name, configuration, at=()):
    folder = stage.out / f"{name}-frames"
    times = stage.out / f"{name}.csv"
    folder.mkdir()
    program = [stage.tools / "orvel-sample", "--game", game, "--frames", FRAMES, "--png", folder,
               "--png-frames", ",".join(map(str, SHOWN)), "--csv", times, "--restore-at", RESTORE_AT]
    for frame, command in at:
        program += ["--at", f"{frame}:{command}"]
    root, report = stage.run_under_library(name, program, configuration, package=GAMES[game])
    milliseconds = [float(row[1]) for row in list(csv.reader(times.open()))[1:]]
    return root, report, folder, milliseconds


def size(target):
    return f"{target['width']}x{target['height']}"


def targets_table(switches):
    """One row per attachment: what the driver held before the first switch and after each."""
    places = [(t["framebuffer"], t["attachment"]) for t in switches[0]["before"]]
    rows = []
    for framebuffer, attachment in places:
        row = [f"framebuffer {framebuffer}, {attachment}"]
        for state in [switches[0]["before"], *(s["after"] for s in switches)]:
            found = [t for t in state if (t["framebuffer"], t["attachment"]) == (framebuffer, attachment)]
            row.append(f"texture {found[0]['texture']}: {size(found[0])}" if found else "none")
        rows.append(row)
    return page.table(["attachment", "at first", *(f"after frame {s['frame']}" for s in switches)], rows)


def chapter(stage):
    problems = []
    parts = ["<p>The sample game allocates its render targets at " + BASE + " and draws into a window of 1280x720. While "
             "it runs, a system service asks for smaller targets twice; then the game binds the texture that "
             "makes the library restore the first size.</p>",
             f"<pre>{page.escape(json.dumps(CONFIGURATION, indent=4))}</pre>"]
    for game, package in GAMES.items():
        _, _, plain, plain_times = play(stage, game, f"{game}-without", None)
        root = stage.scratch / f"{game}-with"
        at = [(frame, shlex.join([str(stage.tools / "orvel-set"), str(root), "dr", wanted]) + " >&2")
              for frame, wanted in zip(SWITCH_AT, SIZES)]
        root, report, drawn, times = play(stage, game, f"{game}-with", CONFIGURATION, at)
        print(f"demo: {game}: {report['summary']}")
        lines = [line for path in (root / "orvel").glob("switches.*.jsonl") for line in path.read_text().splitlines()]
        switches = [json.loads(line) for line in lines]
        (stage.out / f"{game}-switches.json").write_text(json.dumps(switches, indent=1) + "\n")
        wanted = [*SIZES, BASE]
        reached = [sorted({size(t) for t in s["after"]} & set(wanted)) for s in switches]
        if [[w] for w in wanted] != reached:
            problems.append(f"{game}: switches to {wanted} were asked for, the driver saw {reached}")
        parts.append(f"<h3>{page.escape(package)}</h3><p>{page.escape(report['summary'])}</p>")
        if not switches:
            continue
        parts.append(targets_table(switches))
        for frame, what in SHOWN.items():
            name = f"{game}-difference-{frame}.png"
            with_it = next(drawn.glob(f"*{frame:04d}.png"))
            compared = stage.compare(next(plain.glob(f"*{frame:04d}.png")), with_it, stage.out / name)
            quality = "equal to" if compared["psnr"] is None else f"PSNR {compared['psnr']:.1f} dB against"
            parts.append(page.side_by_side([
                page.figure(with_it.relative_to(stage.out), f"frame {frame}, {what}: {quality} the frame without the "
                            "library"),
                page.figure(name, f"difference of frame {frame}, 16 times as bright")]))
        parts.append(page.line_chart("milliseconds a frame", {"without the library": plain_times, "with it": times},
                                     [s["frame"] for s in switches]))
    return "Dynamic resolution", "".join(parts), problems
