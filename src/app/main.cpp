#include "LinuxHost.h"
#include "frmMain.h"

#include <QApplication>
#include <QDir>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quaylight"));
    ql::LinuxHost host;
    // The catalogue is the one in the current folder; the command line names none.
    ql::frmMain form(host.host());
    if (!form.Form_Load(QDir::currentPath())) return 1;
    form.show();
    return QApplication::exec();
}
