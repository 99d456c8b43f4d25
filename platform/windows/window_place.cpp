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
