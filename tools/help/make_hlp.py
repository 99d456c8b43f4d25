"""Makes the guide as a file for the system's own help reader, which systems up to XP bring along.

usage: make_hlp.py GUIDE.md VERSION OUT.hlp

The file is a small file system. All numbers are little-endian.

    offset  size
         0     4  0x00035F3F
         4     4  where the directory stands
         8     4  first free block, -1
        12     4  size of the file

Each file in it has 9 bytes in front: space reserved with these 9, space used without them, flags. The directory is
a B+ tree of names and places. In use here:

    |SYSTEM    title, first topic, macros run at the start
    |FONT      faces and the fonts made of them
    |TOPIC     the text: blocks of 4,096 bytes with linked records in them
    |CONTEXT   B+ tree: hash of a topic's id -> topic offset
    |TTLBTREE  B+ tree: topic offset -> title
    |KWBTREE, |KWDATA, |KWMAP   keywords -> topic offsets

The blocks of |TOPIC are compressed, each for itself, behind 12 bytes of links between the blocks. A topic position is
the number of the block * 0x4000 + the place in its bytes when they are unpacked + 12; a topic offset is the number of
the block * 0x8000 + the count of characters in front of it in its block.
"""

import pathlib
import re
import struct
import sys

import guide as guides

MAGIC = 0x00035F3F
BLOCK = 4096       # bytes in the file
BLOCK_HEAD = 12
UNPACKED = 0x4000  # bytes that a block stands for at most
LINK_HEAD = 21
NONE = -1
TOPIC_HEADER, TEXT = 2, 0x20

BODY, STRONG, HEADING, CODE = range(4)
FACES = ["MS Sans Serif", "Courier New"]
# attributes (1 = bold), half points, family (3 = without serifs, 1 = fixed pitch), face
FONTS = [(0, 20, 3, 0), (1, 20, 3, 0), (1, 32, 3, 0), (0, 20, 1, 1)]

CONTENTS_ID = "contents"
SHORT_CELL = 24  # characters; tables of longer cells are shown as terms with their explanations
COLUMN = 260     # half points between the columns of a table


class HelpError(Exception):
    pass


# --- numbers as the text records hold them

def unsigned_short(value):
    return struct.pack("<B", value * 2) if value < 0x80 else struct.pack("<H", value * 2 + 1)


def signed_short(value):
    if -0x40 <= value < 0x40:
        return struct.pack("<B", value * 2 + 0x80)
    return struct.pack("<H", value * 2 + 0x8001)


def signed_long(value):
    if -0x4000 <= value < 0x4000:
        return struct.pack("<H", value * 2 + 0x8000)
    return struct.pack("<I", value * 2 + 0x80000001)


def plain(text):
    """Text in ASCII, which is the same in all code pages; a remark in brackets that can not be is left out."""
    text = re.sub(r" \([^()]*[^\x00-\u2026][^()]*\)", "", text).replace("\u2026", "...")
    try:
        return text.encode("ascii")
    except UnicodeEncodeError as error:
        raise HelpError(f"the help reader can not show {text!r}") from error


def hash_of(name):
    """The number under which a topic's name is looked up."""
    value = 0
    for letter in name.upper():
        place = {"0": 10, ".": 12, "_": 13}.get(letter, ord(letter) - 0x30)
        value = (value * 43 + place) & 0xFFFFFFFF
    return value - (1 << 32) if value >= 1 << 31 else value


# --- text records

class Text:
    """The two halves of a text record: commands, and the pieces of text between them, each ended by a NUL."""

    def __init__(self):
        self.commands, self.pieces, self.piece = b"", b"", b""
        self.font = None

    def write(self, text, font):
        if font != self.font:
            self.command(struct.pack("<BH", 0x80, font))
            self.font = font
        self.piece += plain(text)

    def command(self, bytes_):
        self.pieces += self.piece + b"\0"
        self.commands += bytes_
        self.piece = b""

    def link(self, text, target, font):
        self.write("", font)
        self.command(struct.pack("<Bi", 0xE3, hash_of(target)))
        self.write(text, font)
        self.command(b"\x89")

    def spans(self, parts, font=BODY):
        for span in parts:
            if span.kind == "link":
                self.link(span.text, span.target, font)
            else:
                self.write(span.text, {"text": font, "strong": STRONG, "code": CODE}[span.kind])

    def tab(self):
        self.command(b"\x83")


def paragraph(text, below=12, left=0, first=0, tabs=()):
    """A text record: spacing below, left indent and that of the first line, tab stops; half points."""
    flags, layout = 0x0004, signed_short(below)
    if left:
        flags |= 0x0010
        layout += signed_short(left)
    if first:
        flags |= 0x0040
        layout += signed_short(first)
    if tabs:
        flags |= 0x0200
        layout += signed_short(len(tabs)) + b"".join(unsigned_short(tab) for tab in tabs)
    text.command(b"\x82")
    text.command(b"\xff")
    data2 = text.pieces
    data1 = signed_long(len(data2)) + unsigned_short(len(data2)) + struct.pack("<BBHH", 0, 0x80, 0, flags) + layout + \
        text.commands
    return TEXT, data1, data2


def plain_length(parts):
    return sum(len(span.text) for span in parts)


def list_records(items, numbered):
    for number, item in enumerate(items, 1):
        text = Text()
        text.write(f"{number}." if numbered else "-", BODY)
        text.tab()
        text.spans(item)
        yield paragraph(text, below=12 if number == len(items) else 6, left=36, first=-36, tabs=(36,))


def table_records(rows):
    narrow = all(plain_length(cell) <= SHORT_CELL for row in rows for cell in row)
    for number, row in enumerate(rows):
        text = Text()
        font = STRONG if number == 0 else BODY
        if narrow:
            for column, cell in enumerate(row):
                if column:
                    text.tab()
                text.spans(cell, font)
            yield paragraph(text, below=12 if row is rows[-1] else 4,
                            tabs=tuple(COLUMN * i for i in range(1, len(row))))
        elif number > 0:
            text.spans(row[0], STRONG)
            for cell in row[1:-1]:
                text.write(", ", BODY)
                text.spans(cell)
            text.command(b"\x81")
            text.spans(row[-1])
            yield paragraph(text, left=36, first=-36)


def block_records(block):
    if block.kind == "paragraph":
        text = Text()
        text.spans(block.items)
        yield paragraph(text)
    elif block.kind == "table":
        yield from table_records(block.items)
    else:
        yield from list_records(block.items, block.kind == "numbers")


def heading_record(title):
    text = Text()
    text.write(title, HEADING)
    return paragraph(text, below=16)


def contents_records(guide, version):
    yield heading_record(guide.title)
    text = Text()
    text.write(f"User's guide, version {version}", BODY)
    yield paragraph(text)
    for block in guide.introduction:
        yield from block_records(block)
    for topic in guide.topics:
        text = Text()
        text.link(topic.title, topic.id, BODY)
        yield paragraph(text, below=4, left=36)


# --- |TOPIC

class Record:
    def __init__(self, kind, data1, data2):
        self.kind, self.data1, self.data2 = kind, data1, data2
        self.position = 0

    def size(self):
        return LINK_HEAD + len(self.data1) + len(self.data2)

    def encode(self, before, behind):
        return struct.pack("<iiiiiB", self.size(), len(self.data2), before, behind, LINK_HEAD + len(self.data1),
                           self.kind) + self.data1 + self.data2


class Page:
    """A topic as it stands in the file."""

    def __init__(self, id_, title, keywords, records):
        self.id, self.title, self.keywords = id_, title, keywords
        self.header = Record(TOPIC_HEADER, b"\0" * 28, plain(title) + b"\0")
        self.records = [self.header] + [Record(*record) for record in records]
        self.offset = 0


def pages_of(guide, version):
    pages = [Page(CONTENTS_ID, guide.title, ["contents"], contents_records(guide, version))]
    for topic in guide.topics:
        records = [heading_record(topic.title)]
        for block in topic.blocks:
            records += block_records(block)
        pages.append(Page(topic.id, topic.title, topic.keywords, records))
    return pages


def pack(data):
    """Packs bytes: groups of a byte of eight flags and eight tokens. A token is a byte, or, where the flag is set, a
    reference of two: 12 bits of distance - 1 and 4 bits of length - 3."""
    tokens, at, seen = [], 0, {}
    while at < len(data):
        length, distance = 0, 0
        for start in seen.get(data[at:at + 3], [])[-64:]:
            if at - start > 4096:
                continue
            same = 3
            while same < 18 and at + same < len(data) and data[start + same] == data[at + same]:
                same += 1
            if same >= length:
                length, distance = same, at - start
        step = length or 1
        for passed in range(at, at + step):
            if passed + 3 <= len(data):
                seen.setdefault(data[passed:passed + 3], []).append(passed)
        tokens.append(struct.pack("<H", (length - 3) << 12 | (distance - 1)) if length else data[at:at + 1])
        at += step
    out = b""
    for first in range(0, len(tokens), 8):
        group = tokens[first:first + 8]
        out += bytes([sum(1 << i for i, token in enumerate(group) if len(token) == 2)]) + b"".join(group)
    return out


def size_of(records):
    return sum(record.size() for record in records)


def fits(records):
    """Whether records fit a block, with some bytes in reserve: the links between them are filled in later and then
    pack a little worse or better."""
    data = b"".join(record.encode(0x01234567, 0x02345678) for record in records)
    return len(data) <= UNPACKED - BLOCK_HEAD and len(pack(data)) <= (BLOCK - BLOCK_HEAD) * 0.9


def place(pages):
    """Gives every record its position: a topic starts a block, a record never crosses into the next one."""
    blocks = []  # (records, page that they belong to)
    for page in pages:
        blocks.append(([], page))
        for record in page.records:
            if not fits(blocks[-1][0] + [record]):
                blocks.append(([], page))
            records = blocks[-1][0]
            record.position = (len(blocks) - 1) * UNPACKED + BLOCK_HEAD + size_of(records)
            records.append(record)
        page.offset = page.header.position // UNPACKED * 0x8000
    return blocks


def fill_headers(pages):
    for number, page in enumerate(pages):
        before = pages[number - 1].offset if number else NONE
        behind = pages[number + 1] if number + 1 < len(pages) else None
        page.header.data1 = struct.pack(
            "<iiiIiii", size_of(page.records), before, behind.offset if behind else NONE,
            number, NONE, page.records[1].position, behind.header.position if behind else NONE)


def topic_file(pages):
    blocks = place(pages)
    fill_headers(pages)
    order = [record for records, _ in blocks for record in records]
    neighbours = {id(record): (order[i - 1].position if i else NONE,
                               order[i + 1].position if i + 1 < len(order) else NONE)
                  for i, record in enumerate(order)}
    out, last = b"", NONE
    for records, page in blocks:
        block = struct.pack("<iii", last, records[0].position, page.header.position)
        block += pack(b"".join(record.encode(*neighbours[id(record)]) for record in records))
        if len(block) > BLOCK:
            raise HelpError(f"a paragraph of {page.title!r} is too long")
        out += block.ljust(BLOCK, b"\0")
        last = records[-1].position
    return out


# --- B+ trees

def tree(entries, structure, page_size, flags=0x0002):
    """A B+ tree of (key, data), both encoded, in order. One level of leaves, and a root over them if need be."""
    leaves, used = [[]], 8
    for key, data in entries:
        if used + len(key) + len(data) > page_size:
            leaves.append([])
            used = 8
        leaves[-1].append((key, data))
        used += len(key) + len(data)
    out = []
    for number, leaf in enumerate(leaves):
        body = b"".join(key + data for key, data in leaf)
        head = struct.pack("<hhhh", page_size - 8 - len(body), len(leaf), number - 1,
                           number + 1 if number + 1 < len(leaves) else NONE)
        out.append((head + body).ljust(page_size, b"\0"))
    root, levels = 0, 1
    if len(leaves) > 1:
        root, levels = len(leaves), 2
        body = b"".join(leaf[0][0] + struct.pack("<h", number) for number, leaf in enumerate(leaves) if number)
        if 6 + len(body) > page_size:
            raise HelpError("too many keywords for one root page")
        head = struct.pack("<hhh", page_size - 6 - len(body), len(leaves) - 1, 0)
        out.append((head + body).ljust(page_size, b"\0"))
    header = struct.pack("<HHH16shhhhhhi", 0x293B, flags, page_size, structure, 0, 0, root, NONE, len(out), levels,
                         len(entries))
    return header + b"".join(out), leaves


def keyword_files(pages):
    places = {}
    for page in pages:
        for word in page.keywords:
            places.setdefault(word, []).append(page.offset)
    entries, data = [], b""
    for word in sorted(places, key=lambda word: (word.lower(), word)):
        offsets = sorted(places[word])
        entries.append((plain(word) + b"\0", struct.pack("<hi", len(offsets), len(data))))
        data += struct.pack(f"<{len(offsets)}i", *offsets)
    words, leaves = tree(entries, b"F24", 2048)
    records, first = b"", 0
    for number, leaf in enumerate(leaves):
        records += struct.pack("<iH", first, number)
        first += len(leaf)
    return {"|KWBTREE": words, "|KWDATA": data, "|KWMAP": struct.pack("<H", len(leaves)) + records}


# --- the other files

def system_file(title, contents_offset):
    def record(kind, data):
        return struct.pack("<HH", kind, len(data)) + data

    # Version 1.21; the date stays 0 so that the same guide gives the same file; flags 4: blocks of 4,096 bytes, packed.
    return struct.pack("<HHHIH", 0x036C, 21, 1, 0, 4) + record(1, plain(title) + b"\0") + \
        record(3, struct.pack("<I", contents_offset)) + record(4, b"BrowseButtons()\0")


def font_file():
    faces = b"".join(face.encode("ascii").ljust(20, b"\0") for face in FACES)
    # The colour 1, 1, 0 stands for the one that the user has chosen.
    fonts = b"".join(struct.pack("<BBBH", *font) + b"\x01\x01\x00" * 2 for font in FONTS)
    return struct.pack("<HHHH", len(FACES), len(FONTS), 8, 8 + len(faces)) + faces + fonts


def internal(content, flags=0):
    return struct.pack("<iiB", len(content) + 9, len(content), flags) + content


def help_file(guide, version):
    pages = pages_of(guide, version)
    topic = topic_file(pages)
    hashes = sorted((hash_of(page.id), page.offset) for page in pages)
    if len({value for value, _ in hashes}) != len(hashes):
        raise HelpError("two topic ids have the same number")
    files = {
        "|SYSTEM": system_file("Guide to the " + guide.title, pages[0].offset),
        "|FONT": font_file(),
        "|TOPIC": topic,
        "|CONTEXT": tree([(struct.pack("<i", value), struct.pack("<i", offset)) for value, offset in hashes],
                         b"L4", 2048)[0],
        "|TTLBTREE": tree([(struct.pack("<i", page.offset), plain(page.title) + b"\0") for page in pages],
                          b"Lz", 2048)[0],
        **keyword_files(pages),
    }
    out, directory = b"\0" * 16, []
    for name in sorted(files):
        directory.append((name.encode("ascii") + b"\0", struct.pack("<i", len(out))))
        out += internal(files[name])
    start = len(out)
    out += internal(tree(directory, b"z4", 1024, 0x0402)[0], 4)
    return struct.pack("<Iiii", MAGIC, start, NONE, len(out)) + out[16:]


def main(arguments):
    if len(arguments) != 3:
        print("usage: make_hlp.py GUIDE.md VERSION OUT.hlp", file=sys.stderr)
        return 2
    source, version, target = arguments
    try:
        content = help_file(guides.parse(pathlib.Path(source).read_text(encoding="utf-8")), version)
    except (guides.GuideError, HelpError) as error:
        print(f"{source}: {error}", file=sys.stderr)
        return 1
    pathlib.Path(target).write_bytes(content)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
