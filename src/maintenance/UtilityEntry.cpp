#include "UtilityEntry.h"

namespace ql {
void showUtilityForm(QWidget*, Host& host, MainFormOps&) {
    host.dialogs.message(QStringLiteral("The maintenance form is not part of this build yet."));
}
} // namespace ql
