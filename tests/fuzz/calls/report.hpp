// What the process tells of itself.
#pragma once

namespace orlix::fuzz {

// Says where the process was when it died: seed, step and call.
void ReportDeath();

// From now on a thread of its own names each call that has been at work for 5 s of the processor, while it is, and ends
// the process with status 4 when it has been for 100 s, or for 15 minutes of waiting.
void WatchCalls();

// The line that tells how far a run is, with the edges that any sequence so far has reached (0 where nothing counts
// them); scripts/fuzz adds up those of several processes.
void PrintProgress();

}  // namespace orlix::fuzz
