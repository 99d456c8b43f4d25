"""The user's guide: that it says what it must, that its page is whole by itself, and that its reader refuses
what it does not understand."""

import html.parser
import json
import re
import subprocess
import sys

import guide as guides
import pytest

from building import NATIVE_BUILD, ROOT

TOOLS = ROOT / "tools" / "help"
SOURCE = ROOT / "help" / "guide.md"

VOID = {"meta", "br", "hr", "img", "link", "input"}

LENGTHS = [
    ("Thirty-second", "1/8"), ("Triplet thirty-second", "1/12"), ("Sixteenth", "1/4"), ("Dotted sixteenth", "3/8"),
    ("Double-dotted sixteenth", "7/16"), ("Triplet sixteenth", "1/6"), ("Eighth", "1/2"), ("Dotted eighth", "3/4"),
    ("Double-dotted eighth", "7/8"), ("Triplet eighth", "1/3"), ("Quarter", "1"), ("Dotted quarter", "1 1/2"),
    ("Double-dotted quarter", "1 3/4"), ("Triplet quarter", "2/3"), ("Half", "2"), ("Dotted half", "3"),
    ("Double-dotted half", "3 1/2"), ("Whole", "4"), ("Dotted whole", "6"), ("Double-dotted whole", "7"),
]
TEMPOS = [640, 480, 320, 240, 214, 160, 128, 120, 108, 96, 92, 80, 72, 70, 64, 60, 58, 54, 50, 48, 46, 44, 40, 38, 36,
          34, 32, 30]
TEMPO_NAMES = [("Largo", 40, 49), ("Lento", 50, 57), ("Adagio", 58, 66), ("Andante", 67, 80), ("Moderato", 81, 101),
               ("Allegro", 102, 137), ("Vivace", 138, 166), ("Presto", 167, 319)]
MESSAGES = [
    "Do you want to save the changes?", "This is not a sound file.", "Read error!", "Write error!",
    "is out of range and cannot be saved.", "is unknown and cannot be saved.",
    "Cannot input the last", "music notes.", "File name cannot exceed 8 characters.", "Change the file name.",
    "Cannot find music notes.", "Can not run Sound Player!", "File translate error when upload to Veloxa!",
    "Directory does not exist.", "Please install the PC Application again.",
    "The help file is missing.", "Transfer all data by PC Ferry to Corvane after close",
    "Do not show this dialog in the next time.",
]


class Page(html.parser.HTMLParser):
    """Checks that elements are closed in order and collects what refers to what."""

    def __init__(self, text):
        super().__init__()
        self.open, self.ids, self.links, self.text, self.tags = [], [], [], [], []
        self.feed(text)
        assert self.open == [], f"never closed: {self.open}"

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        self.tags.append((tag, values))
        if "id" in values:
            self.ids.append(values["id"])
        if tag == "a":
            self.links.append(values["href"])
        if tag not in VOID:
            self.open.append(tag)

    def handle_endtag(self, tag):
        assert self.open and self.open.pop() == tag, f"</{tag}> closes something else"

    def handle_data(self, data):
        if "style" not in self.open:
            self.text.append(data)


def make(source, target, version="9.8.7"):
    return subprocess.run([sys.executable, "-B", str(TOOLS / "make_html.py"), str(source), version, str(target)],
                          capture_output=True, text=True)


@pytest.fixture(scope="module")
def guide():
    return guides.parse(SOURCE.read_text(encoding="utf-8"))


@pytest.fixture(scope="module")
def content(tmp_path_factory):
    target = tmp_path_factory.mktemp("guide") / "Veloxa.htm"
    made = make(SOURCE, target)
    assert (made.returncode, made.stderr) == (0, "")
    return target.read_text(encoding="utf-8")


def table(guide, topic_id, number=0):
    topic = next(topic for topic in guide.topics if topic.id == topic_id)
    rows = [block for block in topic.blocks if block.kind == "table"][number].items[1:]
    return [tuple("".join(span.text for span in cell) for cell in row) for row in rows]


def test_page_is_well_formed_and_all_links_lead_somewhere(content):
    page = Page(content)
    assert len(page.ids) == len(set(page.ids))
    assert len(page.links) > 50
    for link in page.links:
        assert link.startswith("#") and link[1:] in page.ids, link


def test_page_needs_nothing_from_outside(content):
    assert not re.search(r"https?:|//|url\(|@import|<script|<link|<img", content)


def test_page_for_light_dark_paper_and_narrow_screens(content):
    for rule in ("prefers-color-scheme: dark", "@media print", "max-width: 46rem", "color-scheme: light dark"):
        assert rule in content
    tags = Page(content).tags
    assert ("html", {"lang": "en"}) in tags
    assert all(values.get("scope") == "col" for tag, values in tags if tag == "th")
    assert [tag for tag, _ in tags if tag in ("h1", "h2", "h3")][0] == "h1"


def test_version_is_that_of_the_build(content):
    assert "version 9.8.7" in content


def test_every_command_is_described(content):
    rows = re.findall(r'\{Menu::\w+, MenuItem::(\w+), L"\w+", L"([^"]+)"', (ROOT / "app" / "menus.cpp")
                      .read_text(encoding="utf-8"))
    captions = [caption.replace("&", "").replace("...", "") for _, caption in rows if caption != "-"]
    assert len(captions) == 24
    text = "".join(Page(content).text)
    for caption in captions:
        if not caption.isascii():
            caption = caption.split("(")[0]  # without its key
        assert caption in text, caption


def test_every_shortcut_is_described(content):
    text = "".join(Page(content).text)
    for key in ("Ctrl+O", "Ctrl+S", "Ctrl+Z", "Ctrl+X", "Ctrl+C", "Ctrl+V", "Ctrl+I", "Del", "F1", "F6", "Tab"):
        assert key in text, key


def test_lengths_table(guide):
    rows = table(guide, "lengths")
    assert [row[:2] for row in rows] == LENGTHS
    for _, quarters, seconds in rows:
        whole, _, part = quarters.rpartition(" ") if "/" in quarters else (quarters, "", "0/1")
        over, under = part.split("/")
        beats = int(whole or 0) + int(over) / int(under)
        assert abs(float(seconds) - beats / 2) < 0.00051, quarters  # a quarter lasts half a second


def test_tempos_and_their_names(guide):
    assert [tuple(row) for row in table(guide, "tempo")] == [(n, str(a), str(b)) for n, a, b in TEMPO_NAMES]
    topic = next(topic for topic in guide.topics if topic.id == "tempo")
    text = " ".join(span.text for block in topic.blocks if block.kind == "paragraph" for span in block.items)
    listed = [int(number) for number in re.search(r"640.*?\b30\b\.", text)[0].replace("and", ",").rstrip(".")
              .replace(",", " ").split()]
    assert listed == TEMPOS


def test_every_message_is_explained(content):
    text = "".join(Page(content).text)
    for message in MESSAGES:
        assert message in text, message


def test_messages_of_the_sources_are_all_known():
    found = set()
    for room in ("score", "link", "app", "preview", "view"):
        for path in (ROOT / room).glob("*.cpp"):
            for text in re.findall(r'ShowMessage\(\s*L"([^"]+)"', path.read_text(encoding="utf-8")):
                found.add(text)
    assert len(found) >= 9
    known = " ".join(MESSAGES)
    for text in found:
        for sentence in re.split(r"\\r\\n|  ", text):
            assert sentence in known, f"the guide does not explain {sentence!r}"


def test_limits_are_told(guide):
    topic = next(topic for topic in guide.topics if topic.id == "limits")
    text = " ".join(span.text for block in topic.blocks for item in block.items for span in
                    (item if isinstance(item, list) else [item]))
    for fact in ("509", "508", "c4 to c8", "28", "510", "between 127 and 170"):
        assert fact in text, fact


def test_the_range_of_double_dotted_whole_notes_is_what_the_writer_makes(tmp_path):
    tool = NATIVE_BUILD / "tools" / "sndtool" / "sndtool"
    counts = set()
    for tempo in TEMPOS:
        (tmp_path / "LONG.txt").write_text(f"tempo {tempo}\n" + "c5 1/1..\n" * 200)
        subprocess.run([tool, "build", "--fit", "LONG.txt"], cwd=tmp_path, check=True, stderr=subprocess.DEVNULL)
        told = subprocess.run([tool, "info", "--json", "LONG.snd"], cwd=tmp_path, check=True, capture_output=True)
        counts.add(json.loads(told.stdout)[0]["notes"])
    assert (min(counts), max(counts)) == (127, 170)


def words_of(guide, topic_id):
    topic = next(topic for topic in guide.topics if topic.id == topic_id)
    spans = [span for block in topic.blocks if block.kind != "table" for item in block.items
             for span in (item if isinstance(item, list) else [item])]
    return " ".join(" ".join(span.text for span in spans).split())


@pytest.mark.parametrize("topic, words", [
    ("tempo", ['Save says "Read error!"', "nothing is written", "closing asks no more"]),
    ("undo", ["Undo gives back the melody that was there before", "an empty one", "title stays that of the opened file"]),
    ("no-sound", ["come back to the editor's window", "whenever the Edit menu opens", "tooltip says why"]),
    ("pc-files", ["a file that the second start was given is not opened"]),
    ("without-link", ["names a folder that is gone, counts as none"]),
    ("install", ["/S", "/LINK=KEEP", "/LINK=MAKE", "/SND", "/D=FOLDER", "melodies stay"]),
])
def test_what_surprises_is_told(guide, topic, words):
    text = words_of(guide, topic)
    for word in words:
        assert word in text, word


def test_where_the_link_software_is_missing(content):
    for word in ("LinkSetup", "/quiet", "/remove"):
        assert word in content


GOOD = "# T\n\nIntro.\n\n## A {#a}\nkeywords: k\n\nText.\n"


@pytest.mark.parametrize("text, told", [
    ("", "title"), ("# T\n\nIntro.\n", "topics"), (GOOD + "\n[b](#none)\n", "no topic"),
    (GOOD + "\n## B {#a}\nkeywords: k\n\nText.\n", "used twice"), (GOOD + "\n## B {#b}\n\nText.\n", "keywords"),
    (GOOD + "\n## B {#b}\nkeywords: k\n", "no keywords or no text"), (GOOD + "\n**open\n", "partner"),
    (GOOD + "\n- a\nb\n", "two blanks"), (GOOD + "\n| a | b |\n|---|---|\n| c |\n", "as many cells"),
    (GOOD + "\n| a |\n| b |\n| c |\n", "line of dashes"), (GOOD + "\n### Deep\n", "not a heading"),
    (GOOD + "\n| a | b |\n|---|---|\n| c | d | e |\n", "as many cells"), (GOOD + "\n| a |\n|---|\n", "line of dashes"),
    (GOOD + "\na | b\n---|---\nc | d\n", "ends with a bar"), (GOOD + "\n- a\n\n- b\n", "blank lines"),
    (GOOD + "\n- a\n  - b\n", "one paragraph"), (GOOD + "\n* a\n", "the mark"), (GOOD + "\n1. a\n3. b\n", "from 1"),
    (GOOD + "\n1. a\n1. b\n", "from 1"), (GOOD + "\n> a\n", "blockquote"), (GOOD + "\n```\na\n```\n", "fence"),
    (GOOD + "\n    a\n", "code_block"), (GOOD + "\n***\n", "hr"), (GOOD + "\n<p>\n", "html_block"),
    (GOOD + "\na *b*\n", "em has"), (GOOD + "\na **b `c`**\n", "code_inline"), (GOOD + "\na  \nb\n", "hardbreak"),
    (GOOD + "\n![a](#a)\n", "image"), (GOOD + "\n[a](b)\n", "leads to a topic"),
    (GOOD + "\n[a](#a \"b\")\n", "leads to a topic"),
    (GOOD + "\nB {#b}\n---\n", "not a heading"), (GOOD + "\n## B {#b}\nkeywords: k\nText.\n", "keywords alone"),
    (GOOD + "\n## B {#b}\n\nkeywords: k\n\nText.\n", "keywords alone"), ("Intro.\n\n" + GOOD, "title"),
    (GOOD + "\nline\n\n**open\n", "line 12: a mark"),
])
def test_reader_refuses_what_it_does_not_understand(tmp_path, text, told):
    source, target = tmp_path / "guide.md", tmp_path / "out.htm"
    source.write_text(text, encoding="utf-8")
    made = make(source, target)
    assert made.returncode == 1
    assert told in made.stderr
    assert not target.exists()


def test_text_is_escaped(tmp_path):
    source, target = tmp_path / "guide.md", tmp_path / "out.htm"
    source.write_text(GOOD.replace("Text.", "a < b & `c > d`"), encoding="utf-8")
    assert make(source, target).returncode == 0
    assert "a &lt; b &amp; <code>c &gt; d</code>" in target.read_text(encoding="utf-8")


def test_no_character_stands_for_another_one(tmp_path):
    source, target = tmp_path / "guide.md", tmp_path / "out.htm"
    source.write_text(GOOD.replace("Text.", r"C:\[Link]\* \# &amp; &copy; [a]: b"), encoding="utf-8")
    assert make(source, target).returncode == 0
    assert r"<p>C:\[Link]\* \# &amp;amp; &amp;copy; [a]: b</p>" in target.read_text(encoding="utf-8")
