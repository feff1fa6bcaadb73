// The toolbar commands and the end of an operation: each command is one
// clerk thread; pressing any command while one runs asks it to stop.

#include "MainClass.h"
#include "ui_MainClass.h"

#include "app/operation_status.h"
#include "app/undo_actions.h"
#include "clerk.h"
#include "engine/form_model.h"
#include "mapshow.h"
#include "part.h"
#include "service_block.h"

#include <QAction>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPixmap>
#include <QProgressBar>
#include <QSpinBox>
#include <QTimer>
#include <QToolBar>

#include <utility>

#include <vector>

namespace {

using Command = clerk::Command;

// What the progress bar says while a command runs, by command.
const char* const kOperationNames[] = {
    "",
    QT_TRANSLATE_NOOP("MainClass", "Чтение ИС"),
    QT_TRANSLATE_NOOP("MainClass", "Запись ИС"),
    QT_TRANSLATE_NOOP("MainClass", "Файл в ИС"),
    QT_TRANSLATE_NOOP("MainClass", "ИС в файл"),
    QT_TRANSLATE_NOOP("MainClass", "Загрузка"),
    QT_TRANSLATE_NOOP("MainClass", "Сохранение"),
    QT_TRANSLATE_NOOP("MainClass", "Регистр"),
    QT_TRANSLATE_NOOP("MainClass", "Регистр"),
};

} // namespace

QAction* MainClass::progressAction() const
{
    return ui->toolBar_RegWindow->actions().last();
}

bool MainClass::stopRunning()
{
    if (!running)
        return false;
    if (worker)
        worker->interrupted = true;
    return true;
}

bool MainClass::startScripted(Command command, const PanelSettings& settings, const QString& fileName,
                              ScriptEnd ended)
{
    if (running)
        return false;
    startOperation(command, fileName, &settings);
    scriptEnd = std::move(ended);
    return true;
}

bool MainClass::runScripted(const std::function<void()>& work)
{
    if (running)
        return false;
    running = true;
    ++operationsStarted;
    work();
    endOperation();
    return true;
}

void MainClass::startOperation(Command command, const QString& fileName, const PanelSettings* settings)
{
    progressBar->setValue(0);
    progressBar->setFormat(tr(kOperationNames[int(command)]) + QStringLiteral(" %p%"));
    progressAction()->setVisible(true);
    running = true;
    runningCommand = command;
    operationStatus->started();
    ++operationsStarted;
    showOperationCount();
    if (undoActions)
        undoActions->operationStarted(fileName);
    worker = newWorker(command, settings ? *settings : service->panelSettings(), fileName);
    connect(worker, &clerk::percent_up, progressBar, &QProgressBar::setValue);
    connect(worker, &clerk::error_mess, this, &MainClass::error_message);
    connect(worker, &QThread::finished, worker, &QObject::deleteLater);
    worker->start(QThread::InheritPriority);
}

clerk* MainClass::newWorker(Command command, const PanelSettings& settings, const QString& fileName)
{
    QMap<QString, RegisterImages*> images;
    for (auto it = maps.cbegin(); it != maps.cend(); ++it)
        images.insert(it.key(), &it.value()->images);
    auto* created = new clerk(command, fileName, service->usb, settings, images);
    if (command == Command::GuiToFile && formModel)
        created->save = GuiSave::take(*formModel, settings);
    return created;
}

// Asks for a file in lastPath; empty when the user cancelled. Backslashes
// become slashes, and lastPath follows the chosen folder unless `keepFolder`
// is off. A name to save to without an extension gets ".hex"; with "Merge
// file" on the save appends, so the dialog does not ask to replace the file.
QString MainClass::askFile(bool save, const QString& caption, bool keepFolder)
{
    QFileDialog dialog(this, caption, lastPath, tr("Map files (*.hex)"));
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (save) {
        dialog.setDefaultSuffix(QStringLiteral("hex"));
        dialog.setOption(QFileDialog::DontConfirmOverwrite, service->panelSettings().mergeFile);
    }
    QString path = dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (keepFolder && !path.isEmpty())
        lastPath = path.left(path.lastIndexOf(QLatin1Char('/')) + 1);
    return path;
}

void MainClass::on_action_load_default_triggered()
{
    if (stopRunning())
        return;
    startOperation(Command::FileToGui, QStringLiteral("default.hex"));
    setWindowTitle(QLatin1String(kWindowTitle));
}

void MainClass::on_action_GUIFILE_triggered()
{
    if (stopRunning())
        return;
    const QString path = askFile(true, tr("Save .hex"));
    if (!path.isEmpty())
        startOperation(Command::GuiToFile, path);
}

// F7 and F9: a file chosen to be read, and its path in the title.
void MainClass::openFileFor(Command command)
{
    if (stopRunning())
        return;
    const QString path = askFile(false, tr("Open .hex"));
    if (path.isEmpty())
        return;
    startOperation(command, path);
    titleAfterLoad = QLatin1String(kWindowTitle) + path;
}

void MainClass::on_action_FILEGUI_triggered()
{
    openFileFor(Command::FileToGui);
}

void MainClass::on_action_FILEIC_triggered()
{
    openFileFor(Command::FileToChip);
}

void MainClass::on_action_GUIIC_triggered()
{
    if (!stopRunning())
        startOperation(Command::GuiToChip);
}

// The action is checkable: checked, an idle program reads the chip; pressing
// it again (unchecked) stops a running operation and ends repeat read.
void MainClass::on_action_ICGUI_triggered()
{
    if (stopRunning() || !ui->action_ICGUI->isChecked())
        return;
    startOperation(Command::ChipToGui);
}

// Chip to file asks for the file first, even while an operation runs; an
// answer that only stops the operation leaves lastPath as it was.
void MainClass::on_Button_ICFILE_clicked()
{
    const QString path = askFile(true, tr("Open file"), false);
    if (path.isEmpty() || stopRunning())
        return;
    lastPath = path.left(path.lastIndexOf(QLatin1Char('/')) + 1);
    startOperation(Command::ChipToFile, path);
}

// Every operation ends here, on the GUI thread: a failure is shown, a
// success brings the new images into the widgets and the displays.
void MainClass::error_message(QString m)
{
    if (!running)
        return; // a second end message of an operation already ended
    operationStatus->ended(OperationStatus::outcomeOf(worker, runningCommand), m);
    service->followBoards();
    const QString title = std::exchange(titleAfterLoad, QString());
    // A script's operation ends in its own hands, after the window's part.
    const ScriptEnd scripted = std::exchange(scriptEnd, nullptr);
    const bool stopped = worker && worker->interrupted;
    if (!m.isEmpty()) {
        // A read that failed leaves nothing the chip alone can tell standing:
        // no status bulb may stand for a chip that cannot be reached.
        if (formModel && worker && (worker->command == Command::ChipToGui || worker->command == Command::ChipToFile)
            && m != tr("Interrupted"))
            formModel->markChipOnly();
        // The box waits for the user; until it closes the operation counts
        // as running, so a repeat-read timer that fires behind it only stops.
        if (!scripted)
            showModal(m);
        if (ui->action_ICGUI->isChecked())
            ui->action_ICGUI->setChecked(false);
        endOperation();
        if (scripted)
            scripted(m, stopped);
        return;
    }

    // A write with read-back ends as the read it turned into; the clerk is
    // still there, as its deletion is queued behind this message.
    const Command cmd = worker ? worker->command : runningCommand;
    mapshow* map = firstMap();
    if (!title.isEmpty())
        setWindowTitle(title);
    showOperationResult(cmd);
    if (!scripted && (cmd == Command::ChipToGui || cmd == Command::FileToGui)) {
        const PanelSettings settings = service->panelSettings();
        if (!settings.repeatRead)
            ui->action_ICGUI->setChecked(false);
        else if (ui->action_ICGUI->isChecked())
            QTimer::singleShot(settings.autoPauseSeconds * 1000, this, &MainClass::repeatReadTurn);
    } else if (scripted && stopped) {
        ui->action_ICGUI->setChecked(false); // as after a stop that was seen
    }
    progressBar->setValue(100);
    map->refreshRegisterView();
    endOperation();
    // A key pressed during a step that had no point to stop at ends the
    // script's request before its next step.
    if (scripted)
        scripted(QString(), stopped);
}

// The repeat read's next read. A script's operation that runs then is no
// key of the user's: it is left to end, and the read follows it.
void MainClass::repeatReadTurn()
{
    if (running && scriptEnd) {
        repeatWaits = true;
        return;
    }
    on_action_ICGUI_triggered();
}

void MainClass::endOperation()
{
    if (std::exchange(repeatWaits, false))
        QTimer::singleShot(0, this, &MainClass::repeatReadTurn);
    progressAction()->setVisible(false);
    worker = nullptr;
    running = false;
    ++operationsEnded;
    showOperationCount();
    emit operationEnded();
}

// Not translated: it is for scripts, which read it as it stands.
void MainClass::showOperationCount()
{
    setAccessibleDescription(
        QStringLiteral("operations: %1 started, %2 ended").arg(operationsStarted).arg(operationsEnded));
}

void MainClass::showOperationResult(Command command)
{
    mapshow* map = firstMap();
    if (command == Command::ChipToGui || command == Command::FileToGui) {
        pushImage(map);
        map->refreshRegisterView();
        map->repaint();
    }
    if (!formModel)
        return;
    // The spin boxes with a display recompute it, even when their value did
    // not change. A file cannot tell what the chip's status fields read:
    // after a load they show "n/a" and the bulbs the disabled picture until
    // the next read.
    formModel->fireDisplays();
    if (command == Command::FileToGui)
        formModel->markChipOnly();
    if (undoActions)
        undoActions->operationShown(command);
}

// Shows guiImage in every widget, in key order, from a copy of the image as
// it stood before the push: a field's rules may re-fire another field whose
// turn has not come yet.
void MainClass::pushImage(mapshow* map)
{
    const std::vector<quint8> image(map->guiImage, map->guiImage + map->registerCount);
    if (formModel && &formModel->images() == &map->images) {
        formModel->push(image.data());
        return;
    }
    for (auto it = map->parts.cbegin(); it != map->parts.cend(); ++it)
        map->setPartValue(it.key(), image.data());
}
