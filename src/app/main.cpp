#include "MainClass.h"
#include "resources_init.h"
#include "translation.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    zvInitResources();
    installTranslation(app);

    MainClass window;
    window.show();
    return app.exec();
}
