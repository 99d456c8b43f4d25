#include "score/snd_file.h"
#include "tests/print_score.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace tonex::snd_file_test {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint16_t kQuarter = 10;

const TimingTables& Tables() {
    static const TimingTables tables = BuildTimingTables();
    return tables;
}

/// Tables in which the entry of code 0 lasts a chosen number of units in every mode.
TimingTables TablesWithUnits(float units) {
    TimingTables tables = BuildTimingTables();
    for (auto& mode : tables.length_units)
        mode[0] = units;
    for (auto& mode : tables.length_cost)
        mode[0] = 0;
    return tables;
}

FileList ListOf(const std::vector<FileEntry>& entries) {
    FileList list{};
    for (std::size_t i = 0; i < entries.size(); ++i)
        list[i] = entries[i];
    return list;
}

FileList Repeat(int count, FileEntry entry) {
    return ListOf(std::vector<FileEntry>(static_cast<std::size_t>(count), entry));
}

/// The bytes of a file's play block, its end mark included.
Bytes PlayBlockOf(const Bytes& file) {
    for (std::size_t i = 0; i + 1 < file.size(); i += 2) {
        if (file[i] == 255 && file[i + 1] == 255)
            return Bytes(file.begin(), file.begin() + static_cast<int>(i) + 2);
    }
    return {};
}

Bytes EditBlockOf(const Bytes& file) {
    return Bytes(file.begin() + static_cast<int>(PlayBlockOf(file).size()), file.end());
}

/// The tone records of one entry that lasts a number of units.
Bytes RecordsOf(float units, FileEntry entry) {
    TimingTables tables = TablesWithUnits(units);
    for (auto& mode : tables.length_units)
        mode[entry.code % 100] = units;
    const Bytes play = PlayBlockOf(EncodeSnd(tables, 120, ListOf({entry})).bytes);
    return Bytes(play.begin() + 4, play.end() - 2);
}

Bytes GoodFile() {
    return {7, 0, 4, 0, 26, 56, 255, 255, 0, 0, 120, 0, 26, 10, 255, 255};
}

struct Decoded {
    SndResult result;
    std::int16_t tempo = -1;
    std::int16_t mode = -1;
    FileList list{};
    SndFault fault;
};

Decoded Decode(const Bytes& file) {
    Decoded decoded;
    decoded.result = DecodeSnd(file, decoded.tempo, decoded.list, &decoded.mode, &decoded.fault);
    // Without the two optional results the answer is the same.
    std::int16_t tempo = -1;
    FileList list{};
    EXPECT_EQ(DecodeSnd(file, tempo, list), decoded.result);
    EXPECT_EQ(tempo, decoded.tempo);
    EXPECT_EQ(list, decoded.list);
    EXPECT_EQ(decoded.fault.reason.empty(), decoded.result == kSndDone);
    return decoded;
}

std::int16_t Rounded(float units) {
    int toggle = 0;
    return RoundUnits(units, toggle);
}

TEST(SndWriter, AnEmptyScoreIs12Bytes) {
    const SndEncoding encoding = EncodeSnd(Tables(), 120, FileList{});
    EXPECT_EQ(encoding.result, kSndDone);
    EXPECT_EQ(encoding.entries_written, 0);
    EXPECT_EQ(encoding.bytes, (Bytes{7, 0, 4, 0, 255, 255, 0, 0, 120, 0, 255, 255}));
}

TEST(SndWriter, AMelodyByteForByte) {
    // Quarter c4, dotted eighth c4#, eighth rest, separator, half e5 at 120 beats: mode 0, units of 4/64 s.
    const SndEncoding encoding =
        EncodeSnd(Tables(), 120, ListOf({{10, 26}, {7, 27}, {106, 0}, {200, 0}, {14, 42}}));
    EXPECT_EQ(encoding.result, kSndDone);
    EXPECT_EQ(encoding.entries_written, 5);
    EXPECT_EQ(encoding.fault_entry, -1);
    EXPECT_EQ(encoding.bytes, (Bytes{7, 0, 4,   0, 26, 56, 27, 54, 86, 4,   42, 48,  255, 255, //
                                     0, 0, 120, 0, 26, 10, 27, 7,  86, 106, 86, 200, 42,  14,  255, 255}));
}

TEST(SndWriter, TheTempoIsLittleEndian) {
    const Bytes edit = EditBlockOf(EncodeSnd(Tables(), 640, FileList{}).bytes);
    EXPECT_EQ(edit, (Bytes{2, 0, 128, 2, 255, 255}));
    // Also where a list has tempos beside a change of the second byte.
    const std::pair<std::int16_t, Bytes> cases[] = {
        {255, {0, 0, 255, 0, 255, 255}},
        {256, {0, 0, 0, 1, 255, 255}},
        {511, {0, 0, 255, 1, 255, 255}},
        {512, {0, 0, 0, 2, 255, 255}},
    };
    for (const auto& [tempo, expected] : cases) {
        TimingTables tables = BuildTimingTables();
        tables.tempo_list[0] = tempo;
        tables.mode_tempo_bytes[0][0] = 1;
        EXPECT_EQ(EditBlockOf(EncodeSnd(tables, tempo, FileList{}).bytes), expected) << tempo;
    }
}

TEST(SndWriter, ATempoThatIsNotInTheListWritesNothing) {
    for (const std::int16_t tempo : std::vector<std::int16_t>{0, 29, 31, 119, 121, 639, 641, -120, 32767}) {
        const SndEncoding encoding = EncodeSnd(Tables(), tempo, ListOf({{10, 26}}));
        EXPECT_EQ(encoding.result, kSndNotFound) << tempo;
        EXPECT_TRUE(encoding.bytes.empty()) << tempo;
        EXPECT_EQ(encoding.entries_written, 0) << tempo;
    }
}

TEST(SndWriter, ALongNoteIsFullRecordsAndTheRest) {
    EXPECT_EQ(RecordsOf(1, {0, 26}), (Bytes{26, 49}));
    EXPECT_EQ(RecordsOf(15, {0, 26}), (Bytes{26, 63}));
    EXPECT_EQ(RecordsOf(16, {0, 26}), (Bytes{26, 48}));
    EXPECT_EQ(RecordsOf(17, {0, 26}), (Bytes{26, 64, 26, 49}));
    EXPECT_EQ(RecordsOf(32, {0, 26}), (Bytes{26, 64, 26, 48}));
    EXPECT_EQ(RecordsOf(33, {0, 26}), (Bytes{26, 64, 26, 64, 26, 49}));
    EXPECT_EQ(RecordsOf(40, {0, 26}), (Bytes{26, 64, 26, 64, 26, 56}));
}

TEST(SndWriter, ARestIsSilentRecordsOfPitch86) {
    EXPECT_EQ(RecordsOf(1, {100, 12}), (Bytes{86, 1}));
    EXPECT_EQ(RecordsOf(16, {100, 12}), (Bytes{86, 0}));
    EXPECT_EQ(RecordsOf(17, {100, 12}), (Bytes{86, 0, 86, 1}));
    EXPECT_EQ(RecordsOf(40, {100, 12}), (Bytes{86, 0, 86, 0, 86, 8}));
}

TEST(SndWriter, EveryLengthInEveryModeHasItsRecords) {
    // Rounded units by mode and length code.
    const int expected[3][20] = {
        {1, 1, 2, 3, 3, 1, 4, 6, 7, 3, 8, 12, 14, 5, 16, 24, 28, 32, 48, 56},
        {1, 1, 3, 4, 5, 2, 6, 9, 10, 4, 12, 18, 21, 8, 24, 36, 42, 48, 72, 84},
        {1, 1, 1, 2, 3, 1, 3, 4, 5, 2, 6, 9, 10, 4, 12, 18, 21, 24, 36, 42},
    };
    for (std::size_t mode = 0; mode < 3; ++mode) {
        TimingTables tables = BuildTimingTables();
        for (auto& bytes : tables.mode_tempo_bytes)
            bytes.fill(0);
        tables.mode_tempo_bytes[mode].fill(9);
        for (std::uint16_t code = 0; code < 20; ++code) {
            const Bytes play = PlayBlockOf(EncodeSnd(tables, 120, ListOf({{code, 30}})).bytes);
            int units = 0;
            for (std::size_t i = 4; i + 2 < play.size(); i += 2) {
                EXPECT_EQ(play[i], 30);
                units += play[i + 1] % 16 == 0 ? 16 : play[i + 1] % 16;
            }
            EXPECT_EQ(units, expected[mode][code]) << "mode " << mode << ", code " << code;
        }
    }
}

TEST(SndWriter, ASeparatorRepeatsThePitchBeforeItAndSoundsNothing) {
    const Bytes file =
        EncodeSnd(Tables(), 120, ListOf({{200, 9}, {10, 40}, {200, 9}, {200, 9}, {110, 0}, {200, 9}})).bytes;
    EXPECT_EQ(EditBlockOf(file),
              (Bytes{0, 0, 120, 0, 0, 200, 40, 10, 40, 200, 40, 200, 86, 110, 86, 200, 255, 255}));
    EXPECT_EQ(PlayBlockOf(file), (Bytes{7, 0, 4, 0, 40, 56, 86, 8, 255, 255}));
}

TEST(SndWriter, WhatFollowsTheEndCodeIsNotWritten) {
    const SndEncoding encoding = EncodeSnd(Tables(), 120, ListOf({{10, 40}, {65535, 0}, {10, 41}}));
    EXPECT_EQ(encoding.entries_written, 1);
}

TEST(SndWriter, APitchThatNoByteHoldsIsAWriteError) {
    EXPECT_EQ(EncodeSnd(Tables(), 120, ListOf({{10, 255}})).result, kSndDone);
    for (const std::uint16_t pitch : std::vector<std::uint16_t>{256, 300, 32768, 65534, 65535}) {
        const SndEncoding encoding = EncodeSnd(Tables(), 120, ListOf({{10, 40}, {10, pitch}}));
        EXPECT_EQ(encoding.result, kSndWriteError) << pitch;
        EXPECT_EQ(encoding.fault_entry, 1) << pitch;
        EXPECT_TRUE(encoding.bytes.empty()) << pitch;
    }
}

TEST(SndWriter, ACodeOutsideTheTablesIsAWriteError) {
    for (int code = 0; code < 65535; ++code) {
        const bool known = code < 20 || (code >= 100 && code < 120) || code == 200;
        const SndEncoding encoding =
            EncodeSnd(Tables(), 120, ListOf({{10, 40}, {110, 0}, {static_cast<std::uint16_t>(code), 40}}));
        EXPECT_EQ(encoding.result, known ? kSndDone : kSndWriteError) << code;
        EXPECT_EQ(encoding.fault_entry, known ? -1 : 2) << code;
        EXPECT_EQ(encoding.bytes.empty(), !known) << code;
    }
}

TEST(SndWriter, TheCheapestModeIsTakenAndTiesGoToTheLower) {
    const int tempo_160 = TempoIndexOf(Tables(), 160); // in all three modes
    EXPECT_EQ(ChooseTimingMode(Tables(), FileList{}, tempo_160), 0);
    EXPECT_EQ(ChooseTimingMode(Tables(), ListOf({{6, 1}, {10, 1}}), tempo_160), 0);
    EXPECT_EQ(ChooseTimingMode(Tables(), ListOf({{1, 1}}), tempo_160), 1);          // 2, 0, 4
    EXPECT_EQ(ChooseTimingMode(Tables(), ListOf({{5, 1}}), tempo_160), 1);          // 2, 0, 0
    EXPECT_EQ(ChooseTimingMode(Tables(), ListOf({{4, 1}}), tempo_160), 1);          // 4, 1, 2
    EXPECT_EQ(ChooseTimingMode(Tables(), ListOf({{9, 1}, {11, 1}}), tempo_160), 2); // 2, 1, 0
    EXPECT_EQ(ChooseTimingMode(Tables(), ListOf({{109, 0}, {111, 0}}), tempo_160), 2);
    EXPECT_EQ(ChooseTimingMode(Tables(), ListOf({{19, 1}}), tempo_160), 2); // 3, 5, 2
}

TEST(SndWriter, AModeIsOnlyTakenAtACostBelow32767) {
    TimingTables tables = BuildTimingTables();
    const int tempo_640 = TempoIndexOf(tables, 640); // in mode 2 only
    tables.length_cost[2][kQuarter] = 32766;
    EXPECT_EQ(ChooseTimingMode(tables, ListOf({{kQuarter, 26}}), tempo_640), 2);
    tables.length_cost[2][kQuarter] = 32767;
    EXPECT_EQ(ChooseTimingMode(tables, ListOf({{kQuarter, 26}}), tempo_640), 0);
}

TEST(SndWriter, TheCostOfALongMelodyIsSummedWhole) {
    const int tempo_160 = TempoIndexOf(Tables(), 160); // in all three modes
    TimingTables tables = BuildTimingTables();
    const auto costs = [&](std::size_t code, std::int16_t first, std::int16_t second, std::int16_t third) {
        tables.length_cost[0][code] = first;
        tables.length_cost[1][code] = second;
        tables.length_cost[2][code] = third;
    };
    costs(0, 5, 4, 6); // 2545, 2036 and 3054 in all
    EXPECT_EQ(ChooseTimingMode(tables, Repeat(509, {0, 1}), tempo_160), 1);
    costs(0, 2, 1, 2); // 256 would be 0 in 8 bits
    EXPECT_EQ(ChooseTimingMode(tables, Repeat(128, {0, 1}), tempo_160), 1);
    costs(0, 0, 1, 1);
    costs(1, 1, 0, 1);
    FileList list = Repeat(509, {1, 1});
    std::fill_n(list.begin(), 127, FileEntry{0, 1});
    EXPECT_EQ(ChooseTimingMode(tables, list, tempo_160), 1) << "the entries behind the first 127 count too";
}

TEST(SndWriter, AModeThatHasNotTheTempoIsNotTaken) {
    EXPECT_EQ(ChooseTimingMode(Tables(), ListOf({{1, 1}}), TempoIndexOf(Tables(), 120)), 0);
    EXPECT_EQ(ChooseTimingMode(Tables(), ListOf({{2, 1}}), TempoIndexOf(Tables(), 640)), 2);
    EXPECT_EQ(ChooseTimingMode(Tables(), ListOf({{0, 1}}), TempoIndexOf(Tables(), 320)), 2);
    EXPECT_EQ(ChooseTimingMode(Tables(), ListOf({{2, 1}}), TempoIndexOf(Tables(), 320)), 1);
}

TEST(SndWriter, ModeCostSumsNotesAndRestsOnly) {
    const FileList list = ListOf({{0, 1}, {104, 0}, {200, 0}, {19, 1}, {77, 1}, {65535, 0}, {19, 1}});
    EXPECT_EQ(ModeCostOf(Tables(), list, 0), 0 + 4 + 3);
    EXPECT_EQ(ModeCostOf(Tables(), list, 1), 4 + 1 + 5);
    EXPECT_EQ(ModeCostOf(Tables(), list, 2), 1 + 2 + 2);
    EXPECT_EQ(ModeCostOf(Tables(), FileList{}, 1), 0);
}

TEST(SndWriter, EveryTempoIsWrittenWithTheByteOfItsMode) {
    for (std::size_t i = 0; Tables().tempo_list[i] != 0; ++i) {
        const std::int16_t tempo = Tables().tempo_list[i];
        const Bytes file = EncodeSnd(Tables(), tempo, FileList{}).bytes;
        ASSERT_EQ(file.size(), 12U);
        EXPECT_EQ(file[2], Tables().mode_tempo_bytes[file[6]][i]) << tempo;
        EXPECT_GE(file[2], 1) << tempo;
        EXPECT_LE(file[2], 32) << tempo;
        EXPECT_EQ(file[8] + 256 * file[9], tempo);
    }
}

TEST(SndWriter, FullMelodyOf509NotesFits) {
    const SndEncoding encoding = EncodeSnd(Tables(), 120, Repeat(509, {kQuarter, 26}));
    EXPECT_EQ(encoding.result, kSndDone);
    EXPECT_EQ(encoding.entries_written, 509);
    EXPECT_EQ(encoding.bytes.size(), 2U * (4 + 2 * 509 + 2));
}

TEST(SndWriter, The510thNoteStillFitsAndNoneAfterIt) {
    SndEncoding encoding = EncodeSnd(Tables(), 120, Repeat(510, {kQuarter, 26}));
    EXPECT_EQ(encoding.result, kSndDone);
    EXPECT_EQ(encoding.entries_written, 510);
    encoding = EncodeSnd(Tables(), 120, Repeat(511, {kQuarter, 26}));
    EXPECT_EQ(encoding.result, kSndDone);
    EXPECT_EQ(encoding.entries_written, 510);
    EXPECT_EQ(PlayBlockOf(encoding.bytes).size(), 1026U);
}

TEST(SndWriter, AListWithoutAnEndIsWrittenTo510Entries) {
    FileList list{};
    list.fill({kFileSeparator, 0});
    const SndEncoding encoding = EncodeSnd(Tables(), 120, list);
    EXPECT_EQ(encoding.result, kSndDone);
    EXPECT_EQ(encoding.entries_written, 510);
}

TEST(SndWriter, RecordCountIsComparedWithTheByteIndex) {
    // 509 records bring p to 1022: one more record counts as 1023, two as 1024, though their bytes would fit.
    std::vector<FileEntry> entries(509, {10, 26});
    entries.push_back({14, 26}); // a half note: 16 units, one record
    SndEncoding encoding = EncodeSnd(Tables(), 120, ListOf(entries));
    EXPECT_EQ(encoding.result, kSndDone);
    EXPECT_EQ(encoding.entries_written, 510);
    entries.back() = {15, 26}; // 24 units, two records
    encoding = EncodeSnd(Tables(), 120, ListOf(entries));
    EXPECT_EQ(encoding.result, kSndFull);
    EXPECT_EQ(encoding.entries_written, 509);
    EXPECT_EQ(encoding.bytes.size(), 2U * (4 + 2 * 509 + 2));
}

TEST(SndWriter, AFullPlayBlockKeepsTheEntriesThatFit) {
    // A double-dotted whole at 120: 56 units, 4 records, 8 bytes. p = 4, 12, ... 1020; 1020 + 4 reaches 1024.
    const SndEncoding encoding = EncodeSnd(Tables(), 120, Repeat(509, {19, 26}));
    EXPECT_EQ(encoding.result, kSndFull);
    EXPECT_EQ(encoding.entries_written, 127);
    EXPECT_EQ(PlayBlockOf(encoding.bytes).size(), 4U + 127 * 8 + 2);
    EXPECT_EQ(EditBlockOf(encoding.bytes).size(), 4U + 127 * 2 + 2);
    const Decoded decoded = Decode(encoding.bytes);
    EXPECT_EQ(decoded.result, kSndDone);
    EXPECT_EQ(CountEntries(decoded.list), 127);
}

TEST(SndWriter, NoEntryPushesTheEndMarkOutOfTheBlock) {
    // From every p near the end, entries of 1 to 6 records: what is written always fits 1,029 bytes.
    for (int ones = 490; ones <= 510; ++ones) {
        for (int records = 1; records <= 6; ++records) {
            TimingTables tables = TablesWithUnits(static_cast<float>(16 * records));
            std::vector<FileEntry> entries(static_cast<std::size_t>(ones), {10, 26});
            entries.push_back({0, 26});
            const SndEncoding encoding = EncodeSnd(tables, 120, ListOf(entries));
            const std::size_t play = PlayBlockOf(encoding.bytes).size();
            EXPECT_LE(play, 1029U) << ones << " ones, " << records << " records";
            if (ones == 510) continue;
            const int p = 4 + 2 * ones;
            const bool fits = p + records < 1024 && p + 2 * records + 2 <= 1029;
            EXPECT_EQ(encoding.result, fits ? kSndDone : kSndFull) << p << ", " << records;
            EXPECT_EQ(encoding.entries_written, fits ? ones + 1 : ones) << p << ", " << records;
        }
    }
}

TEST(SndWriter, FiveOrSixRecordsAtTheBlocksEdgeCountAsFull) {
    for (const auto& [p, records] : std::vector<std::pair<int, int>>{{1016, 6}, {1018, 5}}) {
        ASSERT_LT(p + records, 1024) << "this edge is behind the other limit";
        std::vector<FileEntry> entries(static_cast<std::size_t>((p - 4) / 2), {10, 26});
        entries.push_back({0, 26});
        const SndEncoding encoding =
            EncodeSnd(TablesWithUnits(static_cast<float>(16 * records)), 120, ListOf(entries));
        EXPECT_EQ(encoding.result, kSndFull) << p;
        EXPECT_EQ(encoding.entries_written, (p - 4) / 2) << p;
    }
}

TEST(SndWriter, RecordsAndEndMarkMayFillTheBlockToItsLastByte) {
    for (const auto& [p, records] : std::vector<std::pair<int, int>>{{1014, 6}, {1016, 5}, {1018, 4}}) {
        std::vector<FileEntry> entries(static_cast<std::size_t>((p - 4) / 2), {10, 26});
        entries.push_back({0, 26});
        const SndEncoding encoding =
            EncodeSnd(TablesWithUnits(static_cast<float>(16 * records)), 120, ListOf(entries));
        EXPECT_EQ(encoding.result, kSndDone) << p;
        EXPECT_EQ(PlayBlockOf(encoding.bytes).size(), 1028U) << p;
    }
}

TEST(SndWriter, ASeparatorBehindALongNoteCountsItsRecordsToo) {
    // Behind 507 one-record notes and one of two records p is 1022; a separator still counts two records.
    std::vector<FileEntry> entries(507, {10, 26});
    entries.push_back({15, 26});
    entries.push_back({kFileSeparator, 0});
    SndEncoding encoding = EncodeSnd(Tables(), 120, ListOf(entries));
    EXPECT_EQ(encoding.result, kSndFull);
    EXPECT_EQ(encoding.entries_written, 508);
    // Behind a note of one record it fits.
    entries[507] = {10, 26};
    entries[508] = {10, 26};
    entries.push_back({kFileSeparator, 0});
    encoding = EncodeSnd(Tables(), 120, ListOf(entries));
    EXPECT_EQ(encoding.result, kSndDone);
    EXPECT_EQ(encoding.entries_written, 510);
}

TEST(SndWriter, ASeparatorNeedsNoRoomForRecordsAtTheBlocksEdge) {
    // 502 notes of one record and one of five bring p to 1018. A second note of five would push the end mark
    // out; a separator writes no records.
    std::vector<FileEntry> entries(502, {10, 26});
    entries.push_back({0, 26});
    entries.push_back({kFileSeparator, 0});
    const SndEncoding encoding = EncodeSnd(TablesWithUnits(80), 120, ListOf(entries));
    EXPECT_EQ(encoding.result, kSndDone);
    EXPECT_EQ(encoding.entries_written, 504);
    EXPECT_EQ(PlayBlockOf(encoding.bytes).size(), 1020U);
}

TEST(SndWriter, AWrongEntryBehindAFullBlockIsOneThatDoesNotFit) {
    std::vector<FileEntry> entries(128, {19, 26});
    entries.push_back({77, 26});
    EXPECT_EQ(EncodeSnd(Tables(), 120, ListOf(entries)).result, kSndFull);
    // Single records up to byte 1018 or 1020, then three at once: from byte 1026 on no entry is looked at.
    for (const std::size_t singles : {507U, 508U}) {
        entries.assign(singles, {10, 26});
        entries.insert(entries.end(), {{0, 26}, {77, 26}});
        EXPECT_EQ(EncodeSnd(TablesWithUnits(48), 120, ListOf(entries)).result,
                  singles == 507 ? kSndWriteError : kSndFull);
    }
}

TEST(SndRounding, HalvesRoundDown) {
    EXPECT_EQ(Rounded(2.5F), 2);
    EXPECT_EQ(Rounded(3.5F), 3);
}

TEST(SndRounding, OutsideTheBandItRoundsToTheNearest) {
    EXPECT_EQ(Rounded(2.75F), 3);
    EXPECT_EQ(Rounded(2.25F), 2);
    EXPECT_EQ(Rounded(2.375F), 2);
    EXPECT_EQ(Rounded(2.625F), 3);
    EXPECT_EQ(Rounded(84.0F), 84);
}

TEST(SndRounding, NothingBecomesOneUnit) {
    EXPECT_EQ(Rounded(0.3F), 1);
    EXPECT_EQ(Rounded(0.0F), 1);
    EXPECT_EQ(Rounded(0.5F), 1);
    EXPECT_EQ(Rounded(0.75F), 1);
}

TEST(SndRounding, ASinglePrecision2Point6IsInsideTheBand) {
    EXPECT_EQ(Rounded(2.6F), 2);
    EXPECT_EQ(Rounded(0.6F), 1);
    EXPECT_EQ(Rounded(1.61F), 2);
}

TEST(SndRounding, TheToggleFlipsInsideTheBandOnlyAndChangesNothing) {
    int toggle = 0;
    EXPECT_EQ(RoundUnits(2.5F, toggle), 2);
    EXPECT_EQ(toggle, 1);
    EXPECT_EQ(RoundUnits(2.5F, toggle), 2);
    EXPECT_EQ(toggle, 0);
    EXPECT_EQ(RoundUnits(2.41F, toggle), 2);
    EXPECT_EQ(toggle, 1);
    EXPECT_EQ(RoundUnits(2.59F, toggle), 2);
    EXPECT_EQ(toggle, 0);
    EXPECT_EQ(RoundUnits(2.75F, toggle), 3);
    EXPECT_EQ(toggle, 0);
    EXPECT_EQ(RoundUnits(3.0F, toggle), 3);
    EXPECT_EQ(toggle, 0);
    EXPECT_EQ(RoundUnits(0.6F, toggle), 1);
    EXPECT_EQ(toggle, 0);
    EXPECT_EQ(RoundUnits(0.4F, toggle), 1);
    EXPECT_EQ(toggle, 0);
}

TEST(SndReader, ReadsTheEditBlockOnly) {
    const Decoded decoded = Decode(GoodFile());
    EXPECT_EQ(decoded.result, kSndDone);
    EXPECT_EQ(decoded.tempo, 120);
    EXPECT_EQ(decoded.mode, 0);
    EXPECT_EQ(decoded.list[0], (FileEntry{10, 26}));
    EXPECT_EQ(decoded.list[1], (FileEntry{65535, 0}));
    EXPECT_EQ(CountEntries(decoded.list), 1);
}

TEST(SndReader, TheTempoIs30To640) {
    for (int tempo = 0; tempo <= 65535; ++tempo) {
        if (tempo % 256 == 255 && tempo / 256 == 255) continue; // that is an end mark
        Bytes file = GoodFile();
        file[10] = static_cast<std::uint8_t>(tempo % 256);
        file[11] = static_cast<std::uint8_t>(tempo / 256);
        std::int16_t out = -1;
        FileList list{};
        EXPECT_EQ(DecodeSnd(file, out, list), tempo >= 30 && tempo <= 640 ? kSndDone : kSndBadFormat)
            << tempo;
        // Given out even when it is refused.
        EXPECT_EQ(out, std::min(tempo, 32767)) << tempo;
    }
}

TEST(SndReader, Tempo29And641AreRefused) {
    Bytes file = GoodFile();
    file[10] = 29;
    EXPECT_EQ(Decode(file).result, kSndBadFormat);
    EXPECT_EQ(Decode(file).fault.offset, 10U);
    file[10] = 641 % 256;
    file[11] = 641 / 256;
    EXPECT_EQ(Decode(file).result, kSndBadFormat);
}

TEST(SndReader, AFileThatEndsBeforeEitherEndMarkIsRefused) {
    const Bytes file = GoodFile();
    for (std::size_t size = 0; size < file.size(); ++size) {
        const Decoded decoded = Decode(Bytes(file.begin(), file.begin() + static_cast<int>(size)));
        EXPECT_EQ(decoded.result, kSndBadFormat) << size;
        EXPECT_EQ(decoded.tempo, -1) << size;
        EXPECT_EQ(decoded.fault.offset, size / 2 * 2) << size;
        EXPECT_EQ(decoded.fault.reason, size < 8 ? "the file ends before the play block does"
                                                 : "the file ends before the edit block does");
    }
}

TEST(SndReader, TempoByte0And33AreRefusedThoughTheEditBlockIsSound) {
    for (int byte = 0; byte <= 255; ++byte) {
        Bytes file = GoodFile();
        file[2] = static_cast<std::uint8_t>(byte);
        EXPECT_EQ(Decode(file).result, byte >= 1 && byte <= 32 ? kSndDone : kSndBadFormat) << byte;
    }
}

TEST(SndReader, EveryHeaderByteIsChecked) {
    for (int byte = 0; byte <= 255; ++byte) {
        for (const std::size_t offset : {0, 1, 3, 8, 9}) {
            Bytes file = GoodFile();
            file[offset] = static_cast<std::uint8_t>(byte);
            const bool good = offset == 8 ? byte <= 2 : byte == GoodFile()[offset];
            const Decoded decoded = Decode(file);
            EXPECT_EQ(decoded.result, good ? kSndDone : kSndBadFormat) << offset << ", " << byte;
            if (!good) {
                EXPECT_EQ(decoded.fault.offset, offset) << byte;
            }
            if (good && offset == 8) {
                EXPECT_EQ(decoded.mode, byte);
            }
        }
    }
}

TEST(SndReader, AFaultNamesTheByteAlsoWhereItIs0) {
    const auto reason_of = [](std::size_t offset, std::uint8_t byte) {
        Bytes file = GoodFile();
        file[offset] = byte;
        return Decode(file).fault.reason;
    };
    EXPECT_EQ(reason_of(0, 0), "the format byte must be 7, not 0");
    EXPECT_EQ(reason_of(1, 1), "this byte must be 0, not 1");
    EXPECT_EQ(reason_of(2, 0), "the tempo byte must be 1 to 32, not 0");
    EXPECT_EQ(reason_of(2, 33), "the tempo byte must be 1 to 32, not 33");
    EXPECT_EQ(reason_of(3, 9), "this byte must be 0, not 9");
    EXPECT_EQ(reason_of(8, 3), "the timing mode must be 0 to 2, not 3");
    EXPECT_EQ(reason_of(9, 5), "this byte must be 0, not 5");
    EXPECT_EQ(reason_of(11, 3), "the tempo must be 30 to 640, not 888");
}

TEST(SndReader, EndMarksInPlaceOfAHeaderAreRefused) {
    EXPECT_EQ(Decode({255, 255, 255, 255}).result, kSndBadFormat);
    EXPECT_EQ(Decode({7, 0, 255, 255, 0, 0, 120, 0, 255, 255}).result, kSndBadFormat);
    EXPECT_EQ(Decode({7, 0, 4, 0, 255, 255, 255, 255}).result, kSndBadFormat);
    EXPECT_EQ(Decode({7, 0, 4, 0, 255, 255, 0, 0, 255, 255}).result, kSndBadFormat);
}

TEST(SndReader, AnEmptyMelodyIsGood) {
    const Decoded decoded = Decode({7, 0, 1, 0, 255, 255, 2, 0, 30, 0, 255, 255});
    EXPECT_EQ(decoded.result, kSndDone);
    EXPECT_EQ(decoded.tempo, 30);
    EXPECT_EQ(decoded.mode, 2);
    EXPECT_EQ(CountEntries(decoded.list), 0);
}

/// A file with a number of records in each block.
Bytes FileWith(int play_records, int edit_entries) {
    Bytes file = {7, 0, 4, 0};
    for (int i = 0; i < play_records; ++i)
        file.insert(file.end(), {26, 56});
    file.insert(file.end(), {255, 255, 0, 0, 120, 0});
    for (int i = 0; i < edit_entries; ++i)
        file.insert(file.end(), {26, 10});
    file.insert(file.end(), {255, 255});
    return file;
}

TEST(SndReader, A1028ByteBlockIsTheLargest) {
    EXPECT_EQ(Decode(FileWith(511, 1)).result, kSndDone);
    EXPECT_EQ(Decode(FileWith(512, 1)).result, kSndBadFormat);
    EXPECT_EQ(Decode(FileWith(512, 1)).fault.reason, "the play block is longer than 1028 bytes");
    EXPECT_EQ(Decode(FileWith(1, 511)).result, kSndDone);
    EXPECT_EQ(Decode(FileWith(1, 512)).result, kSndBadFormat);
    EXPECT_EQ(Decode(FileWith(1, 512)).fault.reason, "the edit block is longer than 1028 bytes");
}

TEST(SndReader, FilesOf510And511EntriesAreReadWhole) {
    for (const int count : {509, 510, 511}) {
        const Decoded decoded = Decode(FileWith(1, count));
        EXPECT_EQ(decoded.result, kSndDone) << count;
        EXPECT_EQ(CountEntries(decoded.list), count);
        EXPECT_EQ(decoded.list[511], (FileEntry{65535, 0}));
    }
}

TEST(SndReader, EveryEntryByteComesThrough) {
    for (int pitch = 0; pitch <= 255; ++pitch) {
        for (int code = 0; code <= 255; ++code) {
            if (pitch == 255 && code == 255) continue;
            Bytes file = GoodFile();
            file[12] = static_cast<std::uint8_t>(pitch);
            file[13] = static_cast<std::uint8_t>(code);
            std::int16_t tempo = 0;
            FileList list{};
            ASSERT_EQ(DecodeSnd(file, tempo, list), kSndDone);
            EXPECT_EQ(list[0].code, code);
            EXPECT_EQ(list[0].pitch, pitch);
        }
    }
}

TEST(SndReader, BytesBehindTheEditBlockAreNotRead) {
    Bytes file = GoodFile();
    file.insert(file.end(), {1, 2, 3});
    EXPECT_EQ(Decode(file).result, kSndDone);
}

TEST(SndReader, ARefusedFileLeavesTheListAsItWas) {
    const FileList before = Repeat(3, {10, 26});
    FileList list = before;
    std::int16_t tempo = 77;
    Bytes file = GoodFile();
    file[0] = 8;
    EXPECT_EQ(DecodeSnd(file, tempo, list), kSndBadFormat);
    EXPECT_EQ(list, before);
    EXPECT_EQ(tempo, 77);
}

TEST(SndReader, AGoodFileReplacesTheWholeList) {
    FileList list{};
    list.fill({10, 26});
    std::int16_t tempo = 0;
    ASSERT_EQ(DecodeSnd(GoodFile(), tempo, list), kSndDone);
    for (std::size_t row = 1; row < list.size(); ++row)
        EXPECT_EQ(list[row], (FileEntry{65535, 0})) << row;
}

TEST(PlayBlock, FindsTheRecordsUpToTheEndMark) {
    const Bytes file = {7, 0, 32, 0, 26, 48, 255, 1, 1, 255, 255, 255, 9, 9};
    PlayBlock block;
    ASSERT_TRUE(ReadPlayBlock(file, block));
    EXPECT_EQ(block.tempo_byte, 32);
    EXPECT_EQ(Bytes(block.records.begin(), block.records.end()), (Bytes{26, 48, 255, 1, 1, 255}));
}

TEST(PlayBlock, TheEndMarkAloneIsAMelodyWithoutNotes) {
    const Bytes file = {7, 0, 1, 0, 255, 255};
    PlayBlock block;
    ASSERT_TRUE(ReadPlayBlock(file, block));
    EXPECT_TRUE(block.records.empty());
}

TEST(PlayBlock, WithoutAnEndMarkItIsRefused) {
    const Bytes file = {7, 0, 32, 0, 26, 48, 255, 255};
    for (std::size_t size = 0; size < file.size(); ++size) {
        PlayBlock block;
        EXPECT_FALSE(ReadPlayBlock(std::span(file).first(size), block)) << size;
    }
    // 255, 255 across two records is no end mark.
    const Bytes across = {7, 0, 32, 0, 26, 255, 255, 48};
    PlayBlock block;
    EXPECT_FALSE(ReadPlayBlock(across, block));
}

TEST(PlayBlock, EveryHeaderByteIsChecked) {
    for (std::size_t offset = 0; offset < 4; ++offset) {
        for (int byte = 0; byte <= 255; ++byte) {
            Bytes file = {7, 0, 32, 0, 255, 255};
            file[offset] = static_cast<std::uint8_t>(byte);
            const bool good = offset == 0 ? byte == 7 : offset == 2 ? byte >= 1 && byte <= 32 : byte == 0;
            PlayBlock block;
            EXPECT_EQ(ReadPlayBlock(file, block), good) << offset << ", " << byte;
        }
    }
}

TEST(PlayBlock, NeedsNoEditBlockAndMayBeLongerThanTheEditorsOwn) {
    Bytes file = {7, 0, 32, 0};
    for (int i = 0; i < 2000; ++i)
        file.insert(file.end(), {26, 48});
    file.insert(file.end(), {255, 255});
    PlayBlock block;
    ASSERT_TRUE(ReadPlayBlock(file, block));
    EXPECT_EQ(block.records.size(), 4000U);
}

TEST(PlayBlock, UnitsAreTheLowNibbleAndZeroStandsFor16) {
    for (int byte = 0; byte <= 255; ++byte)
        EXPECT_EQ(UnitsOfRecord(static_cast<std::uint8_t>(byte)), byte % 16 == 0 ? 16 : byte % 16) << byte;
}

TEST(SndFile, EveryMelodyComesBackAndSavesToTheSameBytes) {
    for (std::size_t t = 0; Tables().tempo_list[t] != 0; ++t) {
        std::vector<FileEntry> entries;
        for (std::uint16_t code = 0; code < 20; ++code) {
            entries.push_back({code, static_cast<std::uint16_t>(26 + code)});
            entries.push_back({static_cast<std::uint16_t>(code + 100), 86});
            entries.push_back({kFileSeparator, 86});
        }
        const std::int16_t tempo = Tables().tempo_list[t];
        const SndEncoding first = EncodeSnd(Tables(), tempo, ListOf(entries));
        ASSERT_EQ(first.result, kSndDone) << tempo;
        const Decoded decoded = Decode(first.bytes);
        ASSERT_EQ(decoded.result, kSndDone) << tempo;
        EXPECT_EQ(decoded.tempo, tempo);
        EXPECT_EQ(decoded.list, ListOf(entries)) << tempo;
        EXPECT_EQ(EncodeSnd(Tables(), tempo, decoded.list).bytes, first.bytes) << tempo;
    }
}

} // namespace

} // namespace tonex::snd_file_test
