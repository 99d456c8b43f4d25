// Bringing the copy that already runs to the front.
#pragma once

#include <string>

namespace tonex {

/// Finds the owned top-level window whose caption begins with the title, restores it if minimised and makes
/// it the foreground window. Does nothing when there is none.
void ActivatePreviousInstance(const std::wstring& title);

} // namespace tonex
