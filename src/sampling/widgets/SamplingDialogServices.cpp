#include "SamplingDialogServices.h"

#include "SamplingCaptions.h"

#include "platform/MessageBoxes.h"
#include "platform/qlxLanguage.h"
#include "platform/spc/Database.h"

namespace SamplingDialogs {

bool connectForChoice(qlaDatabase6::Database &database, const qlxLanguage &language,
                      MessageBoxes &messages)
{
    if (database.isConnected() || database.openConnection())
        return true;
    // The same words as a refused start of collection, followed by the reason so that
    // the engineer can tell a wrong file name from a server that is down.
    QString text = language.Translate(SamplingCaptions::kUnableToConnect) +
                   QStringLiteral("\r\n\r\n") + database.dataSourceName();
    const QString reason = database.lastErrorText().trimmed();
    if (!reason.isEmpty())
        text += QStringLiteral("\r\n\r\n") + reason;
    messages.critical(language.Translate(SamplingCaptions::kSPCSampling), text);
    return false;
}

} // namespace SamplingDialogs
