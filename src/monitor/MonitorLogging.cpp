#include "MonitorLogging.h"

Q_LOGGING_CATEGORY(lcMonitor, "corvane.monitor", QtWarningMsg)
