// The rules' part of an edit, without a window on the screen: a key click at the end of a long melody against
// one in a short melody, and what Delete and Paste cost in a full score.
#include "bench/pairs.h"
#include "tests/set_up_window.h"
#include "view/edit_commands.h"
#include "view/note_entry_commands.h"

#include <benchmark/benchmark.h>

#include <array>
#include <memory>

namespace {

using namespace tonex;

constexpr int kClicks = 300;    ///< clicks of one repetition
constexpr int kKey = 12;        ///< the white key clicked
constexpr int kLongScore = 507; ///< entries in front of the 508th
constexpr int kMiddle = 254;
constexpr int kPasted = 250;

std::unique_ptr<sndmain> WindowWith(int entries, int column) {
    auto window = testing::SetUpWindow();
    testing::FillScore(*window, entries);
    testing::MoveCursor(*window, column);
    return window;
}

/// Milliseconds of a number of edits. Each is undone before the next one, which is not in the time.
template <typename Edit> double TimeOf(sndmain& window, const Edit& edit) {
    double sum = 0;
    for (int i = 0; i < kClicks; ++i) {
        sum += bench::MillisecondsOf([&] { edit(window); });
        SwapUndo(window);
    }
    return sum;
}

void Click(sndmain& window) {
    kenWhite_Click(window, kKey);
}

void BM_AppendAt508AgainstAt1(benchmark::State& state) {
    const auto far = WindowWith(kLongScore, kLongScore);
    const auto near = WindowWith(0, 0);
    bench::MeasurePair(
        state, [&] { return TimeOf(*far, Click); }, [&] { return TimeOf(*near, Click); });
}
BENCHMARK(BM_AppendAt508AgainstAt1)->Iterations(1)->Repetitions(21)->UseManualTime();

void BM_RewriteInTheMiddleAgainstAt1(benchmark::State& state) {
    const auto middle = WindowWith(kLongScore, kMiddle);
    const auto near = WindowWith(1, 0);
    bench::MeasurePair(
        state, [&] { return TimeOf(*middle, Click); }, [&] { return TimeOf(*near, Click); });
}
BENCHMARK(BM_RewriteInTheMiddleAgainstAt1)->Iterations(1)->Repetitions(21)->UseManualTime();

/// Milliseconds of copying the score's table ten times, as often as the edits are made.
double TimeOfTenCopies(const sndmain& window) {
    static std::array<Entry, kSlots> copy;
    double sum = 0;
    for (int i = 0; i < kClicks; ++i) {
        sum += bench::MillisecondsOf([&] {
            for (int k = 0; k < 10; ++k) {
                copy = window.score.sound;
                benchmark::DoNotOptimize(copy.data());
                benchmark::ClobberMemory();
            }
        });
    }
    return sum;
}

void BM_DeleteAtTheFrontAgainstTenCopies(benchmark::State& state) {
    const auto full = WindowWith(kMaxEntries, 0);
    bench::MeasurePair(
        state, [&] { return TimeOf(*full, mnuDelete_Click); }, [&] { return TimeOfTenCopies(*full); });
}
BENCHMARK(BM_DeleteAtTheFrontAgainstTenCopies)->Iterations(1)->Repetitions(21)->UseManualTime();

void BM_Paste250AgainstTenCopies(benchmark::State& state) {
    auto half = WindowWith(kPasted, 0);
    testing::Select(*half, 0, kPasted - 1);
    mnuCopy_Click(*half);
    testing::MoveCursor(*half, 0);
    bench::MeasurePair(
        state, [&] { return TimeOf(*half, mnuPaste_Click); }, [&] { return TimeOfTenCopies(*half); });
}
BENCHMARK(BM_Paste250AgainstTenCopies)->Iterations(1)->Repetitions(21)->UseManualTime();

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
