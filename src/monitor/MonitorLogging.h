#pragma once

#include <QLoggingCategory>

// The monitor layer's diagnostics (links opened, lost, paused), switched on with
// QT_LOGGING_RULES="corvane.monitor.debug=true" (warnings only
// by default).
Q_DECLARE_LOGGING_CATEGORY(lcMonitor)
