#pragma once
#include "Host.h"
#include "Startup.h"

class QWidget;

namespace ql {
// Opens the maintenance form modally over the main form.
void showUtilityForm(QWidget* parent, Host& host, MainFormOps& mainForm);
} // namespace ql
