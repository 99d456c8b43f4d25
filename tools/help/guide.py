"""Reads the user's guide: a small part of Markdown, checked strictly.

    # Title                      the guide's title, first line
    ## Heading {#id}             a topic; the lines up to the next heading belong to it
    keywords: one, two           words under which a reader may look the topic up, right under the heading
    paragraphs, "- " lists, "1. " lists, tables with a heading row
    **strong**, `code`, [text](#id)

What is none of this, a link to no topic or an id used twice is an error that names the line.
"""

import dataclasses
import re


class GuideError(Exception):
    pass


@dataclasses.dataclass
class Span:
    kind: str  # "text", "strong", "code", "link"
    text: str
    target: str = ""


@dataclasses.dataclass
class Block:
    kind: str  # "paragraph", "bullets", "numbers", "table"
    items: list  # spans; for lists one list of spans an item; for tables rows of cells of spans, heading first


@dataclasses.dataclass
class Topic:
    title: str
    id: str
    keywords: list
    blocks: list


@dataclasses.dataclass
class Guide:
    title: str
    introduction: list
    topics: list


INLINE = re.compile(r"\*\*(?P<strong>[^*]+)\*\*|`(?P<code>[^`]+)`|\[(?P<link>[^\]]+)\]\(#(?P<target>[\w-]+)\)")
HEADING = re.compile(r"## (?P<title>[^{]+?) \{#(?P<id>[\w-]+)\}$")


def spans_of(text, line):
    spans, end = [], 0
    for found in INLINE.finditer(text):
        if found.start() > end:
            spans.append(Span("text", text[end:found.start()]))
        kind = found.lastgroup if found.lastgroup != "target" else "link"
        spans.append(Span(kind, found[kind], found["target"] or ""))
        end = found.end()
    if end < len(text):
        spans.append(Span("text", text[end:]))
    for span in spans:
        if span.kind == "text" and re.search(r"\*\*|`|\]\(", span.text):
            raise GuideError(f"line {line}: a mark without its partner: {span.text!r}")
    return spans


def cells_of(row, line):
    if not row.endswith("|"):
        raise GuideError(f"line {line}: a table row ends with a bar")
    return [spans_of(cell.strip(), line) for cell in row.strip("|").split("|")]


def table_of(lines, first):
    rows = [cells_of(row, first + i) for i, row in enumerate(lines) if i != 1]
    if len(lines) < 3 or not re.fullmatch(r"(\|-+)+\|", lines[1]):
        raise GuideError(f"line {first}: a table has a heading row, a line of dashes and rows")
    if len({len(row) for row in rows}) != 1:
        raise GuideError(f"line {first}: the rows of a table have as many cells each")
    return Block("table", rows)


def list_of(kind, mark, lines, first):
    items = []
    for i, text in enumerate(lines):
        found = re.match(mark, text)
        if found:
            items.append(text[found.end():])
        elif text.startswith("  "):
            items[-1] += " " + text.strip()
        else:
            raise GuideError(f"line {first + i}: a list item goes on with two blanks in front")
    return Block(kind, [spans_of(item, first) for item in items])


def block_of(lines, first):
    if lines[0].startswith("|"):
        return table_of(lines, first)
    if lines[0].startswith("- "):
        return list_of("bullets", "- ", lines, first)
    if re.match(r"\d+\. ", lines[0]):
        return list_of("numbers", r"\d+\. ", lines, first)
    if lines[0][0] in "#>":
        raise GuideError(f"line {first}: not a heading of this guide: {lines[0]!r}")
    return Block("paragraph", spans_of(" ".join(text.strip() for text in lines), first))


def groups_of(lines):
    """Runs of lines without a blank one, each with the number of its first line."""
    group, first = [], 0
    for number, text in enumerate(lines, 1):
        if text.strip():
            if not group:
                first = number
            group.append(text.rstrip())
        elif group:
            yield first, group
            group = []
    if group:
        yield first, group


def links_of(blocks):
    for block in blocks:
        parts = block.items if block.kind == "paragraph" else None
        if block.kind in ("bullets", "numbers"):
            parts = [span for item in block.items for span in item]
        if block.kind == "table":
            parts = [span for row in block.items for cell in row for span in cell]
        yield from (span.target for span in parts if span.kind == "link")


def check(guide):
    ids = [topic.id for topic in guide.topics]
    for topic in guide.topics:
        if ids.count(topic.id) > 1:
            raise GuideError(f"the id {topic.id} is used twice")
        if not topic.keywords or not topic.blocks:
            raise GuideError(f"the topic {topic.title!r} has no keywords or no text")
    for target in links_of(guide.introduction + [block for topic in guide.topics for block in topic.blocks]):
        if target not in ids:
            raise GuideError(f"a link to no topic: #{target}")


def parse(text):
    guide = Guide("", [], [])
    for first, lines in groups_of(text.splitlines()):
        if lines[0].startswith("# "):
            guide.title = lines[0][2:]
            continue
        heading = HEADING.match(lines[0])
        if heading:
            if len(lines) != 2 or not lines[1].startswith("keywords: "):
                raise GuideError(f"line {first}: a heading is followed by its keywords alone")
            keywords = [word.strip() for word in lines[1][len("keywords: "):].split(",")]
            guide.topics.append(Topic(heading["title"], heading["id"], keywords, []))
            continue
        blocks = guide.topics[-1].blocks if guide.topics else guide.introduction
        blocks.append(block_of(lines, first))
    if not guide.title or not guide.topics:
        raise GuideError("a guide has a title and topics")
    check(guide)
    return guide
