// The real menu and toolbar, made from the command tables. Windows-only by nature.
#include "platform/windows/main_window.h"

#include "pictures/glyphs.h"
#include "score/rows.h"

#include <commctrl.h>

#include <algorithm>
#include <string>

namespace tonex {

namespace {

constexpr int kIconSize = 20;   ///< pixels at 100 %
constexpr int kButtonSize = 30; ///< pixels at 100 %
constexpr int kToolPadding = 7; ///< pixels that a toolbar itself keeps free around its pictures

/// The pictures fill their buttons, with the icons in their middle: a toolbar puts a smaller picture near the
/// button's upper edge.
int ToolPictureSize(const Scale& scale) {
    return std::max(Scaled(scale, kIconSize), Scaled(scale, kButtonSize) - kToolPadding);
}

std::wstring ShortcutText(const Shortcut& shortcut) {
    if (shortcut.key == 0) return {};
    if (shortcut.key == kDeleteKey) return L"\tDel";
    return std::wstring(L"\tCtrl+") + static_cast<wchar_t>(shortcut.key);
}

void AppendItem(HMENU menu, const MenuRow& row) {
    const UINT id = kFirstMenuId + static_cast<UINT>(row.item);
    if (row.caption == L"-") {
        AppendMenuW(menu, MF_SEPARATOR, id, nullptr);
        return;
    }
    const std::wstring text = std::wstring(row.caption) + ShortcutText(row.shortcut);
    AppendMenuW(menu, MF_STRING, id, text.c_str());
}

std::uint32_t GreyOf(std::uint32_t rgb, bool on_dark) {
    const unsigned light = ((rgb >> 16 & 0xFF) * 30 + (rgb >> 8 & 0xFF) * 59 + (rgb & 0xFF) * 11) / 100;
    const unsigned target = on_dark ? 90 + light * 60 / 255 : 150 + light * 70 / 255;
    return target << 16 | target << 8 | target;
}

std::vector<std::uint32_t> IconPixels(ToolIcon icon, int size, bool grey, COLORREF face) {
    const bool on_dark = GetRValue(face) <= 128;
    std::vector<ColourLayer> layers = ToolIconLayers(icon, size, on_dark);
    for (ColourLayer& layer : layers)
        if (grey) layer.rgb = GreyOf(layer.rgb, on_dark);
    return FlattenLayers(layers, size);
}

/// A bitmap as wide as all pictures of the toolbar side by side, clear; its pixels in `bits`.
HBITMAP MakePictureRow(int picture, std::uint32_t*& bits) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = picture * kToolButtons;
    info.bmiHeader.biHeight = -picture;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* made = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &made, nullptr, 0);
    bits = static_cast<std::uint32_t*>(made);
    return bitmap;
}

/// The list `imlIcons` of the toolbar's pictures, and its grey twin for buttons that can not act. Image lists
/// want straight alpha: they take a picture that was multiplied by it for a darker one.
HIMAGELIST MakeImlIcons(const MainWindow& main, bool grey) {
    const int size = Scaled(main.theme.scale, kIconSize), picture = ToolPictureSize(main.theme.scale);
    HIMAGELIST list = ImageList_Create(picture, picture, ILC_COLOR32, kToolButtons, 0);
    std::uint32_t* bits = nullptr;
    HBITMAP bitmap = MakePictureRow(picture, bits);
    if (!bitmap) return list;
    const int edge = (picture - size) / 2;
    for (int i = 0; i < kToolButtons; ++i) {
        const auto pixels = IconPixels(static_cast<ToolIcon>(i), size, grey, main.theme.colours.face);
        for (int row = 0; row < size; ++row)
            std::copy_n(&At(pixels, row * size), size,
                        bits + ((row + edge) * kToolButtons + i) * picture + edge);
    }
    ImageList_Add(list, bitmap, nullptr);
    DeleteObject(bitmap);
    return list;
}

/// Groups are set apart by a thin line in front of these buttons.
constexpr int kGroups = 4;
constexpr bool BeginsGroup(int button) {
    return button == 3 || button == 5 || button == 10;
}

/// All at once: the toolbar lays itself out anew each time that it gets some.
void AddButtons(HWND toolbar) {
    TBBUTTON buttons[kToolButtons + kGroups - 1];
    int count = 0;
    for (int i = 0; i < kToolButtons; ++i) {
        TBBUTTON button{};
        button.fsStyle = BTNS_SEP;
        if (BeginsGroup(i)) buttons[count++] = button;
        button.iBitmap = i;
        button.idCommand = static_cast<int>(kFirstToolId) + i;
        button.fsState = TBSTATE_ENABLED;
        button.fsStyle = BTNS_BUTTON;
        // The text is never drawn (there is no room for it) but names the button for screen readers.
        button.iString = reinterpret_cast<INT_PTR>(At(ToolButtonRows(), i).tooltip.data());
        buttons[count++] = button;
    }
    SendMessageW(toolbar, TB_ADDBUTTONSW, static_cast<WPARAM>(count), reinterpret_cast<LPARAM>(buttons));
}

/// The toolbar frames the button that the keyboard is on, and keeps the frame when the keyboard has gone: two
/// places would look as if they had it. The next time it comes back to the same button.
LRESULT CALLBACK ToolbarProcedure(HWND toolbar, UINT message, WPARAM wparam, LPARAM lparam) {
    MainWindow& main = TheMainWindow();
    if (message == WM_KILLFOCUS)
        main.tool_left_behind = static_cast<int>(SendMessageW(toolbar, TB_GETHOTITEM, 0, 0));
    const LRESULT result = CallWindowProcW(main.toolbar_procedure, toolbar, message, wparam, lparam);
    if (message == WM_KILLFOCUS) SendMessageW(toolbar, TB_SETHOTITEM, static_cast<WPARAM>(-1), 0);
    if (message == WM_SETFOCUS && main.tool_left_behind >= 0)
        SendMessageW(toolbar, TB_SETHOTITEM, static_cast<WPARAM>(main.tool_left_behind), 0);
    return result;
}

} // namespace

HMENU CreateMainMenu() {
    HMENU bar = CreateMenu();
    for (const MenuTitle& title : MenuTitles()) {
        HMENU menu = CreatePopupMenu();
        for (const MenuRow& row : MenuRows())
            if (row.menu == title.menu) AppendItem(menu, row);
        AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(menu), std::wstring(title.caption).c_str());
    }
    return bar;
}

void LoadToolbarPictures(MainWindow& main) {
    const auto replace = [&](UINT message, HIMAGELIST list) {
        auto* old = reinterpret_cast<HIMAGELIST>(
            SendMessageW(main.toolbar, message, 0, reinterpret_cast<LPARAM>(list)));
        if (old) ImageList_Destroy(old);
    };
    replace(TB_SETIMAGELIST, MakeImlIcons(main, false));
    replace(TB_SETDISABLEDIMAGELIST, MakeImlIcons(main, true));
}

void SizeToolbar(MainWindow& main) {
    const int picture = ToolPictureSize(main.theme.scale);
    SendMessageW(main.toolbar, TB_SETBITMAPSIZE, 0, MAKELPARAM(picture, picture));
    LoadToolbarPictures(main);
    const int button = Scaled(main.theme.scale, kButtonSize);
    SendMessageW(main.toolbar, TB_SETBUTTONSIZE, 0, MAKELPARAM(button, button));
}

void CreateToolbar(MainWindow& main, HINSTANCE instance) {
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_BAR_CLASSES | ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&controls);
    main.toolbar =
        CreateWindowExW(0, TOOLBARCLASSNAMEW, L"Toolbar",
                        WS_CHILD | WS_VISIBLE | WS_TABSTOP | TBSTYLE_FLAT | TBSTYLE_TOOLTIPS | CCS_TOP, 0, 0,
                        0, 0, main.window, nullptr, instance, nullptr);
    main.toolbar_procedure = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(main.toolbar, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ToolbarProcedure)));
    SendMessageW(main.toolbar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    SendMessageW(main.toolbar, TB_SETMAXTEXTROWS, 0, 0); // names without room: shown as tooltips only
    SizeToolbar(main);
    AddButtons(main.toolbar);
    SendMessageW(main.toolbar, TB_AUTOSIZE, 0, 0);
}

} // namespace tonex
