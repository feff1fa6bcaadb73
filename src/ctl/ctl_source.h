// A source of register settings for zv4280ctl's diff and export: "chip"
// (read now) or a .hex file, as an image and as the writes it stands for.
#pragma once

#include "hex_entries.h"

#include <QByteArray>
#include <QString>
#include <QVector>

class CtlSession;

class CtlSource
{
public:
    // `name`: "chip", or a file's path.
    CtlSource(CtlSession& session, const QString& name);

    bool isChip() const { return name == QLatin1String("chip"); }
    // Reads the chip or the file; false with the reason, and `board` set
    // when the board failed rather than the input.
    bool load(QString* error, bool* board);

    QString name;
    QByteArray image;                  // every register; what a file leaves out is 0
    QVector<bool> known;               // registers the source tells
    QVector<HexEntries::Entry> entries; // the file's writes; the chip's settings registers after a pause

private:
    CtlSession& session;
};
