// Where the program lies.
#pragma once

#include <string>

namespace tonex {

/// The folder the program was started from, without a backslash at its end.
std::wstring ProgramFolder();

} // namespace tonex
