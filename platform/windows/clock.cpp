// platform/clock.h on Win32.
#include "platform/clock.h"

#include "platform/windows/desktop_windows.h"

namespace tonex {

TimeOfDay CurrentTime() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    return {now.wHour, now.wMinute, now.wSecond};
}

} // namespace tonex
