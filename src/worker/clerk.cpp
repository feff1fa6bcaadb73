// The worker thread's frame: the chip identity test, the command dispatch,
// settings, the pause, and the way to the images on the GUI thread.

#include "clerk.h"

#include "mapshow.h"
#include "service_block.h"
#include "usb_link.h"

#include <QElapsedTimer>
#include <QMetaObject>

clerk::clerk(QObject* parent) : QThread(parent) {}

clerk::clerk(int commandNumber, const QString& file, service_block* panel, const QMap<QString, mapshow*>& mapTable,
             QObject* parent)
    : QThread(parent), fileName(file), command(commandNumber), service(panel), maps(mapTable)
{
}

void clerk::run()
{
    usb_link* held = service ? link() : nullptr;
    if (held)
        held->holdBoard();
    const QString end = operation();
    if (held)
        held->releaseBoard();
    emit error_mess(end);
}

QString clerk::operation()
{
    if (maps.isEmpty())
        return tr("Отсутствует карта регистров");
    if (!service) // no panel, so no way to the chip and no settings
        return tr("Interface error 5 ");
    // Every command first reads the chip's release (register 1, bits D2-D0);
    // release 1 is refused for the commands that touch the chip or save it.
    // A failed read is no failure here: the command finds out by itself.
    quint8 release = 0;
    if (link()->readRegister(1, &release) && command <= 4 && (release & 7) == 1)
        return QStringLiteral("Incorrect chip");
    switch (command) {
    case 1: return chipRead();
    case 2: return chipWrite();
    case 3: return fileToChip();
    case 4: return chipToFile();
    case 5: return fileToGui();
    case 6: return guiToFile();
    case 7: return readOne();
    case 8: return writeOne();
    default: return tr("Неожиданная команда");
    }
}

int clerk::setting(const char* key) const
{
    return service->setting(QLatin1String(key));
}

usb_link* clerk::link() const
{
    return service->usb;
}

void clerk::onGuiThread(const std::function<void()>& work) const
{
    QObject* owner = firstMap();
    if (QThread::currentThread() == owner->thread())
        work();
    else
        QMetaObject::invokeMethod(owner, work, Qt::BlockingQueuedConnection);
}

bool clerk::pause()
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < setting("writePause")) {
        if (interrupted)
            return false;
        QThread::msleep(1);
    }
    return true;
}

// A register operation that returned false: either the board could not be
// reached ("Interface error 5 ") or a transfer failed on the way, which the
// message then names.
QString clerk::interfaceError() const
{
    const QString refusal = link()->refusal();
    if (!refusal.isEmpty())
        return refusal;
    const QString failure = link()->transferFailure();
    if (!failure.isEmpty())
        return tr("Ошибка обмена по USB: ") + failure;
    return tr("Interface error 5 ");
}

// The same for the paths that report the link's advice ("Refresh device
// list" when no board or several boards and none chosen).
QString clerk::statusOrInterfaceError() const
{
    if (!link()->transferFailure().isEmpty() || !link()->refusal().isEmpty())
        return interfaceError();
    const QString advice = link()->currentStatusText();
    return advice.isEmpty() ? tr("Interface error 5 ") : advice;
}
