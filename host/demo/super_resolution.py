"""Chapter: the last copy of a frame samples a picture that FSR 1 upscaled, instead of the small one.

Three runs of the sample draw the same frame: with the library, without it (the game's own bilinear copy), and without it
at full size, which both are measured against.
"""
import json
import shlex

import page

PACKAGE = "com.miHoYo.Yuanshen"
SMALL, FULL = "1280x720", "1920x1080"
SWITCH_AT, FRAME, FRAMES = 4, 10, 11
DETAIL = (840, 480, 180, 180)  # left, top, width and height of the part that is shown enlarged
CONFIGURATION = {"configs": {"orvel_sr_config": f"{SMALL};{FULL}"}}
# Native, tolerated, super resolution off, super resolution on: the window's own size, then one for each state.
WINDOW, OFF, ON = "1280x720", "960x540", "1120x630"
BUFFERS = {"configs": {"orvel_sr_config": f"{OFF};{ON}",
                       "orvel_sr_backbuffer_size_config": f"{WINDOW},1x1,{OFF},{ON}".replace("x", ",")}}


def play(stage, name, configuration, base, window, *options):
    folder = stage.out / name
    folder.mkdir()
    root, report = stage.run_under_library(
        name, [stage.tools / "orvel-sample", "--base", base, "--window", window, "--frames", FRAMES, "--png", folder,
               "--png-frames", f"3,{FRAME}", *options], configuration, package=PACKAGE)
    return folder, report


def switched_on(stage, name):
    command = [str(stage.tools / "orvel-set"), str(stage.scratch / name), "sr", "1"]
    return ["--at", f"{SWITCH_AT}:{shlex.join(command)} >&2"]


def chapter(stage):
    problems = []
    frame = f"frame-{FRAME:04}.png"
    small = stage.out / "sr-input.png"
    ours, report = play(stage, "sr-with", CONFIGURATION, SMALL, FULL, *switched_on(stage, "sr-with"),
                        "--screenshot", f"{FRAME}:{small}")
    bilinear, _ = play(stage, "sr-without", None, SMALL, FULL)
    full, _ = play(stage, "sr-full", None, FULL, FULL)
    print(f"demo: super resolution: {report['summary']}")
    before = stage.compare(bilinear / "frame-0003.png", ours / "frame-0003.png", stage.out / "sr-before.png")
    if before["different_pixels"] != 0:
        problems.append("super resolution: the picture differs while the switch is off")
    changed = stage.compare(bilinear / frame, ours / frame, stage.out / "sr-difference.png")
    if changed["different_pixels"] == 0:
        problems.append("super resolution: the picture is the same while the switch is on")
    rows = []
    for what, folder in (("bilinear, the game's own copy", bilinear), ("FSR 1", ours)):
        quality = stage.compare(full / frame, folder / frame, stage.out / f"sr-{folder.name}-to-full.png")
        rows.append([what, f"{quality['psnr']:.2f} dB", f"{quality['ssim']:.4f}"])
    figures = [page.detail((folder / frame).relative_to(stage.out), caption, DETAIL) for folder, caption in (
        (bilinear, "bilinear"), (ours, "FSR 1"), (full, f"drawn at {FULL}"))]
    resized, report = play(stage, "sr-buffers", BUFFERS, OFF, WINDOW, *switched_on(stage, "sr-buffers"))
    print(f"demo: window buffers: {report['summary']}")
    sizes = [stage.size(resized / f"frame-{number:04}.png") for number in (3, FRAME)]
    if sizes != [OFF, ON]:
        problems.append(f"window buffers: {OFF} and {ON} were asked for, the frames are {sizes}")
    return "Super resolution and the window's buffers", "".join([
        f"<p>The game draws at {SMALL} and copies to a window of {FULL}. Before frame {SWITCH_AT} the system switches super "
        f"resolution on; frame {FRAME} is shown. Up to then the picture is the game's own: "
        f"{before['different_pixels']} pixels of frame 3 differ.</p>",
        f"<pre>{page.escape(json.dumps(CONFIGURATION, indent=4))}</pre>",
        page.side_by_side([page.figure(small.name, f"input, {SMALL}"),
                           page.figure((ours / frame).relative_to(stage.out), f"output, {FULL}"),
                           page.figure("sr-difference.png", "difference to the bilinear copy, 16 times as bright")]),
        page.side_by_side(figures),
        page.table(["against the frame drawn at full size", "PSNR", "SSIM"], rows),
        "<p>Sharpening raises contrast beyond the original, which PSNR counts as error.</p>",
        f"<h3>The window's buffers</h3><p>A window of {WINDOW} gets buffers of {OFF} while super resolution is off and of "
        f"{ON} while it is on: {page.escape(report['summary'])}</p>",
        page.side_by_side([page.figure((resized / f"frame-{number:04}.png").relative_to(stage.out), f"frame {number}: {size}")
                           for number, size in zip((3, FRAME), sizes)])]), problems
