#pragma once

class SingleInstance;
struct StartupOptions;
class QString;

// The desktop program once it knows it is the only instance: the main window with its
// services, shown and loaded, until Shut Down, the end of the desktop session or a
// termination signal. Later starts that reach the single-instance socket restore and
// raise the window. Returns the exit status.
namespace DesktopProgram {

int run(const StartupOptions &options, const QString &applicationTitle, SingleInstance &instance);

} // namespace DesktopProgram
