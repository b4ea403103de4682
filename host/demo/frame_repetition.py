"""Chapter: frames are presented a second time at an interval, for a display that is faster than the game."""
import json
import shlex

import page

PACKAGE = "com.miHoYo.Yuanshen"
CONFIGURATION = {"configs": {"dynamic_dfi_interval": "1"}}
FRAMES, SWITCH_AT = 240, 100
INTERVALS = [0, 30, 60]  # milliseconds


def chapter(stage):
    problems = []
    rows = []
    for interval in INTERVALS:
        name = f"repeat-{interval}"
        command = shlex.join([str(stage.tools / "orvel-set"), str(stage.scratch / name), "dfi", str(interval)])
        times = stage.out / f"{name}.csv"
        _, report = stage.run_under_library(
            name, [stage.tools / "orvel-sample", "--base", "320x180", "--window", "480x270", "--frames", FRAMES, "--csv",
                   times, "--min-frame-ms", 15, "--at", f"{SWITCH_AT}:{command} >&2"], CONFIGURATION, package=PACKAGE)
        print(f"demo: repetition every {interval} ms: {report['summary']}")
        process = report["processes"][0]
        repeated = process["framesRepeated"]
        if (repeated > 0) != (interval > 0):
            problems.append(f"repetition: {repeated} frames repeated at an interval of {interval} ms")
        rows.append([f"{interval} ms" if interval else "0: never", process["framesSwapped"], repeated])
    return "Frame repetition", "".join([
        f"<p>The game draws some 60 frames a second. Before frame {SWITCH_AT} of {FRAMES} the system writes an interval; the "
        "next frame that ends when so many milliseconds have passed is kept, and presented again after its own swap. It "
        "needs a game of at least 36 frames a second, measured over 50 frames.</p>",
        f"<pre>{page.escape(json.dumps(CONFIGURATION, indent=4))}</pre>",
        page.table(["interval", "frames swapped by the game", "presented again"], rows)]), problems
