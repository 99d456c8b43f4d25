// Where windows stand: on the screen, and in the middle of an area.
#include "platform/windows/window_place.h"

#include <gtest/gtest.h>

using namespace tonex;

namespace {

/// A hidden window of a size.
struct HiddenWindow {
    HiddenWindow(int width, int height)
        : handle(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, width, height, nullptr, nullptr, nullptr,
                                 nullptr)) {}
    ~HiddenWindow() { DestroyWindow(handle); }
    HiddenWindow(const HiddenWindow&) = delete;
    HiddenWindow& operator=(const HiddenWindow&) = delete;

    HWND handle;
};

void ExpectArea(const RECT& area, const RECT& wanted) {
    EXPECT_EQ(area.left, wanted.left);
    EXPECT_EQ(area.top, wanted.top);
    EXPECT_EQ(area.right, wanted.right);
    EXPECT_EQ(area.bottom, wanted.bottom);
}

/// What is free of the first screen.
RECT Free() {
    const HiddenWindow window(10, 10);
    return FreeScreenAround(window.handle);
}

} // namespace

TEST(WindowPlace, TheMiddleKeepsTheWindowsSize) {
    const HiddenWindow window(101, 51);
    ExpectArea(InTheMiddle(window.handle, {100, 200, 300, 300}), {149, 224, 250, 275});
}

TEST(WindowPlace, ALargerWindowStandsOverAllSidesOfTheArea) {
    const HiddenWindow window(300, 200);
    ExpectArea(InTheMiddle(window.handle, {400, 400, 500, 500}), {300, 350, 600, 550});
}

TEST(WindowPlace, WhatLiesOnTheScreenStays) {
    const RECT free = Free();
    const RECT area = {free.left + 10, free.top + 20, free.left + 110, free.top + 70};
    ExpectArea(OntoScreen(area), area);
}

TEST(WindowPlace, WhatLeavesTheScreenIsMovedBackWhole) {
    const RECT free = Free();
    ExpectArea(OntoScreen({free.right - 10, free.bottom - 5, free.right + 90, free.bottom + 45}),
               {free.right - 100, free.bottom - 50, free.right, free.bottom});
    ExpectArea(OntoScreen({free.left - 500, free.top - 500, free.left - 400, free.top - 450}),
               {free.left, free.top, free.left + 100, free.top + 50});
}

TEST(WindowPlace, WhatIsLargerThanTheScreenIsMadeSmaller) {
    const RECT free = Free();
    ExpectArea(OntoScreen({free.left - 50, free.top - 50, free.right + 50, free.bottom + 50}), free);
}

TEST(WindowPlace, AWindowCanBeReachedWhereEnoughOfItsCaptionShows) {
    const RECT free = Free();
    EXPECT_TRUE(CanBeReached(free));
    EXPECT_TRUE(CanBeReached({free.left + 100, free.top + 200, free.left + 500, free.top + 600}));
    EXPECT_TRUE(CanBeReached({free.right - 80, free.bottom - 60, free.right + 320, free.bottom + 340}));
    EXPECT_TRUE(CanBeReached({free.left - 320, free.top, free.left + 80, free.top + 400}));
    EXPECT_FALSE(CanBeReached({free.right - 10, free.top, free.right + 390, free.top + 400}));
    EXPECT_FALSE(CanBeReached({free.left, free.top - 200, free.left + 400, free.top + 200}))
        << "the caption is above the screen";
    EXPECT_FALSE(CanBeReached({free.left, free.bottom - 2, free.left + 400, free.bottom + 398}));
    EXPECT_FALSE(CanBeReached({free.right + 500, free.top, free.right + 900, free.top + 400}));
}

TEST(WindowPlace, AWindowLargerThanAllScreensCanNotBeReachedWhole) {
    const RECT screens = {0, 0, GetSystemMetrics(SM_CXVIRTUALSCREEN), GetSystemMetrics(SM_CYVIRTUALSCREEN)};
    EXPECT_TRUE(CanBeReached({-4, 0, screens.right + 4, screens.bottom}));
    EXPECT_FALSE(CanBeReached({0, 0, screens.right + 200, 300}));
    EXPECT_FALSE(CanBeReached({0, 0, 300, screens.bottom + 200}));
}

TEST(WindowPlace, MovingKeepsTheSize) {
    const HiddenWindow window(80, 60);
    MoveTo(window.handle, {30, 40, 0, 0});
    ExpectArea(AreaOf(window.handle), {30, 40, 110, 100});
}
