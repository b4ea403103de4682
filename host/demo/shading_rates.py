"""Chapter: shading rates of a battle, by texture and by region, and what they save."""
import json
import pathlib
import shlex

import filters
import page

PACKAGE = "com.tencent.tmgp.sgame"
BASE, WINDOW = "2220x932", "1110x466"  # the size that the rate image is made for
CONFIGURATION = {"configs": {
    "xrender_BaseInfo": "1",
    "xrender_PayloadData": filters.PAYLOAD,
    # What reads the finished scene has a class of its own: a rate stays until a texture with another one is bound.
    "vrs_LabelInfo": r"ground#scene_ground_.*;tower#scene_tower_.*;water#fx_.*;screen#.*_Main_color_.*;"
                     r"map#pvp_\d_small;fbo#.*_Main_color_.*",
    # level # draws: rate code and classes $ regions: centre and rim for plain and multisampled targets
    "vrs_LabelLevel": "1#11:screen,12:tower,22:ground|water$12,22,12,44;"
                      "2#11:screen,22:tower,44:ground|water$12,22,44,12,42,44"}}
LOADING, BATTLE, LEVEL_1, LEVEL_2, SMALL, FULL, LOBBY, END = 41, 51, 88, 118, 121, 136, 176, 185
# Before which frame the game does something, and what it is told. Levels and qualities are looked up every 30 frames.
EVENTS = [(LOADING, "loading"), (BATTLE, "battle"), (LOBBY, "none")]
TOLD = [(1, "scene 4"), (1, "picture-key 10 2"), (1, "vrs-level 1"), (LOADING, "scene 5"), (BATTLE, "scene 7"),
        (LEVEL_1 + 1, "vrs-level 2"), (SMALL, "window small"), (FULL, "window full"), (LOBBY, "scene 4")]
# name, picture quality, options of the rig, what it shows
RUNS = [("regions", 1, ["--shading-rate", "ext"], "By region, on a plain target"),
        ("regions-multisampled", 1, ["--shading-rate", "ext", "--multisampled"], "By region, on a multisampled target"),
        ("draws", 2, ["--shading-rate", "ext"], "By texture: the picture quality is 2"),
        ("draws-qcom", 1, ["--shading-rate", "qcom"], "By texture: the driver has no rate images")]


def play(stage, name, quality, options):
    root = stage.scratch / name
    view = stage.out / f"{name}-view"
    pictures = stage.out / f"{name}-pictures"
    pictures.mkdir()
    shown = [LEVEL_1, LEVEL_2, FULL - 1, LOBBY - 1, END - 1]
    command = [stage.tools / "orvel-sample", "--game", "sgame", "--base", BASE, "--window", WINDOW, "--frames", END,
               "--min-frame-ms", 20, "--png", pictures, "--png-frames", ",".join(map(str, shown))]
    if "--multisampled" in options:
        command += ["--multisampled"]
    for frame, event in EVENTS:
        command += ["--event-at", f"{frame}:{event}"]
    for frame, words in [*TOLD, (1, f"quality {quality}")]:
        command += ["--at", f"{frame}:" + shlex.join([str(stage.tools / "orvel-set"), str(root), *words.split()]) + " >&2"]
    _, report = stage.run_under_library(
        name, command, CONFIGURATION, package=PACKAGE,
        options=[*options, "--shading-rate-view", view, "--shading-rate-frames", ",".join(str(f - 1) for f in shown)])
    print(f"demo: shading rates, {name}: {report['summary']}")
    errors = [line for line in (stage.out / f"{name}.log").read_text().splitlines() if "GL error" in line]
    return view, pictures, report, errors


def targets(view, frame):
    """The frame's pictures and counts by framebuffer; 0 is the window."""
    found = {}
    for counts in view.glob(f"frame-{frame - 1}-context-*.json"):
        found[int(counts.stem.rsplit("-", 1)[1])] = (counts.with_suffix(".png"), json.loads(counts.read_text()))
    return dict(sorted(found.items()))


def scene(view, frame):
    """The scene's target: the first that the game made."""
    return min((item for item in targets(view, frame).items() if item[0]), default=(None, (None, None)))[1]


def counts_row(caption, counts):
    drawn = sum(counts["pixels"].values())
    shares = ", ".join(f"{rate}: {pixels / drawn:.1%}" for rate, pixels in counts["pixels"].items())
    return [caption, shares, f"{counts['saved']:.1%}"]


def chapter(stage):
    parts = ["<p>In a battle the scene is shaded more coarsely, either by the textures that its draws bind or by the place on "
             "the screen. Green pixels have a fragment each; the warmer the colour, the more pixels share one. What is saved "
             "is counted by the rig from the pixels that the draws reached.</p>",
             f"<pre>{page.escape(json.dumps(CONFIGURATION, indent=4))}</pre>"]
    problems = []
    for run_name, quality, options, title in RUNS:
        name = f"shading-{run_name}"
        view, pictures, report, errors = play(stage, name, quality, options)
        problems += [f"{name}: {line}" for line in errors]
        parts.append(f"<h3>{page.escape(title)}</h3><p>{page.escape(report['summary'])}</p>")
        rows = []
        for frame, caption, is_coarse in [(LEVEL_1, "level 1", True), (LEVEL_2, "level 2", True),
                                          # There nothing new is told to the driver: by region the rates stay.
                                          (FULL - 1, "in a small window", run_name.startswith("regions")), (LOBBY - 1, "full screen again", True),
                                          (END - 1, "in the lobby", False)]:
            all_targets = targets(view, frame)
            if 0 not in all_targets:
                problems.append(f"{name}: no rates of frame {frame}")
                continue
            picture, counts = scene(view, frame) if caption != "in the lobby" else all_targets[0]
            if counts is None:
                problems.append(f"{name}: no rates of the scene in frame {frame}")
                continue
            rows.append(counts_row(f"frame {frame}, {caption}", counts))
            if is_coarse != (counts["saved"] > 0.05):
                problems.append(f"{name}: frame {frame} ({caption}) saved {counts['saved']:.1%}")
            if list(all_targets[0][1]["pixels"]) != ["1x1"]:
                problems.append(f"{name}: frame {frame} ({caption}): the window has the rates {all_targets[0][1]['pixels']}")
            if not caption.startswith("level"):
                continue
            shown = [page.overlay((pictures / f"frame-{frame:04d}.png").relative_to(stage.out), picture.relative_to(stage.out),
                                  f"{caption}: rates laid over frame {frame}"),
                     page.figure(picture.relative_to(stage.out), "rates of the scene")]
            image = pathlib.Path(str(picture).replace(".png", "-image.png"))
            if image.exists():
                shown.append(page.figure(image.relative_to(stage.out), f"the rate image, {stage.size(image)} texels"))
            elif run_name.startswith("regions"):
                problems.append(f"{name}: no rate image in frame {frame}")
            parts.append(page.side_by_side(shown))
        parts.append(page.table(["", "pixels of the scene by rate", "fragments saved against 1x1"], rows))
    return "Shading rates of a battle", "".join(parts), problems
