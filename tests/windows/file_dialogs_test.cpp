// Both kinds of file dialogs, used by a second pair of hands.
#include "platform/windows/file_dialog_kinds.h"

#include "platform/file_dialogs.h"
#include "tests/windows/support.h"

#include <gtest/gtest.h>

using namespace tonex;
using namespace tonex::windows_test;

namespace {

// Numbers of the controls; that of the types is the same in both kinds.
constexpr int kFileTypes = 0x470;
constexpr int kItemFileName = 0x480;
constexpr int kCommonFileName = 0x47C;

struct Kind {
    const char* name;
    DialogAnswer (*show)(FileDialog&, DialogTask);
    int file_name; ///< number of the control
};

struct FileDialogs : testing::TestWithParam<Kind> {
    const Apartment apartment;
    const TestFolder folder;

    FileDialog OpenOnPc() const {
        return {L"Open on PC", L"Sound Files(*.snd)|*.snd", L"SND", folder.path, L""};
    }
    FileDialog SaveToPc(const std::wstring& name) const {
        return {L"Save to PC", L"Sound File(*.snd)|*.snd", L"SND", folder.path, name};
    }
    static HWND Wait(const wchar_t* title) { return WaitForDialog(title, GetParam().file_name); }
    static std::wstring NameIn(HWND box) { return ControlText(box, GetParam().file_name); }
    static void TypeName(HWND box, const std::wstring& name) {
        const auto text = reinterpret_cast<LPARAM>(name.c_str());
        SendDlgItemMessageW(box, GetParam().file_name, WM_SETTEXT, 0, text);
    }
    /// Shows the dialog, types a name and presses Enter.
    static DialogAnswer Choose(FileDialog& dialog, const std::wstring& name) {
        const Hands hands([&] {
            const HWND box = Wait(dialog.Title.c_str());
            TypeName(box, name);
            PressAway(box, IDOK);
        });
        return GetParam().show(dialog, DialogTask::Open);
    }
    static DialogAnswer Cancel(FileDialog& dialog) {
        const Hands hands([&] { PressAway(Wait(dialog.Title.c_str()), IDCANCEL); });
        return GetParam().show(dialog, DialogTask::Open);
    }
};

// Two spellings of a path as the system compares them.
bool SamePath(const std::wstring& a, const std::wstring& b) {
    return lstrcmpiW(a.c_str(), b.c_str()) == 0;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Kinds, FileDialogs,
                         testing::Values(Kind{"Item", ShowItemDialog, kItemFileName},
                                         Kind{"Common", ShowCommonDialog, kCommonFileName}),
                         [](const auto& kind) { return kind.param.name; });

// The common dialogs only: in a fresh prefix Wine's item dialog for saving may take no message at all.
struct SaveDialogs : FileDialogs {};
INSTANTIATE_TEST_SUITE_P(Kinds, SaveDialogs,
                         testing::Values(Kind{"Common", ShowCommonDialog, kCommonFileName}),
                         [](const auto& kind) { return kind.param.name; });

TEST_P(FileDialogs, GiveTheFullPathOfAFileInTheFolderOffered) {
    WriteBytes(folder / L"tune.snd", "x");
    FileDialog dialog = OpenOnPc();
    {
        const Hands hands([&] {
            const HWND box = Wait(L"Open on PC");
            EXPECT_EQ(ControlText(box, kFileTypes), L"Sound Files(*.snd)");
            EXPECT_EQ(NameIn(box), L"");
            TypeName(box, L"tune.snd");
            PressAway(box, IDOK);
        });
        ASSERT_EQ(GetParam().show(dialog, DialogTask::Open), DialogAnswer::Chosen);
    }
    EXPECT_TRUE(SamePath(dialog.FileName, folder / L"tune.snd"));
}

TEST_P(FileDialogs, StartInTheFolderOfferedAfterAnotherWasVisited) {
    const TestFolder other;
    WriteBytes(folder / L"tune.snd", "x");
    WriteBytes(other / L"else.snd", "x");
    FileDialog dialog = OpenOnPc();
    for (int i = 0; i < 2; ++i) {
        dialog.InitDir = folder.path + (i == 0 ? L"" : L"\\");
        ASSERT_EQ(Choose(dialog, other / L"else.snd"), DialogAnswer::Chosen);
        EXPECT_TRUE(SamePath(dialog.FileName, other / L"else.snd"));
        dialog.FileName.clear();
        ASSERT_EQ(Choose(dialog, L"tune.snd"), DialogAnswer::Chosen);
        EXPECT_TRUE(SamePath(dialog.FileName, folder / L"tune.snd"));
        dialog.FileName.clear();
    }
}

TEST_P(FileDialogs, CancellingLeavesTheNameUntouched) {
    FileDialog dialog = OpenOnPc();
    dialog.FileName = L"before.snd";
    EXPECT_EQ(Cancel(dialog), DialogAnswer::Cancelled);
    EXPECT_EQ(dialog.FileName, L"before.snd");
}

TEST_P(FileDialogs, OpenWithAMissingFolderAndWithANameThatIsNone) {
    FileDialog dialog = OpenOnPc();
    dialog.InitDir = folder / L"missing";
    EXPECT_EQ(Cancel(dialog), DialogAnswer::Cancelled);
    dialog.InitDir.clear();
    EXPECT_EQ(Cancel(dialog), DialogAnswer::Cancelled);
    dialog.FileName = L"a*<>|?:.snd";
    EXPECT_EQ(Cancel(dialog), DialogAnswer::Cancelled);
    EXPECT_EQ(dialog.FileName, L"a*<>|?:.snd");
}

TEST_P(SaveDialogs, OfferTheNameAndAddTheExtension) {
    FileDialog dialog = SaveToPc(L"melody");
    {
        const Hands hands([] {
            const HWND box = Wait(L"Save to PC");
            EXPECT_EQ(NameIn(box), L"melody");
            EXPECT_EQ(ControlText(box, kFileTypes), L"Sound File(*.snd)");
            PressAway(box, IDOK);
        });
        ASSERT_EQ(GetParam().show(dialog, DialogTask::Save), DialogAnswer::Chosen);
    }
    EXPECT_TRUE(SamePath(dialog.FileName, folder / L"melody.SND"));
    EXPECT_EQ(ReadBytes(dialog.FileName), "(missing)"); // choosing a name makes no file
}

TEST_P(SaveDialogs, AskBeforeAnExistingFileIsChosen) {
    WriteBytes(folder / L"melody.snd", "old");
    FileDialog dialog = SaveToPc(L"melody.snd");
    {
        const Hands hands([] {
            const HWND box = Wait(L"Save to PC");
            const auto asked = [] { return FindDialog(L"Save to PC", IDYES) != nullptr; };
            PressUntil(box, IDOK, asked);
            PressAway(FindDialog(L"Save to PC", IDNO), IDNO);
            PressUntil(box, IDOK, asked);
            PressAway(FindDialog(L"Save to PC", IDYES), IDYES);
        });
        ASSERT_EQ(GetParam().show(dialog, DialogTask::Save), DialogAnswer::Chosen);
    }
    EXPECT_TRUE(SamePath(dialog.FileName, folder / L"melody.snd"));
    EXPECT_EQ(ReadBytes(folder / L"melody.snd"), "old");
}

TEST(FileDialogChoice, LeavesTheCurrentFolderAlone) {
    const Apartment apartment;
    const TestFolder folder;
    WriteBytes(folder / L"tune.snd", "x");
    SetCurrentDirectoryW(L"C:\\windows");
    FileDialog dialog = {L"Open on PC", L"Sound Files(*.snd)|*.snd", L"SND", folder.path, L""};
    {
        const int file_name = UnderWine() ? kCommonFileName : kItemFileName;
        const Hands hands([&] {
            const HWND box = WaitForDialog(L"Open on PC", file_name);
            SendDlgItemMessageW(box, file_name, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"tune.snd"));
            PressAway(box, IDOK);
        });
        ASSERT_TRUE(ShowOpenDialog(dialog));
    }
    EXPECT_TRUE(SamePath(dialog.FileName, folder / L"tune.snd"));
    wchar_t current[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, current);
    EXPECT_TRUE(SamePath(current, L"C:\\windows"));
    SetCurrentDirectoryW(L"C:\\");
}
