// load and save of zv4280ctl.
#include "file_commands.h"

#include "ctl_board.h"
#include "ctl_options.h"
#include "ctl_output.h"
#include "ctl_session.h"
#include "hex_format.h"
#include "hex_reader.h"
#include "engine/register_images.h"

#include <cstring>

FileCommands::FileCommands(CtlSession& s, CtlOutput& o) : session(s), out(o) {}

int FileCommands::boardFailure(const QString& what)
{
    const QString why = CtlBoard::absence(session.boardChosen());
    return out.fail(CtlExit::Board, why.isEmpty() ? what : what + QStringLiteral(": ") + why);
}

// A load takes what a save writes: every map line names the chip (";ZV4280",
// ";ZV4280v2", ";ZV4280.2", read as a load into the forms reads them), every
// register line holds one of the chip's registers and a byte, and one
// register line at least is there.
int FileCommands::check(const QString& file, const RegisterImages& map, QString* refusal)
{
    QStringList lines;
    if (!HexReader::readLines(file, &lines, refusal)) {
        if (refusal->isEmpty())
            *refusal = QStringLiteral("cannot read \"%1\"").arg(file);
        return -1;
    }
    int registers = 0;
    for (int i = 0; i < lines.size(); ++i) {
        const QString& line = lines.at(i);
        switch (HexFormat::classify(line)) {
        case HexFormat::LineKind::Map: {
            const QString name = HexFormat::loadedMapName(line);
            if (name != map.chipName) {
                *refusal = HexFormat::refusedLine(file, i + 1, line,
                                                  QStringLiteral("the map \"%1\" is not this chip's; a saved file names it \"%2\"")
                                                      .arg(HexFormat::mapName(line), HexFormat::mapLine(map.chipName)));
                return -1;
            }
            break;
        }
        case HexFormat::LineKind::Register: {
            const QString fault = HexFormat::chipLineFault(line, int(map.registerCount));
            if (!fault.isEmpty()) {
                *refusal = HexFormat::refusedLine(file, i + 1, line, fault);
                return -1;
            }
            registers += HexFormat::readRegister(line)->number >= 0 ? 1 : 0; // -1 is a pause
            break;
        }
        case HexFormat::LineKind::Other:
            break;
        }
    }
    return registers;
}

int FileCommands::checkLoad(const QString& file, int* status)
{
    QString refusal;
    const int registers = check(file, session.images(), &refusal);
    if (registers < 0)
        *status = out.fail(CtlExit::Usage, refusal);
    return registers;
}

int FileCommands::load(const QString& file, const QString& pause)
{
    qint64 pauseMs = -1;
    if (!pause.isEmpty() && (!CtlOptions::number(pause, &pauseMs) || pauseMs > 999999))
        return out.fail(CtlExit::Usage, QStringLiteral("--pause takes milliseconds, 0 to 999999; not \"%1\"").arg(pause));
    int status = 0;
    const int registers = checkLoad(file, &status);
    if (registers < 0)
        return status;

    // The map names are checked above, in the way that lets a saved file in.
    session.settings.configCheck = false;
    if (pauseMs >= 0)
        session.settings.writePauseMs = int(pauseMs);
    const QString failure = session.run(clerk::Command::FileToChip, file, false);
    if (!failure.isEmpty())
        return boardFailure(failure);
    out.set(QStringLiteral("file"), file);
    out.set(QStringLiteral("registers"), registers);
    return out.done();
}

int FileCommands::save(const QString& file, bool comments, bool changesOnly, const QString& base)
{
    const QString baseFile = base.isEmpty() ? QStringLiteral("default.hex") : base;
    session.settings.comments = comments;
    session.settings.changesOnly = changesOnly;
    session.settings.mergeFile = false;
    if (changesOnly) {
        // A base that no load would take is refused before the board is touched.
        QStringList lines;
        QString refusal;
        if (!HexReader::readLines(baseFile, &lines, &refusal))
            return out.fail(CtlExit::Usage, refusal.isEmpty() ? QStringLiteral("cannot read the base file \"%1\"").arg(baseFile)
                                                              : QStringLiteral("base file: ") + refusal);
        // The base file goes into cfgImage as a load into the forms reads it.
        const QString failure = session.run(clerk::Command::FileToGui, baseFile, false);
        if (!failure.isEmpty())
            return out.fail(CtlExit::Usage, QStringLiteral("base file \"%1\": %2").arg(baseFile, failure));
    }
    QString failure = session.run(clerk::Command::ChipToGui);
    if (!failure.isEmpty())
        return boardFailure(failure);
    RegisterImages& map = session.images();
    if (changesOnly) // what the chip gave is compared with the base
        std::memcpy(map.icImage, map.cfgImage, map.registerCount);
    failure = session.run(clerk::Command::GuiToFile, file, false);
    if (!failure.isEmpty())
        return out.fail(CtlExit::Usage, QStringLiteral("cannot write \"%1\": %2").arg(file, failure));
    out.set(QStringLiteral("file"), file);
    out.set(QStringLiteral("comments"), comments);
    out.set(QStringLiteral("changesOnly"), changesOnly);
    if (changesOnly)
        out.set(QStringLiteral("base"), baseFile);
    return out.done();
}
