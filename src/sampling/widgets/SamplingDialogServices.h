#pragma once

#include <QString>

#include <functional>

class ErrorReport;
class MessageBoxes;
class QWidget;
class qlxLanguage;

namespace qlaDatabase6 {
class Database;
}

// What the SPC sampling dialogs need from outside, wired by the shell or by a test. The
// services behind the references must outlive the dialogs.
struct SamplingDialogServices
{
    using FileChooser = std::function<QString(QWidget *parent, const QString &currentPath)>;

    // Failures of the dialogs' event procedures.
    ErrorReport &errors;
    // The connection failures the user must see, and the question before a new part or
    // process is added to the database.
    MessageBoxes &messages;
    // Chooses the SQLite file of the data source dialog (empty when cancelled); the
    // standard file dialog when none is given.
    FileChooser chooseDatabaseFile = {};
};

namespace SamplingDialogs {

// Makes sure the database is connected before the user chooses from it. True when it
// is; otherwise the user has been shown "Unable To Connect" with the data source and
// the reason, titled "SPC Sampling".
bool connectForChoice(qlaDatabase6::Database &database, const qlxLanguage &language,
                      MessageBoxes &messages);

} // namespace SamplingDialogs
