// The register images, the form model and the worker's commands for
// zv4280ctl.
#include "ctl_session.h"

#include "engine/catalogue.h"
#include "engine/form_model.h"
#include "engine/register_images.h"
#include "gui_save.h"

#include <QEventLoop>

CtlSession::CtlSession(const QString& boardKey) : key(boardKey)
{
    usb.selectedKey = key;
}

CtlSession::~CtlSession()
{
    forms.reset(); // before the images it works on
}

RegisterImages& CtlSession::images()
{
    if (!registers) {
        const Catalogue& catalogue = Catalogue::instance();
        registers = std::make_unique<RegisterImages>(catalogue.chipName(), catalogue.registerCount());
    }
    return *registers;
}

FormModel& CtlSession::model()
{
    if (!forms) {
        forms = std::make_unique<FormModel>(images());
        forms->setCalibration(calibration);
    }
    return *forms;
}

// The worker hands the images over on this thread, so the loop turns until
// its thread has ended; its one end message comes before that.
QString CtlSession::run(clerk::Command command, const QString& fileName, bool intoForms)
{
    // The forms take their start state before the chip's or a file's image
    // comes in, as in the program.
    FormModel& forms = model();
    RegisterImages& map = images();
    clerk worker(command, fileName, &usb, settings, {{map.chipName, &map}});
    if (command == clerk::Command::GuiToFile)
        worker.save = GuiSave::take(forms, settings);
    QString message = QStringLiteral("the operation ended without a word");
    QEventLoop loop;
    QObject::connect(&worker, &clerk::error_mess, &loop, [&message](const QString& text) { message = text; });
    QObject::connect(&worker, &QThread::finished, &loop, &QEventLoop::quit);
    worker.start();
    loop.exec();
    worker.wait();
    if (!message.isEmpty() || !intoForms)
        return message;
    // A write with read-back ends as a read.
    const clerk::Command ended = worker.command;
    if (ended == clerk::Command::ChipToGui || ended == clerk::Command::FileToGui)
        forms.push(map.guiImage);
    forms.fireDisplays();
    if (ended == clerk::Command::FileToGui)
        forms.markChipOnly();
    return message;
}
