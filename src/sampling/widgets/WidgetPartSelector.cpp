#include "WidgetPartSelector.h"

#include "dlgRecordSelection.h"

#include "platform/ErrorPassing.h"
#include "platform/spc/Database.h"

#include <QWidget>

WidgetPartSelector::WidgetPartSelector(const qlxLanguage &language,
                                       const SamplingDialogServices &services)
    : m_language(language)
    , m_services(services)
{}

std::optional<QString> WidgetPartSelector::choosePart(QObject *owner,
                                                      qlaDatabase6::Database &database,
                                                      const qlaDatabase6::Part &current)
{
    return passOn("WidgetPartSelector.choosePart", [&]() -> std::optional<QString> {
        if (!SamplingDialogs::connectForChoice(database, m_language, m_services.messages))
            return std::nullopt;
        // The picker belongs to the window of the button that asked for it.
        auto *widget = qobject_cast<QWidget *>(owner);
        dlgRecordSelection picker(qlaDatabase6::RecordKind::Part, database, m_language, m_services,
                                  widget ? widget->window() : nullptr);
        picker.setPreselectedName(current.name());
        if (picker.exec() != QDialog::Accepted)
            return std::nullopt;
        return picker.chosenName();
    });
}
