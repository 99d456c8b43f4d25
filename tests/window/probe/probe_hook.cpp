// The part of the probe that works inside the watched program: a hook on its window messages answers requests
// that can not be answered from outside, such as the texts and states of menu items.
#include "probe_faults.h"
#include "probe_shared.h"

#include <commctrl.h>
#include <imm.h>
#include <oleacc.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using namespace probe;

// --- menu

std::string MenuItems(HMENU menu) {
    std::string result = "[";
    const int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i) {
        wchar_t text[200] = L"";
        MENUITEMINFOW info = {};
        info.cbSize = sizeof info;
        info.fMask = MIIM_STRING | MIIM_STATE | MIIM_FTYPE | MIIM_ID | MIIM_SUBMENU;
        info.dwTypeData = text;
        info.cch = 200;
        GetMenuItemInfoW(menu, static_cast<UINT>(i), TRUE, &info);
        const bool separator = (info.fType & MFT_SEPARATOR) != 0;
        result += i == 0 ? "" : ",";
        result += "{\"text\":" + Quoted(separator ? L"-" : text);
        result += ",\"id\":" + std::to_string(info.wID);
        result += ",\"separator\":" + Bool(separator);
        result += ",\"enabled\":" + Bool((info.fState & (MFS_DISABLED | MFS_GRAYED)) == 0);
        result += ",\"checked\":" + Bool((info.fState & MFS_CHECKED) != 0);
        if (info.hSubMenu != nullptr) {
            result += ",\"items\":" + MenuItems(info.hSubMenu);
        }
        result += "}";
    }
    return result + "]";
}

/// The whole menu bar as the user would see it: each popup gets the message that its opening would bring.
std::string MenuOf(HWND window) {
    const HMENU bar = GetMenu(window);
    if (bar == nullptr) {
        return "[]";
    }
    for (int i = 0; i < GetMenuItemCount(bar); ++i) {
        if (const HMENU popup = GetSubMenu(bar, i)) {
            SendMessageW(window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(popup), MAKELPARAM(i, FALSE));
        }
    }
    return MenuItems(bar);
}

// --- toolbar

std::wstring ButtonText(HWND toolbar, int command) {
    wchar_t text[200] = L"";
    const LRESULT length = SendMessageW(toolbar, TB_GETBUTTONTEXTW, static_cast<WPARAM>(command), 0);
    if (length > 0 && length < 200) {
        SendMessageW(toolbar, TB_GETBUTTONTEXTW, static_cast<WPARAM>(command),
                     reinterpret_cast<LPARAM>(text));
    }
    return text;
}

std::wstring ToolTipOf(HWND toolbar, int command) {
    wchar_t text[200] = L"";
    // The toolbar asks its parent, in one of two ways, unless the tip is the button's own text.
    NMTBGETINFOTIPW info = {};
    info.hdr = {toolbar, static_cast<UINT_PTR>(GetDlgCtrlID(toolbar)), static_cast<UINT>(TBN_GETINFOTIPW)};
    info.pszText = text;
    info.cchTextMax = 200;
    info.iItem = command;
    SendMessageW(GetParent(toolbar), WM_NOTIFY, info.hdr.idFrom, reinterpret_cast<LPARAM>(&info));
    if (text[0] != 0) {
        return text;
    }
    NMTTDISPINFOW tip = {};
    tip.hdr = {reinterpret_cast<HWND>(SendMessageW(toolbar, TB_GETTOOLTIPS, 0, 0)),
               static_cast<UINT_PTR>(command), static_cast<UINT>(TTN_GETDISPINFOW)};
    tip.lpszText = tip.szText;
    SendMessageW(GetParent(toolbar), WM_NOTIFY, tip.hdr.idFrom, reinterpret_cast<LPARAM>(&tip));
    if (tip.lpszText != nullptr && !IS_INTRESOURCE(tip.lpszText) && tip.lpszText[0] != 0) {
        return tip.lpszText;
    }
    return ButtonText(toolbar, command);
}

std::string ToolbarOf(HWND toolbar) {
    std::string result = "[";
    const int count = static_cast<int>(SendMessageW(toolbar, TB_BUTTONCOUNT, 0, 0));
    for (int i = 0; i < count; ++i) {
        TBBUTTON button = {};
        SendMessageW(toolbar, TB_GETBUTTON, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&button));
        RECT rect = {};
        SendMessageW(toolbar, TB_GETITEMRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&rect));
        MapWindowPoints(toolbar, nullptr, reinterpret_cast<POINT*>(&rect), 2);
        const bool separator = (button.fsStyle & BTNS_SEP) != 0;
        const std::wstring tip = separator ? std::wstring() : ToolTipOf(toolbar, button.idCommand);
        result += i == 0 ? "" : ",";
        result += "{\"name\":" + Quoted(separator ? std::wstring() : ButtonText(toolbar, button.idCommand));
        result += ",\"tooltip\":" + Quoted(tip);
        result += ",\"id\":" + std::to_string(button.idCommand);
        result += ",\"separator\":" + Bool(separator);
        result += ",\"enabled\":" + Bool((button.fsState & TBSTATE_ENABLED) != 0);
        result += ",\"rect\":" + RectText(rect) + "}";
    }
    return result + "]";
}

// --- the process

// What Wine leaves out of GetProcessHandleCount and GetGuiResources is in the system's own tables.

template <class Function> Function FromSystem(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name)));
}

/// An entry of the table of all processes' handles.
struct SystemHandle {
    ULONG process;
    BYTE type, flags;
    USHORT handle;
    PVOID object;
    ULONG access;
};

DWORD HandlesOfProcess() {
    using Query = LONG(WINAPI*)(ULONG, PVOID, ULONG, PULONG);
    constexpr ULONG all_handles = 16;
    const auto query = FromSystem<Query>("NtQuerySystemInformation");
    std::vector<SystemHandle> table(20000);
    ULONG size = 0;
    if (query(all_handles, table.data(), static_cast<ULONG>(table.size() * sizeof table[0]), &size) < 0) {
        return 0;
    }
    ULONG count = 0;
    CopyMemory(&count, table.data(), sizeof count);
    const auto* const bytes = reinterpret_cast<const BYTE*>(table.data()) + sizeof count;
    DWORD found = 0;
    for (ULONG i = 0; i < count; ++i) {
        SystemHandle entry = {};
        CopyMemory(&entry, bytes + i * sizeof entry, sizeof entry);
        found += entry.process == GetCurrentProcessId() ? 1 : 0;
    }
    return found;
}

/// An entry of the process's table of GDI handles.
struct GdiHandle {
    UINT64 object;
    ULONG owner;
    USHORT unique;
    BYTE type, flags;
    UINT64 user_pointer;
};

int GdiObjectsOfProcess() {
    using Block = const BYTE*(WINAPI*)();
    constexpr int gdi_table = 0x94, entries = 0x4000;
    const BYTE* const block = FromSystem<Block>("RtlGetCurrentPeb")();
    const auto* const table = *reinterpret_cast<const GdiHandle* const*>(block + gdi_table);
    return table == nullptr
               ? 0
               : static_cast<int>(std::count_if(table, table + entries,
                                                [](const GdiHandle& entry) { return entry.type != 0; }));
}

std::string ProcessOf() {
    const UINT mode = SetErrorMode(0);
    SetErrorMode(mode);
    const HRESULT entered = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (SUCCEEDED(entered)) {
        CoUninitialize();
    }
    return "{\"error_mode\":" + std::to_string(mode) +
           ",\"apartment\":" + Bool(entered == RPC_E_CHANGED_MODE) +
           ",\"handles\":" + std::to_string(HandlesOfProcess()) +
           ",\"gdi\":" + std::to_string(GdiObjectsOfProcess()) + "}";
}

// --- what a screen reader is told

std::wstring TakeText(BSTR text) {
    std::wstring result = text == nullptr ? std::wstring() : std::wstring(text, SysStringLen(text));
    SysFreeString(text);
    return result;
}

std::string AccessibleItem(IAccessible* object, long child) {
    VARIANT which = {};
    which.vt = VT_I4;
    which.lVal = child;
    BSTR name = nullptr;
    BSTR value = nullptr;
    BSTR action = nullptr;
    VARIANT role = {};
    VARIANT state = {};
    RECT rect = {};
    object->get_accName(which, &name);
    object->get_accValue(which, &value);
    object->get_accDefaultAction(which, &action);
    object->get_accRole(which, &role);
    object->get_accState(which, &state);
    long left = 0;
    long top = 0;
    long width = 0;
    long height = 0;
    if (SUCCEEDED(object->accLocation(&left, &top, &width, &height, which))) {
        rect = {left, top, left + width, top + height};
    }
    std::string result = "{\"name\":" + Quoted(TakeText(name)) + ",\"value\":" + Quoted(TakeText(value));
    result += ",\"action\":" + Quoted(TakeText(action));
    result += ",\"role\":" + std::to_string(role.vt == VT_I4 ? role.lVal : -1);
    result += ",\"state\":" + std::to_string(state.vt == VT_I4 ? state.lVal : 0);
    result += ",\"rect\":" + RectText(rect);
    return result;
}

std::string AccessibleOf(HWND window) {
    IAccessible* object = nullptr;
    const HRESULT result = AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT),
                                                      IID_IAccessible, reinterpret_cast<void**>(&object));
    if (FAILED(result) || object == nullptr) {
        return "{\"error\":\"no accessible object\"}";
    }
    long count = 0;
    object->get_accChildCount(&count);
    std::string text = AccessibleItem(object, CHILDID_SELF) +
                       ",\"scrolled\":" + std::to_string(GetScrollPos(window, SB_HORZ)) + ",\"children\":[";
    for (long i = 1; i <= count; ++i) {
        text += (i == 1 ? "" : ",") + AccessibleItem(object, i) + "}";
    }
    object->Release();
    return text + "]}";
}

/// Presses a child of a window's accessible object or gives it the keyboard, and gives the object's answer.
std::string DoToItem(HWND window, Request request, long child) {
    IAccessible* object = nullptr;
    HRESULT result = AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible,
                                                reinterpret_cast<void**>(&object));
    if (FAILED(result) || object == nullptr) {
        return "{\"error\":\"no accessible object\"}";
    }
    VARIANT which = {};
    which.vt = VT_I4;
    which.lVal = child;
    result = request == kPressItem ? object->accDoDefaultAction(which)
                                   : object->accSelect(SELFLAG_TAKEFOCUS, which);
    object->Release();
    return std::to_string(result);
}

// --- input method and fonts

std::string InputMethodOf(HWND window) {
    const HIMC context = ImmGetContext(window);
    if (context != nullptr) {
        ImmReleaseContext(window, context);
    }
    return Bool(context != nullptr);
}

/// Width and height of a control's text in the font that it has.
std::string TextSizeOf(HWND window) {
    wchar_t text[200] = L"";
    const int length = GetWindowTextW(window, text, 200);
    const HDC dc = GetDC(window);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)));
    SIZE size = {};
    GetTextExtentPoint32W(dc, text, length, &size);
    SelectObject(dc, old);
    ReleaseDC(window, dc);
    return "[" + std::to_string(size.cx) + "," + std::to_string(size.cy) + "]";
}

/// Sets the height of the system's message font, in pixels, and tells the window that settings changed.
std::string SetMessageFont(HWND window, LONG height) {
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0);
    metrics.lfMessageFont.lfHeight = -height;
    const BOOL set = SystemParametersInfoW(SPI_SETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0);
    SendMessageW(window, WM_SETTINGCHANGE, SPI_SETNONCLIENTMETRICS,
                 reinterpret_cast<LPARAM>(L"WindowMetrics"));
    return Bool(set != FALSE);
}

// --- combo box

std::string ComboOf(HWND combo) {
    const LRESULT count = SendMessageW(combo, CB_GETCOUNT, 0, 0);
    std::string items = "[";
    for (LRESULT i = 0; i < count; ++i) {
        wchar_t text[200] = L"";
        if (SendMessageW(combo, CB_GETLBTEXTLEN, static_cast<WPARAM>(i), 0) < 200) {
            SendMessageW(combo, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
        }
        items += (i == 0 ? "" : ",") + Quoted(text);
    }
    wchar_t text[200] = L"";
    SendMessageW(combo, WM_GETTEXT, 200, reinterpret_cast<LPARAM>(text));
    DWORD from = 0;
    DWORD to = 0;
    SendMessageW(combo, CB_GETEDITSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    return "{\"text\":" + Quoted(text) + ",\"marked\":" + std::to_string(to - from) +
           ",\"selected\":" + std::to_string(SendMessageW(combo, CB_GETCURSEL, 0, 0)) +
           ",\"items\":" + items + "]}";
}

std::string FailureText(const probe::Failure& failure) {
    return "[" + std::to_string(failure.calls) + ",\"" + failure.name + "\"]";
}

void Answer(const std::string& text) {
    const HANDLE mapping = OpenFileMappingW(FILE_MAP_WRITE, FALSE, kAnswerName);
    if (mapping == nullptr) {
        return;
    }
    if (void* const view = MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0)) {
        const DWORD length = text.size() + 4 <= kAnswerSize ? static_cast<DWORD>(text.size()) : 0;
        CopyMemory(static_cast<char*>(view) + 4, text.data(), length);
        *static_cast<DWORD*>(view) = length;
        UnmapViewOfFile(view);
    }
    CloseHandle(mapping);
}

} // namespace

extern "C" __declspec(dllexport) LRESULT CALLBACK ProbeHook(int code, WPARAM wparam, LPARAM lparam) {
    if (code >= 0) {
        const auto* const message = reinterpret_cast<const CWPSTRUCT*>(lparam);
        if (message->message == RegisterWindowMessageW(probe::kMessageName)) {
            const HWND window = message->hwnd;
            const auto number = static_cast<long>(message->lParam);
            switch (message->wParam) {
            case kMenu: Answer(MenuOf(window)); break;
            case kToolbar: Answer(ToolbarOf(window)); break;
            case kAccessible: Answer(AccessibleOf(window)); break;
            case kCombo: Answer(ComboOf(window)); break;
            case kPressItem:
            case kFocusItem: Answer(DoToItem(window, static_cast<Request>(message->wParam), number)); break;
            case kProcess: Answer(ProcessOf()); break;
            case kPending: Answer(Bool(HIWORD(GetQueueStatus(static_cast<UINT>(number))) != 0)); break;
            case kInputMethod: Answer(InputMethodOf(window)); break;
            case kTextSize: Answer(TextSizeOf(window)); break;
            case kMessageFont: Answer(SetMessageFont(window, number)); break;
            case kFailCall: Answer(FailureText(probe::OrderFailure(number, false))); break;
            case kFailCallsFrom: Answer(FailureText(probe::OrderFailure(number, true))); break;
            default: break;
            }
        }
    }
    return CallNextHookEx(nullptr, code, wparam, lparam);
}
