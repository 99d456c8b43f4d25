// A tune as a melody: the tempo and the lengths with which the organiser comes nearest to it.
#pragma once

#include "exchange/deviation.h"
#include "exchange/tune.h"
#include "score/snd_file.h"

#include <string>
#include <vector>

namespace tonex {

/// A melody for a tune. Every entry belongs to an interval of the tune.
struct Candidate {
    std::int16_t tempo = 0;
    double scale = 1.0;             ///< written lengths by the tune's
    bool exact = false;             ///< lengths were chosen by the seconds, not by how they are written
    std::vector<FileEntry> entries; ///< all of them, also those that no file has room for
    std::vector<int> interval_of;   ///< by entry
};

/// What became of it.
struct Fit {
    Candidate melody;
    SndEncoding encoding;
    int mode = 0;
    int tempo_byte = 0;
    Deviation deviation;          ///< of the intervals that the file holds whole
    bool whole = false;           ///< all of the tune is in the file
    int intervals_written = 0;    ///< that the file holds whole
    double seconds_written = 0.0; ///< of the tune
    int records = 0;              ///< of the play block's 510
    std::vector<double> played;   ///< seconds, by interval written
    int early_notes = 0;          ///< that end before they should, as no entry has their length; rests follow
    double most_early = 0.0;      ///< seconds
};

/// The most records of a play block.
inline constexpr int kMostRecords = 510;

/// Encodes a candidate and measures what the file plays. `kSndWriteError` in the encoding when a pitch is
/// outside what a file can hold.
Fit Evaluate(const TimingTables& tables, const Tune& tune, Candidate candidate);

/// The tune with its lengths as written, all by `scale`, and a tempo still to be chosen.
Candidate WriteLengths(const Tune& tune, double scale);

/// By the tune's written lengths, by half of them and by twice: the tempo of the list that is heard nearest.
/// What is written is kept where the difference is hardly heard. `kSndNotFound` when a pitch is outside what
/// a file can hold.
Fit FitScore(const TimingTables& tables, const Tune& tune);

/// By seconds alone: whole time units from onset to onset, with few entries. A worse fit than FitScore's, or
/// one that holds less, may come out; the caller compares. `kSndNotFound` when nothing was found.
Fit FitExact(const TimingTables& tables, const Tune& tune);

/// FitExact when asked for, or when the tune is not on the grid, or when its tempo changes are heard and it
/// does better; else FitScore.
Fit FitTune(const TimingTables& tables, const Tune& tune, bool exact);

/// Whether one fit is better than another: it is heard nearer, or holds the whole tune and is not heard much
/// less near.
bool IsBetterFit(const Fit& one, const Fit& other);

} // namespace tonex
