// Writing .hex settings files.
#include "hex_writer.h"

#include "gui_save.h"
#include "hex_format.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>

HexWriter::HexWriter(const QString& path, bool append, bool inPlace) : path(path), append(append), inPlace(inPlace) {}

HexWriter::~HexWriter()
{
    if (file && !append && !inPlace)
        static_cast<QSaveFile*>(file.get())->cancelWriting();
    else if (file)
        putBack(); // dropped before commit: nothing of the new text stays
}

bool HexWriter::open()
{
    auto refuse = [this] {
        file.reset();
        failed = true;
        return false;
    };
    if (!append && !inPlace) {
        auto* f = new QSaveFile(path);
        file.reset(f);
        if (f->open(QIODevice::WriteOnly))
            return true;
        // A file that can be written in a folder that cannot (no room for
        // the temporary copy) is written in place.
        inPlace = QFileInfo(path).isFile();
        if (!inPlace)
            return refuse();
    }
    auto* f = new QFile(path);
    file.reset(f);
    if (!f->open(append ? QIODevice::ReadWrite | QIODevice::Append : QIODevice::ReadWrite))
        return refuse();
    // What a failure must put back: the old end of an appended file, the old
    // bytes of a file written over.
    if (append)
        keptFrom = f->size();
    else
        keptBytes = f->readAll();
    if (f->error() != QFileDevice::NoError || (!append && !(f->seek(0) && f->resize(0))))
        return refuse();
    return true;
}

bool HexWriter::fail()
{
    const int code = errno;
    if (!failed && file) {
        error = file->errorString();
        if (code != 0 && (error.isEmpty() || error == QLatin1String("Unknown error")))
            error = qt_error_string(code);
    }
    failed = true;
    return false;
}

bool HexWriter::write(const QString& text)
{
    if (failed || !file)
        return false;
    const QByteArray bytes = text.toUtf8();
    if (file->write(bytes) != bytes.size() || file->error() != QFileDevice::NoError)
        return fail();
    return true;
}

bool HexWriter::putBack()
{
    file->close(); // what it could not write goes with it
    file.reset();
    QFile f(path);
    return f.open(QIODevice::ReadWrite) && f.seek(keptFrom) && f.write(keptBytes) == keptBytes.size() && f.flush()
           && f.resize(keptFrom + keptBytes.size()) && f.error() == QFileDevice::NoError;
}

bool HexWriter::commit()
{
    if (!file)
        return false;
    if (!failed && (!file->flush() || file->error() != QFileDevice::NoError))
        fail();
    bool damaged = false;
    if (!append && !inPlace) {
        auto* saveFile = static_cast<QSaveFile*>(file.get());
        if (!failed && !saveFile->commit())
            fail();
        if (failed)
            saveFile->cancelWriting();
        file.reset();
    } else if (failed) {
        damaged = !putBack();
    } else {
        file->close();
        file.reset();
    }
    if (failed)
        error = QStringLiteral("\"%1\" could not be written (%2); ").arg(path, error)
                + (damaged ? QStringLiteral("its old content could not be put back: the file is damaged")
                           : QStringLiteral("the file is as it was"));
    return !failed;
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
    const int count = save.allRegisters ? save.guiImage.size()
                                        : qMin(save.guiImage.size(), HexFormat::lastSavedRegister + 1);
    const int last = qMax(1, count - 1);
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
        if (progress && i < last)
            progress(i * 100 / last);
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
