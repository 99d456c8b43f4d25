// platform/screen.h on Win32.
#include "platform/screen.h"

#include "platform/windows/desktop_windows.h"

#include <cmath>

namespace tonex {

namespace {

constexpr float kTwipsPerInch = 1440;

} // namespace

ScreenMeasures MeasureScreen() {
    int dpi_x = 96, dpi_y = 96;
    if (const HDC screen = GetDC(nullptr)) {
        dpi_x = GetDeviceCaps(screen, LOGPIXELSX);
        dpi_y = GetDeviceCaps(screen, LOGPIXELSY);
        ReleaseDC(nullptr, screen);
    }
    ScreenMeasures measures;
    measures.twips_per_pixel_x = kTwipsPerInch / static_cast<float>(dpi_x > 0 ? dpi_x : 96);
    measures.twips_per_pixel_y = kTwipsPerInch / static_cast<float>(dpi_y > 0 ? dpi_y : 96);
    measures.width = static_cast<int>(
        std::lround(static_cast<float>(GetSystemMetrics(SM_CXSCREEN)) * measures.twips_per_pixel_x));
    measures.height = static_cast<int>(
        std::lround(static_cast<float>(GetSystemMetrics(SM_CYSCREEN)) * measures.twips_per_pixel_y));
    return measures;
}

} // namespace tonex
