#pragma once

namespace orlix::fuzz {

// From now on a thread of its own names each call that has been at work for 5 s of the processor, while it is, and ends
// the process with status 4 when it has been for 100 s, or for 15 minutes of waiting.
void WatchCalls();

}  // namespace orlix::fuzz
