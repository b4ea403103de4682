"""Chapter: colour filters over the scene and under the interface, in both games that know them."""
import json
import shlex

import page

SIZE = "640x360"
FRAME_MS = 20
TYPES = {1: "green", 2: "brown", 3: "kelaiyinlan.png", 4: "heijin.png", 5: "jinqiu.png", 6: "nuancheng.png",
         7: "saibopengke.png", 8: "lengqing.png"}
STEP = 20  # frames that a filter is shown: the library looks every 10 for a new one
PAYLOAD = ("lobby:lobby_.*;pick_hero:hero_stage;pick_hero-UI:hero_list_.*;battle-UI:battle_hud"
           "#Hidden/Internal-Clear#5")


class Play:
    """What happens in a game, frame by frame, and which frames are looked at."""

    def __init__(self, game, package, configs, types, events, scenes):
        self.game = game
        self.package = package
        self.configuration = {"configs": {"xrender_BaseInfo": "2", **configs,
                                          "effect_Types": ";".join(map(str, types))}}
        self.events = events  # frame and what the game does
        self.scenes = scenes  # frame and the scene that the tuning service names
        self.filters = []     # frame and the filter's options
        self.shown = []       # frame, caption, whether the interface is to be untouched
        self.frames = 0

    def show(self, frame, caption, is_filtered=True):
        self.shown.append((frame, caption, is_filtered))
        self.frames = max(self.frames, frame + 2)

    def show_filters(self, start, types):
        for i, kind in enumerate(types):
            frame = start + i * STEP
            self.filters.append((frame + 1, [str(kind)]))
            self.show(frame + STEP - 2, f"type {kind}: {TYPES[kind]}")
        end = start + len(types) * STEP
        for i, (kind, options) in enumerate([(types[0], ["--dark-edge"]), (types[-1], ["--strength", "50"]),
                                             (types[-1], ["--strength", "100", "--dark-edge"])]):
            frame = end + i * STEP
            self.filters.append((frame + 1, [str(kind), *options]))
            self.show(frame + STEP - 2, f"type {kind} with {' '.join(options)}")
        return end + 3 * STEP


def sgame():
    types = [1, 2, 4, 5, 7, 8]
    # Lobby, a hero is picked, the battle loads and begins; a masked clear ends the scene instead of a clear; the result.
    play = Play("sgame", "com.tencent.tmgp.sgame",
                {"xrender_PayloadData": PAYLOAD, "effect_Binary": "0;0;0;10;hero_skin_preview;result_.*"}, types,
                [(21, "heroes"), (41, "loading"), (51, "battle")], [(1, 4), (21, 102), (41, 5), (51, 7)])
    play.filters.append((3, ["5"]))
    play.show(19, "the lobby: none", is_filtered=False)
    play.show(38, "a hero is picked, type 5")
    end = play.show_filters(60, types)
    play.events += [(end + 1, "masked"), (end + 11, "result")]
    play.scenes += [(end + 11, 4)]
    play.show(end + 8, "a masked clear ends the scene")
    play.show(end + 19, "the result: none", is_filtered=False)
    return play


def pubg():
    types = [1, 2, 3, 6, 7]
    play = Play("pubg", "com.tencent.tmgp.pubgmhd", {"effect_Binary": "0;0;0;10"}, types,
                [(1, "discard")], [(1, 4), (21, 6)])
    play.filters.append((3, ["6"]))
    play.show(19, "in the lobby: none", is_filtered=False)
    end = play.show_filters(40, types)
    play.events += [(end + 1, "crosshair"), (end + 11, "loading"), (end + 16, "resolve")]
    play.show(end + 8, "a cross-hair begins the interface")
    play.show(end + 14, "a loading screen: none", is_filtered=False)
    play.show(end + 28, "the scene on a multisampled attachment")
    return play


def run(stage, play, name, configuration, more=()):
    """@return the folder of its pictures and the report"""
    pictures = stage.out / name
    pictures.mkdir()
    root = stage.scratch / name
    command = [stage.tools / "orvel-sample", "--game", play.game, "--base", SIZE, "--window", SIZE, "--frames", play.frames,
               "--min-frame-ms", FRAME_MS, "--png", pictures, "--png-frames", ",".join(str(f) for f, _, _ in play.shown), *more]
    for frame, event in play.events:
        command += ["--event-at", f"{frame}:{event}"]
    if configuration is not None:
        told = [(frame, ["scene", str(scene)]) for frame, scene in play.scenes]
        told += [(frame, ["filter", *options]) for frame, options in play.filters]
        for frame, words in told:
            command += ["--at", f"{frame}:" + shlex.join([str(stage.tools / "orvel-set"), str(root), *words]) + " >&2"]
    _, report = stage.run_under_library(name, command, configuration, package=play.package, options=["--multisampled"])
    errors = [line for line in (stage.out / f"{name}.log").read_text().splitlines() if "GL error" in line]
    return pictures, root, report, errors


def loads_table(root):
    rows = []
    for path in sorted((root / "orvel").glob("loads.*.jsonl")):
        for line in path.read_text().splitlines():
            load = json.loads(line)
            counts = {call: load["calls"].count(call) for call in load["calls"]}
            rows.append([load["frame"], ", ".join(call if n == 1 else f"{call} ({n})" for call, n in counts.items())])
    return page.table(["frame", "what the library made when it ended"], rows), [row[0] for row in rows]


def show_game(stage, play):
    name = f"filters-{play.game}"
    problems = []
    plain, _, _, _ = run(stage, play, f"{name}-without", None)
    masks = [run(stage, play, f"{name}-{colour}", None, ["--fill", colour])[0] for colour in ("000000", "ffffff")]
    filtered, root, report, errors = run(stage, play, f"{name}-with", play.configuration)
    print(f"demo: filters of {play.game}: {report['summary']}")
    problems += [f"{play.game}: {line}" for line in errors]
    table, frames = loads_table(root)
    # The vertex array, three effects, then an instance a frame; only those with an image make something.
    types = [int(kind) for kind in play.configuration["configs"]["effect_Types"].split(";")]
    wanted = [1, 2, 3, 4, *(5 + i for i, kind in enumerate(types) if kind > 2)]
    if frames[:len(wanted)] != wanted:
        problems.append(f"{play.game}: objects were loaded when the frames {frames} ended, not {wanted}")
    parts = [f"<h3>{page.escape(play.package)}</h3><p>{page.escape(report['summary'])}</p>",
             f"<pre>{page.escape(json.dumps(play.configuration, indent=4))}</pre>"]
    rows = []
    for frame, caption, is_filtered in play.shown:
        picture = f"frame-{frame:04d}.png"
        difference = filtered / f"difference-{frame:04d}.png"
        result = stage.compare(plain / picture, filtered / picture, difference,
                               where_equal=[mask / picture for mask in masks])
        changed = result["different_pixels"] / (result["width"] * result["height"])
        rows.append([frame, caption, f"{changed:.0%}", result["common_pixels"], result["different_common_pixels"]])
        if is_filtered != (changed > 0.5):
            problems.append(f"{play.game}: frame {frame} ({caption}): {changed:.0%} of the pixels changed")
        if result["different_common_pixels"]:
            problems.append(f"{play.game}: frame {frame} ({caption}): {result['different_common_pixels']} pixels of the "
                            "interface changed")
        parts.append(f"<h4>{page.escape(caption)}</h4>" + page.side_by_side([
            page.figure((plain / picture).relative_to(stage.out), f"frame {frame} without"),
            page.figure((filtered / picture).relative_to(stage.out), f"frame {frame} with"),
            page.figure(difference.relative_to(stage.out), "difference, brightened")]))
    parts.append(page.table(["frame", "", "pixels changed", "opaque pixels of the interface", "changed among these"], rows))
    parts.append("<p>Loading: one object a frame, so that no frame pays for all of it.</p>" + table)
    return "".join(parts), problems


def chapter(stage):
    parts = ["<p>The player chooses a filter; the library draws it where the scene ends and the interface begins. What is "
             "opaque of the interface is known from two more runs that hide the scene behind black and behind white: where "
             "those two agree, the run with filters has to agree with the one without.</p>"]
    problems = []
    for play in (sgame(), pubg()):
        content, found = show_game(stage, play)
        parts.append(content)
        problems += found
    return "Colour filters", "".join(parts), problems
