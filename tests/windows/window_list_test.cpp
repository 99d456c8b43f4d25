#include "platform/window_list.h"

#include "link/single_instance_services.h"
#include "tests/windows/support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace tonex;
using namespace tonex::windows_test;

namespace {

WindowId Id(HWND window) {
    return reinterpret_cast<WindowId>(window);
}

HWND MakeWindow(const wchar_t* caption, HWND owner, DWORD style) {
    return CreateWindowExW(0, L"STATIC", caption, style, 20, 20, 300, 200, owner, nullptr, nullptr, nullptr);
}

// A main window with the hidden window that owns it.
struct OwnedWindow {
    explicit OwnedWindow(const wchar_t* caption)
        : owner(MakeWindow(L"", nullptr, WS_POPUP)),
          window(MakeWindow(caption, owner, WS_OVERLAPPEDWINDOW | WS_VISIBLE)) {}
    ~OwnedWindow() {
        DestroyWindow(window);
        DestroyWindow(owner);
    }
    HWND owner, window;
};

std::vector<WindowId> AllWindows() {
    std::vector<WindowId> windows;
    for (WindowId window = FirstTopLevelWindow(); window; window = NextWindow(window))
        windows.push_back(window);
    return windows;
}

} // namespace

TEST(WindowList, HoldsEveryTopLevelWindowOnce) {
    const OwnedWindow first(L"Sound Editor - Untitled"), second(L"other");
    const std::vector<WindowId> windows = AllWindows();
    for (const HWND window : {first.window, first.owner, second.window})
        EXPECT_EQ(std::count(windows.begin(), windows.end(), Id(window)), 1);
}

TEST(WindowList, TellsCaptionAndOwner) {
    const OwnedWindow main(L"Sound Editor - Untitled");
    EXPECT_EQ(CaptionLength(Id(main.window)), 23);
    std::wstring buffer(24, L' ');
    EXPECT_EQ(ReadCaption(Id(main.window), buffer), 23);
    EXPECT_EQ(buffer.substr(0, 23), L"Sound Editor - Untitled");
    std::wstring none;
    EXPECT_EQ(ReadCaption(Id(main.window), none), 0);
    EXPECT_EQ(OwnerOf(Id(main.window)), Id(main.owner));
    EXPECT_EQ(OwnerOf(Id(main.owner)), 0u);
    EXPECT_EQ(CaptionLength(Id(main.owner)), 0);
}

TEST(WindowList, OfAWindowThatIsGoneKnowsNothing) {
    const WindowId gone = 0x7FFFFFF0;
    EXPECT_EQ(NextWindow(gone), 0u);
    EXPECT_EQ(CaptionLength(gone), 0);
    EXPECT_EQ(OwnerOf(gone), 0u);
    EXPECT_FALSE(IsMinimised(gone));
}

TEST(WindowList, MinimisedWindowsComeBack) {
    const OwnedWindow main(L"Sound Editor - Untitled");
    EXPECT_FALSE(IsMinimised(Id(main.window)));
    ShowWindow(main.window, SW_MINIMIZE);
    EXPECT_TRUE(IsMinimised(Id(main.window)));
    RestoreWindow(Id(main.window));
    EXPECT_FALSE(IsMinimised(Id(main.window)));
}

TEST(PreviousInstance, IsBroughtBackAndToTheFront) {
    const OwnedWindow main(L"Sound Editor - Untitled"), other(L"other");
    ShowWindow(main.window, SW_MINIMIZE);
    SetForegroundWindow(other.window);
    ActivatePreviousInstance(L"Sound Editor");
    EXPECT_FALSE(IsMinimised(Id(main.window)));
    EXPECT_EQ(GetForegroundWindow(), main.window);
}

TEST(PreviousInstance, AWindowWithoutAnOwnerIsSkipped) {
    const HWND unowned = MakeWindow(L"Sound Editor - Untitled", nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    const OwnedWindow other(L"other");
    SetForegroundWindow(other.window);
    ActivatePreviousInstance(L"Sound Editor");
    EXPECT_EQ(GetForegroundWindow(), other.window);
    DestroyWindow(unowned);
}

TEST(PreviousInstance, BehindABoxTheBoxComesToTheFront) {
    const OwnedWindow main(L"Sound Editor - Untitled"), other(L"other");
    const HWND box = MakeWindow(L"box", main.window, WS_POPUP | WS_VISIBLE | WS_CAPTION);
    SetForegroundWindow(box);
    EnableWindow(main.window, FALSE);
    SetForegroundWindow(other.window);
    BringToForeground(Id(main.window));
    EXPECT_EQ(GetForegroundWindow(), box);
    DestroyWindow(box);
}

TEST(PreviousInstance, OfCopiesStartedAtTheSameInstantExactlyOneIsTheFirst) {
    constexpr int kCopies = 5;
    for (int round = 0; round < 3; ++round) {
        const HANDLE tried = CreateSemaphoreW(nullptr, 0, kCopies, L"Local\\windows_tests tried");
        const HANDLE finish = CreateEventW(nullptr, TRUE, FALSE, L"Local\\windows_tests finish");
        std::vector<std::unique_ptr<Child>> copies;
        for (int i = 0; i < kCopies; ++i)
            copies.push_back(std::make_unique<Child>(L"child-instance"));
        for (int i = 0; i < kCopies; ++i)
            EXPECT_EQ(WaitForSingleObject(tried, 20'000), WAIT_OBJECT_0);
        SetEvent(finish);
        int first_copies = 0, second_copies = 0;
        for (const auto& copy : copies) {
            const DWORD code = copy->ExitCode();
            first_copies += code == 0;
            second_copies += code == 1;
        }
        EXPECT_EQ(first_copies, 1);
        EXPECT_EQ(second_copies, kCopies - 1);
        CloseHandle(tried);
        CloseHandle(finish);
    }
}
