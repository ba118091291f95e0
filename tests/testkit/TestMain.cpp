// The one main of every test program: headless Qt, a private runtime folder, quiet offscreen warnings.
#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
QtMessageHandler previous = nullptr;
void filter(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (message.contains(QLatin1String("propagateSizeHints"))) return;
    previous(type, context, message);
}
} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir runtime;
    qputenv("XDG_RUNTIME_DIR", (runtime.path() + "/runtime").toUtf8());
    previous = qInstallMessageHandler(filter);
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
