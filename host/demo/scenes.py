"""Chapter: what the player does is recognised from the game's draws, and reported to the tuning service."""
import json

import page

FRAME_MS = 20
# An event that is to be heard lasts longer than the two seconds between two looks, a pause longer than two of them: the
# first look into a pause still sees what was counted before it.
GAMES = {
    "yuanshen": ("com.miHoYo.Yuanshen", {"ys_scene_recognize": "1", "ys_transfer_recognize": "1", "ys_launch_recognize": "1"},
                 [(1, "launch"), (90, "none"), (310, "boss"), (430, "teleport"), (560, "none")], 780),
    "hkrpg": ("com.miHoYo.hkrpg", {"hkrpg_scene_recognize": "1"},
              [(60, "city"), (180, "x2"), (300, "x21"), (420, "square"), (540, "none")], 760),
    "harrypotter": ("com.netease.harrypotter", {"hp_transfer_recognize": "1"},
                    [(110, "teleport"), (120, "none")], 360)}
SCENES = {1005: "ordinary play", 1006: "boss fight", 1007: "teleport", 1008: "launch", 1009: "minimap of the city",
          1010: "minimap X2", 1011: "minimap X21", 1012: "minimap of the square"}
EXPECTED = {"yuanshen": [1008, 1005, 1006, 1007, 1005], "hkrpg": [1005, 1009, 1010, 1011, 1012, 1005],
            "harrypotter": [1005, 1007, 1005]}


def without_repeats(scenes):
    return [scene for i, scene in enumerate(scenes) if i == 0 or scenes[i - 1] != scene]


def chapter(stage):
    problems = []
    parts = ["<p>A thread of the library's own looks every two seconds at what was counted since the last time. A scene "
             "that lasts is reported twice, a minimap once for each change. The game draws a frame every "
             f"{FRAME_MS} ms.</p>"]
    for game, (package, keys, events, frames) in GAMES.items():
        name = f"scenes-{game}"
        script = [option for frame, event in events for option in ("--event-at", f"{frame}:{event}")]
        root, report = stage.run_under_library(
            name, [stage.tools / "orvel-sample", "--game", game, "--base", "320x180", "--window", "320x180", "--frames",
                   frames, "--min-frame-ms", FRAME_MS, *script], {"configs": keys}, package=package)
        print(f"demo: scenes of {game}: {report['summary']}")
        lines = [json.loads(line) for line in (root / "orvel/service.jsonl").read_text().splitlines()]
        start = next(line["time"] for line in lines if line["asked"] == "configuration")
        heard = [(line["time"] - start, json.loads(line["report"])["sceneId"]) for line in lines if line["asked"] == "scene"]
        scenes = without_repeats([scene for _, scene in heard])
        # A game that starts slowly is asked before it draws; a look at a minimap that stays sees nothing new.
        seen = scenes[1 if scenes[:2] == [1005, 1008] else 0:]
        if game == "hkrpg":
            seen = seen[:1] + [scene for scene in seen[1:-1] if scene != 1005] + seen[-1:]
        if seen != EXPECTED[game]:
            problems.append(f"scenes of {game}: the service heard {scenes}, expected {EXPECTED[game]}")
        told = ", ".join(f"{frame * FRAME_MS / 1000:.1f} s {event}" for frame, event in events)
        parts.append(f"<h3>{page.escape(package)}</h3><p>The game: {page.escape(told)}.</p>")
        parts.append(page.table(["the service heard after", "scene", "meaning"],
                                [[f"{time:.1f} s", scene, SCENES[scene]] for time, scene in heard]))
    return "Scene recognition", "".join(parts), problems
