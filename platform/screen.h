// The screen's measures. One twip is 1/1440 of a logical inch.
#pragma once

namespace tonex {

struct ScreenMeasures {
    float twips_per_pixel_x = 15; ///< 15 at 100 %, 12 at 125 %, 10 at 150 %, 7.5 at 200 %
    float twips_per_pixel_y = 15;
    int width = 15360; ///< of the primary screen, twips
    int height = 11520;
};

ScreenMeasures MeasureScreen();

} // namespace tonex
