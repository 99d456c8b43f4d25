// platform/sound_devices.h on Win32. The sound library is loaded with the first question.
#include "platform/sound_devices.h"

#include "platform/windows/desktop_windows.h"

#include <mmsystem.h>

namespace tonex {

namespace {

constexpr int kNotCounted = -1;

// The enabling asks after every key press, and counting walks the drivers.
int counted_outputs = kNotCounted;

} // namespace

int CountWaveOutputs() {
    if (counted_outputs != kNotCounted) return counted_outputs;
    const auto count = LibraryFunction<UINT(WINAPI*)()>(SystemLibrary(L"winmm.dll"), "waveOutGetNumDevs");
    counted_outputs = count ? static_cast<int>(count()) : 0;
    return counted_outputs;
}

void ForgetWaveOutputs() {
    counted_outputs = kNotCounted;
}

void PlaySoundFile(const std::wstring& path) {
    using PlayFunction = BOOL(WINAPI*)(const wchar_t*, UINT);
    const auto play = LibraryFunction<PlayFunction>(SystemLibrary(L"winmm.dll"), "sndPlaySoundW");
    if (!play) return;
    if (path.empty())
        play(nullptr, SND_SYNC);
    else
        play(path.c_str(), SND_ASYNC | SND_NODEFAULT);
}

} // namespace tonex
