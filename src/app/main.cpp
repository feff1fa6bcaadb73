#include "MainClass.h"
#include "gui_rpc_service.h"
#include "resources_init.h"
#include "translation.h"

#include <QApplication>
#include <QCommandLineParser>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    zvInitResources();
    installTranslation(app);

    QCommandLineParser options;
    options.addHelpOption();
    const QCommandLineOption calibration(
        QStringLiteral("calibration"),
        QStringLiteral("Measured calibration tables, lines \"table,index,value\" after that header "
                       "(by default calibration.csv in the current folder, if any)."),
        QStringLiteral("FILE"));
    options.addOption(calibration);
    const QCommandLineOption listen(
        QStringLiteral("listen"),
        QStringLiteral("The socket that scripts connect to (by default $XDG_RUNTIME_DIR/zv4280tb-<pid>.sock)."),
        QStringLiteral("PATH"));
    options.addOption(listen);
    options.process(app);

    MainClass window;
    window.loadCalibration(options.value(calibration));
    window.show();
    GuiRpcService scripts(window);
    QString error;
    if (!scripts.listen(options.value(listen), &error))
        qWarning("zv4280tb: no scripting socket: %s", qPrintable(error));
    return app.exec();
}
