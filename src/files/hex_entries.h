// A .hex settings file as the chip is to take it: its register lines and
// pauses in file order, checked as a load checks them, and the image the
// file gives.
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include "odd_lines.h"

class HexEntries
{
public:
    // One register and its value, or a pause (register -1): a map line and
    // a "Reg-1" line both make one, and file to chip waits there.
    struct Entry
    {
        qint32 reg = -1;
        quint8 value = 0;
        bool isPause() const { return reg < 0; }
        bool operator==(const Entry& o) const { return reg == o.reg && value == o.value; }
    };

    // Reads `path`; false with the reason when it is no settings file of
    // this chip: unreadable, a map line naming another chip, a register
    // line of no register of 0 to registerCount - 1. Lines that are no
    // plain lines (OddLines) refuse the file too, unless `odd` is given to
    // take them: then their values stand as the reader reads them.
    static bool read(const QString& path, const QString& chipName, quint32 registerCount, QVector<Entry>* entries,
                     QString* error, QVector<OddLines::Line>* odd = nullptr);
    // The image the entries give, later lines winning; registers the file
    // leaves out are 0, and `present` (when given) marks the others.
    static QByteArray image(const QVector<Entry>& entries, quint32 registerCount, QVector<bool>* present = nullptr);
    // A pause, then registers 0 to `last` of an image, in rising order: how
    // a save of the settings goes to the chip.
    static QVector<Entry> ofImage(const QByteArray& image, int last);
    // The entries whose register holds another value in `base`; a pause
    // stays only before a register that stays.
    static QVector<Entry> changesFrom(const QVector<Entry>& entries, const QByteArray& base);
};
