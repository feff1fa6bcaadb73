// The offscreen main window and the worker's commands for zv4280ctl.
#include "ctl_session.h"

#include "MainClass.h"
#include "clerk.h"
#include "mapshow.h"
#include "headless_filter.h"
#include "service_block.h"
#include "usb_link.h"

#include <QCoreApplication>
#include <QEventLoop>

CtlSession::CtlSession(const QString& boardKey) : key(boardKey) {}

// The main window, like every other window of the program, lives until the
// process ends: taking it down would only cost time.
CtlSession::~CtlSession() = default;

MainClass& CtlSession::window()
{
    if (!main) {
        QCoreApplication::instance()->installEventFilter(new HeadlessFilter(QCoreApplication::instance()));
        main = new MainClass(MainClass::Start::Idle);
        main->service->usb->selectedKey = key;
    }
    return *main;
}

mapshow& CtlSession::map()
{
    return *window().firstMap();
}

RegisterImages& CtlSession::images()
{
    return map().images;
}

FormModel& CtlSession::model()
{
    return *window().model();
}

usb_link& CtlSession::link()
{
    if (main)
        return *main->service->usb;
    if (!ownLink) {
        ownLink.reset(new usb_link);
        ownLink->selectedKey = key;
    }
    return *ownLink;
}

// The worker hands the images over on the GUI thread, so the loop turns
// until its thread has ended; its one end message comes before that.
QString CtlSession::run(clerk::Command command, const QString& fileName, bool intoWidgets)
{
    std::unique_ptr<clerk> worker(window().newWorker(command, settings, fileName));
    QString message = QStringLiteral("the operation ended without a word");
    QEventLoop loop;
    QObject::connect(worker.get(), &clerk::error_mess, &loop, [&message](const QString& text) { message = text; });
    QObject::connect(worker.get(), &QThread::finished, &loop, &QEventLoop::quit);
    worker->start();
    loop.exec();
    worker->wait();
    if (message.isEmpty() && intoWidgets)
        main->showOperationResult(worker->command);
    return message;
}
