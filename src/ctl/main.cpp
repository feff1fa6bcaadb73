// zv4280ctl: the bench tool's engine from the command line.
#include "ctl_program.h"
#include "translation.h"

#include <QCoreApplication>

int main(int argc, char* argv[])
{
    CtlProgram::prepareEnvironment();
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    // The arguments are the tool's alone.
    int qtArgc = 1;
    QCoreApplication app(qtArgc, argv);
    installTranslation(app);
    return CtlProgram::run(arguments);
}
