// Says where the process was when it died: seed, step and call.
#pragma once

namespace orlix::fuzz {

void ReportDeath();

}  // namespace orlix::fuzz
