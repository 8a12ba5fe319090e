#pragma once

#include "SamplingDialogServices.h"

#include "sampling/PartSelector.h"

class qlxLanguage;

// The part selection of a program with windows: the monitor's part button opens the
// part picker over the monitor's window. The shell that builds the windows hands one of
// these to every monitor's sampling object (SamplingServices::partSelector); a headless
// run has none, and its part cannot be changed at run time.
class WidgetPartSelector : public PartSelector
{
public:
    // The language object and the services must outlive the selector.
    WidgetPartSelector(const qlxLanguage &language, const SamplingDialogServices &services);

    // Connects the database when it is not connected (telling the user when that fails),
    // then shows the picker modally with the current part chosen.
    std::optional<QString> choosePart(QObject *owner, qlaDatabase6::Database &database,
                                      const qlaDatabase6::Part &current) override;

private:
    const qlxLanguage &m_language;
    SamplingDialogServices m_services;
};
