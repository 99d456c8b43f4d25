// The device's dialogs, used with keyboard and mouse by a second pair of hands.
#include "platform/windows/device_dialogs.h"

#include "platform/link_library.h"
#include "tests/windows/support.h"

#include <gtest/gtest.h>

using namespace tonex;
using namespace tonex::windows_test;

namespace {

constexpr int kListLabel = 1001, kList = 1002, kName = 1004;
const std::wstring kOpen = L"Open on Veloxa", kSave = L"Save to Veloxa as";

struct Device {
    TestFolder folder;
    FolderDevice device{DeviceOfInstallation(folder.path)};
    char chosen[kLinkBufferSize] = "untouched";

    explicit Device(std::initializer_list<const wchar_t*> names) {
        std::vector<std::wstring> made;
        EXPECT_TRUE(MakeFolders(device.root + L"\\System\\sound", made));
        for (const wchar_t* name : names)
            WriteBytes(device.root + L"\\System\\sound\\" + name, "x");
    }
    std::int32_t Open(std::function<void()> work, HWND owner = nullptr) {
        const Hands hands(std::move(work));
        return FolderOpenFileDialog(owner, device, "\\System\\sound", "snd", chosen, kLinkBufferSize);
    }
    std::int32_t Save(const char* start, std::function<void()> work, std::int32_t size = kLinkBufferSize) {
        const Hands hands(std::move(work));
        return FolderSaveFileDialog(nullptr, device, start, "snd", chosen, size);
    }
};

std::vector<std::wstring> Rows(HWND dialog) {
    std::vector<std::wstring> rows;
    const LRESULT count = SendDlgItemMessageW(dialog, kList, LB_GETCOUNT, 0, 0);
    for (LRESULT row = 0; row < count; ++row) {
        wchar_t text[MAX_PATH] = L"";
        SendDlgItemMessageW(dialog, kList, LB_GETTEXT, static_cast<WPARAM>(row),
                            reinterpret_cast<LPARAM>(text));
        rows.push_back(text);
    }
    return rows;
}

void PressKey(HWND dialog, int control, WPARAM key) {
    PostMessageW(GetDlgItem(dialog, control), WM_KEYDOWN, key, 1);
}

void DoubleClickRow(HWND dialog, int row) {
    const HWND list = GetDlgItem(dialog, kList);
    RECT box = {};
    SendMessageW(list, LB_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&box));
    const LPARAM point = MAKELPARAM(box.left + 4, (box.top + box.bottom) / 2);
    PostMessageW(list, WM_LBUTTONDOWN, MK_LBUTTON, point);
    PostMessageW(list, WM_LBUTTONUP, 0, point);
    PostMessageW(list, WM_LBUTTONDBLCLK, MK_LBUTTON, point);
    PostMessageW(list, WM_LBUTTONUP, 0, point);
}

void SetName(HWND dialog, const std::wstring& name) {
    SendDlgItemMessageW(dialog, kName, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
}

} // namespace

TEST(DeviceOpenDialog, ListsTheFoldersMelodiesInOrderAndNothingElse) {
    Device device({L"b.snd", L"A.SND", L"c.wav"});
    MakeFolder(device.device.root + L"\\System\\sound\\folder.snd");
    EXPECT_EQ(device.Open([&] {
        const HWND dialog = WaitForDialog(kOpen);
        EXPECT_EQ(Rows(dialog), (std::vector<std::wstring>{L"A.SND", L"b.snd"}));
        EXPECT_EQ(ControlText(dialog, kListLabel), L"&Melodies in \\System\\sound:");
        EXPECT_EQ(SendDlgItemMessageW(dialog, kList, LB_GETCURSEL, 0, 0), 0);
        Press(dialog, IDCANCEL);
    }),
              0);
    EXPECT_STREQ(device.chosen, "untouched");
}

TEST(DeviceOpenDialog, KeysChooseAndEnterOpens) {
    Device device({L"A.SND", L"B.SND", L"C.SND"});
    EXPECT_NE(device.Open([&] {
        const HWND dialog = WaitForDialog(kOpen);
        PressKey(dialog, kList, VK_DOWN);
        PressKey(dialog, kList, VK_END);
        PressKey(dialog, kList, VK_UP);
        PressKey(dialog, kList, VK_RETURN);
    }),
              0);
    EXPECT_STREQ(device.chosen, "\\System\\sound\\B.SND");
}

TEST(DeviceOpenDialog, ADoubleClickOpens) {
    Device device({L"A.SND", L"B.SND", L"C.SND"});
    EXPECT_NE(device.Open([&] { DoubleClickRow(WaitForDialog(kOpen), 2); }), 0);
    EXPECT_STREQ(device.chosen, "\\System\\sound\\C.SND");
}

TEST(DeviceOpenDialog, EscapeAndTheCloseBoxCancel) {
    Device device({L"A.SND"});
    EXPECT_EQ(device.Open([&] { PressKey(WaitForDialog(kOpen), kList, VK_ESCAPE); }), 0);
    EXPECT_EQ(device.Open([&] { PostMessageW(WaitForDialog(kOpen), WM_CLOSE, 0, 0); }), 0);
    EXPECT_STREQ(device.chosen, "untouched");
}

TEST(DeviceOpenDialog, AnEmptyFolderSaysSoAndOpensNothing) {
    Device device({});
    EXPECT_EQ(device.Open([&] {
        const HWND dialog = WaitForDialog(kOpen);
        EXPECT_EQ(ControlText(dialog, kListLabel), L"No melodies in \\System\\sound");
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, IDOK)));
        SendMessageW(dialog, WM_COMMAND, IDOK, 0);
        EXPECT_TRUE(IsWindowVisible(dialog));
        Press(dialog, IDCANCEL);
    }),
              0);
}

TEST(DeviceOpenDialog, StandsOverItsOwnerWhichWaits) {
    Device device({L"A.SND"});
    const HWND owner = CreateWindowExW(0, L"STATIC", L"owner", WS_POPUP | WS_VISIBLE, 300, 300, 600, 400,
                                       nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(device.Open(
                  [&] {
                      const HWND dialog = WaitForDialog(kOpen);
                      EXPECT_EQ(GetWindow(dialog, GW_OWNER), owner);
                      EXPECT_FALSE(IsWindowEnabled(owner));
                      RECT box = {};
                      GetWindowRect(dialog, &box);
                      EXPECT_NEAR((box.left + box.right) / 2, 600, 40);
                      EXPECT_NEAR((box.top + box.bottom) / 2, 500, 40);
                      Press(dialog, IDCANCEL);
                  },
                  owner),
              0);
    EXPECT_TRUE(IsWindowEnabled(owner));
    DestroyWindow(owner);
}

TEST(DeviceOpenDialog, EveryControlHasANameAndNothingIsCut) {
    Device device({L"A.SND"});
    device.Open([&] {
        const HWND dialog = WaitForDialog(kOpen);
        // The control before the list in tab order is its label.
        EXPECT_EQ(GetWindow(GetDlgItem(dialog, kList), GW_HWNDPREV), GetDlgItem(dialog, kListLabel));
        RECT client = {};
        GetClientRect(dialog, &client);
        for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
            RECT box = {};
            GetWindowRect(child, &box);
            MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&box), 2);
            EXPECT_GE(box.left, 0);
            EXPECT_GE(box.top, 0);
            EXPECT_LE(box.right, client.right);
            EXPECT_LE(box.bottom, client.bottom);
        }
        Press(dialog, IDCANCEL);
    });
}

TEST(DeviceSaveDialog, OffersTheNameAndAddsTheExtension) {
    Device device({L"A.SND"});
    EXPECT_NE(device.Save("\\System\\sound\\Untitled",
                          [&] {
                              const HWND dialog = WaitForDialog(kSave);
                              EXPECT_EQ(ControlText(dialog, kName), L"Untitled");
                              EXPECT_EQ(SendDlgItemMessageW(dialog, kList, LB_GETCURSEL, 0, 0), LB_ERR);
                              EXPECT_EQ(SendDlgItemMessageW(dialog, kName, EM_GETSEL, 0, 0), MAKELONG(0, 8));
                              PressKey(dialog, kName, VK_RETURN);
                          }),
              0);
    EXPECT_STREQ(device.chosen, "\\System\\sound\\Untitled.snd");
}

TEST(DeviceSaveDialog, ARowFillsInItsNameAndADoubleClickSaves) {
    Device device({L"A.SND", L"B.SND"});
    EXPECT_NE(device.Save("\\System\\sound\\B.SND",
                          [&] {
                              const HWND dialog = WaitForDialog(kSave);
                              EXPECT_EQ(SendDlgItemMessageW(dialog, kList, LB_GETCURSEL, 0, 0), 1);
                              PressKey(dialog, kList, VK_UP);
                              for (int i = 0; i < 100 && ControlText(dialog, kName) != L"A.SND"; ++i)
                                  Sleep(10);
                              EXPECT_EQ(ControlText(dialog, kName), L"A.SND");
                              DoubleClickRow(dialog, 1);
                              Press(WaitForDialog(kSave, IDYES), IDYES);
                          }),
              0);
    EXPECT_STREQ(device.chosen, "\\System\\sound\\B.SND");
}

TEST(DeviceSaveDialog, AsksBeforeAnExistingMelodyIsChosen) {
    Device device({L"TUNE.SND"});
    EXPECT_EQ(device.Save("\\System\\sound\\tune",
                          [&] {
                              const HWND dialog = WaitForDialog(kSave, kName);
                              Press(dialog, IDOK);
                              const HWND question = WaitForDialog(kSave, IDNO);
                              EXPECT_EQ(GetWindow(question, GW_OWNER), dialog);
                              Press(question, IDNO);
                              WaitUntilGone(question);
                              EXPECT_TRUE(IsWindowVisible(dialog));
                              Press(dialog, IDCANCEL);
                          }),
              0);
    EXPECT_STREQ(device.chosen, "untouched");
}

TEST(DeviceSaveDialog, NamesThatCanNotBeAreRefusedAndAskedForAgain) {
    Device device({});
    EXPECT_NE(device.Save("\\System\\sound\\Untitled",
                          [&] {
                              const HWND dialog = WaitForDialog(kSave, kName);
                              for (const wchar_t* name : {L"a/b", L"..\\a", L"con", L"  ", L"a?"}) {
                                  SetName(dialog, name);
                                  Press(dialog, IDOK);
                                  const HWND complaint = WaitForDialog(kSave, 0xFFFF);
                                  PostMessageW(complaint, WM_CLOSE, 0, 0);
                                  WaitUntilGone(complaint);
                              }
                              SetName(dialog, L"");
                              for (int i = 0; i < 100 && IsWindowEnabled(GetDlgItem(dialog, IDOK)); ++i)
                                  Sleep(10);
                              EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, IDOK)));
                              SetName(dialog, L" good ");
                              Press(dialog, IDOK);
                          }),
              0);
    EXPECT_STREQ(device.chosen, "\\System\\sound\\good.snd");
}

TEST(DeviceSaveDialog, ANameThatTheBufferDoesNotTakeIsRefused) {
    Device device({});
    EXPECT_EQ(device.Save(
                  "\\System\\sound\\Untitled",
                  [&] {
                      const HWND dialog = WaitForDialog(kSave, kName);
                      Press(dialog, IDOK);
                      const HWND complaint = WaitForDialog(kSave, 0xFFFF);
                      EXPECT_EQ(ControlText(complaint, 0xFFFF), L"This name is too long.");
                      PostMessageW(complaint, WM_CLOSE, 0, 0);
                      WaitUntilGone(complaint);
                      Press(dialog, IDCANCEL);
                  },
                  20),
              0);
}

TEST(DeviceNames, AreCompletedWithTheExtension) {
    EXPECT_EQ(CompletedName(L"tune", L"snd"), L"tune.snd");
    EXPECT_EQ(CompletedName(L"tune.SND", L"snd"), L"tune.SND");
    EXPECT_EQ(CompletedName(L"  tune  ", L"snd"), L"tune.snd");
    EXPECT_EQ(CompletedName(L"tune.wav", L"snd"), L"tune.wav.snd");
    EXPECT_EQ(CompletedName(L".snd", L"snd"), L".snd.snd");
    EXPECT_EQ(CompletedName(L"   ", L"snd"), L"");
    EXPECT_EQ(CompletedName(L"", L"snd"), L"");
}

TEST(DeviceNames, AreJudged) {
    const auto judge = [](const std::wstring& name) {
        return JudgeName(L"\\System\\sound", name, kLinkBufferSize);
    };
    EXPECT_EQ(judge(L"tune.snd"), NameVerdict::Good);
    EXPECT_EQ(judge(L"a word.snd"), NameVerdict::Good);
    EXPECT_EQ(judge(L"com10.snd"), NameVerdict::Good);
    EXPECT_EQ(judge(L""), NameVerdict::Empty);
    for (const wchar_t* name : {L"a\\b.snd", L"a/b.snd", L"a:b.snd", L"a*.snd", L"a?.snd", L"a\".snd",
                                L"a<.snd", L"a>.snd", L"a|.snd", L"a\tb.snd", L".snd", L"CON.snd", L"nul.snd",
                                L"Com1.snd", L"lpt9.snd", L"\u4E00\U0001F3B5.snd"})
        EXPECT_EQ(judge(name), NameVerdict::NotAName) << name;
    EXPECT_EQ(judge(L"eightchr.snd"), NameVerdict::Good);
    EXPECT_EQ(judge(L"ninechars.snd"), NameVerdict::MoreThanEight);
    EXPECT_EQ(judge(L"a.b.c.d.e.snd"), NameVerdict::MoreThanEight);
    EXPECT_EQ(judge(L"a.b.c.d.snd"), NameVerdict::Good);
    const auto judge_in = [](std::size_t folder_length) {
        return JudgeName(L"\\" + std::wstring(folder_length - 1, L'f'), L"tune.snd", kLinkBufferSize);
    };
    EXPECT_EQ(judge_in(190), NameVerdict::Good); // 190 + 1 + 8 = 199 characters and a NUL
    EXPECT_EQ(judge_in(191), NameVerdict::TooLong);
}

TEST(Disconnection, TellsWhereTheMelodiesAre) {
    Device device({});
    const Hands hands([&] {
        const HWND box = WaitForDialog(L"Disconnection Setup");
        EXPECT_NE(ControlText(box, 0xFFFF).find(device.device.root), std::wstring::npos);
        Press(box, IDOK);
    });
    FolderSetupDisconnection(nullptr, device.device);
}

TEST(Folders, AreMadeWithThoseAboveThemAndToldOf) {
    const TestFolder folder;
    std::vector<std::wstring> made;
    EXPECT_TRUE(MakeFolders(folder / L"a\\b\\c", made));
    EXPECT_EQ(made, (std::vector<std::wstring>{folder / L"a", folder / L"a\\b", folder / L"a\\b\\c"}));
    EXPECT_TRUE(IsFolder(folder / L"a\\b\\c"));
    made.clear();
    EXPECT_TRUE(MakeFolders(folder / L"a\\b", made));
    EXPECT_TRUE(made.empty());
    WriteBytes(folder / L"file", "x");
    EXPECT_FALSE(MakeFolders(folder / L"file\\sub", made));
    EXPECT_FALSE(MakeFolders(folder / L"file", made));
    EXPECT_FALSE(MakeFolders(L"Q:\\a\\b", made));
    EXPECT_FALSE(MakeFolders(L"", made));
    EXPECT_TRUE(made.empty());
}
