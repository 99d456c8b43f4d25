#include "platform/clock.h"

#include <ctime>

namespace tonex {

TimeOfDay CurrentTime() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    if (localtime_r(&now, &local) == nullptr) return {0, 0, 0};
    // A leap second reads 60 there; the promise is 0 to 59.
    return {local.tm_hour, local.tm_min, local.tm_sec > 59 ? 59 : local.tm_sec};
}

} // namespace tonex
