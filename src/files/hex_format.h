// The text format of the .hex settings files: what kind a line is, how a
// register line is read and written, the map line and the headings.
#pragma once

#include <QString>

#include <optional>

class HexFormat
{
public:
    enum class LineKind { Map, Register, Other };

    // What a usable register line holds.
    struct Register
    {
        qint32 number = 0;
        quint8 value = 0;
    };

    // The last register that a save of the GUI state writes.
    static constexpr int lastSavedRegister = 106;

    // Kind of a line already trimmed: ";..." names a map, "Reg..." holds a
    // register, anything else (headings, comment continuations) is ignored.
    static LineKind classify(const QString& trimmedLine);
    // The map name of a map line: the text behind ";", every "." read as "v".
    static QString mapName(const QString& trimmedMapLine);
    // The map that a map line means to a load into the GUI: any name that
    // holds the chip word "ZV4280" (";ZV4280", ";ZV4280.2") is the map
    // ZV4280v2; other names stand as mapName gives them.
    static QString loadedMapName(const QString& trimmedMapLine);
    // A register line with tabs as blanks and "&", "0x" and "Reg" dropped:
    // the register number and the value are its first two pieces.
    static QString readerText(const QString& line);
    // Reads a register line the lenient way; nothing when the line is not
    // usable.
    static std::optional<Register> readRegister(const QString& line);
    // Why a register line may not go to the chip, read as readRegister reads
    // it: its number is no register from 0 to registerCount - 1, or its value
    // is no byte of one or two hex digits. Empty when it may.
    static QString chipLineFault(const QString& line, int registerCount);
    // The first half of that: why the line's number is no register (nor the
    // pause, -1); empty when it is one.
    static QString numberFault(const QString& line, int registerCount);
    // A load's refusal of one line of a file: the file, the line's number
    // from 1, why, and the line itself.
    static QString refusedLine(const QString& file, int number, const QString& line, const QString& why);

    // ";" and the chip name less "v2": ";ZV4280".
    static QString mapLine(const QString& chipName);
    // "Reg12\t5F", and with a comment "Reg12\t5F //" + comment.
    static QString registerLine(qint32 number, quint8 value);
    static QString registerLine(qint32 number, quint8 value, const QString& comment);
    // What stands between two fields in one register's comment: it starts a
    // continuation line.
    static QString commentSeparator();
    // The heading written before a register in a full save with comments;
    // empty when the register has none.
    static QString heading(const QString& chipName, qint32 number);
};
