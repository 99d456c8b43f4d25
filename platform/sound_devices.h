// The system's wave output.
#pragma once

#include <string>

namespace tonex {

/// Number of wave output devices that the system reports.
int CountWaveOutputs();

/// Plays a WAV file and returns at once; an empty path stops whatever plays.
void PlaySoundFile(const std::wstring& path);

} // namespace tonex
