"""The help file, read back by a reader of its own: every part of the format that a help reader follows, and every
word of the guide."""

import random
import re
import struct
import subprocess
import sys

import guide as guides
import make_hlp
import pytest

from building import ROOT

TOOLS = ROOT / "tools" / "help"
SOURCE = ROOT / "help" / "guide.md"

UNPACKED = 0x4000


def make(source, target, version="9.8.7"):
    return subprocess.run([sys.executable, "-B", str(TOOLS / "make_hlp.py"), str(source), version, str(target)],
                          capture_output=True, text=True)


class Cursor:
    """Reads fields in order; running over the end is an error."""

    def __init__(self, data):
        self.data, self.at = data, 0

    def take(self, count):
        assert self.at + count <= len(self.data), "read over the end"
        self.at += count
        return self.data[self.at - count:self.at]

    def number(self, form):
        return struct.unpack("<" + form, self.take(struct.calcsize("<" + form)))[0]

    def text(self):
        end = self.data.index(b"\0", self.at)
        value = self.data[self.at:end].decode("ascii")
        self.at = end + 1
        return value

    def unsigned_short(self):
        low = self.data[self.at]
        return self.number("H") >> 1 if low & 1 else self.number("B") >> 1

    def signed_short(self):
        low = self.data[self.at]
        return (self.number("H") >> 1) - 0x4000 if low & 1 else (self.number("B") >> 1) - 0x40

    def signed_long(self):
        low = self.data[self.at]
        return (self.number("I") >> 1) - 0x40000000 if low & 1 else (self.number("H") >> 1) - 0x4000


def unpack(data):
    out, at = bytearray(), 0
    while at < len(data):
        flags = data[at]
        at += 1
        for bit in range(8):
            if at >= len(data):
                break
            if not flags >> bit & 1:
                out.append(data[at])
                at += 1
                continue
            token = struct.unpack_from("<H", data, at)[0]
            at += 2
            distance, length = (token & 0xFFF) + 1, (token >> 12) + 3
            assert distance <= len(out), "a reference in front of the block"
            for _ in range(length):
                out.append(out[-distance])
    return bytes(out)


def tree(data, read_entry):
    """All entries of a B+ tree, by its leaves and again by going down from the root."""
    head = Cursor(data)
    assert head.number("H") == 0x293B
    head.number("H")
    page_size = head.number("H")
    head.take(16)
    zero, splits, root, minus_one, pages, levels = (head.number("h") for _ in range(6))
    count = head.number("i")
    assert (zero, splits, minus_one) == (0, 0, -1)
    assert len(data) == 38 + pages * page_size

    def page(number):
        assert 0 <= number < pages
        return Cursor(data[38 + number * page_size:38 + (number + 1) * page_size])

    def leaf(number):
        cursor = page(number)
        unused, entries, before, behind = (cursor.number("h") for _ in range(4))
        found = [read_entry(cursor) for _ in range(entries)]
        assert cursor.at + unused == page_size
        return found, before, behind

    first, all_entries, number, before = root, [], None, -1
    firsts = []
    if levels == 2:
        cursor = page(root)
        unused, entries, first = (cursor.number("h") for _ in range(3))
        for _ in range(entries):
            start = cursor.at
            key = cursor.text()
            firsts.append((key, cursor.number("h")))
            assert cursor.at > start
        assert cursor.at + unused == page_size
    number = first
    while number != -1:
        found, told_before, behind = leaf(number)
        assert told_before == before
        for key, target in firsts:
            if target == number:
                assert found[0][0] == key
        all_entries += found
        before, number = number, behind
    assert len(all_entries) == count
    return all_entries


class HelpFile:
    def __init__(self, data):
        head = Cursor(data)
        assert head.number("I") == 0x00035F3F
        start = head.number("i")
        assert head.number("i") == -1
        assert head.number("i") == len(data)
        self.data = data
        names = tree(self.internal(start), lambda cursor: (cursor.text(), cursor.number("i")))
        assert [name for name, _ in names] == sorted(name for name, _ in names)
        self.files = {name: self.internal(place) for name, place in names}
        # Nothing overlaps and nothing is left over.
        places = sorted([place for _, place in names] + [start])
        ends = [place + struct.unpack_from("<i", data, place)[0] for place in places]
        assert places == [16] + ends[:-1] and ends[-1] == len(data)

    def internal(self, place):
        reserved, used = struct.unpack_from("<ii", self.data, place)
        assert reserved == used + 9
        return self.data[place + 9:place + reserved]

    def system(self):
        cursor = Cursor(self.files["|SYSTEM"])
        assert [cursor.number("H") for _ in range(3)] == [0x036C, 21, 1]
        cursor.take(4)
        assert cursor.number("H") == 4
        records = {}
        while cursor.at < len(cursor.data):
            kind, size = cursor.number("H"), cursor.number("H")
            records[kind] = cursor.take(size)
        return records

    def fonts(self):
        cursor = Cursor(self.files["|FONT"])
        faces, fonts, face_offset, font_offset = (cursor.number("H") for _ in range(4))
        assert cursor.at == face_offset
        width = (font_offset - face_offset) // faces
        names = [cursor.take(width).rstrip(b"\0").decode() for _ in range(faces)]
        assert cursor.at == font_offset
        found = []
        for _ in range(fonts):
            attributes, half_points, _, face = cursor.number("B"), cursor.number("B"), cursor.number("B"), \
                cursor.number("H")
            cursor.take(6)
            found.append((names[face], half_points, bool(attributes & 1)))
        assert cursor.at == len(cursor.data)
        return found

    def blocks(self):
        topic = self.files["|TOPIC"]
        assert len(topic) % 4096 == 0
        found = []
        for start in range(0, len(topic), 4096):
            found.append((struct.unpack_from("<iii", topic, start), unpack(topic[start + 12:start + 4096])))
        return found

    def records(self):
        """(position, kind, first half, second half) by following the links."""
        blocks = self.blocks()
        position, before, found = 12, -1, []
        while position != -1:
            number, offset = divmod(position - 12, UNPACKED)
            cursor = Cursor(blocks[number][1])
            cursor.at = offset
            size, length2, told_before, behind, length1 = (cursor.number("i") for _ in range(5))
            kind = cursor.number("B")
            assert told_before == before
            first, second = cursor.take(length1 - 21), cursor.take(size - length1)
            assert len(second) == length2
            assert behind == -1 or behind > position
            found.append((position, kind, first, second))
            before, position = position, behind
        for number, ((last, first, header), _) in enumerate(blocks):
            inside = [place for place, *_ in found if (place - 12) // UNPACKED == number]
            earlier = [place for place, *_ in found if (place - 12) // UNPACKED < number]
            assert first == inside[0]
            assert last == (earlier[-1] if earlier else -1)
            assert header in [place for place, kind, *_ in found if kind == 2]
        return found


def read_text(first, second):
    """The text of a record with its marks: links as [text](hash), fonts as {number}."""
    cursor = Cursor(first)
    assert cursor.signed_long() == len(second)
    assert cursor.unsigned_short() == len(second)
    assert (cursor.number("B"), cursor.number("B"), cursor.number("H")) == (0, 0x80, 0)
    flags = cursor.number("H")
    assert flags & ~0x0254 == 0
    for bit in (0x0004, 0x0010, 0x0040):
        if flags & bit:
            cursor.signed_short()
    if flags & 0x0200:
        for _ in range(cursor.signed_short()):
            assert cursor.unsigned_short() < 0x4000
    out, pieces = "", Cursor(second)
    while True:
        out += pieces.text()
        command = cursor.number("B")
        if command == 0x80:
            out += f"{{{cursor.number('H')}}}"
        elif command == 0xE3:
            out += f"<{cursor.number('i')}|"
        elif command == 0x89:
            out += ">"
        elif command in (0x81, 0x82):
            out += "\n"
        elif command == 0x83:
            out += "\t"
        else:
            assert command == 0xFF
            break
    assert cursor.at == len(first) and pieces.at == len(second)
    return out


@pytest.fixture(scope="module")
def help_file(tmp_path_factory):
    target = tmp_path_factory.mktemp("help") / "Veloxa.hlp"
    made = make(SOURCE, target)
    assert (made.returncode, made.stderr) == (0, "")
    return HelpFile(target.read_bytes())


@pytest.fixture(scope="module")
def guide():
    return guides.parse(SOURCE.read_text(encoding="utf-8"))


@pytest.fixture(scope="module")
def topics(help_file):
    """offset, title, text of every topic, counted as a help reader counts."""
    found, block, characters = [], 0, 0
    for position, kind, first, second in help_file.records():
        number = (position - 12) // UNPACKED
        if number != block:
            block, characters = number, 0
        if kind == 2:
            found.append([block * 0x8000 + characters, second.rstrip(b"\0").decode("ascii"), "", position, first])
        else:
            assert kind == 0x20
            found[-1][2] += read_text(first, second)
            characters += len(second)
    return found


def test_files_inside(help_file):
    assert sorted(help_file.files) == ["|CONTEXT", "|FONT", "|KWBTREE", "|KWDATA", "|KWMAP", "|SYSTEM", "|TOPIC",
                                       "|TTLBTREE"]


def test_title_contents_and_browse_buttons(help_file, topics):
    records = help_file.system()
    assert records[1] == b"Guide to the Sound Editor\0"
    assert struct.unpack("<I", records[3])[0] == topics[0][0]
    assert records[4] == b"BrowseButtons()\0"


def test_fonts(help_file):
    assert help_file.fonts() == [("MS Sans Serif", 20, False), ("MS Sans Serif", 20, True), ("MS Sans Serif", 32, True),
                                 ("Courier New", 20, False)]


def test_topics_are_those_of_the_guide(guide, topics):
    assert [title for _, title, *_ in topics] == ["Sound Editor"] + [topic.title for topic in guide.topics]


def test_version_is_that_of_the_build(topics):
    assert "User's guide, version 9.8.7" in topics[0][2]


def test_titles_by_offset(help_file, topics):
    titles = tree(help_file.files["|TTLBTREE"], lambda cursor: (cursor.number("i"), cursor.text()))
    assert titles == [(offset, title) for offset, title, *_ in topics]
    assert [offset for offset, _ in titles] == sorted(offset for offset, _ in titles)


def test_topics_are_chained_for_browsing(topics):
    for i, (_, _, _, _, header) in enumerate(topics):
        _, before, behind, number, fixed, scrolled, next_topic = struct.unpack("<iiiIiii", header)
        assert before == (topics[i - 1][0] if i else -1)
        assert behind == (topics[i + 1][0] if i + 1 < len(topics) else -1)
        assert next_topic == (topics[i + 1][3] if i + 1 < len(topics) else -1)
        assert (number, fixed) == (i, -1)
        assert scrolled > topics[i][3]


def words(text):
    return re.findall(r"[A-Za-z0-9#./+]+", re.sub(r"\{\d+\}|<-?\d+\||>", "", text))


def test_every_word_of_the_guide_is_in_it(guide, topics):
    for topic, (_, title, text, *_) in zip(guide.topics, topics[1:]):
        there = words(text)
        for block in topic.blocks:
            pieces = [block.items] if block.kind == "paragraph" else block.items
            if block.kind == "table":
                pieces = [cell for row in block.items[1:] for cell in row]
            for parts in pieces:
                wanted = words("".join(span.text for span in parts).replace("…", "..."))
                joined = " ".join(there)
                assert " ".join(wanted) in joined, (title, wanted)


def test_links_lead_to_their_topics(help_file, guide, topics):
    context = dict(tree(help_file.files["|CONTEXT"], lambda cursor: (cursor.number("i"), cursor.number("i"))))
    assert list(context) == sorted(context)
    titles = {offset: title for offset, title, *_ in topics}
    links = [(int(number), text) for _, _, topic, *_ in topics
             for number, text in re.findall(r"<(-?\d+)\|([^>]*)>", topic)]
    contents = [(int(number), text) for number, text in re.findall(r"<(-?\d+)\|([^>]*)>", topics[0][2])]
    assert [titles[context[number]] for number, _ in contents] == [topic.title for topic in guide.topics]
    assert len(links) > len(contents) + 5
    for number, text in links:
        assert number in context, text


def test_keywords_lead_to_their_topics(help_file, guide, topics):
    entries = tree(help_file.files["|KWBTREE"],
                   lambda cursor: (cursor.text(), cursor.number("h"), cursor.number("i")))
    titles = {offset: title for offset, title, *_ in topics}
    wanted = {}
    for topic in guide.topics:
        for word in topic.keywords:
            wanted.setdefault(word, set()).add(topic.title)
    wanted["contents"] = {"Sound Editor"}
    data = help_file.files["|KWDATA"]
    found = {word: {titles[offset] for offset in struct.unpack_from(f"<{count}i", data, place)}
             for word, count, place in entries}
    assert found == wanted
    keys = [word.lower() for word, *_ in entries]
    assert keys == sorted(keys)
    count, *_ = struct.unpack_from("<H", help_file.files["|KWMAP"])
    assert len(help_file.files["|KWMAP"]) == 2 + 6 * count


def test_known_numbers_of_topic_names():
    # value * 43 + place of each letter: a is 17, 1 is 1, 0 is 10.
    assert make_hlp.hash_of("a") == 17
    assert make_hlp.hash_of("A1") == 17 * 43 + 1
    assert make_hlp.hash_of("ab0") == (17 * 43 + 18) * 43 + 10
    assert -(1 << 31) <= make_hlp.hash_of("a-very-long-topic-name") < 1 << 31


def test_packing_gives_the_same_back():
    chance = random.Random(7)
    for size in (0, 1, 2, 3, 17, 18, 19, 500, 9000):
        for letters in (b"a", b"ab", bytes(range(256))):
            data = bytes(chance.choice(letters) for _ in range(size))
            assert unpack(make_hlp.pack(data)) == data


def test_same_guide_same_file(tmp_path):
    first, second = tmp_path / "1.hlp", tmp_path / "2.hlp"
    assert make(SOURCE, first).returncode == make(SOURCE, second).returncode == 0
    assert first.read_bytes() == second.read_bytes()


def test_letters_that_the_reader_can_not_show_are_refused(tmp_path):
    source, target = tmp_path / "guide.md", tmp_path / "out.hlp"
    source.write_text("# T\n\nIntro.\n\n## A {#a}\nkeywords: k\n\nﾄﾞﾚﾐ.\n", encoding="utf-8")
    made = make(source, target)
    assert made.returncode == 1 and "can not show" in made.stderr
    assert not target.exists()
