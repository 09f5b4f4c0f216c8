// The start sequence of the program: passphrase, keyed constants, folder paths, working folders.
// Called once on the main thread after the application object exists and before any window.
#pragma once

namespace morvane {

// Returns false when a step failed; the caller then ends without showing a window.
bool Sub_Main();

} // namespace morvane
