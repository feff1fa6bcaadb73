// The lines of a settings file that are no plain lines: every loader reads
// them in its lenient way, so the user is told of them (or, by zv4280ctl's
// load, the file is refused for them).
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

class OddLines
{
public:
    struct Line
    {
        int number = 0; // from 1
        QString text;   // trimmed
    };

    // Plain are empty lines, map lines, lines that start with "//", and
    // register lines of a register from 0 to registerCount - 1 (or the
    // pause, -1) and a value of one or two hex digits, with nothing behind
    // but a "//" comment. `lines` are trimmed, as HexReader gives them.
    static QVector<Line> find(const QStringList& lines, int registerCount);
    // How many there are and the first `shown` of them, in one line of text:
    // 6 lines are no plain register line: line 3 "Reg12 ZZ", line 5
    // "Reg12 = 0x5F" and 4 more.
    static QString describe(const QVector<Line>& odd, int shown = 3);
};
