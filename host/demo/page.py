"""The demo's page: plain HTML with everything that it shows beside it."""
import html
import pathlib

STYLE = """
:root { color-scheme: light dark; --line: #8886; --soft: #8882; --good: #2a8a4a; --bad: #c33; }
body { font: 16px/1.5 system-ui, sans-serif; max-width: 72rem; margin: 2rem auto; padding: 0 1rem; }
h1 { line-height: 1.2; } h2 { margin-top: 2.5rem; border-top: 1px solid var(--line); padding-top: 1.5rem; }
table { border-collapse: collapse; margin: 1rem 0; } td, th { border: 1px solid var(--line); padding: .3rem .7rem; text-align: left; }
pre { background: var(--soft); padding: 1rem; overflow-x: auto; font-size: .85rem; line-height: 1.35; }
mark.old { background: #f002; color: var(--bad); } mark.new { background: #0f02; color: var(--good); }
.detail { overflow: hidden; position: relative; max-width: 100%; }
.detail img { position: absolute; max-width: none; transform-origin: 0 0; image-rendering: pixelated; }
figure { margin: 0; } figcaption { font-size: .9rem; } img { max-width: 100%; background: #000; }
.overlay { position: relative; } .overlay img { width: 100%; display: block; }
.overlay img + img { position: absolute; inset: 0; height: 100%; opacity: .45; image-rendering: pixelated; }
.row { display: flex; flex-wrap: wrap; gap: 1rem; } .row > * { flex: 1 1 20rem; min-width: 0; }
code.hook { display: inline-block; background: var(--soft); padding: 0 .4rem; margin: .1rem; border-radius: .3rem; }
"""


def escape(text):
    return html.escape(str(text))


def table(header, rows):
    head = "".join(f"<th>{escape(cell)}</th>" for cell in header)
    body = "".join("<tr>" + "".join(f"<td>{escape(cell)}</td>" for cell in row) + "</tr>" for row in rows)
    return f"<table><tr>{head}</tr>{body}</table>"


def figure(image, caption):
    return f'<figure><img src="{escape(image)}" alt="{escape(caption)}"><figcaption>{escape(caption)}</figcaption></figure>'


def detail(image, caption, part, zoom=3):
    """A part of a picture (left, top, width, height), every pixel zoom times as large."""
    left, top, width, height = part
    style = f"width:{width * zoom}px;height:{height * zoom}px"
    return (f'<figure><div class="detail" style="{style}"><img src="{escape(image)}" alt="{escape(caption)}" '
            f'style="transform:scale({zoom});left:{-left * zoom}px;top:{-top * zoom}px"></div>'
            f"<figcaption>{escape(caption)}</figcaption></figure>")


def overlay(image, above, caption):
    """A picture with another one of the same shape half transparent above it."""
    return (f'<figure><div class="overlay"><img src="{escape(image)}" alt="{escape(caption)}"><img src="{escape(above)}" alt="">'
            f"</div><figcaption>{escape(caption)}</figcaption></figure>")


def side_by_side(parts):
    return '<div class="row">' + "".join(parts) + "</div>"


def source(title, text, word, kind):
    """A listing with one word marked; only the lines around it when the text is long."""
    lines = text.rstrip("\0\n").split("\n")
    wanted = [number for number, line in enumerate(lines) if word in line]
    if len(lines) > 40 and wanted:
        near = {n for w in wanted for n in range(w - 3, w + 4) if 0 <= n < len(lines)}
        lines = [lines[n] if n in near else None for n in range(len(lines))]
        lines = [line for n, line in enumerate(lines) if line is not None or (n and lines[n - 1] is not None)]
    shown = "\n".join("…" if line is None else escape(line) for line in lines)
    shown = shown.replace(word, f'<mark class="{kind}">{word}</mark>')
    return f"<div><p><b>{escape(title)}</b></p><pre>{shown}</pre></div>"


def line_chart(title, series, marks=()):
    """An SVG of one line per series, x being the position in it; marks are vertical lines."""
    width, height, left, top = 900, 260, 50, 20
    count = max(len(values) for values in series.values())
    most = max(max(values) for values in series.values()) * 1.05
    x = lambda i: left + i * (width - left - 10) / max(count - 1, 1)
    y = lambda v: top + (height - top - 30) * (1 - v / most)
    parts = [f'<svg viewBox="0 0 {width} {height}" role="img" aria-label="{escape(title)}" style="font-size:12px">']
    for step in range(5):
        value = most * step / 4
        parts.append(f'<line x1="{left}" x2="{width - 10}" y1="{y(value):.1f}" y2="{y(value):.1f}" stroke="#8884"/>'
                     f'<text x="{left - 6}" y="{y(value) + 4:.1f}" text-anchor="end" fill="currentColor">{value:.0f}</text>')
    for mark in marks:
        parts.append(f'<line x1="{x(mark):.1f}" x2="{x(mark):.1f}" y1="{top}" y2="{height - 30}" stroke="#888" '
                     'stroke-dasharray="4"/>')
    for (name, values), colour in zip(series.items(), ("#c33", "#2a8a4a", "#36c")):
        points = " ".join(f"{x(i):.1f},{y(v):.1f}" for i, v in enumerate(values))
        parts.append(f'<polyline points="{points}" fill="none" stroke="{colour}" stroke-width="1.5"/>')
        slot = list(series).index(name)
        parts.append(f'<text x="{left + slot * 200}" y="{height - 6}" fill="{colour}">{escape(name)}</text>')
    parts.append(f'<text x="{left}" y="12" fill="currentColor">{escape(title)}</text></svg>')
    return "".join(parts)


def write(folder, chapters):
    body = "\n".join(f"<h2>{escape(title)}</h2>\n{content}" for title, content in chapters)
    (pathlib.Path(folder) / "index.html").write_text(
        f"""<!doctype html>
<html lang="en"><meta charset="utf-8"><meta name="viewport" content="width=device-width">
<title>orvel: demo</title><style>{STYLE}</style>
<h1>orvel between a real program and the driver</h1>
<p>Everything on this page was made just now on this machine, on a software driver, without a display.</p>
{body}
</html>
""")
