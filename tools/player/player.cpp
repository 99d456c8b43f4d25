// A small sound player: `sndrec32 /play /close PATH`. The editor starts it to play a melody and waits for its
// end. Only the system's own calls are used, so that the program stays small and starts at once.
//
// Exit status: 0 played to the end, 1 stopped by the user, 2 the file can not be opened or is no plain WAV
// file, 3 no sound device or a device that failed, 4 wrong usage.
#include "platform/player.h"
#include "tools/player/command_line.h"
#include "tools/player/wav_format.h"

#include "resource.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <commctrl.h>
#include <mmsystem.h>

namespace {

using namespace tonex;

constexpr int kPlayed = 0;
constexpr int kStopped = 1;
constexpr int kBadFile = 2;
constexpr int kNoDevice = 3;
constexpr int kWrongUsage = 4;

constexpr wchar_t kTitle[] = L"Sound Player";
constexpr wchar_t kUsage[] = L"sndrec32 /play [/close] FILE.wav\n\n"
                             L"Plays a WAV file.\n"
                             L"/close ends the player when the sound ends.";

constexpr int kBuffers = 4;
constexpr DWORD kBufferSize = 32768; // bytes at most
constexpr DWORD kBuffersASecond = 8; // so that 4 of them hold half a second
constexpr UINT_PTR kTickTimer = 1;
constexpr UINT kTick = 40;             // milliseconds
constexpr DWORD kTail = 120;           // milliseconds that the device may need for what it took last
constexpr DWORD kDeviceSilence = 5000; // milliseconds without progress: the device was unplugged or hangs
constexpr DWORD kFaultShown = 4000;    // milliseconds, with /close
constexpr int kPositionRange = 1000;
constexpr DWORD kLongestName = 260; // characters of what the sound is called

// What is taken is given back by the system when the program ends, a moment later.
void* Take(std::size_t bytes) {
    return HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, bytes);
}

wchar_t* CopyPath(std::wstring_view path) {
    auto* copy = static_cast<wchar_t*>(Take((path.size() + 1) * sizeof(wchar_t)));
    if (copy) CopyMemory(copy, path.data(), path.size() * sizeof(wchar_t));
    return copy;
}

enum class State { Idle, Playing, Ending };

struct Player {
    const wchar_t* path = nullptr;
    bool close_at_end = false;

    HANDLE file = INVALID_HANDLE_VALUE;
    WavFormat format;
    HWAVEOUT device = nullptr;
    WAVEHDR headers[kBuffers] = {};
    std::uint8_t* data = nullptr;   // kBuffers times kBufferSize bytes
    DWORD buffer_size = 0;          // bytes used of each buffer, whole frames
    std::uint32_t bytes_queued = 0; // of the samples
    int in_device = 0;              // buffers that the device holds
    State state = State::Idle;
    DWORD ended_at = 0; // tick count when the last buffer came back
    DWORD moved_at = 0; // tick count when the position moved last
    DWORD last_position = 0;
    int status = kStopped; // exit status if the window were closed now
};

bool ReadFromFile(void* context, std::uint64_t offset, std::uint8_t* bytes, std::uint32_t count) {
    LARGE_INTEGER place;
    place.QuadPart = static_cast<LONGLONG>(offset);
    if (!SetFilePointerEx(context, place, nullptr, FILE_BEGIN)) return false;
    DWORD taken = 0;
    return ReadFile(context, bytes, count, &taken, nullptr) && taken == count;
}

// The file stays open while it plays, but others may delete it meanwhile.
bool OpenSound(Player& player) {
    player.file =
        CreateFileW(player.path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (player.file == INVALID_HANDLE_VALUE) return false;
    LARGE_INTEGER size;
    if (!GetFileSizeEx(player.file, &size)) return false;
    const WavReader reader{player.file, ReadFromFile, static_cast<std::uint64_t>(size.QuadPart)};
    return ReadWavFormat(reader, player.format) == WavFault::None;
}

bool OpenDevice(Player& player, HWND window) {
    WAVEFORMATEX format = {};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = player.format.channels;
    format.nSamplesPerSec = player.format.rate;
    format.nAvgBytesPerSec = player.format.rate * player.format.frame;
    format.nBlockAlign = player.format.frame;
    format.wBitsPerSample = player.format.bits;
    DWORD size = format.nAvgBytesPerSec / kBuffersASecond;
    if (size > kBufferSize) size = kBufferSize;
    player.buffer_size = size - size % player.format.frame;
    return waveOutOpen(&player.device, WAVE_MAPPER, &format, reinterpret_cast<DWORD_PTR>(window), 0,
                       CALLBACK_WINDOW) == MMSYSERR_NOERROR;
}

// Fills a buffer with the next samples and gives it to the device. False when file or device failed.
bool QueueBuffer(Player& player, int index) {
    const std::uint32_t left = player.format.data_size - player.bytes_queued;
    const DWORD count = left < player.buffer_size ? left : player.buffer_size;
    if (count == 0) return true;
    std::uint8_t* data = player.data + static_cast<DWORD>(index) * kBufferSize;
    if (!ReadFromFile(player.file, player.format.data_offset + player.bytes_queued, data, count)) {
        player.status = kBadFile;
        return false;
    }
    WAVEHDR& header = player.headers[index];
    if (header.dwFlags & WHDR_PREPARED) waveOutUnprepareHeader(player.device, &header, sizeof header);
    ZeroMemory(&header, sizeof header);
    header.lpData = reinterpret_cast<LPSTR>(data);
    header.dwBufferLength = count;
    if (waveOutPrepareHeader(player.device, &header, sizeof header) != MMSYSERR_NOERROR ||
        waveOutWrite(player.device, &header, sizeof header) != MMSYSERR_NOERROR) {
        player.status = kNoDevice;
        return false;
    }
    player.bytes_queued += count;
    ++player.in_device;
    return true;
}

void CloseSound(Player& player) {
    if (player.device) {
        waveOutReset(player.device);
        for (WAVEHDR& header : player.headers) {
            if (header.dwFlags & WHDR_PREPARED) waveOutUnprepareHeader(player.device, &header, sizeof header);
            ZeroMemory(&header, sizeof header);
        }
        waveOutClose(player.device);
        player.device = nullptr;
    }
    if (player.file != INVALID_HANDLE_VALUE) CloseHandle(player.file);
    player.file = INVALID_HANDLE_VALUE;
    player.state = State::Idle;
    player.in_device = 0;
}

// What the window shows.

std::uint32_t FramesOf(const WavFormat& format) {
    return format.data_size / format.frame;
}

// A text is set only when it differs, so that it does not flicker.
void ShowText(HWND window, int control, const wchar_t* text) {
    wchar_t shown[64];
    GetDlgItemTextW(window, control, shown, static_cast<int>(sizeof shown / sizeof *shown));
    if (lstrcmpW(shown, text) != 0) SetDlgItemTextW(window, control, text);
}

void ShowState(HWND window, const wchar_t* text, const wchar_t* button) {
    ShowText(window, IDC_STATE, text);
    ShowText(window, IDC_STOP, button);
}

// The bar, and the time as "0:01 of 0:12".
void ShowPosition(HWND window, const Player& player, DWORD position) {
    const std::uint32_t frames = FramesOf(player.format);
    const int place = frames == 0
                          ? kPositionRange
                          : MulDiv(kPositionRange, static_cast<int>(position), static_cast<int>(frames));
    SendDlgItemMessageW(window, IDC_POSITION, PBM_SETPOS, static_cast<WPARAM>(place), 0);
    const DWORD now = position / player.format.rate;
    const DWORD whole = (frames + player.format.rate - 1) / player.format.rate;
    wchar_t text[64];
    wsprintfW(text, L"%u:%02u of %u:%02u", now / 60, now % 60, whole / 60, whole % 60);
    ShowText(window, IDC_STATE, text);
}

const wchar_t* FaultText(int status) {
    return status == kBadFile ? L"This file can not be played." : L"No sound device is ready.";
}

// Playing.

void Finish(HWND window, const Player& player) {
    // The editor waits for this end to come to the front again. The system lets it only where the program in
    // front says so, and that is this one.
    AllowSetForegroundWindow(ASFW_ANY);
    EndDialog(window, player.status);
}

void Fail(HWND window, Player& player, int status) {
    CloseSound(player);
    player.status = status;
    ShowState(window, FaultText(status), player.close_at_end ? L"&Close" : L"&Play");
    // Whoever waits for the player's end must not wait for ever.
    if (player.close_at_end) SetTimer(window, kTickTimer, kFaultShown, nullptr);
}

void PlayedToTheEnd(HWND window, Player& player) {
    ShowPosition(window, player, FramesOf(player.format));
    KillTimer(window, kTickTimer);
    CloseSound(player);
    player.status = kPlayed;
    if (player.close_at_end) return Finish(window, player);
    ShowText(window, IDC_STOP, L"&Play");
}

void Start(HWND window, Player& player) {
    player.status = kStopped;
    player.bytes_queued = 0;
    player.last_position = 0;
    if (!OpenSound(player)) return Fail(window, player, kBadFile);
    if (!OpenDevice(player, window)) {
        player.device = nullptr;
        return Fail(window, player, kNoDevice);
    }
    player.state = State::Playing;
    for (int i = 0; i < kBuffers; ++i) {
        if (!QueueBuffer(player, i)) return Fail(window, player, player.status);
    }
    player.moved_at = GetTickCount();
    if (player.in_device == 0) {
        player.state = State::Ending;
        player.ended_at = player.moved_at;
    }
    ShowPosition(window, player, 0);
    ShowText(window, IDC_STOP, L"&Stop");
    SetTimer(window, kTickTimer, kTick, nullptr);
}

void Stop(HWND window, Player& player) {
    KillTimer(window, kTickTimer);
    CloseSound(player);
    player.status = kStopped;
    if (player.close_at_end) return Finish(window, player);
    SendDlgItemMessageW(window, IDC_POSITION, PBM_SETPOS, 0, 0);
    ShowState(window, L"", L"&Play");
}

void BufferDone(HWND window, Player& player, const WAVEHDR* done) {
    if (player.state != State::Playing) return;
    for (int i = 0; i < kBuffers; ++i) {
        if (done != &player.headers[i]) continue;
        --player.in_device;
        if (!QueueBuffer(player, i)) return Fail(window, player, player.status);
    }
    if (player.in_device > 0) return;
    player.state = State::Ending;
    player.ended_at = GetTickCount();
}

DWORD PositionOf(const Player& player) {
    MMTIME time = {};
    time.wType = TIME_BYTES;
    if (waveOutGetPosition(player.device, &time, sizeof time) != MMSYSERR_NOERROR)
        return player.last_position;
    if (time.wType == TIME_BYTES) return time.u.cb / player.format.frame;
    if (time.wType == TIME_SAMPLES) return time.u.sample;
    return player.last_position;
}

void Tick(HWND window, Player& player) {
    const DWORD now = GetTickCount();
    if (player.state == State::Idle) { // the fault was shown long enough
        KillTimer(window, kTickTimer);
        if (player.close_at_end) Finish(window, player);
        return;
    }
    const DWORD position = PositionOf(player);
    if (position != player.last_position) player.moved_at = now;
    player.last_position = position;
    ShowPosition(window, player, position);
    if (player.state == State::Ending && now - player.ended_at >= (player.format.data_size ? kTail : 0)) {
        return PlayedToTheEnd(window, player);
    }
    if (player.state == State::Playing && now - player.moved_at >= kDeviceSilence) {
        Fail(window, player, kNoDevice);
    }
}

void PressButton(HWND window, Player& player) {
    if (player.state != State::Idle) return Stop(window, player);
    if (player.close_at_end) return Finish(window, player);
    Start(window, player);
}

void Leave(HWND window, Player& player) {
    KillTimer(window, kTickTimer);
    CloseSound(player);
    Finish(window, player);
}

const wchar_t* NameOf(const wchar_t* path) {
    const wchar_t* name = path;
    for (const wchar_t* at = path; *at; ++at) {
        if (*at == L'\\' || *at == L'/') name = at + 1;
    }
    return name;
}

// What the caller calls the sound, or its file's name.
void ShowName(HWND window, const Player& player) {
    wchar_t name[kLongestName] = L"";
    const DWORD length = GetEnvironmentVariableW(kSoundNameVariable, name, kLongestName);
    SetDlgItemTextW(window, IDC_FILE_NAME, length > 0 && length < kLongestName ? name : NameOf(player.path));
}

void SetUp(HWND window, Player& player) {
    SetWindowLongPtrW(window, DWLP_USER, reinterpret_cast<LONG_PTR>(&player));
    ShowName(window, player);
    SendDlgItemMessageW(window, IDC_POSITION, PBM_SETRANGE32, 0, kPositionRange);
    SetForegroundWindow(window);
    PostMessageW(window, WM_APP, 0, 0); // the window is on the screen before the sound begins
}

INT_PTR CALLBACK PlayerProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        SetUp(window, *reinterpret_cast<Player*>(lparam));
        return TRUE;
    }
    auto* player = reinterpret_cast<Player*>(GetWindowLongPtrW(window, DWLP_USER));
    if (!player) return FALSE;
    switch (message) {
    case WM_APP: Start(window, *player); return TRUE;
    case WM_TIMER: Tick(window, *player); return TRUE;
    case MM_WOM_DONE: BufferDone(window, *player, reinterpret_cast<const WAVEHDR*>(lparam)); return TRUE;
    case WM_CLOSE: Leave(window, *player); return TRUE;
    case WM_COMMAND:
        if (LOWORD(wparam) == IDC_STOP) {
            PressButton(window, *player);
        } else if (LOWORD(wparam) == IDCANCEL) { // Esc
            Leave(window, *player);
        }
        return TRUE;
    default: return FALSE;
    }
}

} // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    const PlayerCommand command = ParsePlayerArguments(ArgumentsOf(GetCommandLineW()));
    if (!command.play || command.unknown || command.path.empty()) {
        MessageBoxW(nullptr, kUsage, kTitle, MB_OK | MB_ICONINFORMATION);
        return kWrongUsage;
    }
    INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_PROGRESS_CLASS | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
    Player player;
    player.close_at_end = command.close;
    player.path = CopyPath(command.path);
    player.data = static_cast<std::uint8_t*>(Take(kBuffers * kBufferSize));
    if (!player.path || !player.data) return kNoDevice;
    const INT_PTR status = DialogBoxParamW(instance, MAKEINTRESOURCEW(IDD_PLAYER), nullptr, PlayerProcedure,
                                           reinterpret_cast<LPARAM>(&player));
    return status < 0 ? kWrongUsage : static_cast<int>(status);
}
