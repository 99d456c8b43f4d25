#include "platform/refusal.h"

#include <cerrno>
#include <cstring>

namespace tonex {

std::string ReasonOfRefusal() {
    return std::strerror(errno);
}

} // namespace tonex
