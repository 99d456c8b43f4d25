// What the strip draws for one scroll step of a full view: thirty pictures, each other than the one before it
// in its column, with their ledger lines, put through their masks onto the panel.
#include "bench/pairs.h"
#include "pictures/glyphs.h"
#include "pictures/raster.h"
#include "score/rows.h"
#include "view/staff.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

using namespace tonex;

constexpr int kSteps = 20; ///< scroll steps of one repetition
constexpr int kPanelWidth = 12600, kPanelHeight = 2520;

/// The staff panel's pixels.
struct Sheet {
    int width, height;
    std::vector<std::uint32_t> pixels;
};

Sheet SheetOf(float pixels_per_twip) {
    const int width = static_cast<int>(kPanelWidth * pixels_per_twip),
              height = static_cast<int>(kPanelHeight * pixels_per_twip);
    return {width, height,
            std::vector<std::uint32_t>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height),
                                       0xFFFFFF)};
}

void Put(Sheet& sheet, const PlacedMask& placed, int left) {
    for (int row = 0; row < placed.mask.height; ++row)
        BlendRow(&At(sheet.pixels, (placed.top + row) * sheet.width + left),
                 &At(placed.mask.alpha, row * placed.mask.width), placed.mask.width, 0);
}

/// Milliseconds of drawing the strip's pictures, no two alike, at a scale.
double TimeOfSteps(float pixels_per_twip) {
    const StripColumn column{pixels_per_twip, static_cast<int>(kColumnWidth * pixels_per_twip + 0.01F)};
    Sheet sheet = SheetOf(pixels_per_twip);
    return bench::MillisecondsOf([&] {
        for (int step = 0; step < kSteps; ++step)
            for (int image = 0; image < kStripPictures; ++image) {
                const int entry = step + image, up = entry % 2;
                const StripPicture shown{1 + entry % 17 + (up != 0 ? 0 : 40), entry % 5 == 0,
                                         kMiddleStaffLine + (up != 0 ? 1 : -1) * kStepHeight * (entry % 14)};
                benchmark::DoNotOptimize(LedgerLineBoxes(shown, column).data());
                Put(sheet, StripPictureMask(shown, column), image * column.width);
            }
        benchmark::DoNotOptimize(sheet.pixels.data());
    });
}

/// Milliseconds of giving all pixels of the staff panel a colour as often, ten times a step.
double TimeOfFills(float pixels_per_twip) {
    Sheet sheet = SheetOf(pixels_per_twip);
    return bench::MillisecondsOf([&] {
        for (int fill = 0; fill < 10 * kSteps; ++fill) {
            std::fill(sheet.pixels.begin(), sheet.pixels.end(), static_cast<std::uint32_t>(fill));
            benchmark::DoNotOptimize(sheet.pixels.data());
            benchmark::ClobberMemory();
        }
    });
}

void BM_ScrollStepAt100AgainstFills(benchmark::State& state) {
    bench::MeasurePair(
        state, [] { return TimeOfSteps(1 / 15.0F); }, [] { return TimeOfFills(1 / 15.0F); });
}
BENCHMARK(BM_ScrollStepAt100AgainstFills)->Iterations(1)->Repetitions(21)->UseManualTime();

void BM_ScrollStepAt200AgainstFills(benchmark::State& state) {
    bench::MeasurePair(
        state, [] { return TimeOfSteps(1 / 7.5F); }, [] { return TimeOfFills(1 / 7.5F); });
}
BENCHMARK(BM_ScrollStepAt200AgainstFills)->Iterations(1)->Repetitions(21)->UseManualTime();

} // namespace

BENCHMARK_MAIN();
