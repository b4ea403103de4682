"""Chapter: a benchmark of Debian's archive, without the library and with its shaders rewritten.

glmark2 moves with the clock, so two runs of it never show the same frame. One run is therefore recorded, and the
recording is replayed without and with the library: what differs then is the library's doing.
"""
import json

import page

CONFIGURATION = {"configs": {"shader_replace_config": "1"}}
SCENES = ["build:nframes=3", "shading:nframes=3", "terrain:nframes=2"]


def replay(stage, name, recording, configuration):
    frames = stage.out / f"{name}-frames"
    frames.mkdir()
    program = ["eglretrace", "--headless", "--snapshot=frame", f"--snapshot-prefix={frames}/", recording]
    root, report = stage.run_under_library(name, program, configuration, WAFFLE_PLATFORM="surfaceless_egl")
    return root, report, sorted(frames.glob("*.png"))


def chapter(stage):
    problems = []
    recording = stage.scratch / "glmark2.trace"
    with stage.display():
        benchmark = [word for scene in SCENES for word in ("-b", scene)]
        stage.run(["apitrace", "trace", "--api=egl", f"--output={recording}", "glmark2-es2", "--size=640x360", *benchmark],
                  "recording.log")
        live_program = ["glmark2-es2", "--size=640x360", "-b", "desktop:duration=2"]
        _, idle = stage.run_under_library("live-idle", live_program, {"configs": {}})
        _, live = stage.run_under_library("live", live_program, CONFIGURATION)
    _, _, before = replay(stage, "without", recording, None)
    root, report, after = replay(stage, "with", recording, CONFIGURATION)

    process = report["processes"][0]
    print(f"demo: replay: {report['summary']}\ndemo: live: {live['summary']}")
    asked = [json.loads(line) for line in (root / "orvel/service.jsonl").read_text().splitlines()]
    rows = [("program", process["program"]), ("driver", f"{process['renderer']}, {process['version']}"),
            ("package", process["package"]), ("report", report["summary"])]
    if process["layer"] != "legacy" or process["hookCount"] == 0:
        problems.append("the replay was not hooked: " + report["summary"])
    if process["shadersRewritten"] == 0:
        problems.append("no shader was rewritten")
    for name, run in (("idle", idle), ("rewriting", live)):
        if run["processes"][0]["framesSwapped"] == 0 or run["processes"][0]["layer"] != "legacy":
            problems.append(f"the live run, {name}, was not hooked: {run['summary']}")
    if not before or len(before) != len(after):
        problems.append(f"{len(before)} frames without the library, {len(after)} with it")
        return "A real program", page.table(("what", "came out"), rows), problems

    shaders = {kind: next((root / "orvel").glob(f"shader-{kind}.*.glsl"), None) for kind in ("before", "after")}
    listings = [page.source(f"{kind}: {path.stat().st_size} bytes", path.read_text(errors="replace"),
                            "mediump" if kind == "before" else "lowp", "old" if kind == "before" else "new")
                for kind, path in shaders.items() if path]

    comparisons = [stage.compare(a, b, stage.out / f"difference-{a.name}") for a, b in zip(before, after)]
    shown = max(range(len(before)), key=lambda i: (comparisons[i]["different_pixels"], i))
    frames = [page.figure(before[shown].relative_to(stage.out), "without the library"),
              page.figure(after[shown].relative_to(stage.out), "with the library, shaders rewritten"),
              page.figure(f"difference-{before[shown].name}", "difference, 16 times as bright")]
    different = sum(c["different_pixels"] for c in comparisons)
    verdict = (f"{len(before)} frames compared: {different} pixels differ"
               + (", by at most " + str(max(c["largest_difference"] for c in comparisons)) + " of 255." if different else
                  ". This software driver computes every precision alike, so that lower precision costs no quality "
                  "here; on a device's GPU it may, and this picture is where to look."))
    content = "".join([
        "<p>glmark2 ran once and was recorded; the recording was then replayed without the library, and with it as a "
        "package whose configuration asks for shader replacement.</p>",
        page.table(("what", "came out"), rows),
        "<h3>What the tuning service was asked</h3>",
        page.table(("question", "package", "answer"),
                   [(row["asked"], row.get("package", ""), f"{row.get('bytes', 0)} bytes") for row in asked]),
        f"<pre>{page.escape(json.dumps(CONFIGURATION, indent=4))}</pre>",
        f"<h3>What was hooked: {process['hookCount']} entries</h3><p>",
        "".join(f'<code class="hook">{page.escape(hook)}</code>' for hook in process["hooks"]), "</p>",
        f"<h3>Shaders: {process['shadersRewritten']} of {process['shadersSeen']} rewritten; the first one</h3>",
        page.side_by_side(listings),
        "<h3>The picture</h3>", page.side_by_side(frames), f"<p>{page.escape(verdict)}</p>",
        "<h3>The same program live</h3>",
        page.table(("configuration", "report"), [("every feature off", idle["summary"]),
                                                 ("shader replacement", live["summary"])]),
        "<p>Live, glmark2 sees to it that the driver's copy of a shader is as long as its own and refuses those that "
        "got shorter, which is why the pictures above come from a replay: that asks for no length.</p>",
    ])
    return "A real program", content, problems
