// load and save of zv4280ctl.
#include "file_commands.h"

#include "ctl_board.h"
#include "ctl_options.h"
#include "ctl_output.h"
#include "ctl_session.h"
#include "hex_entries.h"
#include "hex_reader.h"
#include "engine/chip_owned.h"
#include "engine/register_images.h"

#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>
#include <cstring>

FileCommands::FileCommands(CtlSession& s, CtlOutput& o) : session(s), out(o) {}

int FileCommands::boardFailure(const QString& what)
{
    const QString why = CtlBoard::absence(session.boardChosen());
    return out.fail(CtlExit::Board, why.isEmpty() ? what : what + QStringLiteral(": ") + why);
}

// A load takes what a save writes: every map line names the chip (";ZV4280",
// ";ZV4280v2", ";ZV4280.2", read as a load into the forms reads them), every
// register line holds one of the chip's registers, and one register line at
// least is there; and, unless lenient, no line is other than plain.
int FileCommands::check(const QString& file, const RegisterImages& map, bool lenient, QString* refusal,
                        QVector<OddLines::Line>* odd, QJsonArray* sent)
{
    QVector<HexEntries::Entry> entries;
    QVector<OddLines::Line> found;
    if (!HexEntries::read(file, map.chipName, map.registerCount, &entries, refusal, &found))
        return -1;
    if (odd)
        *odd = found;
    if (!found.isEmpty() && !lenient) {
        *refusal = QStringLiteral("\"%1\": %2").arg(file, OddLines::describe(found, 5));
        return -1;
    }
    QVector<bool> present;
    if (sent)
        HexEntries::image(entries, map.registerCount, &present);
    for (int r = 0; r < present.size(); ++r)
        if (present[r])
            sent->append(r);
    return int(std::count_if(entries.cbegin(), entries.cend(), [](const HexEntries::Entry& e) { return !e.isPause(); }));
}

int FileCommands::checkLoad(const QString& file, bool lenient, int* status)
{
    QString refusal;
    QVector<OddLines::Line> odd;
    const int registers = check(file, session.images(), lenient, &refusal, &odd);
    if (registers < 0) {
        if (!odd.isEmpty())
            refusal += QStringLiteral("; --lenient loads such lines as they read");
        *status = out.fail(CtlExit::Usage, refusal);
        return -1;
    }
    QJsonArray oddLines;
    for (const OddLines::Line& l : odd)
        oddLines.append(QJsonObject{{QStringLiteral("line"), l.number}, {QStringLiteral("text"), l.text}});
    if (!odd.isEmpty())
        out.set(QStringLiteral("oddLines"), oddLines);
    return registers;
}

int FileCommands::load(const QString& file, const QString& pause, bool lenient)
{
    qint64 pauseMs = -1;
    if (!pause.isEmpty() && (!CtlOptions::number(pause, &pauseMs) || pauseMs > 999999))
        return out.fail(CtlExit::Usage, QStringLiteral("--pause takes milliseconds, 0 to 999999; not \"%1\"").arg(pause));
    int status = 0;
    const int registers = checkLoad(file, lenient, &status);
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

int FileCommands::save(const QString& file, bool comments, bool changesOnly, const QString& base, bool all)
{
    session.settings.allRegisters = all;
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
    if (changesOnly) { // what the chip gave is compared with the base, but for what the chip alone writes
        std::memcpy(map.icImage, map.cfgImage, map.registerCount);
        const QVector<bool>& chipOwned = ChipOwned::registers();
        for (quint32 r = 0; r < map.registerCount; ++r)
            if (chipOwned.value(int(r), false))
                map.icImage[r] = map.guiImage[r];
    }
    failure = session.run(clerk::Command::GuiToFile, file, false);
    if (!failure.isEmpty())
        return out.fail(CtlExit::Usage, QStringLiteral("cannot write \"%1\": %2").arg(file, failure));
    out.set(QStringLiteral("file"), file);
    out.set(QStringLiteral("comments"), comments);
    out.set(QStringLiteral("changesOnly"), changesOnly);
    if (changesOnly)
        out.set(QStringLiteral("base"), baseFile);
    if (all)
        out.set(QStringLiteral("all"), true);
    return out.done();
}
