// The status line of the main window.
#include "operation_status.h"

namespace {

using Command = clerk::Command;

// How many odd lines the line names; the tooltip names more.
constexpr int kNamedInLine = 3;
constexpr int kNamedInTip = 20;

QString what(Command command)
{
    switch (command) {
    case Command::ChipToGui: return QStringLiteral("Chip read");
    case Command::GuiToChip: return QStringLiteral("Chip write");
    case Command::FileToChip: return QStringLiteral("File to chip");
    case Command::ChipToFile: return QStringLiteral("Chip to file");
    case Command::FileToGui: return QStringLiteral("File load");
    case Command::GuiToFile: return QStringLiteral("Save");
    case Command::ReadOne: return QStringLiteral("Register read");
    case Command::WriteOne: return QStringLiteral("Register write");
    }
    return QString();
}

QString registers(int count)
{
    return count == 1 ? QStringLiteral("1 register") : QStringLiteral("%1 registers").arg(count);
}

QString board(const QString& key)
{
    return QStringLiteral("board ") + key.trimmed();
}

} // namespace

OperationStatus::Outcome OperationStatus::outcomeOf(const clerk* worker, Command started)
{
    Outcome o;
    o.command = started;
    if (!worker)
        return o;
    o.fileName = worker->fileName;
    o.read = worker->registersRead;
    o.written = worker->registersWritten;
    o.board = worker->board;
    o.remark = worker->remark;
    o.oddLines = worker->oddLines;
    return o;
}

OperationStatus::OperationStatus(QWidget* parent) : QLabel(parent)
{
    setObjectName(QStringLiteral("operationStatus"));
    // A long line is cut at the window's edge, never widens the window.
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void OperationStatus::started()
{
    clock.start();
}

void OperationStatus::ended(const Outcome& o, const QString& failure)
{
    const QString time = QStringLiteral("%1 ms").arg(clock.isValid() ? clock.elapsed() : 0);
    QString line;
    if (!failure.isEmpty()) {
        line = QStringLiteral("%1 failed after %2: %3")
                   .arg(what(o.command), time, QString(failure).replace(QLatin1Char('\n'), QLatin1String("; ")));
    } else {
        const QString file = QLatin1Char('"') + o.fileName + QLatin1Char('"');
        switch (o.command) {
        case Command::ChipToGui:
            line = QStringLiteral("%1: %2 from %3").arg(what(o.command), registers(o.read), board(o.board));
            break;
        case Command::GuiToChip:
            line = QStringLiteral("%1: %2 to %3").arg(what(o.command), registers(o.written), board(o.board));
            if (o.read > 0)
                line += QStringLiteral(", %1 read back").arg(o.read);
            break;
        case Command::FileToChip:
            line = QStringLiteral("%1: %2 from %3 to %4").arg(what(o.command), registers(o.written), file, board(o.board));
            break;
        case Command::ChipToFile:
            line = QStringLiteral("%1: %2 from %3 to %4").arg(what(o.command), registers(o.written), board(o.board), file);
            break;
        case Command::FileToGui:
            line = QStringLiteral("%1: %2 from %3").arg(what(o.command), registers(o.read), file);
            break;
        case Command::GuiToFile:
            line = QStringLiteral("%1: %2 to %3").arg(what(o.command), registers(o.written), file);
            break;
        case Command::ReadOne:
        case Command::WriteOne:
            line = QStringLiteral("%1 on %2").arg(what(o.command), board(o.board));
            break;
        }
        line += QStringLiteral(", %1").arg(time);
        if (!o.remark.isEmpty())
            line += QStringLiteral("; ") + o.remark;
    }
    QString tip = line;
    if (!o.oddLines.isEmpty()) {
        line += QStringLiteral("; ") + OddLines::describe(o.oddLines, kNamedInLine);
        tip += QStringLiteral("\n\nLines that are no plain register lines (%1):").arg(o.oddLines.size());
        for (int i = 0; i < o.oddLines.size() && i < kNamedInTip; ++i)
            tip += QStringLiteral("\nline %1: %2").arg(o.oddLines.at(i).number).arg(o.oddLines.at(i).text);
        if (o.oddLines.size() > kNamedInTip)
            tip += QStringLiteral("\n... and %1 more").arg(o.oddLines.size() - kNamedInTip);
    }
    setText(line);
    setToolTip(tip);
}
