"""Makes the HTML guide from its source: one file with everything in it, for screens light and dark and for paper.

usage: make_html.py GUIDE.md VERSION OUT.htm
"""

import html
import pathlib
import re
import sys

import guide as guides

STYLE = """
:root { color-scheme: light dark; --ink: #1d2126; --soft: #5b6570; --paper: #ffffff; --wash: #f2f5f8;
  --line: #d3dae1; --link: #0b5cad; }
@media (prefers-color-scheme: dark) { :root { --ink: #e4e7eb; --soft: #a3adb8; --paper: #16191d; --wash: #1f242a;
  --line: #39424c; --link: #7ab8ff; } }
* { box-sizing: border-box; }
html { scroll-padding-top: 1rem; }
body { margin: 0; background: var(--paper); color: var(--ink);
  font: 100%/1.6 "Segoe UI", Tahoma, "DejaVu Sans", sans-serif; }
.page { display: flex; flex-wrap: wrap; max-width: 68rem; margin: 0 auto; padding: 0 1.5rem 4rem; }
header { width: 100%; padding: 2.2rem 0 1.2rem; border-bottom: 1px solid var(--line); }
h1 { margin: 0; font-size: 2rem; line-height: 1.2; font-weight: 600; }
header p { margin: .3rem 0 0; color: var(--soft); }
nav { flex: 0 0 15rem; padding: 1.5rem 1.5rem 0 0; font-size: .93rem; }
nav ul { list-style: none; margin: 0; padding: 0; }
nav li { margin: 0 0 .35rem; line-height: 1.35; }
main { flex: 1 1 24rem; min-width: 0; padding-top: 1.5rem; }
h2 { margin: 2.6rem 0 .7rem; font-size: 1.35rem; line-height: 1.3; font-weight: 600; }
section:first-of-type h2 { margin-top: 1.5rem; }
p, ul, ol, .table { margin: 0 0 1rem; }
main ul, main ol { padding-left: 1.6rem; }
main li { margin-bottom: .4rem; }
a { color: var(--link); text-decoration: none; }
a:hover { text-decoration: underline; }
a:focus-visible { outline: 2px solid var(--link); outline-offset: 2px; border-radius: 2px; }
code { padding: .1em .35em; background: var(--wash); border-radius: 3px;
  font: .92em Consolas, "DejaVu Sans Mono", monospace; }
.table { overflow-x: auto; }
table { border-collapse: collapse; font-size: .95rem; line-height: 1.45; }
th, td { padding: .4rem .9rem .4rem .6rem; border-bottom: 1px solid var(--line); text-align: left; vertical-align: top; }
th { background: var(--wash); font-weight: 600; }
.index { columns: 14rem; column-gap: 2rem; list-style: none; padding: 0; font-size: .95rem; }
.index li { break-inside: avoid; }
@media (max-width: 46rem) { nav { flex-basis: 100%; padding-right: 0; } nav ul { columns: 12rem; } }
@media print { :root { --ink: #000; --soft: #444; --paper: #fff; --wash: #f4f4f4; --line: #bbb; --link: #000; }
  body { font-size: 10.5pt; } .page { display: block; max-width: none; padding: 0; } nav, .index-of-words { display: none; }
  h2 { break-after: avoid; } tr, li { break-inside: avoid; } }
""".strip()


def spans(parts):
    out = []
    for span in parts:
        text = html.escape(span.text, quote=False)
        if span.kind == "strong":
            text = f"<strong>{text}</strong>"
        elif span.kind == "code":
            text = f"<code>{text}</code>"
        elif span.kind == "link":
            text = f'<a href="#{span.target}">{text}</a>'
        out.append(text)
    return "".join(out)


def block(piece):
    if piece.kind == "paragraph":
        return f"<p>{spans(piece.items)}</p>"
    if piece.kind == "table":
        head, *rows = piece.items
        lines = ["<tr>" + "".join(f'<th scope="col">{spans(cell)}</th>' for cell in head) + "</tr>"]
        lines += ["<tr>" + "".join(f"<td>{spans(cell)}</td>" for cell in row) + "</tr>" for row in rows]
        return f'<div class="table"><table>\n<thead>{lines[0]}</thead>\n<tbody>\n' + "\n".join(lines[1:]) + \
            "\n</tbody>\n</table></div>"
    tag = "ul" if piece.kind == "bullets" else "ol"
    return f"<{tag}>\n" + "\n".join(f"<li>{spans(item)}</li>" for item in piece.items) + f"\n</{tag}>"


def section(topic):
    body = "\n".join(block(piece) for piece in topic.blocks)
    return f'<section id="{topic.id}" aria-labelledby="{topic.id}-heading">\n' \
           f'<h2 id="{topic.id}-heading">{html.escape(topic.title)}</h2>\n{body}\n</section>'


def index(topics):
    words = sorted({(word, topic.id) for topic in topics for word in topic.keywords},
                   key=lambda entry: (re.sub(r"\W", "", entry[0]).lower(), entry[1]))
    lines = "\n".join(f'<li><a href="#{target}">{html.escape(word)}</a></li>' for word, target in words)
    return '<section id="index" class="index-of-words" aria-labelledby="index-heading">\n' \
           f'<h2 id="index-heading">Index</h2>\n<ul class="index">\n{lines}\n</ul>\n</section>'


def page(guide, version):
    contents = "\n".join(f'<li><a href="#{topic.id}">{html.escape(topic.title)}</a></li>' for topic in guide.topics)
    title = html.escape(guide.title)
    introduction = "\n".join(block(piece) for piece in guide.introduction)
    sections = "\n".join(section(topic) for topic in guide.topics)
    return f"""<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{title}: user's guide</title>
<style>
{STYLE}
</style>
</head>
<body>
<div class="page">
<header>
<h1>{title}</h1>
<p>User's guide, version {html.escape(version)}</p>
</header>
<nav aria-label="Contents">
<ul>
{contents}
<li><a href="#index">Index</a></li>
</ul>
</nav>
<main>
{introduction}
{sections}
{index(guide.topics)}
</main>
</div>
</body>
</html>
"""


def main(arguments):
    if len(arguments) != 3:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    source, version, target = arguments
    try:
        guide = guides.parse(pathlib.Path(source).read_text(encoding="utf-8"))
    except guides.GuideError as error:
        print(f"{source}: {error}", file=sys.stderr)
        return 1
    pathlib.Path(target).write_text(page(guide, version), encoding="utf-8", newline="\r\n")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
