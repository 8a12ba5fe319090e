#include "SamplingCommands.h"

#include "SamplingCaptions.h"
#include "dlgSampling.h"

#include "monitor/EquipmentMonitor.h"
#include "platform/ErrorPassing.h"
#include "platform/MessageBoxes.h"
#include "sampling/DatabaseSupport.h"
#include "sampling/SamplingProperties.h"

using namespace SamplingCaptions;

namespace SamplingCommands {

namespace {

constexpr const char *kLocation = "CorvaneUsw.ConfigureSampling";

void showNotInstalled(const qlxLanguage &language, MessageBoxes &messages)
{
    const QString lineBreaks = QStringLiteral("\r\n\r\n");
    messages.critical(language.Translate(kSPCSampling),
                      language.Translate(kNotInstalled) + lineBreaks + kDatabaseProduct.toString() +
                          lineBreaks + language.Translate(kContactAdministrator));
}

} // namespace

bool ConfigureSampling(EquipmentMonitor &monitor, const qlxLanguage &language,
                       const SamplingDialogServices &services, DatabaseSupport &support,
                       QWidget *parent)
{
    bool confirmed = false;
    reportFailures(services.errors, kLocation, [&] {
        if (!support.DatabaseLibraryAvailable()) {
            showNotInstalled(language, services.messages);
            return;
        }
        auto *sampling = dynamic_cast<SamplingProperties *>(&monitor.sampling());
        if (!sampling)
            throw ProgramError::raised(QStringLiteral("This monitor was made without SPC sampling"),
                                       QLatin1String(kLocation));
        dlgSampling dialog(language, *sampling, services, parent);
        dialog.exec();
        if (!dialog.isAccepted())
            return;
        monitor.RefreshDisplay();
        // The part and the row choices stay locked while the monitor collects.
        monitor.EnableDisplayItems(monitor.DriverState() <= 1);
        confirmed = true;
    });
    return confirmed;
}

} // namespace SamplingCommands
