#pragma once

#include <QString>

class QDialog;
class QDialogButtonBox;
class QPushButton;

// The OK and Cancel buttons of a setup dialog, named OKButton and CancelButton, OK the
// default. The dialog connects their clicks to its own handlers, which decide whether it
// closes.
struct OkCancelButtons
{
    QDialogButtonBox *box;
    QPushButton *ok;
    QPushButton *cancel;

    static OkCancelButtons create(QDialog *dialog, const QString &okCaption,
                                  const QString &cancelCaption);
};
