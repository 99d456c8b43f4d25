// A sound library for the window tests whose only device is plugged in by making a file: the one that
// TONEX_TEST_DEVICE names. Wine's own looks for devices once a process.
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

extern "C" __declspec(dllexport) UINT waveOutGetNumDevs() {
    wchar_t path[MAX_PATH] = L"";
    GetEnvironmentVariableW(L"TONEX_TEST_DEVICE", path, MAX_PATH);
    return GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES ? 1 : 0;
}
