// Writing .hex settings files.
#include "hex_writer.h"

#include "gui_save.h"
#include "hex_format.h"

#include <QFile>
#include <QSaveFile>

HexWriter::HexWriter(const QString& path, bool append) : path(path), append(append) {}

HexWriter::~HexWriter() = default;

bool HexWriter::open()
{
    if (append) {
        auto* f = new QFile(path);
        file.reset(f);
        failed = !f->open(QIODevice::WriteOnly | QIODevice::Append);
    } else {
        // A file that can be written in a folder that cannot (no room for
        // the temporary copy) is written in place.
        auto* f = new QSaveFile(path);
        f->setDirectWriteFallback(true);
        file.reset(f);
        failed = !f->open(QIODevice::WriteOnly);
    }
    return !failed;
}

bool HexWriter::write(const QString& text)
{
    if (failed || !file)
        return false;
    const QByteArray bytes = text.toUtf8();
    failed = file->write(bytes) != bytes.size();
    return !failed;
}

bool HexWriter::commit()
{
    if (!file)
        return false;
    bool ok = !failed;
    if (auto* saveFile = qobject_cast<QSaveFile*>(file.get())) {
        if (ok)
            ok = saveFile->commit();
        else
            saveFile->cancelWriting();
    } else {
        ok = file->flush() && ok;
        file->close();
        ok = ok && file->error() == QFileDevice::NoError;
    }
    file.reset();
    failed = !ok;
    return ok;
}

bool HexWriter::writeFile(const QString& path, const QString& text, bool append)
{
    HexWriter writer(path, append);
    return writer.open() && writer.write(text) && writer.commit();
}

QString HexWriter::guiText(const GuiSave& save, const std::function<void(int)>& progress)
{
    const QChar newline(QLatin1Char('\n'));
    QString text = HexFormat::mapLine(save.chipName) + newline;
    const int count = qMin(save.guiImage.size(), HexFormat::lastSavedRegister + 1);
    for (int i = 0; i < count; ++i) {
        const quint8 value = quint8(save.guiImage.at(i));
        bool written;
        if (save.changesOnly) {
            written = i >= save.icImage.size() || value != quint8(save.icImage.at(i));
        } else {
            // A register left out takes its heading with it.
            written = !save.leftOut.value(i, false);
            if (written && save.withComments) {
                const QString heading = HexFormat::heading(save.chipName, i);
                if (!heading.isEmpty())
                    text += heading + newline;
            }
        }
        if (written) {
            text += save.withComments ? HexFormat::registerLine(i, value, save.comments.value(i))
                                      : HexFormat::registerLine(i, value);
            text += newline;
        }
        if (progress && i < HexFormat::lastSavedRegister)
            progress(i * 100 / HexFormat::lastSavedRegister);
    }
    return text;
}

QString HexWriter::chipText(const QString& chipName, const QByteArray& registers)
{
    const QChar newline(QLatin1Char('\n'));
    QString text = HexFormat::mapLine(chipName) + newline;
    for (int i = 0; i < registers.size(); ++i)
        text += HexFormat::registerLine(i, quint8(registers.at(i))) + newline;
    return text;
}
