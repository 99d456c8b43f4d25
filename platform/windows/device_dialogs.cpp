#include "platform/windows/device_dialogs.h"

#include "link/paths.h"
#include "platform/text.h"
#include "platform/windows/dialog_template.h"
#include "platform/windows/window_place.h"
#include "score/message_services.h"

#include <algorithm>
#include <array>

namespace tonex {

namespace {

enum ControlId : WORD { kListLabel = 1001, kList = 1002, kNameLabel = 1003, kName = 1004 };

enum class DialogKind { Open, Save };

// What a dialog is shown with and ends with.
struct DeviceDialog {
    DialogKind kind;
    const FolderDevice* device;
    std::wstring folder;    ///< device path
    std::wstring extension; ///< without its dot
    std::wstring name;      ///< in: proposed; out: chosen
    std::int32_t size;      ///< characters that the caller's buffer takes
    bool accepted = false;  ///< the choice is made; the dialog only waits for its end
};

// Dialog units. The list stands between the same margins in both dialogs.
constexpr short kMargin = 7;
constexpr short kDialogWidth = 210;
constexpr short kListTop = 18;
constexpr short kListHeight = 100;
constexpr short kRowHeight = 14;
constexpr short kLabelWidth = 40;
constexpr short kButtonWidth = 50;

// Under X the window manager hands the keyboard from a box that ends to the dialog below it. When that has
// ended too by then, nobody gets it, and the editor's window is deaf until it is clicked. So a dialog that
// has asked stays for a moment.
constexpr UINT_PTR kEndTimer = 1;
constexpr UINT kEndDelay = 100; // milliseconds

constexpr std::size_t kNameBytes = 8; // of the organiser's file names, without the extension

constexpr const wchar_t* kTitles[] = {L"Open on Veloxa", L"Save to Veloxa as"};
constexpr const wchar_t* kAccept[] = {L"&Open", L"&Save"};

// An ampersand in a label marks a key; two stand for one.
std::wstring LabelText(std::wstring_view text) {
    std::wstring label;
    for (const wchar_t letter : text)
        label.append(letter == L'&' ? 2 : 1, letter);
    return label;
}

// The font that the user has chosen for messages; the system scales the dialog by it.
DialogFont MessageFont() {
    DialogFont font;
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    if (!SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0)) return font;
    const LOGFONTW& message = metrics.lfMessageFont;
    int dpi = 96;
    if (const HDC screen = GetDC(nullptr)) {
        dpi = GetDeviceCaps(screen, LOGPIXELSY);
        ReleaseDC(nullptr, screen);
    }
    const int height = message.lfHeight < 0 ? -message.lfHeight : message.lfHeight;
    font.points = static_cast<WORD>(std::max(MulDiv(height, 72, dpi), 6));
    font.weight = static_cast<WORD>(message.lfWeight);
    font.italic = message.lfItalic;
    font.charset = message.lfCharSet;
    font.face = message.lfFaceName;
    return font;
}

std::wstring ListLabel(const std::wstring& folder, bool any_files) {
    const std::wstring shown = LabelText(folder);
    return any_files ? L"&Melodies in " + shown + L":" : L"No melodies in " + shown;
}

constexpr short kInnerWidth = kDialogWidth - 2 * kMargin;
constexpr short kNameTop = kListTop + kListHeight + kMargin;

// A label right before a control is the control's name for screen readers and its key.

void AddList(DialogTemplate& dialog, const std::wstring& label) {
    AddControl(dialog, {.kind = ControlClass::Static,
                        .id = kListLabel,
                        .style = SS_LEFTNOWORDWRAP | WS_GROUP,
                        .area = {kMargin, kMargin, kInnerWidth, 8},
                        .text = label});
    AddControl(dialog, {.kind = ControlClass::ListBox,
                        .id = kList,
                        .style = WS_TABSTOP | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT,
                        .area = {kMargin, kListTop, kInnerWidth, kListHeight},
                        .text = {}});
}

void AddName(DialogTemplate& dialog) {
    AddControl(dialog, {.kind = ControlClass::Static,
                        .id = kNameLabel,
                        .style = SS_LEFT | SS_CENTERIMAGE,
                        .area = {kMargin, kNameTop, kLabelWidth, kRowHeight},
                        .text = L"File &name:"});
    AddControl(dialog, {.kind = ControlClass::Edit,
                        .id = kName,
                        .style = WS_TABSTOP | ES_AUTOHSCROLL,
                        .area = {kMargin + kLabelWidth, kNameTop, kInnerWidth - kLabelWidth, kRowHeight},
                        .text = {}});
}

void AddButtons(DialogTemplate& dialog, short top, const wchar_t* accept) {
    constexpr short cancel_left = kDialogWidth - kMargin - kButtonWidth;
    AddControl(dialog, {.kind = ControlClass::Button,
                        .id = IDOK,
                        .style = WS_TABSTOP | WS_GROUP | BS_DEFPUSHBUTTON,
                        .area = {cancel_left - 4 - kButtonWidth, top, kButtonWidth, kRowHeight},
                        .text = accept});
    AddControl(dialog, {.kind = ControlClass::Button,
                        .id = IDCANCEL,
                        .style = WS_TABSTOP,
                        .area = {cancel_left, top, kButtonWidth, kRowHeight},
                        .text = L"Cancel"});
}

DialogTemplate TemplateOf(const DeviceDialog& shown, bool any_files) {
    const bool saving = shown.kind == DialogKind::Save;
    const short buttons_top = saving ? kNameTop + kRowHeight + kMargin : kNameTop;
    const short height = static_cast<short>(buttons_top + kRowHeight + kMargin);
    DialogTemplate dialog = MakeDialog(kTitles[saving], kDialogWidth, height, MessageFont());
    AddList(dialog, ListLabel(shown.folder, any_files));
    if (saving) AddName(dialog);
    AddButtons(dialog, buttons_top, kAccept[saving]);
    return dialog;
}

// In the middle of the owner, or of the screen's free area without one, and inside that area.
void PlaceDialog(HWND dialog) {
    const HWND owner = GetWindow(dialog, GW_OWNER);
    const bool owner_shown = owner && IsWindowVisible(owner) && !IsIconic(owner);
    const RECT around = owner_shown ? AreaOf(owner) : FreeScreenAround(owner ? owner : dialog);
    MoveTo(dialog, OntoScreen(InTheMiddle(dialog, around)));
}

std::wstring TextOfControl(HWND dialog, int id) {
    const HWND control = GetDlgItem(dialog, id);
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
    text.resize(
        static_cast<std::size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
    return text;
}

std::wstring SelectedName(HWND dialog) {
    const LRESULT row = SendDlgItemMessageW(dialog, kList, LB_GETCURSEL, 0, 0);
    if (row == LB_ERR) return {};
    const LRESULT length = SendDlgItemMessageW(dialog, kList, LB_GETTEXTLEN, static_cast<WPARAM>(row), 0);
    std::wstring name(static_cast<std::size_t>(std::max<LRESULT>(length, 0)) + 1, L'\0');
    SendDlgItemMessageW(dialog, kList, LB_GETTEXT, static_cast<WPARAM>(row),
                        reinterpret_cast<LPARAM>(name.data()));
    name.pop_back();
    return name;
}

void RefreshAccept(HWND dialog, const DeviceDialog& shown) {
    const bool ready = shown.kind == DialogKind::Open
                           ? SendDlgItemMessageW(dialog, kList, LB_GETCURSEL, 0, 0) != LB_ERR
                           : GetWindowTextLengthW(GetDlgItem(dialog, kName)) > 0;
    EnableWindow(GetDlgItem(dialog, IDOK), ready);
}

// Fills the controls; gives the one that gets the keyboard.
HWND SetUpDialog(HWND dialog, const DeviceDialog& shown) {
    const HWND list = GetDlgItem(dialog, kList);
    int proposed = -1;
    for (const std::wstring& name : DeviceFiles(*shown.device, shown.folder, shown.extension)) {
        const LRESULT row = SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
        if (UpperCase(name) == UpperCase(CompletedName(shown.name, shown.extension)))
            proposed = static_cast<int>(row);
    }
    PlaceDialog(dialog);
    if (shown.kind == DialogKind::Open) {
        SendMessageW(list, LB_SETCURSEL, 0, 0);
        RefreshAccept(dialog, shown);
        return list;
    }
    const HWND name = GetDlgItem(dialog, kName);
    SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(proposed), 0);
    SendMessageW(name, EM_LIMITTEXT, static_cast<WPARAM>(std::max(shown.size - 1, 1)), 0);
    SetWindowTextW(name, shown.name.c_str());
    SendMessageW(name, EM_SETSEL, 0, -1);
    RefreshAccept(dialog, shown);
    return name;
}

void Complain(HWND dialog, const wchar_t* text) {
    MessageBoxW(dialog, text, kTitles[1], MB_OK | MB_ICONEXCLAMATION);
    const HWND name = GetDlgItem(dialog, kName);
    SetFocus(name);
    SendMessageW(name, EM_SETSEL, 0, -1);
}

// Whether the typed name is accepted; it is then the dialog's choice.
bool AcceptTypedName(HWND dialog, DeviceDialog& shown) {
    const std::wstring name = CompletedName(TextOfControl(dialog, kName), shown.extension);
    switch (JudgeName(shown.folder, name, shown.size)) {
    case NameVerdict::Good: break;
    case NameVerdict::Empty: Complain(dialog, L"Type a name for the melody."); return false;
    case NameVerdict::NotAName:
        Complain(dialog, L"This can not be the name of a melody. A name has none of the characters\r\n"
                         L"\\ / : * ? \" < > |");
        return false;
    case NameVerdict::MoreThanEight: Complain(dialog, kNameTooLong); return false;
    case NameVerdict::TooLong: Complain(dialog, L"This name is too long."); return false;
    }
    if (DeviceFileExists(*shown.device, shown.folder + L"\\" + name)) {
        const std::wstring question = name + L" already exists.\r\nDo you want to replace it?";
        if (MessageBoxW(dialog, question.c_str(), kTitles[1],
                        MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) != IDYES) {
            SetFocus(GetDlgItem(dialog, kName));
            return false;
        }
        shown.accepted = SetTimer(dialog, kEndTimer, kEndDelay, nullptr) != 0;
    }
    shown.name = name;
    return true;
}

void Accept(HWND dialog, DeviceDialog& shown) {
    if (shown.kind == DialogKind::Save) {
        if (AcceptTypedName(dialog, shown) && !shown.accepted) EndDialog(dialog, IDOK);
        return;
    }
    const std::wstring name = SelectedName(dialog);
    if (name.empty()) return;
    shown.name = name;
    EndDialog(dialog, IDOK);
}

void OnListCommand(HWND dialog, DeviceDialog& shown, WORD notice) {
    if (notice == LBN_SELCHANGE && shown.kind == DialogKind::Save)
        SetWindowTextW(GetDlgItem(dialog, kName), SelectedName(dialog).c_str());
    if (notice == LBN_SELCHANGE) RefreshAccept(dialog, shown);
    if (notice == LBN_DBLCLK) Accept(dialog, shown);
}

INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wide, LPARAM data) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, data);
        SetFocus(SetUpDialog(dialog, *reinterpret_cast<DeviceDialog*>(data)));
        return FALSE; // the keyboard is where it belongs already
    }
    auto* const shown = reinterpret_cast<DeviceDialog*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (message == WM_TIMER && wide == kEndTimer) return EndDialog(dialog, IDOK);
    if (message != WM_COMMAND || !shown || shown->accepted) return FALSE;
    switch (LOWORD(wide)) {
    case IDOK: Accept(dialog, *shown); return TRUE;
    case IDCANCEL: EndDialog(dialog, IDCANCEL); return TRUE;
    case kList: OnListCommand(dialog, *shown, HIWORD(wide)); return TRUE;
    case kName: RefreshAccept(dialog, *shown); return TRUE;
    default: return FALSE;
    }
}

// Shows a dialog and writes the chosen device path into the caller's buffer.
std::int32_t RunDeviceDialog(HWND owner, DeviceDialog& shown, char* device_path) {
    if (!device_path || shown.size <= 0) return 0;
    const bool any_files = !DeviceFiles(*shown.device, shown.folder, shown.extension).empty();
    const INT_PTR result =
        RunDialog(TemplateOf(shown, any_files), owner, DialogProcedure, reinterpret_cast<LPARAM>(&shown));
    if (result != IDOK) return 0;
    return WriteAnsi(device_path, shown.size, WithoutTrailingBackslash(shown.folder) + L"\\" + shown.name) >
           0;
}

std::wstring TextOf(const char* text) {
    return text ? FromAnsi(text) : std::wstring();
}

bool IsDeviceName(std::wstring_view base) { // names that the system keeps for devices, whatever the extension
    static constexpr std::array<std::wstring_view, 4> kPlain = {L"CON", L"PRN", L"AUX", L"NUL"};
    const std::wstring upper = UpperCase(base);
    if (std::find(kPlain.begin(), kPlain.end(), upper) != kPlain.end()) return true;
    return upper.size() == 4 && (upper.starts_with(L"COM") || upper.starts_with(L"LPT")) &&
           upper[3] >= L'1' && upper[3] <= L'9';
}

} // namespace

std::wstring CompletedName(std::wstring_view typed, std::wstring_view extension) {
    while (typed.ends_with(L' '))
        typed.remove_suffix(1);
    while (typed.starts_with(L' '))
        typed.remove_prefix(1);
    if (typed.empty()) return {};
    const std::wstring ending = L"." + std::wstring(extension);
    const bool complete = typed.size() > ending.size() &&
                          UpperCase(typed.substr(typed.size() - ending.size())) == UpperCase(ending);
    return std::wstring(typed) + (complete ? L"" : ending);
}

NameVerdict JudgeName(std::wstring_view device_folder, std::wstring_view name, std::int32_t size) {
    if (name.empty()) return NameVerdict::Empty;
    if (name.find_first_of(L"\\/:*?\"<>|") != std::wstring_view::npos) return NameVerdict::NotAName;
    if (std::any_of(name.begin(), name.end(), [](wchar_t letter) { return letter < L' '; }))
        return NameVerdict::NotAName;
    if (name.front() == L'.' || IsDeviceName(name.substr(0, name.find(L'.')))) return NameVerdict::NotAName;
    if (!FitsAnsi(name)) return NameVerdict::NotAName;
    if (ToAnsi(name.substr(0, name.rfind(L'.'))).size() > kNameBytes) return NameVerdict::MoreThanEight;
    const std::string path = ToAnsi(device_folder) + "\\" + ToAnsi(name);
    return path.size() < static_cast<std::size_t>(std::max(size, 0)) ? NameVerdict::Good
                                                                     : NameVerdict::TooLong;
}

std::int32_t FolderOpenFileDialog(HWND owner, const FolderDevice& device, const char* start,
                                  const char* extension, char* device_path, std::int32_t size) {
    DeviceDialog shown = {DialogKind::Open,  &device, WithoutTrailingBackslash(TextOf(start)),
                          TextOf(extension), L"",     size};
    return RunDeviceDialog(owner, shown, device_path);
}

std::int32_t FolderSaveFileDialog(HWND owner, const FolderDevice& device, const char* start,
                                  const char* extension, char* device_path, std::int32_t size) {
    const std::wstring path = TextOf(start);
    DeviceDialog shown = {
        DialogKind::Save,     &device, WithoutTrailingBackslash(FolderOfPath(path)), TextOf(extension),
        FileNameOfPath(path), size};
    return RunDeviceDialog(owner, shown, device_path);
}

void FolderSetupDisconnection(HWND owner, const FolderDevice& device) {
    const std::wstring text = L"The melodies of the organiser are kept in the folder\r\n" + device.root +
                              L"\r\nThere is no connection to set up.";
    MessageBoxW(owner, text.c_str(), L"Disconnection Setup", MB_OK | MB_ICONINFORMATION);
}

void MakeDeviceFolderOf(const FolderDevice& device, const char* device_path) {
    const std::wstring path = CachePathOf(device, TextOf(device_path));
    std::vector<std::wstring> made;
    if (!path.empty()) MakeFolders(WithoutTrailingBackslash(FolderOfPath(path)), made);
}

bool MakeFolders(const std::wstring& folder, std::vector<std::wstring>& made) {
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES) return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    const std::wstring above = WithoutTrailingBackslash(FolderOfPath(folder));
    if (above.empty()) return false;
    if (!above.ends_with(L':') && !MakeFolders(above, made)) return false;
    if (!CreateDirectoryW(folder.c_str(), nullptr)) return GetLastError() == ERROR_ALREADY_EXISTS;
    made.push_back(folder);
    return true;
}

} // namespace tonex
