#include "testsupport.h"

#include "resources_init.h"
#include "translation.h"


ModalCatcher::ModalCatcher(QObject* parent) : QObject(parent)
{
    connect(&timer, &QTimer::timeout, this, &ModalCatcher::poll);
    timer.start(5);
}

void ModalCatcher::poll()
{
    if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
        texts.append(box->text());
        box->done(0);
    }
}

void zvTestInit(bool english)
{
    zvInitResources();
    if (english)
        installTranslation(*QCoreApplication::instance());
}

bool waitIdle(MainClass* window, int timeoutMs)
{
    return QTest::qWaitFor([window] { return !window->running; }, timeoutMs);
}
