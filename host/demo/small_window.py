"""Chapter: coarser shading while an app is shown in a small window, as the driver is told."""
import collections
import json
import shlex

import page

PACKAGE = "tv.danmaku.bili"
CONFIGURATION = {"configs": {"xrender_BaseInfo": "262144"}}  # the module that works in any app
LEGACY_PACKAGE = "com.miHoYo.Yuanshen"
LEGACY = {"configs": {"shader_rate": "3"}}
FRAMES, SMALL_AT, FULL_AT = 30, 10, 20
SHOWN = [5, 15, 25]  # the rig counts frames from 0, the sample from 1


def rates_by_frame(trace):
    """The rates of each frame's draws, with how many draws had each."""
    frames = collections.defaultdict(collections.Counter)
    for line in trace.read_text().splitlines():
        draw = json.loads(line)
        frames[draw["frame"] + 1][draw["rate"]] += 1
    return frames


def play(stage, name, package, configuration, game, extensions, at=()):
    trace = stage.out / f"{name}.jsonl"
    view = stage.out / f"{name}-view"
    script = [option for frame, window in at for option in (
        "--at", f"{frame}:" + shlex.join([str(stage.tools / "orvel-set"), str(stage.scratch / name), "window", window]) +
        " >&2")]
    _, report = stage.run_under_library(
        name, [stage.tools / "orvel-sample", "--game", game, "--base", "640x360", "--window", "640x360", "--frames", FRAMES,
               "--min-frame-ms", 30, *script], configuration, package=package,
        options=["--shading-rate", extensions, "--shading-rate-trace", trace, "--shading-rate-view", view,
                 "--shading-rate-frames", ",".join(str(frame - 1) for frame in SHOWN)])
    print(f"demo: shading rate, {package} with {extensions}: {report['summary']}")
    return rates_by_frame(trace), view, report


def spans(frames):
    """Rows of frames that have the same rates."""
    rows = []
    for frame in sorted(frames):
        rates = ", ".join(sorted(frames[frame]))
        if rows and rows[-1][2] == rates:
            rows[-1][1] = frame
        else:
            rows.append([frame, frame, rates])
    return [[f"{first} to {last}", rates] for first, last, rates in rows]


def chapter(stage):
    problems = []
    parts = [f"<p>A video app is put into a small window before frame {SMALL_AT} and back to the whole screen before frame "
             f"{FULL_AT}. The library looks when a frame ends; what it sets holds from the next one on.</p>",
             f"<pre>{page.escape(json.dumps(CONFIGURATION, indent=4))}</pre>"]
    for extensions in ("ext", "qcom", "none"):
        frames, view, report = play(stage, f"small-window-{extensions}", PACKAGE, CONFIGURATION, "video", extensions,
                                    [(SMALL_AT, "small"), (FULL_AT, "full")])
        seen = [sorted(frames[frame]) for frame in SHOWN]
        wanted = [["1x1"], ["2x2"] if extensions != "none" else ["1x1"], ["1x1"]]
        if seen != wanted:
            problems.append(f"small window with {extensions}: frames {SHOWN} had the rates {seen}, not {wanted}")
        parts += [f"<h3>A driver with {extensions}</h3><p>{page.escape(report['summary'])}</p>",
                  page.table(["frames", "rates of their draws"], spans(frames))]
        if extensions == "ext":
            pictures = [(frame, max(view.glob(f"frame-{frame - 1}-*framebuffer-0.png"), default=None)) for frame in SHOWN]
            parts.append(page.side_by_side([page.figure(picture.relative_to(stage.out), f"frame {frame}: rate of each pixel")
                                            for frame, picture in pictures if picture]))
            problems += [f"small window: no picture of the rates of frame {frame}" for frame, p in pictures if not p]
    frames, _, report = play(stage, "shader-rate", LEGACY_PACKAGE, LEGACY, "yuanshen", "ext")
    rates = sorted({rate for counted in frames.values() for rate in counted})
    if rates != ["2x2"]:
        problems.append(f"shader_rate: draws had the rates {rates}, not 2x2")
    parts += ["<h3>A legacy game with a fixed rate</h3>", f"<pre>{page.escape(json.dumps(LEGACY, indent=4))}</pre>",
              page.table(["frames", "rates of their draws"], spans(frames))]
    return "Shading rate", "".join(parts), problems
