"""Chapter: a game's render targets, viewports and size uniforms get other sizes, and its screenshots keep theirs."""
import json

import page

PACKAGE = "com.miHoYo.Yuanshen"
WINDOW = "1366x768"
FRAME = 3
SIZES = {  # what the game asks for, and what it gets
    "lowered": ("1620x728", "1280x576", {"tex_size": "1280x576"}),
    "raised": ("1280x720", "1600x900", {"tex_size": "1600x900", "max_resolution": "1280x720"})}


def play(stage, name, base, configuration):
    folder = stage.out / name
    folder.mkdir()
    shot = stage.out / f"{name}-shot.png"
    root, report = stage.run_under_library(
        name, [stage.tools / "orvel-sample", "--base", base, "--window", WINDOW, "--frames", FRAME + 1, "--png", folder,
               "--png-frames", FRAME, "--screenshot", f"{FRAME}:{shot}"], configuration, package=PACKAGE,
        properties={"vendor.orvel.debug": "true"})
    return next(folder.glob("*.png")), shot, (root / "orvel/log").read_text() if configuration else "", report


def chapter(stage):
    problems = []
    parts = ["<p>The driver is told another size than the one that the game asked for; every viewport, scissor box, blit and "
             "size uniform follows.</p>"]
    for what, (base, target, keys) in SIZES.items():
        configuration = {"configs": keys}
        plain, plain_shot, _, _ = play(stage, f"sizes-{what}-without", base, None)
        picture, shot, log, report = play(stage, f"sizes-{what}-with", base, configuration)
        print(f"demo: sizes {what}: {report['summary']}")
        lines = [line.split("libOrvel: ", 1)[1] for line in log.splitlines() if "orveldebug:modifyRenderPrecision" in line]
        counted = {line: lines.count(line) for line in lines}
        if not any(line.endswith(f"{base.replace('x', '*')} -> {target.replace('x', '*')}") for line in counted):
            problems.append(f"sizes {what}: no render target went from {base} to {target}")
        name = f"sizes-{what}-difference.png"
        quality = stage.compare(plain, picture, stage.out / name)
        parts += [f"<h3>{base} becomes {target}</h3><pre>{page.escape(json.dumps(configuration, indent=4))}</pre>",
                  page.table(["the log says", "times"], list(counted.items())[:8]),
                  page.side_by_side([page.figure(plain.relative_to(stage.out), "without the library"),
                                     page.figure(picture.relative_to(stage.out), "with it"),
                                     page.figure(name, f"difference, PSNR {quality['psnr']:.1f} dB")])]
        if what == "raised":
            if stage.size(shot) != base:
                problems.append(f"the screenshot is {stage.size(shot)} instead of {base}")
            if "processGameCapture, start" not in log:
                problems.append("the screenshot was not served from a copy")
            parts += [f"<p>The game reads a screenshot of {base} back. It is served from a copy that was scaled down; the part "
                      "of the source that is copied is larger than the target by the same ratio again, as the game's own "
                      "way of asking requires, and the driver leaves alone what has no source.</p>",
                      page.side_by_side([page.figure(plain_shot.name, "screenshot without the library"),
                                         page.figure(shot.name, "with it")])]
    return "Render sizes and screenshots", "".join(parts), problems
