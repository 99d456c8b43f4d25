"""Reads the user's guide: Markdown, of which a small part is allowed and checked strictly.

    # Title                      the guide's title, first of all
    ## Heading {#id}             a topic; what stands up to the next heading belongs to it
    keywords: one, two           words under which a reader may look the topic up, right under the heading, alone
    paragraphs, "- " lists, "1. " lists, tables with a heading row
    **strong**, `code`, [text](#id)

What is none of this, a link to no topic or an id used twice is an error that names the line.
"""

import dataclasses
import re

from markdown_it import MarkdownIt
from markdown_it.tree import SyntaxTreeNode


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


# Text is taken as it stands: no character stands for another one.
MARKDOWN = MarkdownIt("commonmark").enable("table").disable(["escape", "entity", "reference"])
HEADING = re.compile(r"(?P<title>[^{]+?) \{#(?P<id>[\w-]+)\}")
TARGET = re.compile(r"#(?P<id>[\w-]+)")
LISTS = {"bullet_list": ("bullets", "-"), "ordered_list": ("numbers", ".")}
KEYWORDS = "keywords: "


def expect(node, condition, what):
    if not condition:
        raise GuideError(f"line {node.map[0] + 1}: {what}")


# --- inside of a paragraph, an item, a cell

def plain_of(parts, line):
    """The text of nodes that are nothing but text; a line's end is a blank."""
    for part in parts:
        expect(line, part.type in ("text", "softbreak"), f"{part.type} has no place here")
    return "".join(" " if part.type == "softbreak" else part.content for part in parts)


def span_of(part, line):
    if part.type == "code_inline":
        return Span("code", part.content)
    if part.type == "strong":
        return Span("strong", plain_of(part.children, line))
    if part.type == "link":
        target = TARGET.fullmatch(part.attrs["href"])
        expect(line, target and "title" not in part.attrs, "a link leads to a topic, [text](#id)")
        return Span("link", plain_of(part.children, line), target["id"])
    text = plain_of([part], line)
    expect(line, not re.search(r"\*\*|`|\]\(", text), f"a mark without its partner: {text!r}")
    return Span("text", text)


def spans_of(line):
    spans = []
    for part in line.children:
        span = span_of(part, line)
        if not span.text:  # the parser puts an empty text beside some marks
            continue
        if spans and span.kind == spans[-1].kind == "text":
            spans[-1].text += span.text
        else:
            spans.append(span)
    return spans


# --- blocks

def item_of(item, lines):
    expect(item, [part.type for part in item.children] == ["paragraph"] and item.children[0].hidden,
           "a list item is one paragraph, without blank lines between the items")
    first, end = item.children[0].map
    expect(item, all(text.startswith("  ") for text in lines[first + 1:end]),
           "a list item goes on with two blanks in front")
    return spans_of(item.children[0].children[0])


def list_of(node, lines):
    kind, mark = LISTS[node.type]
    expect(node, all(item.markup == mark for item in node.children), f"a list of {kind} has the mark {mark!r}")
    if kind == "numbers":
        expect(node, [item.info for item in node.children] == [str(i + 1) for i in range(len(node.children))],
               "the numbers of a list count from 1")
    return Block(kind, [item_of(item, lines) for item in node.children])


def table_of(node, lines):
    rows = [row for part in node.children for row in part.children]
    expect(node, len(rows) >= 2, "a table has a heading row, a line of dashes and rows")
    for row in rows:
        text = lines[row.map[0]].strip()
        expect(row, text.startswith("|") and text.endswith("|"), "a table row begins and ends with a bar")
        # A missing cell would be filled in, one too many left out.
        expect(row, text.count("|") == len(row.children) + 1, "the rows of a table have as many cells each")
    return Block("table", [[spans_of(cell.children[0]) for cell in row.children] for row in rows])


def block_of(node, lines):
    if node.type == "table":
        return table_of(node, lines)
    if node.type in LISTS:
        return list_of(node, lines)
    expect(node, node.type == "paragraph", f"{node.type} has no place in this guide")
    expect(node, not node.children[0].content.startswith("|"), "a table has a heading row, a line of dashes and rows")
    return Block("paragraph", spans_of(node.children[0]))


# --- the whole

def topic_of(heading, keywords):
    text = plain_of(heading.children[0].children, heading)
    found = HEADING.fullmatch(text)
    expect(heading, heading.tag == "h2" and heading.markup == "##" and found, f"not a heading of this guide: {text!r}")
    line = keywords.children[0].content if keywords and keywords.type == "paragraph" else ""
    expect(heading, line.startswith(KEYWORDS) and "\n" not in line and keywords.map[0] == heading.map[1],
           "a heading is followed by its keywords alone")
    return Topic(found["title"], found["id"], [word.strip() for word in line[len(KEYWORDS):].split(",")], [])


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
    lines = text.split("\n")
    nodes = SyntaxTreeNode(MARKDOWN.parse(text)).children
    if not nodes or nodes[0].type != "heading" or nodes[0].tag != "h1" or nodes[0].markup != "#":
        raise GuideError("a guide begins with its title")
    guide = Guide(plain_of(nodes[0].children[0].children, nodes[0]), [], [])
    rest = iter(nodes[1:])
    for node in rest:
        if node.type == "heading":
            guide.topics.append(topic_of(node, next(rest, None)))
        else:
            blocks = guide.topics[-1].blocks if guide.topics else guide.introduction
            blocks.append(block_of(node, lines))
    if not guide.topics:
        raise GuideError("a guide has topics")
    check(guide)
    return guide
