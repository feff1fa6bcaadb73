#include "MainClass.h"
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
    options.process(app);

    MainClass window;
    window.loadCalibration(options.value(calibration));
    window.show();
    return app.exec();
}
