#include "UtilityEntry.h"
#include "CommonDialog.h"
#include "frmUtility.h"

namespace ql {
void showUtilityForm(QWidget* parent, Host& host, MainFormOps& mainForm) {
    QtFileDialogs fileDialogs;
    frmUtility form(host, mainForm, fileDialogs, parent);
    form.Form_Load();
    form.exec();
}
} // namespace ql
