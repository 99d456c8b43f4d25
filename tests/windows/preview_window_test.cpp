// The preview window: its texts, its buttons, and what they do to its record. What is heard is checked from
// outside, with a sound device that keeps it.
#include "platform/windows/preview_window.h"
#include "preview/synthesis.h"
#include "tests/windows/support.h"

#include <gtest/gtest.h>

using namespace tonex;
using namespace tonex::windows_test;

namespace {

/// Samples 0, 37, 74 … modulo 256.
std::wstring WriteSound(const TestFolder& folder, int seconds = 1) {
    const auto samples = static_cast<std::uint32_t>(seconds * kSampleRate);
    const auto header = WavHeader(samples);
    std::string bytes(header.begin(), header.end());
    for (std::uint32_t i = 0; i < samples; ++i)
        bytes += static_cast<char>(i * 37 % 256);
    const std::wstring path = folder / L"a sound.wav";
    WriteBytes(path, bytes);
    return path;
}

/// Shows the window and lets a second pair of hands use it.
PreviewWindow Show(const std::wstring& path, const std::function<void(HWND)>& use) {
    PreviewWindow preview;
    const Hands hands([&] { use(WaitForDialog(kPreviewWindowCaption, kPreviewEndButton)); });
    EXPECT_TRUE(ShowPreviewWindow(nullptr, path, preview));
    return preview;
}

} // namespace

TEST(PreviewWindow, TextsOfTheWindow) {
    const TestFolder folder;
    Show(WriteSound(folder), [](HWND dialog) {
        EXPECT_EQ(TextOf(dialog), L"Veloxa Sound Editor Preview Sound");
        EXPECT_EQ(ControlText(dialog, kPreviewPlayButton), L"Play");
        EXPECT_EQ(ControlText(dialog, kPreviewStopButton), L"Stop");
        EXPECT_EQ(ControlText(dialog, kPreviewEndButton), L"End of preview");
        Press(dialog, kPreviewEndButton);
    });
}

TEST(PreviewWindow, CaptionsFitTheirButtons) {
    const TestFolder folder;
    Show(WriteSound(folder), [](HWND dialog) {
        for (const int id : {kPreviewPlayButton, kPreviewStopButton, kPreviewEndButton}) {
            HWND button = GetDlgItem(dialog, id);
            RECT area;
            GetClientRect(button, &area);
            HDC context = GetDC(button);
            HGDIOBJ before =
                SelectObject(context, reinterpret_cast<HGDIOBJ>(SendMessageW(button, WM_GETFONT, 0, 0)));
            const std::wstring text = ControlText(dialog, id);
            SIZE size;
            GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &size);
            SelectObject(context, before);
            ReleaseDC(button, context);
            EXPECT_LT(size.cx + 8, area.right) << id;
            EXPECT_LE(size.cy, area.bottom) << id;
        }
        Press(dialog, kPreviewEndButton);
    });
}

TEST(PreviewWindow, PlayAndStopKeepItOpenUntilTheEnd) {
    const TestFolder folder;
    const std::wstring path = WriteSound(folder);
    const PreviewWindow preview = Show(path, [](HWND dialog) {
        for (const int button :
             {kPreviewStopButton, kPreviewPlayButton, kPreviewPlayButton, kPreviewStopButton}) {
            SendMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
            EXPECT_TRUE(IsWindowVisible(dialog));
        }
        Press(dialog, kPreviewEndButton);
        WaitUntilGone(dialog);
    });
    EXPECT_EQ(preview.wav_path, path);
    EXPECT_FALSE(preview.Loaded);
}

TEST(PreviewWindow, CloseBoxEndsThePreviewToo) {
    const TestFolder folder;
    const PreviewWindow preview = Show(WriteSound(folder), [](HWND dialog) {
        PostMessageW(dialog, WM_CLOSE, 0, 0);
        WaitUntilGone(dialog);
    });
    EXPECT_FALSE(preview.Loaded);
}

TEST(PreviewWindow, MissingFileIsSilent) {
    const TestFolder folder;
    const PreviewWindow preview = Show(folder / L"none.wav", [](HWND dialog) {
        Press(dialog, kPreviewPlayButton);
        Press(dialog, kPreviewEndButton);
    });
    EXPECT_FALSE(preview.Loaded);
}

// Both are run by themselves too, with a sound device that keeps what it hears.

TEST(PreviewWindow, SoundStartsOnLoadAndAgainOnPlay) {
    const TestFolder folder;
    Show(WriteSound(folder), [](HWND dialog) {
        Sleep(2500); // to the end of the sound
        SendMessageW(dialog, WM_COMMAND, kPreviewPlayButton, 0);
        Sleep(2500);
        Press(dialog, kPreviewEndButton);
    });
}

TEST(PreviewWindow, StopCutsTheSoundShort) {
    const TestFolder folder;
    Show(WriteSound(folder, 30), [](HWND dialog) {
        Sleep(2500);
        SendMessageW(dialog, WM_COMMAND, kPreviewStopButton, 0);
        Sleep(2500);
        Press(dialog, kPreviewEndButton);
    });
}
