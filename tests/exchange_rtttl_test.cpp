#include "exchange/fit.h"
#include "exchange/played.h"
#include "exchange/rtttl.h"
#include "tests/tune_items.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace tonex::exchange_rtttl_test {
namespace {

using testing::ItemsOf;

const TimingTables& Tables() {
    static const TimingTables tables = BuildTimingTables();
    return tables;
}

std::vector<Tune> Read(std::string_view text) {
    RtttlFault fault;
    auto tunes = ReadRtttl(text, fault);
    EXPECT_TRUE(tunes.has_value()) << fault.line << ":" << fault.column << " " << fault.reason << "\n"
                                   << text;
    return tunes.value_or(std::vector<Tune>{});
}

Tune ReadOne(std::string_view text) {
    const std::vector<Tune> tunes = Read(text);
    EXPECT_EQ(tunes.size(), 1u) << text;
    return tunes.empty() ? Tune{} : tunes.front();
}

RtttlFault FaultOf(std::string_view text) {
    RtttlFault fault;
    EXPECT_FALSE(ReadRtttl(text, fault).has_value()) << text;
    return fault;
}

bool HasRemark(const Tune& tune, std::string_view what) {
    for (const auto& [remark, times] : tune.remarks) {
        if (remark == what && times > 0) return true;
    }
    return false;
}

TEST(RtttlReader, DefaultsStandInForWhatIsLeftOut) {
    const Tune tune = ReadOne("x:d=8,o=5,b=120:c,4d#,e6,2f#.,p");
    EXPECT_EQ(ItemsOf(tune), "c5 0.5, d5# 1, e6 0.5, f5# 3, r 0.5");
    EXPECT_EQ(tune.name, "x");
    EXPECT_EQ(tune.tempo, 120);
    EXPECT_DOUBLE_EQ(tune.items[1].seconds, 0.5);
    EXPECT_EQ(tune.items[4].pitch, 0);
    EXPECT_TRUE(tune.remarks.empty());
}

TEST(RtttlReader, MissingControlsAreLength4Octave6Tempo63) {
    const Tune tune = ReadOne("x::a");
    EXPECT_EQ(ItemsOf(tune), "a6 1");
    EXPECT_EQ(tune.tempo, 63);
    EXPECT_TRUE(HasRemark(tune, "no tempo is given: 63"));
}

TEST(RtttlReader, ATempoThatIsFirstGivenAmongTheNotesBendsTheTune) {
    const Tune tune = ReadOne("x::c,b=126,d");
    EXPECT_TRUE(tune.bends);
    EXPECT_NEAR(tune.tempo, 84.0, 1e-9);
    EXPECT_EQ(tune.remarks, (Remarks{{"no tempo is given: 63", 1}}));
}

TEST(RtttlReader, ADotStandsBehindTheLengthTheNoteOrTheOctave) {
    EXPECT_EQ(ItemsOf(ReadOne("x:d=4,o=5,b=120:8.c6,8c.6,8c6.,8c.")), "c6 0.75, c6 0.75, c6 0.75, c5 0.75");
    const auto remarks_of = [](const std::string& item) { return ReadOne("x:b=120:" + item).remarks; };
    EXPECT_EQ(remarks_of("8.c6"), (Remarks{{"read a dot behind a length as one behind the note", 1}}));
    EXPECT_EQ(remarks_of("8c.6"), (Remarks{{"read a dot in front of an octave as one behind it", 1}}));
    EXPECT_EQ(remarks_of("8c#.6,8p.0"), (Remarks{{"read a dot in front of an octave as one behind it", 2}}));
    EXPECT_EQ(remarks_of("8c6.,8c.,8c.#"), Remarks{});
}

TEST(RtttlReader, ASecondDotAddsHalfOfTheFirst) {
    const Tune tune = ReadOne("x:d=4,o=5,b=120:c..,8.c.,c.6.,c6..");
    EXPECT_EQ(ItemsOf(tune), "c5 1.75, c5 0.875, c6 1.75, c6 1.75");
    EXPECT_EQ(tune.remarks, (Remarks{{"read a second dot, which the format does not have", 4},
                                     {"read a dot behind a length as one behind the note", 1},
                                     {"read a dot in front of an octave as one behind it", 1}}));
}

TEST(RtttlReader, EveryLetterIsItsHalfTone) {
    const Tune tune = ReadOne("x:d=4,o=5,b=120:c,d,e,f,g,a,b,h,c#,d#,f#,g#,a#,c##,c_,e_,eb,p#");
    EXPECT_EQ(ItemsOf(tune), "c5 1, d5 1, e5 1, f5 1, g5 1, a5 1, b5 1, b5 1, c5# 1, d5# 1, f5# 1, g5# 1, "
                             "a5# 1, d5 1, b4 1, d5# 1, d5# 1, r 1");
    EXPECT_EQ(tune.remarks, (Remarks{{"read h as b", 1}, {"read a flat as the sharp below", 3}}));
}

TEST(RtttlReader, CaseBlanksLineEndsOrderOfControlsAndTrailingCommasMeanNothing) {
    EXPECT_EQ(ItemsOf(ReadOne("X : B=120 , O=5,d = 8 :\r\n C , D#5,\r\n 4 E,\r\n")), "c5 0.5, d5# 0.5, e5 1");
}

TEST(RtttlReader, EmptyItemsAreLeftOut) {
    const Tune tune = ReadOne("x:o=5,b=120:c,,d,");
    EXPECT_EQ(ItemsOf(tune), "c5 1, d5 1");
    EXPECT_EQ(tune.remarks, (Remarks{{"left out an empty item", 2}}));
}

TEST(RtttlReader, HIsBAndFlatsAreTheSharpBelow) {
    const Tune tune = ReadOne("x:o=5,b=120:h,b,eb,bb6,b5");
    EXPECT_EQ(ItemsOf(tune), "b5 1, b5 1, d5# 1, a6# 1, b5 1");
    EXPECT_TRUE(HasRemark(tune, "read h as b"));
    EXPECT_TRUE(HasRemark(tune, "read a flat as the sharp below"));
}

TEST(RtttlReader, BIsAControlOnlyInFrontOfAnEqualsSign) {
    const Tune tune = ReadOne("x:d=4,o=4,b=60:b5,b=120,b5,o=6,c");
    EXPECT_EQ(ItemsOf(tune), "b5 1, b5 1, c6 1");
    EXPECT_DOUBLE_EQ(tune.items[0].seconds, 1.0);
    EXPECT_DOUBLE_EQ(tune.items[1].seconds, 0.5);
    EXPECT_TRUE(tune.bends);
    EXPECT_NEAR(tune.tempo, 90.0, 1e-9);
}

TEST(RtttlReader, ATempoThatIsGivenAgainBendsNothing) {
    EXPECT_FALSE(ReadOne("x:b=60:c,d").bends);
    EXPECT_FALSE(ReadOne("x:b=90,b=60:c,b=60,d").bends);
    EXPECT_TRUE(ReadOne("x:b=60:c,b=61,d").bends);
}

TEST(RtttlReader, LengthsOf12And24AreTriplets) {
    const Tune tune = ReadOne("x:o=5,b=120:12c,24d,5e");
    EXPECT_NEAR(tune.items[0].quarters, 1.0 / 3.0, 1e-9);
    EXPECT_NEAR(tune.items[1].quarters, 1.0 / 6.0, 1e-9);
    EXPECT_NEAR(tune.items[2].quarters, 0.8, 1e-9);
    EXPECT_TRUE(HasRemark(tune, "read a length of 6, 12, 24 or 48 as a triplet"));
    EXPECT_TRUE(HasRemark(tune, "read a length that the format does not have as that part of a whole note"));
    EXPECT_TRUE(ReadOne("x:b=120:1c,2c,4c,8c,16c,32c,64c,128c").remarks.empty());
    EXPECT_EQ(ReadOne("x:b=120:6c,12c,24c,48c").remarks,
              (Remarks{{"read a length of 6, 12, 24 or 48 as a triplet", 4}}));
    EXPECT_EQ(ReadOne("x:b=120:3c,7c,127c").remarks,
              (Remarks{{"read a length that the format does not have as that part of a whole note", 3}}));
}

TEST(RtttlReader, ALineWithAColonBeginsTheNextTune) {
    const auto tunes =
        Read("// a comment\none:b=100:c,\n d,e\n# another\n\ntwo:b=120:f // a third\nb=90:g\n");
    ASSERT_EQ(tunes.size(), 3u);
    EXPECT_EQ(tunes[0].name, "one");
    EXPECT_EQ(tunes[0].items.size(), 3u);
    EXPECT_EQ(tunes[1].name, "two");
    EXPECT_EQ(tunes[2].name, "");
    EXPECT_FALSE(HasRemark(tunes[1], "the tune has no name"));
    EXPECT_TRUE(HasRemark(tunes[2], "the tune has no name"));
    EXPECT_EQ(tunes[2].tempo, 90);
}

TEST(RtttlReader, CommentsAreLinesThatStartWithASharpAndWhatStandsBehindTwoSlashes) {
    const auto tunes = Read("  # one:b=90:e\r\t# two\n\r\nx:d=4,o=5,b=120,s=a/b#c:c #, c#,// d,\r\n"
                            "#e,\n f,//g\rh\n \t\ny:d=4,o=5,b=120:c");
    ASSERT_EQ(tunes.size(), 2u);
    EXPECT_EQ(tunes[0].name, "x");
    EXPECT_EQ(ItemsOf(tunes[0]), "c5# 1, c5# 1, f5 1, b5 1");
    EXPECT_EQ(tunes[0].remarks, (Remarks{{"left out an unknown control", 1}, {"read h as b", 1}}));
    EXPECT_EQ(tunes[1].name, "y");
    EXPECT_EQ(ItemsOf(tunes[1]), "c5 1");
}

TEST(RtttlReader, ATuneMayGoOverLinesAtAnyPlace) {
    const auto tunes = Read("My\ntune\n:\nd=4,\no=5,b=12\n0\n:\nc,\n8\nd\nb=90:e");
    ASSERT_EQ(tunes.size(), 2u);
    EXPECT_EQ(tunes[0].name, "Mytune");
    EXPECT_EQ(tunes[0].tempo, 120);
    EXPECT_EQ(ItemsOf(tunes[0]), "c5 1, d5 0.5");
    EXPECT_EQ(tunes[1].tempo, 90);
    EXPECT_EQ(ItemsOf(tunes[1]), "e6 1");
    const auto without_name = Read("d=4,o=5\n,b=90:e\nx:b=90:c");
    ASSERT_EQ(without_name.size(), 2u);
    EXPECT_EQ(ItemsOf(without_name[0]), "e5 1");
    EXPECT_EQ(without_name[1].name, "x");
}

TEST(RtttlReader, NamesAreKeptWithoutControlCharactersAndOuterBlanks) {
    EXPECT_EQ(ReadOne("~\xE9! :b=120:c").name, "~\xE9!");
    EXPECT_EQ(ReadOne("  :b=120:c").name, "");
    EXPECT_EQ(ReadOne("  :b=120:c").remarks, (Remarks{{"the tune has no name", 1}}));
    EXPECT_EQ(ReadOne(" \ta\x01 b\x7F :d=4,o=5,b=120:c").name, "a b");
    EXPECT_EQ(ReadOne(std::string(61, 'n') + ":b=120:c").name, std::string(60, 'n'));
}

TEST(RtttlReader, AnyTextWithAColonMayBeRingTones) {
    EXPECT_TRUE(LooksLikeRtttl("a\tb !:\r\n\x1a"));
    EXPECT_FALSE(LooksLikeRtttl("a\x1f:"));
    EXPECT_FALSE(LooksLikeRtttl("a"));
    EXPECT_EQ(ItemsOf(ReadOne("x:d=4,o=5,b=120:c\x1a")), "c5 1");
}

TEST(RtttlReader, OfSeveralVoicesTheFirstIsTaken) {
    const Tune tune = ReadOne("x:d=4,o=5,b=120:c,d | e,f ; g | a");
    EXPECT_EQ(ItemsOf(tune), "c5 1, d5 1, g5 1");
    EXPECT_EQ(tune.remarks, (Remarks{{"took the first of several voices", 1}}));
    EXPECT_EQ(ReadOne("x:b=120:c|d").remarks, (Remarks{{"took the first of several voices", 1}}));
}

TEST(RtttlReader, UnknownControlsAndAByteOrderMarkAreNoFault) {
    const Tune tune = ReadOne("\xEF\xBB\xBFx:d=4,o=5,b=120,s=N,l=2:c,s=1,d=8,o=6,d");
    EXPECT_EQ(tune.name, "x");
    EXPECT_EQ(ItemsOf(tune), "c5 1, d6 0.5");
    EXPECT_EQ(tune.remarks, (Remarks{{"left out an unknown control", 3}}));
    EXPECT_EQ(FaultOf("\xEF\xBB\xBFx:hello:c").column, 6);
    EXPECT_EQ(ReadOne("\xEF\xBB\xBF# a comment\nx:b=120:c").name, "x");
}

TEST(RtttlReader, TextOfTwoBytesALetterIsReadEitherWay) {
    const std::string_view text = "Ann\xE9:d=4,o=5,b=120:c,\r\nx";
    std::string low_first = "\xFF\xFE";
    std::string high_first = "\xFE\xFF";
    for (const char letter : text) {
        low_first += {letter, '\0'};
        high_first += {'\0', letter};
    }
    for (const std::string& bytes : {low_first, high_first}) {
        EXPECT_TRUE(LooksLikeRtttl(bytes));
        EXPECT_EQ(FaultOf(bytes).line, 2);
        EXPECT_EQ(FaultOf(bytes).column, 1);
        const Tune tune = ReadOne(std::string_view(bytes).substr(0, bytes.size() - 2));
        EXPECT_EQ(ItemsOf(tune), "c5 1");
        EXPECT_EQ(tune.name, "Ann?");
    }
    // Letters 7Eh, 7Fh, which is none, 80h and 441h, and a byte too many.
    const Tune odd = ReadOne(std::string_view("\xFF\xFE~\0\x7F\0\x80\0\x41\x04:\0:\0c\0#\0005\0006", 21));
    EXPECT_EQ(odd.name, "~??");
    EXPECT_EQ(ItemsOf(odd), "c5# 1");
    EXPECT_FALSE(LooksLikeRtttl(std::string_view("\xFF\xFE\0\0:\0", 6)));
    EXPECT_FALSE(LooksLikeRtttl("\xFF\xFE"));
}

TEST(RtttlReader, NamesLineAndColumnOfWhatIsWrong) {
    struct Case {
        std::string_view text;
        int line, column;
        std::string_view reason;
    };
    for (const Case& wrong : std::initializer_list<Case>{
             {"x:d=4,b=120:c,8x,d", 1, 15, "\"8x\" is no note or rest"},
             {"a:b=90:c\nx:d=4:c,\n  q", 3, 3, "\"q\" is no note or rest"},
             {"x:d=0:c", 1, 3, "\"d=0\" is no length"},
             {"x:d=:c", 1, 3, "\"d=\" is no length"},
             {"x:o=:c", 1, 3, "\"o=\" is no octave"},
             {"x:d=4|o=5:c", 1, 3, "\"d=4|o=5\" has no number behind the ="},
             {"x:d4:c", 1, 3, "\"d4\" is no control such as d=4, o=5 or b=120"},
             {"x:b=90:b=", 1, 8, "\"b=\" is no tempo: b is 1 to 1000"},
             {"b=90:c:d", 1, 7, "\"c:d\" is no note or rest"},
             {"x:b=90:c0#1", 1, 11, "\"c0#1\" is no note or rest"},
             {"x:b=90:8.", 1, 8, "\"8.\" is no note or rest"},
             {"x:b=90:i", 1, 8, "\"i\" is no note or rest"},
             {"x:b=90:d\rz:b=90:c,\r\nf,g // h,\n\r,q", 5, 2, "\"q\" is no note or rest"},
             {"\n \nno tune here", 3, 1, "this is no ring tone: name:d=4,o=5,b=120:8c,8d"},
             {"x:b=0:c", 1, 3, "\"b=0\" is no tempo: b is 1 to 1000"},
             {"x:b=1001:c", 1, 3, "\"b=1001\" is no tempo: b is 1 to 1000"},
             {"x:o=12:c", 1, 3, "\"o=12\" is no octave"},
             {"x:hello:c", 1, 3, "\"hello\" is no control such as d=4, o=5 or b=120"},
             {"x:b=:c", 1, 3, "\"b=\" is no tempo: b is 1 to 1000"},
             {"x:b=9z:c", 1, 3, "\"b=9z\" has no number behind the ="},
             {"x:b=90:0c", 1, 8, "\"0c\" has no length 1 to 128"},
             {"x:b=90:999c", 1, 8, "\"999c\" has no length 1 to 128"},
             {"x:b=90:8", 1, 8, "\"8\" is no note or rest"},
             {"x:b=90:c5x", 1, 10, "\"c5x\" is no note or rest"},
             {"x:b=90:c...", 1, 11, "\"c...\" has more than two dots"},
             {"x:b=90:p,p", 1, 8, "the tune has no note"},
             {"x:b=90:", 1, 8, "the tune has no note"},
             {"no tune here", 1, 1, "this is no ring tone: name:d=4,o=5,b=120:8c,8d"},
             {"x:no second", 1, 2, "the tune has no second colon: name:d=4,o=5,b=120:8c,8d"},
             {"", 1, 1, "there is no ring tone in it"}}) {
        const RtttlFault fault = FaultOf(wrong.text);
        EXPECT_EQ(fault.line, wrong.line) << wrong.text;
        EXPECT_EQ(fault.column, wrong.column) << wrong.text;
        EXPECT_EQ(fault.reason, wrong.reason) << wrong.text;
    }
}

TEST(RtttlReader, AReasonShowsTheFront16LettersOfWhatIsWrong) {
    EXPECT_EQ(FaultOf("x:b=90:q234567890123456").reason, "\"q234567890123456\" is no note or rest");
    EXPECT_EQ(FaultOf("x:b=90:q2345678901234567").reason, "\"q234567890123456...\" is no note or rest");
    EXPECT_EQ(FaultOf("x:b=90:q~\x7F\x01\xC3").reason, "\"q~???\" is no note or rest");
}

TEST(RtttlReader, ControlsAndLengthsReachTheirLimits) {
    const Tune tune = ReadOne("x:d=128,o=0,b=1000:c,128d9,d=1,o=9,b=1,e,1f0");
    std::vector<std::pair<int, double>> items;
    for (const TuneItem& item : tune.items)
        items.emplace_back(item.pitch, item.quarters);
    EXPECT_EQ(items,
              (std::vector<std::pair<int, double>>{{-21, 0.03125}, {89, 0.03125}, {91, 4.0}, {-16, 4.0}}));
    EXPECT_EQ(FaultOf("x:d=129:c").reason, "\"d=129\" is no length");
    EXPECT_EQ(FaultOf("x:o=10:c").reason, "\"o=10\" is no octave");
    EXPECT_EQ(FaultOf("x:b=90:129c").reason, "\"129c\" has no length 1 to 128");
    EXPECT_EQ(FaultOf("x:b=90:c10").reason, "\"c10\" is no note or rest");
}

TEST(RtttlReader, AnItemOrAControlHasAtMost32Letters) {
    EXPECT_EQ(ReadOne("x:o=4,b=90:c" + std::string(31, '#')).items.at(0).pitch, kLowestKey + 31);
    EXPECT_EQ(FaultOf("x:o=4,b=90:c" + std::string(32, '#')).reason,
              "\"c###############...\" is no note or rest");
    EXPECT_EQ(ReadOne("x:b=" + std::string(28, '0') + "90:c").tempo, 90);
    EXPECT_EQ(FaultOf("x:b=" + std::string(29, '0') + "90:c").reason,
              "\"b=00000000000000...\" has no number behind the =");
}

TEST(RtttlReader, CountsOfTunesAndItemsAreLimited) {
    std::string many = "x:b=90:c";
    for (int i = 1; i < kMostTuneItems; ++i)
        many += ",c";
    EXPECT_EQ(ReadOne(many).items.size(), static_cast<std::size_t>(kMostTuneItems));
    EXPECT_EQ(FaultOf(many + ",c").reason, "more than 20000 notes and rests");
    EXPECT_EQ(FaultOf(many + ",c").column, 40008);
    std::string tunes;
    for (int i = 0; i <= kMostTunes; ++i)
        tunes += "x:b=90:c\n";
    EXPECT_EQ(FaultOf(tunes).reason, "more than 1000 tunes");
    EXPECT_EQ(FaultOf(tunes).line, 1001);
}

TEST(RtttlReader, AWordOfAMillionLettersIsRefusedAtOnce) {
    constexpr std::size_t million = 1000000; // to take letters off its front one by one would last for hours
    EXPECT_NE(FaultOf("x:b=90:" + std::string(million, '1')).reason.find("no note"), std::string::npos);
    EXPECT_NE(FaultOf("x:b=90:c" + std::string(million, '#')).reason.find("no note"), std::string::npos);
    EXPECT_NE(FaultOf("x:b=90:c" + std::string(million, 'b')).reason.find("no note"), std::string::npos);
    EXPECT_NE(FaultOf("x:b=" + std::string(million, '1') + ":c").reason.find("no number"), std::string::npos);
    EXPECT_EQ(ItemsOf(ReadOne("x:d=4,b=90,z=" + std::string(million, 'z') + ":c")), "c6 1");
    // Zeros that mean nothing are read as far as anything is.
    EXPECT_EQ(ItemsOf(ReadOne("x:d=4,b=" + std::string(20, '0') + "90:c")), "c6 1");
    EXPECT_EQ(FaultOf("x:b=" + std::string(40, '0') + "90:c").column, 3);
}

TEST(RtttlReader, AThousandTunesOfManyBlanksAreReadAtOnce) {
    std::string tunes; // to copy the text for every tune would be 4000 million bytes
    for (int i = 0; i < kMostTunes; ++i)
        tunes += "x:d=4,b=90:c" + std::string(8000, ' ') + "\n";
    EXPECT_EQ(Read(tunes).size(), static_cast<std::size_t>(kMostTunes));
}

// The writer.

Melody MelodyFrom(std::string_view text) {
    MelodyTextFault fault;
    const auto melody = ParseMelodyText(Tables(), text, fault);
    EXPECT_TRUE(melody.has_value()) << fault.reason;
    return melody.value_or(Melody{});
}

/// What the writer's file plays.
struct Play {
    std::vector<double> seconds;
    double true_tempo = 0.0;
};

Play Played(const Melody& melody) {
    const SndEncoding encoding = EncodeSnd(Tables(), melody.tempo, melody.list);
    const int mode = ChooseTimingMode(Tables(), melody.list, TempoIndexOf(Tables(), melody.tempo));
    PlayBlock block;
    EXPECT_TRUE(ReadPlayBlock(encoding.bytes, block));
    const auto units = UnitsPlayed(Tables(), block, melody.list, mode);
    EXPECT_TRUE(units.has_value());
    return {SecondsPlayed(TuneOfMelody(melody), units.value_or(std::vector<int>{}), block.tempo_byte),
            TrueTempoOf(mode, block.tempo_byte)};
}

RtttlText WrittenFrom(const Melody& melody, std::string_view name = "x") {
    const Play play = Played(melody);
    return WriteRtttl(melody, play.seconds, play.true_tempo, name);
}

RtttlText Written(std::string_view text, std::string_view name = "x") {
    return WrittenFrom(MelodyFrom(text), name);
}

/// Of a melody whose file plays exactly what is written, at `true_tempo`.
RtttlText WrittenAsMeant(int tempo, double true_tempo, std::string_view entries) {
    Melody melody = MelodyFrom("tempo 120\n" + std::string(entries));
    melody.tempo = static_cast<std::int16_t>(tempo);
    Tune tune = TuneOfMelody(melody);
    SpeedUp(tune, true_tempo / tempo);
    return WriteRtttl(melody, SecondsMeant(tune), true_tempo, "x");
}

TEST(RtttlWriter, WritesTheControlsInOrderAndALineEnd) {
    EXPECT_EQ(Written("tempo 120\nc5 1/8\nd5# 1/8\nb5 1/4\nc6 1/8.\nr 1/8\n", "My tune: a,b").text,
              "Mytuneab:d=8,o=6,b=120:c5,d#5,4b5,c.,p\n");
}

TEST(RtttlWriter, KeepsOfANameWhatNoReaderTakesForSomethingElse) {
    const auto named = [](std::string_view name) { return Written("tempo 120\nc5 1/4\n", name).text; };
    EXPECT_EQ(named("/09:@AZ[`az{-_ ="), "09AZaz-_:d=4,o=5,b=120:c\n");
    EXPECT_EQ(named(" ="), "melody:d=4,o=5,b=120:c\n");
    const std::string longest(kMostRtttlName, 'n');
    EXPECT_EQ(named(longest + "n"), longest + ":d=4,o=5,b=120:c\n");
}

TEST(RtttlWriter, LeavesOutTheOctaveOfTheDottedNotes) {
    EXPECT_EQ(Written("tempo 120\nc5 1/4\nd5 1/4\ne5 1/4\nc6 1/4.\n").text, "x:d=4,o=6,b=120:c5,d5,e5,c.\n");
}

TEST(RtttlWriter, ADoubleDotBecomesADotAndARest) {
    const RtttlText made = Written("tempo 120\nc5 1/4..\nd5 1/4\n");
    EXPECT_EQ(made.text, "x:d=4,o=5,b=120:c.,16p,d\n");
    EXPECT_EQ(made.remarks.size(), 1u);
    EXPECT_EQ(Written("tempo 120\nc5 1/8..\nd5 1/8\n").text, "x:d=8,o=5,b=120:c.,32p,d\n");
}

TEST(RtttlWriter, HasPlainAndDottedLengthsAndPutsRestsBehindTheOthers) {
    const RtttlText plain = WrittenAsMeant(
        120, 120,
        "c5 1/1.\nc5 1/1\nc5 1/2.\nc5 1/2\nc5 1/4.\nc5 1/4\nc5 1/8.\nc5 1/8\nc5 1/16.\nc5 1/16\n"
        "c5 1/32\nr 1/1.\nr 1/32\n");
    EXPECT_EQ(plain.text, "x:d=1,o=5,b=120:c.,c,2c.,2c,4c.,4c,8c.,8c,16c.,16c,32c,p.,32p\n");
    EXPECT_EQ(plain.remarks, Remarks{});
    const RtttlText dotted =
        WrittenAsMeant(120, 120, "c5 1/1..\nd5 1/2..\ne5 1/4..\nf5 1/8..\nr 1/1..\ng5 1/1\n");
    EXPECT_EQ(dotted.text, "x:d=4,o=5,b=120:1c.,p,2d.,8p,e.,16p,8f.,32p,1p.,p,1g\n");
    EXPECT_EQ(dotted.remarks, (Remarks{{"added a rest to a length that the format does not have", 5}}));
}

TEST(RtttlWriter, PutsAtMostTwoRestsBehindANote) {
    // One and a half times as long: 1.3125, 10.5, 5.25, 2.625 and 0.1875 quarter notes. The first is a 16th
    // too long; so the second has 10.4375, of which three lengths hold 10.375.
    const RtttlText made =
        WrittenAsMeant(80, 80, "c5 1/8t\nd5 1/8..\nc5 1/1..\nd5 1/2..\ne5 1/4..\nf5 1/32\ng5 1/4t\n");
    EXPECT_EQ(made.text, "x:d=1,o=5,b=120:8c,4d,16p,32p,c.,p,16p.,d,4p,16p,2e,8p,32p.,32f.,4g\n");
    EXPECT_EQ(made.remarks, (Remarks{{"added a rest to a length that the format does not have", 8}}));
}

TEST(RtttlWriter, WhatIsRoundedIsMadeUpForUntilALengthIsHeld) {
    // Too long by 2, too short by 2 and by 1, too long by 1, parts of 48 of a quarter note.
    EXPECT_EQ(WrittenAsMeant(640, 640, "c5 1/8t\nd5 1/8t\ne5 1/16t\nf5 1/32t\ng5 1/1\n").text,
              "x:d=32,o=5,b=640:16c,p,16d,e.,f,1g\n");
}

TEST(RtttlWriter, SecondsAreThoseOfItsText) {
    const RtttlText made = WrittenAsMeant(120, 120, "|\nr 1/4\n|\nc5 1/4..\n|\nr 1/8\nd5 1/2\n");
    EXPECT_EQ(made.text, "x:d=4,o=5,b=120:p,c.,16p,8p,2d\n");
    EXPECT_EQ(made.seconds, (std::vector<double>{0.5, 1.125, 1.0}));
    EXPECT_EQ(made.remarks, (Remarks{{"left out a separator, which the format does not have", 3},
                                     {"added a rest to a length that the format does not have", 1}}));
}

TEST(RtttlWriter, OfLengthsAndOctavesAsFrequentTheFirstIsLeftOut) {
    EXPECT_EQ(Written("tempo 120\nc5 1/8\nc6 1/4\n").text, "x:d=8,o=5,b=120:c,4c6\n");
    EXPECT_EQ(Written("tempo 120\nc4 1/8.\nc7 1/4.\n").text, "x:d=8,o=4,b=120:c.,4c7.\n");
}

TEST(RtttlWriter, TakesTheScaleThatHoldsTheLengths) {
    struct Case {
        int tempo;
        std::string_view entries, text;
        double scale;
    };
    for (const Case& wanted : std::initializer_list<Case>{
             {120, "c5 1/4t\nd5 1/8t\n", "x:d=4,o=5,b=180:c,8d\n", 1.5},
             // 900 beats are the most, so three quarters of the lengths take the place of one and a half.
             {640, "c5 1/8t\nd5 1/4\n", "x:d=16,o=5,b=480:c,8d.\n", 0.75},
             // 7 parts of 16 of a quarter note, twice as long, are a dotted eighth and a rest.
             {120, "c5 1/16..\nd5 1/4\n", "x:d=8,o=5,b=240:c.,32p,2d\n", 2.0},
             // A third of a quarter note becomes three eighths; the tempo makes up for it.
             {640, "c5 1/8t\n", "x:d=16,o=5,b=720:c,32p\n", 1.0}}) {
        const RtttlText made = WrittenAsMeant(wanted.tempo, wanted.tempo, wanted.entries);
        EXPECT_EQ(made.text, wanted.text);
        EXPECT_EQ(made.scale, wanted.scale);
    }
}

TEST(RtttlWriter, KeepsTheScaleUntilTheRoundingIsHeard) {
    // Of two thirds of a quarter note a 24th is lost; the more quarter notes, the less that weighs.
    const auto scale_of = [](int quarters) {
        std::string entries = "c5 1/4t\n";
        for (int i = 0; i < quarters; ++i)
            entries += "c5 1/4\n";
        return WrittenAsMeant(120, 120, entries).scale;
    };
    EXPECT_EQ(scale_of(4), 1.5); // J 1.05
    EXPECT_EQ(scale_of(5), 1.0); // J 0.97
}

TEST(RtttlWriter, KeepsTheTempoAtAScaleWhereTheWholesLengthWouldBeNoNearer) {
    // A 32nd of a quarter note is lost, so with 179 beats the whole is as long as it is played; but J is
    // 0.824 with 180 and 0.826 with 179.
    EXPECT_EQ(WrittenAsMeant(120, 120, "c5 1/2\nc5 1/16..\nc5 1/1\nc5 1/8t\n").text,
              "x:d=8,o=5,b=180:2c.,c,32p,1c.,c\n");
}

TEST(RtttlWriter, LengthsThatTheTextHasStayHoweverTheyArePlayed) {
    const Melody melody = MelodyFrom("tempo 120\nc5 1/4\n|\nc5 1/4\n");
    EXPECT_EQ(WriteRtttl(melody, {1.0, 0.5}, 120.0, "x").text, "x:d=4,o=5,b=120:c,c\n");
    EXPECT_EQ(WriteRtttl(melody, {1.0, 0.5}, 100.0, "x").text, "x:d=4,o=5,b=100:c,c\n");
}

TEST(RtttlWriter, WhatOneLengthCanNotHoldTheNextMakesUpFor) {
    // A triplet sixteenth is 8 parts of 48 of a quarter note; the text has 9, then 6.
    EXPECT_EQ(Written("tempo 320\nc5 1/4.\nc5 1/4\nc5 1/16t\nd5 1/16t\ne5 1/4\n").text,
              "x:d=4,o=5,b=320:c.,c,32c.,32d,e\n");
}

TEST(RtttlWriter, ARestIsAddedFromHalfOfTheShortestOn) {
    std::string text = "tempo 480\nc5 1/16..\n", written = "x:d=4,o=5,b=480:16c.,32p";
    for (int i = 0; i < 12; ++i) {
        text += "d5 1/4\n";
        written += ",d";
    }
    EXPECT_EQ(Written(text).text, written + "\n");
}

TEST(RtttlWriter, ALengthMidwayBetweenTwoIsTheShorterOne) {
    // At half the lengths, 7 parts of 32 of a quarter note lie between a sixteenth and a dotted 1/32.
    EXPECT_EQ(Written("tempo 120\nc5 1/16..\nd5 1/4\ne5 1/4\ne5 1/4\ne5 1/4\ne5 1/4\n").text,
              "x:d=8,o=5,b=60:32c.,d,e,e,e,e\n");
}

TEST(RtttlWriter, RestsHaveNoOctave) {
    EXPECT_EQ(Written("tempo 120\nc5 1/4\nr 1/4\nr 1/4\nr 1/4.\n").text, "x:d=4,o=5,b=120:c,p,p,p.\n");
}

TEST(RtttlWriter, WritesTheTempoThatIsReallyPlayedWhereTheOtherIsHeard) {
    // The triplets force tempo 44 into mode 2, where it plays at 42.67.
    const RtttlText made = Written("tempo 44\nc5 1/4\nd5 1/4\ne5 1/4\nf5 1/4\nc5 1/8t\nd5 1/8t\ne5 1/8t\n");
    EXPECT_NEAR(made.beats / made.scale, 42.67, 0.7);
    EXPECT_EQ(Written("tempo 44\nc5 1/4\nd5 1/4\n").beats, 44);
}

TEST(RtttlWriter, KeepsTheWrittenTempoUntilTheOtherIsHeard) {
    // 108 plays at 106.67, and the 1/32 a third too long; the more quarter notes, the less that weighs.
    const auto beats_of = [](int quarters) {
        std::string text = "tempo 108\nc5 1/32\n";
        for (int i = 0; i < quarters; ++i)
            text += "c5 1/4\n";
        return Written(text).beats;
    };
    EXPECT_EQ(beats_of(17), 107); // J 1.04
    EXPECT_EQ(beats_of(20), 108); // J 0.98
}

TEST(RtttlWriter, AnotherTempoIsTakenWhereItIsNearerByAThousandthOfJ) {
    // A quarter note that lasts nearly as long as lies in the middle between the tempos 120 and 130.
    const auto beats_of = [](double nearer) {
        const double both = std::log(130.0 / 120.0) / kLeastHeardSpeed;
        const double seconds = 0.5 * std::exp(-kLeastHeardSpeed * (both + nearer) / 2.0);
        return WriteRtttl(MelodyFrom("tempo 120\nc5 1/4\n"), {seconds}, 130.0, "x").beats;
    };
    EXPECT_EQ(beats_of(0.00095), 120);
    EXPECT_EQ(beats_of(0.00105), 130);
}

TEST(RtttlWriter, TripletsOnlyArePlainLengthsAtAnotherTempo) {
    const RtttlText made = Written("tempo 80\nc5 1/8t\nd5 1/8t\ne5 1/8t\nc5 1/8t\nd5 1/8t\ne5 1/8t\n");
    EXPECT_EQ(made.text, "x:d=8,o=5,b=120:c,d,e,c,d,e\n");
    EXPECT_EQ(made.scale, 1.5);
    // The double dot becomes 2.625 quarter notes.
    EXPECT_EQ(Written("tempo 80\nc5 1/8t\nd5 1/8t\ne5 1/8t\nc5 1/8t\nd5 1/8t\ne5 1/8t\nc5 1/4..\n").text,
              "x:d=8,o=5,b=120:c,d,e,c,d,e,2c,p,32p\n");
}

TEST(RtttlWriter, MovesTheWholeMelodyIntoItsOctaves) {
    const RtttlText made = Written("tempo 120\nc8 1/4\nb7 1/4\n");
    EXPECT_EQ(made.half_tones, -12);
    EXPECT_EQ(made.text, "x:d=4,o=7,b=120:c,b6\n");
    const auto half_tones_of = [](int lowest, int highest) {
        Melody melody = MelodyFrom("tempo 120\nc5 1/4\nc5 1/4\n");
        melody.list[0].pitch = static_cast<std::uint16_t>(lowest - 1);
        melody.list[1].pitch = static_cast<std::uint16_t>(highest - 1);
        const RtttlText moved = WriteRtttl(melody, {0.5, 0.5}, 120.0, "x");
        return moved.reason.empty() ? std::to_string(moved.half_tones) : moved.reason;
    };
    const std::string too_wide = "the melody is wider than the four octaves that a ring tone has";
    EXPECT_EQ(half_tones_of(27, 74), "0");
    EXPECT_EQ(half_tones_of(28, 75), "-1");
    EXPECT_EQ(half_tones_of(29, 75), "-1");
    EXPECT_EQ(half_tones_of(26, 73), "1");
    EXPECT_EQ(half_tones_of(26, 72), "1");
    EXPECT_EQ(half_tones_of(26, 62), "12");
    EXPECT_EQ(half_tones_of(26, 63), "1");
    EXPECT_EQ(half_tones_of(39, 75), "-12");
    EXPECT_EQ(half_tones_of(38, 75), "-1");
    EXPECT_EQ(half_tones_of(1, 1), "36");
    EXPECT_EQ(half_tones_of(256, 256), "-192");
    EXPECT_EQ(half_tones_of(27, 75), too_wide);
    EXPECT_EQ(half_tones_of(26, 74), too_wide);
}

TEST(RtttlWriter, RefusesWhatTheFormatDoesNotHave) {
    EXPECT_EQ(Written("tempo 120\nr 1/4\n").reason, "the melody has no note");
    Melody melody = MelodyFrom("tempo 120\nc5 1/4\nd5 1/4\n");
    const Play play = Played(melody);
    for (const auto& [tempo, fits] : {std::pair{24, false}, {25, true}, {900, true}, {901, false}}) {
        melody.tempo = static_cast<std::int16_t>(tempo);
        EXPECT_EQ(WriteRtttl(melody, play.seconds, tempo, "x").reason,
                  fits ? "" : "no tempo from 25 to 900 fits");
    }
    melody.list[1].code = 50;
    const RtttlText refused = WriteRtttl(melody, play.seconds, play.true_tempo, "x");
    EXPECT_EQ(refused.reason, "entry 2 has the unknown code 50");
    EXPECT_EQ(refused.text, "");
}

// Both ways.

/// Lengths that the format has: no second dot, no triplet.
bool IsPlain(int code) {
    const NoteLength& length = At(kNoteLengths, code);
    return length.dots < 2 && !length.triplet;
}

Melody RandomPlainMelody(std::mt19937& random) {
    Melody melody;
    melody.tempo = At(Tables().tempo_list, static_cast<int>(random() % 28));
    const int entries = 1 + static_cast<int>(random() % 60);
    for (int i = 0; i < entries; ++i) {
        int code = 0;
        do
            code = static_cast<int>(random() % kLengthCodes);
        while (!IsPlain(code));
        const bool rest = i > 0 && random() % 5 == 0;
        At(melody.list, i).code = static_cast<std::uint16_t>(rest ? kFileRests + code : code);
        At(melody.list, i).pitch = static_cast<std::uint16_t>(rest ? kFileRestPitch : 26 + random() % 48);
    }
    return melody;
}

std::vector<FileEntry> EntriesOf(const Melody& melody) {
    return {melody.list.begin(), melody.list.begin() + CountEntries(melody.list)};
}

TEST(RtttlRoundTrip, GivesTheSameMelodyWhereItPlaysWhatIsWritten) {
    std::mt19937 random(11);
    int told = 0;
    for (int i = 0; i < 150; ++i) {
        const Melody melody = RandomPlainMelody(random);
        const RtttlText made = WrittenFrom(melody);
        if (DeviationOf(SecondsMeant(TuneOfMelody(melody)), Played(melody).seconds).j > 0.9) continue;
        const Fit fit = FitTune(Tables(), ReadOne(made.text), false);
        EXPECT_EQ(fit.melody.tempo, melody.tempo) << made.text;
        EXPECT_EQ(fit.melody.entries, EntriesOf(melody)) << made.text;
        ++told;
    }
    EXPECT_GT(told, 30);
}

TEST(RtttlRoundTrip, GivesEveryMelodyOfPlainLengthsWhenItIsKeptAsWritten) {
    std::mt19937 random(12);
    for (int i = 0; i < 300; ++i) {
        const Melody melody = RandomPlainMelody(random);
        const RtttlText made = WrittenFrom(melody);
        ASSERT_NE(made.text, "") << made.reason;
        Tune tune = ReadOne(made.text);
        tune.as_written = true;
        const Fit fit = FitTune(Tables(), tune, false);
        EXPECT_EQ(fit.melody.tempo, melody.tempo) << made.text;
        EXPECT_EQ(fit.melody.entries, EntriesOf(melody)) << made.text;
    }
}

} // namespace
} // namespace tonex::exchange_rtttl_test
