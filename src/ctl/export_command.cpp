// The export command of zv4280ctl.
#include "export_command.h"

#include "ctl_output.h"
#include "ctl_session.h"
#include "ctl_source.h"
#include "engine/register_images.h"
#include "firmware_export.h"
#include "hex_writer.h"

ExportCommand::ExportCommand(CtlSession& s, CtlOutput& o) : session(s), out(o) {}

int ExportCommand::run(const QString& formatName, const QString& sourceName, bool changesOnly, const QString& base,
                       const QString& file)
{
    FirmwareExport::Format format = FirmwareExport::Format::C;
    if (!FirmwareExport::parseFormat(formatName, &format))
        return out.fail(CtlExit::Usage, QStringLiteral("--format takes c, csv or json; not \"%1\"").arg(formatName));

    // The base is checked before the board is touched.
    CtlSource baseSource(session, base.isEmpty() ? QStringLiteral("default.hex") : base);
    QString error;
    bool board = false;
    if (changesOnly && (baseSource.isChip() || !baseSource.load(&error, &board)))
        return out.fail(CtlExit::Usage, QStringLiteral("base file: ") + (error.isEmpty() ? QStringLiteral("give a .hex file") : error));
    CtlSource source(session, sourceName.isEmpty() ? QStringLiteral("chip") : sourceName);
    if (!source.load(&error, &board))
        return out.fail(board ? CtlExit::Board : CtlExit::Usage, error);

    const QVector<HexEntries::Entry> entries =
        changesOnly ? HexEntries::changesFrom(source.entries, baseSource.image) : source.entries;
    FirmwareExport::Header header;
    header.source = source.name;
    header.chip = session.images().chipName;
    const QString text = FirmwareExport::text(format, entries, header);
    const quint32 crc = FirmwareExport::crc32(FirmwareExport::writtenPairs(entries));
    int registers = 0;
    for (const HexEntries::Entry& e : entries)
        registers += e.isPause() ? 0 : 1;

    if (file.isEmpty() && !out.json()) {
        CtlOutput::print(text);
        return int(CtlExit::Done);
    }
    if (file.isEmpty()) {
        out.set(QStringLiteral("text"), text);
    } else {
        HexWriter writer(file, false);
        if (!writer.open() || !writer.write(text) || !writer.commit())
            return out.fail(CtlExit::Usage, QStringLiteral("cannot write \"%1\"%2")
                                                .arg(file, writer.errorText().isEmpty() ? QString() : QStringLiteral(": ") + writer.errorText()));
        out.set(QStringLiteral("file"), file);
    }
    out.set(QStringLiteral("format"), formatName);
    out.set(QStringLiteral("source"), source.name);
    out.set(QStringLiteral("registers"), registers);
    out.set(QStringLiteral("crc32"), qint64(crc));
    return out.done();
}
