// The user-interface thread's pending events.
#pragma once

namespace tonex {

/// Lets pending window events run and shows what they changed; returns when none is left.
void ProcessPendingEvents();

/// As ProcessPendingEvents, for work of many short steps: does nothing when events ran milliseconds ago.
/// Asking the system can take longer than such a step.
void ProcessEventsInPassing();

/// As ProcessPendingEvents, but first waits up to the milliseconds given for an event to come, so that a
/// polling loop does not keep a core busy.
void WaitForEvents(int milliseconds);

} // namespace tonex
