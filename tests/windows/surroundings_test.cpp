// Clock, screen, sound outputs, pending events, the program's folder and help.
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/help.h"
#include "platform/program_folder.h"
#include "platform/screen.h"
#include "platform/sound_devices.h"
#include "tests/windows/support.h"

#include <gtest/gtest.h>

#include <mmsystem.h>
#include <objbase.h>

using namespace tonex;
using namespace tonex::windows_test;

namespace {

constexpr UINT kTestMessage = WM_APP + 1;

int messages_seen = 0;
int differences_shown = 0;
int translated = 0;

LRESULT CALLBACK CountMessages(HWND window, UINT message, WPARAM wide, LPARAM data) {
    if (message == kTestMessage) ++messages_seen;
    return DefWindowProcW(window, message, wide, data);
}

// A window that counts the messages it gets.
struct CountingWindow {
    CountingWindow() {
        WNDCLASSW window_class = {};
        window_class.lpfnWndProc = CountMessages;
        window_class.hInstance = GetModuleHandleW(nullptr);
        window_class.lpszClassName = L"tonex test events";
        RegisterClassW(&window_class);
        window = CreateWindowExW(0, window_class.lpszClassName, L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                                 window_class.hInstance, nullptr);
        messages_seen = differences_shown = translated = 0;
    }
    ~CountingWindow() { DestroyWindow(window); }
    HWND window;
    KeepHooks hooks;
};

} // namespace

TEST(Clock, IsTheLocalTime) {
    for (int tries = 0; tries < 5; ++tries) { // the second may turn between two questions
        SYSTEMTIME before, after;
        GetLocalTime(&before);
        const TimeOfDay now = CurrentTime();
        GetLocalTime(&after);
        if (before.wSecond != after.wSecond) continue;
        EXPECT_EQ(now.hour, before.wHour);
        EXPECT_EQ(now.minute, before.wMinute);
        EXPECT_EQ(now.second, before.wSecond);
        return;
    }
    FAIL() << "the second turned five times";
}

TEST(Screen, ATwipIsA1440thOfAnInch) {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    const ScreenMeasures measures = MeasureScreen();
    EXPECT_FLOAT_EQ(measures.twips_per_pixel_x * static_cast<float>(dpi), 1440.0f);
    EXPECT_FLOAT_EQ(measures.twips_per_pixel_y, measures.twips_per_pixel_x);
    if (dpi == 96) {
        EXPECT_EQ(measures.twips_per_pixel_x, 15.0f);
        EXPECT_EQ(measures.width, GetSystemMetrics(SM_CXSCREEN) * 15);
        EXPECT_EQ(measures.height, GetSystemMetrics(SM_CYSCREEN) * 15);
    }
}

TEST(SoundOutputs, AreCountedAsTheSystemCountsThem) {
    ForgetWaveOutputs();
    EXPECT_EQ(CountWaveOutputs(), static_cast<int>(waveOutGetNumDevs()));
    EXPECT_EQ(CountWaveOutputs(), static_cast<int>(waveOutGetNumDevs()));
}

TEST(SoundOutputs, AskingAgainCostsNothing) {
    CountWaveOutputs();
    const DWORD start = GetTickCount();
    for (int i = 0; i < 100'000; ++i)
        CountWaveOutputs();
    EXPECT_LT(GetTickCount() - start, 1000u);
}

TEST(SoundOutputs, AMissingFileAndStoppingSilenceReturnAtOnce) {
    const DWORD start = GetTickCount();
    PlaySoundFile(L"C:\\missing\\none.wav");
    PlaySoundFile(L"");
    EXPECT_LT(GetTickCount() - start, 5000u);
}

TEST(Events, PendingOnesRunAndWhatTheyChangedIsShownOnce) {
    const CountingWindow counting;
    Hooks().show_differences = [] { ++differences_shown; };
    for (int i = 0; i < 3; ++i)
        PostMessageW(counting.window, kTestMessage, 0, 0);
    ProcessPendingEvents();
    EXPECT_EQ(messages_seen, 3);
    EXPECT_EQ(differences_shown, 1);
    ProcessPendingEvents();
    EXPECT_EQ(messages_seen, 3);
}

TEST(Events, InPassingTheyRunNowAndThen) {
    constexpr int kSteps = 1000;
    const CountingWindow counting;
    Hooks().show_differences = [] { ++differences_shown; };
    PostMessageW(counting.window, kTestMessage, 0, 0);
    int steps = 0;
    for (const DWORD start = GetTickCount(); messages_seen == 0 && GetTickCount() - start < 5000u; ++steps)
        ProcessEventsInPassing();
    EXPECT_EQ(messages_seen, 1);
    for (int i = 0; i < kSteps; ++i)
        ProcessEventsInPassing();
    EXPECT_LT(differences_shown, kSteps / 2);
}

TEST(Events, TheMainWindowsTurnComesFirst) {
    const CountingWindow counting;
    Hooks().translate_message = [](MSG& message) {
        if (message.message == kTestMessage) ++translated;
        return message.message == kTestMessage;
    };
    PostMessageW(counting.window, kTestMessage, 0, 0);
    ProcessPendingEvents();
    EXPECT_EQ(translated, 1);
    EXPECT_EQ(messages_seen, 0);
}

TEST(Events, TheEndOfTheProgramIsKeptForItsLoop) {
    const CountingWindow counting;
    PostQuitMessage(7);
    ProcessPendingEvents();
    WaitForEvents(1);
    MSG message;
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
    EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

TEST(Events, WaitingLastsAsLongAsItSaysWhenNothingComes) {
    const CountingWindow counting;
    ProcessPendingEvents();
    const DWORD start = GetTickCount();
    WaitForEvents(200);
    EXPECT_GE(GetTickCount() - start, 150u);
    PostQuitMessage(0); // also while the program is about to end
    const DWORD quitting = GetTickCount();
    WaitForEvents(200);
    EXPECT_GE(GetTickCount() - quitting, 150u);
    MSG message;
    PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
}

TEST(Events, WaitingEndsWithTheFirstEvent) {
    const CountingWindow counting;
    ProcessPendingEvents();
    const DWORD start = GetTickCount();
    const Hands hands([&] {
        Sleep(100);
        PostMessageW(counting.window, kTestMessage, 0, 0);
    });
    WaitForEvents(8000);
    EXPECT_EQ(messages_seen, 1);
    EXPECT_LT(GetTickCount() - start, 4000u);
}

TEST(ProgramFolder, IsWhereTheProgramLies) {
    const std::wstring program = TestProgram();
    EXPECT_EQ(ProgramFolder(), program.substr(0, program.rfind(L'\\')));
}

TEST(ProgramFolder, IsTheCurrentOneOnlyForAWhile) {
    const TestFolder folder;
    wchar_t before[MAX_PATH], inside[MAX_PATH], after[MAX_PATH];
    SetCurrentDirectoryW(folder.path.c_str());
    GetCurrentDirectoryW(MAX_PATH, before);
    {
        const InProgramFolder in_program_folder;
        GetCurrentDirectoryW(MAX_PATH, inside);
    }
    GetCurrentDirectoryW(MAX_PATH, after);
    EXPECT_EQ(std::wstring(inside), ProgramFolder());
    EXPECT_EQ(std::wstring(before), std::wstring(after));
    SetCurrentDirectoryW(L"C:\\");
}

TEST(SystemLibrary, IsFoundInTheSystemsFolderOnly) {
    EXPECT_TRUE(SystemLibrary(L"winmm.dll"));
    const TestFolder folder;
    const std::wstring planted = folder / L"planted.dll";
    wchar_t system[MAX_PATH];
    GetSystemDirectoryW(system, MAX_PATH);
    ASSERT_TRUE(CopyFileW((std::wstring(system) + L"\\winmm.dll").c_str(), planted.c_str(), TRUE));
    SetCurrentDirectoryW(folder.path.c_str());
    EXPECT_FALSE(SystemLibrary(L"planted.dll"));
    SetCurrentDirectoryW(L"C:\\");
    EXPECT_FALSE(LibraryFunction<void (*)()>(nullptr, "any"));
    EXPECT_FALSE(LibraryFunction<void (*)()>(SystemLibrary(L"winmm.dll"), "noSuchFunction"));
}

TEST(Process, TheSystemsErrorBoxesAreOffAndWhatWasOffStaysOff) {
    const UINT before = SetErrorMode(SEM_NOGPFAULTERRORBOX);
    TurnSystemErrorBoxesOff();
    EXPECT_EQ(SetErrorMode(before),
              static_cast<UINT>(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX | SEM_NOGPFAULTERRORBOX));
}

TEST(Process, TheThreadIsAnApartmentOfItsOwnForAWhile) {
    HRESULT inside = S_OK, after = E_FAIL;
    // On a thread that nothing has made an apartment yet.
    Hands([&] {
        const HMODULE library = SystemLibrary(L"ole32.dll");
        const auto enter = LibraryFunction<HRESULT(WINAPI*)(void*, DWORD)>(library, "CoInitializeEx");
        const auto leave = LibraryFunction<void(WINAPI*)()>(library, "CoUninitialize");
        {
            const Apartment apartment;
            EXPECT_TRUE(apartment.entered);
            inside = enter(nullptr, COINIT_MULTITHREADED);
        }
        after = enter(nullptr, COINIT_MULTITHREADED);
        leave();
    });
    EXPECT_EQ(inside, RPC_E_CHANGED_MODE);
    EXPECT_EQ(after, S_OK);
}

TEST(Help, AMissingFileOrOneOfAnotherKindOpensNothing) {
    const TestFolder folder;
    EXPECT_FALSE(OpenHelpFile(folder / L"Veloxa.hlp", 261, L""));
    WriteBytes(folder / L"Veloxa.hlp", "This is no help file.");
    EXPECT_FALSE(OpenHelpFile(folder / L"Veloxa.hlp", 261, L""));
    WriteBytes(folder / L"Veloxa.hlp", "?_\x03"); // the mark, cut
    EXPECT_FALSE(OpenHelpFile(folder / L"Veloxa.hlp", 261, L""));
}

TEST(Help, WithoutAGuideBesideTheProgramNoneIsOpened) {
    EXPECT_FALSE(OpenHelpGuide());
}
