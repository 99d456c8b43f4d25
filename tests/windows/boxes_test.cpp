// Message boxes, used by a second pair of hands.
#include "platform/message_box.h"
#include "tests/windows/support.h"

#include <gtest/gtest.h>

using namespace tonex;
using namespace tonex::windows_test;

namespace {

// Number of the control in the system's boxes.
constexpr int kMessageText = 0xFFFF;

bool shown_before_the_box = false;

// Whether a box has a picture; its number differs between systems.
bool HasIcon(HWND box) {
    for (HWND child = GetWindow(box, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        wchar_t name[16] = L"";
        GetClassNameW(child, name, 16);
        const bool picture = (GetWindowLongW(child, GWL_STYLE) & SS_TYPEMASK) == SS_ICON;
        if (lstrcmpiW(name, L"static") == 0 && picture && SendMessageW(child, STM_GETICON, 0, 0)) return true;
    }
    return false;
}

MessageAnswer Answer(MessageButtons buttons, int control) {
    const Hands hands([&] { Press(WaitForDialog(L"Sound Editor"), control); });
    return ShowMessage(L"Do you want to save the changes?", buttons);
}

} // namespace

TEST(MessageBoxes, GivesTheAnswerOfEachButton) {
    EXPECT_EQ(Answer(MessageButtons::Ok, IDOK), MessageAnswer::Ok);
    EXPECT_EQ(Answer(MessageButtons::YesNoCancel, IDYES), MessageAnswer::Yes);
    EXPECT_EQ(Answer(MessageButtons::YesNoCancel, IDNO), MessageAnswer::No);
    EXPECT_EQ(Answer(MessageButtons::YesNoCancel, IDCANCEL), MessageAnswer::Cancel);
}

TEST(MessageBoxes, ClosingItIsCancelOrOkWhenThereIsNothingElse) {
    const auto close = [](MessageButtons buttons) {
        const Hands hands([] { PostMessageW(WaitForDialog(L"Sound Editor"), WM_CLOSE, 0, 0); });
        return ShowMessage(L"Read error!", buttons);
    };
    EXPECT_EQ(close(MessageButtons::YesNoCancel), MessageAnswer::Cancel);
    EXPECT_EQ(close(MessageButtons::Ok), MessageAnswer::Ok);
}

TEST(MessageBoxes, ShowsTextButtonsAndIcon) {
    const Hands hands([] {
        const HWND box = WaitForDialog(L"Sound Editor");
        EXPECT_EQ(ControlText(box, kMessageText), L"Read error!");
        EXPECT_TRUE(HasIcon(box));
        EXPECT_TRUE(GetDlgItem(box, IDOK));
        EXPECT_FALSE(GetDlgItem(box, IDYES));
        Press(box, IDOK);
    });
    ShowMessage(L"Read error!");
}

TEST(MessageBoxes, WithoutAnIconHasNone) {
    const Hands hands([] {
        const HWND box = WaitForDialog(L"Sound Editor");
        EXPECT_FALSE(HasIcon(box));
        Press(box, IDOK);
    });
    ShowMessage(L"File translate error when upload to Veloxa!", MessageButtons::Ok, MessageIcon::None);
}

TEST(MessageBoxes, BelongsToTheMainWindowAndComesAfterWhatIsToBeShown) {
    const KeepHooks keep;
    const HWND owner = CreateWindowExW(0, L"STATIC", L"owner", WS_POPUP | WS_VISIBLE, 0, 0, 200, 100, nullptr,
                                       nullptr, nullptr, nullptr);
    Hooks().main_window = owner;
    shown_before_the_box = false;
    Hooks().show_differences = [] { shown_before_the_box = true; };
    {
        const Hands hands([&] {
            const HWND box = WaitForDialog(L"Sound Editor");
            EXPECT_TRUE(shown_before_the_box);
            EXPECT_EQ(GetWindow(box, GW_OWNER), owner);
            EXPECT_FALSE(IsWindowEnabled(owner));
            Press(box, IDOK);
        });
        ShowMessage(L"Read error!");
    }
    EXPECT_TRUE(IsWindowEnabled(owner));
    DestroyWindow(owner);
}

TEST(MessageBoxes, OverADialogBelongsToItAndLeavesTheMainWindowDisabled) {
    const KeepHooks keep;
    const auto window = [](HWND owner) {
        return CreateWindowExW(0, L"STATIC", L"window", WS_POPUP | WS_VISIBLE, 0, 0, 200, 100, owner, nullptr,
                               nullptr, nullptr);
    };
    const HWND main = window(nullptr), dialog = window(main);
    Hooks().main_window = main;
    EnableWindow(main, FALSE);
    SetActiveWindow(dialog);
    {
        const Hands hands([&] {
            const HWND box = WaitForDialog(L"Sound Editor");
            EXPECT_EQ(GetWindow(box, GW_OWNER), dialog);
            Press(box, IDOK);
        });
        ShowMessage(L"The help file is missing.");
    }
    EXPECT_FALSE(IsWindowEnabled(main));
    EXPECT_TRUE(IsWindowEnabled(dialog));
    DestroyWindow(main);
}
