// Stands in for the sound player in the window tests, copied to a folder of the test under the player's name.
//
// Beside itself it keeps "heard.wav", a copy of the file it was given, and adds its command line to
// "started.txt", a line a start, in UTF-8. Then it shows no window and plays nothing: it ends when there is a
// file "end" beside it.
#include <windows.h>

#include <cwchar>
#include <string>

namespace {

constexpr DWORD kLook = 10;             // milliseconds
constexpr DWORD kPatience = 120 * 1000; // a test that died must not leave programs behind for ever
constexpr wchar_t kOptions[] = L"/play /close ";

std::wstring OwnFolder() {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring text = path;
    return text.substr(0, text.rfind(L'\\') + 1);
}

void AddLine(const std::wstring& path, const std::wstring& line) {
    char bytes[4 * MAX_PATH];
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, (line + L"\n").c_str(), -1, bytes, sizeof bytes, nullptr, nullptr);
    const HANDLE file = CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    if (size > 0) WriteFile(file, bytes, static_cast<DWORD>(size - 1), &written, nullptr);
    CloseHandle(file);
}

} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    const std::wstring folder = OwnFolder();
    const std::wstring line = GetCommandLineW();
    const std::size_t options = line.find(kOptions);
    if (options != std::wstring::npos) {
        CopyFileW(line.substr(options + std::wcslen(kOptions)).c_str(), (folder + L"heard.wav").c_str(),
                  FALSE);
    }
    AddLine(folder + L"started.txt", line);
    const DWORD began = GetTickCount();
    while (GetFileAttributesW((folder + L"end").c_str()) == INVALID_FILE_ATTRIBUTES) {
        if (GetTickCount() - began > kPatience) return 1;
        Sleep(kLook);
    }
    return 0;
}
