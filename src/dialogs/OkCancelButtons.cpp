#include "OkCancelButtons.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>

OkCancelButtons OkCancelButtons::create(QDialog *dialog, const QString &okCaption,
                                        const QString &cancelCaption)
{
    auto *ok = new QPushButton(okCaption, dialog);
    ok->setObjectName(QStringLiteral("OKButton"));
    ok->setDefault(true);
    auto *cancel = new QPushButton(cancelCaption, dialog);
    cancel->setObjectName(QStringLiteral("CancelButton"));
    auto *box = new QDialogButtonBox(dialog);
    box->addButton(ok, QDialogButtonBox::AcceptRole);
    box->addButton(cancel, QDialogButtonBox::RejectRole);
    return {box, ok, cancel};
}
