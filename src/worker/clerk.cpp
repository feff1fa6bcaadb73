// The worker thread's frame: the chip identity test, the command dispatch,
// the pause, and the way to the images on the thread that owns them.

#include "clerk.h"

#include "register_images.h"
#include "usb_link.h"

#include <QElapsedTimer>
#include <QMetaObject>
#include <QScopeGuard>

clerk::clerk(Command commandToRun, const QString& file, usb_link* usb, const PanelSettings& panel,
             const QMap<QString, RegisterImages*>& mapTable, QObject* parent)
    : QThread(parent), fileName(file), command(commandToRun), link(usb), settings(panel), maps(mapTable)
{
}

void clerk::run()
{
    QString end;
    {
        if (link)
            link->holdBoard();
        const auto release = qScopeGuard([this] {
            if (link)
                link->releaseBoard();
        });
        end = operation();
        if (link)
            board = link->heldBoard();
    }
    emit error_mess(end); // the board let go first, for whatever the end starts

}

QString clerk::operation()
{
    if (maps.isEmpty())
        return tr("Отсутствует карта регистров");
    if (!link) // no way to the chip
        return tr("Interface error 5 ");
    // Every command first reads the chip's release (register 1, bits D2-D0);
    // release 1 is refused for the commands that touch the chip or save it.
    // A failed read is no failure here: the command finds out by itself.
    quint8 release = 0;
    if (link->readRegister(1, &release) && command <= Command::ChipToFile && (release & 7) == 1)
        return QStringLiteral("Incorrect chip");
    switch (command) {
    case Command::ChipToGui: return chipRead();
    case Command::GuiToChip: return chipWrite();
    case Command::FileToChip: return fileToChip();
    case Command::ChipToFile: return chipToFile();
    case Command::FileToGui: return fileToGui();
    case Command::GuiToFile: return guiToFile();
    case Command::ReadOne: return readOne();
    case Command::WriteOne: return writeOne();
    }
    return tr("Неожиданная команда");
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
    while (clock.elapsed() < settings.writePauseMs) {
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
    const QString refusal = link->refusal();
    if (!refusal.isEmpty())
        return refusal;
    const QString failure = link->transferFailure();
    if (!failure.isEmpty())
        return tr("Ошибка обмена по USB: ") + failure;
    return tr("Interface error 5 ");
}

// The same for the paths that report the link's advice ("Refresh device
// list" when no board or several boards and none chosen).
QString clerk::statusOrInterfaceError() const
{
    if (!link->transferFailure().isEmpty() || !link->refusal().isEmpty())
        return interfaceError();
    const QString advice = link->currentStatusText();
    return advice.isEmpty() ? tr("Interface error 5 ") : advice;
}
