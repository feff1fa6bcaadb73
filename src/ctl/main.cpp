// zv4280ctl: the bench tool's engine from the command line.
#include "ctl_program.h"
#include "resources_init.h"
#include "translation.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    CtlProgram::prepareEnvironment();
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    // The arguments are the tool's alone: Qt would take --style for itself.
    int qtArgc = 1;
    QApplication app(qtArgc, argv);
    zvInitResources();
    installTranslation(app);
    return CtlProgram::run(arguments);
}
