// Windows-only by nature.
#include "platform/windows/window_place.h"

#include <algorithm>
#include <optional>

namespace tonex {

namespace {

/// What task bars leave free of a screen; nothing when the system does not tell.
std::optional<RECT> FreeArea(HMONITOR screen) {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    if (!GetMonitorInfoW(screen, &info)) return std::nullopt;
    return info.rcWork;
}

} // namespace

RECT WholeScreen() {
    return {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
}

RECT FreeScreenAround(HWND window) {
    return FreeArea(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST)).value_or(WholeScreen());
}

RECT AreaOf(HWND window) {
    RECT area = {};
    GetWindowRect(window, &area);
    return area;
}

bool CanBeReached(const RECT& area) {
    const int frame_x = GetSystemMetrics(SM_CXSIZEFRAME), frame_y = GetSystemMetrics(SM_CYSIZEFRAME);
    // A window that fills the screen may put its frame outside.
    constexpr int kPaddedBorder = 92; // SM_CXPADDEDBORDER, newer than the oldest system served
    const int outside = 2 * (frame_x + frame_y + GetSystemMetrics(kPaddedBorder));
    if (area.right - area.left > GetSystemMetrics(SM_CXVIRTUALSCREEN) + outside ||
        area.bottom - area.top > GetSystemMetrics(SM_CYVIRTUALSCREEN) + outside)
        return false;
    const LONG top = area.top + frame_y, high = GetSystemMetrics(SM_CYCAPTION);
    const RECT caption = {area.left, top, area.right, top + high};
    HMONITOR screen = MonitorFromRect(&caption, MONITOR_DEFAULTTONULL);
    RECT seen{};
    const RECT free = screen ? FreeArea(screen).value_or(WholeScreen()) : RECT{};
    if (!IntersectRect(&seen, &caption, &free)) return false;
    return seen.right - seen.left >= 2 * high && 2 * (seen.bottom - seen.top) >= high;
}

RECT OntoScreen(RECT area) {
    const auto free = FreeArea(MonitorFromRect(&area, MONITOR_DEFAULTTONEAREST));
    if (!free) return area;
    area.right = std::min(area.right, area.left + (free->right - free->left));
    area.bottom = std::min(area.bottom, area.top + (free->bottom - free->top));
    LONG dx = 0, dy = 0;
    if (area.right > free->right) dx = free->right - area.right;
    if (area.left + dx < free->left) dx = free->left - area.left;
    if (area.bottom > free->bottom) dy = free->bottom - area.bottom;
    if (area.top + dy < free->top) dy = free->top - area.top;
    OffsetRect(&area, static_cast<int>(dx), static_cast<int>(dy));
    return area;
}

RECT InTheMiddle(HWND window, const RECT& area) {
    RECT own = AreaOf(window);
    const LONG width = own.right - own.left, height = own.bottom - own.top;
    const LONG left = area.left + (area.right - area.left - width) / 2;
    const LONG top = area.top + (area.bottom - area.top - height) / 2;
    return {left, top, left + width, top + height};
}

void MoveTo(HWND window, const RECT& area) {
    SetWindowPos(window, nullptr, static_cast<int>(area.left), static_cast<int>(area.top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace tonex
