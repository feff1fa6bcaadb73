// The service panel's settings as the worker takes them when it starts:
// each member starts as the panel's control does.
#pragma once

#include <QtGlobal>

#include <tuple>

struct PanelSettings
{
    // How the whole chip goes over the wire: one register a frame, frames of
    // register triples, or runs of registers by autoincrement.
    enum class Style : qint32 { OneAtATime = 0, Blocks = 1, Autoincrement = 2 };

    Style readStyle = Style::Autoincrement;
    Style writeStyle = Style::Blocks;
    // A write sends only the registers where the forms differ from the chip.
    bool changesOnly = true;
    // A write ends with a read of the chip, after the write pause.
    bool readBack = true;
    // A changes-only write to a known chip reads back only the registers it
    // wrote (a script's write of a few fields), not the whole chip.
    bool readBackWritten = false;
    // The pause before the read-back and before each section of a file
    // sent to the chip.
    int writePauseMs = 200;
    // A file goes to the chip one register a frame instead of in blocks.
    bool separateWrite = false;
    // A save gives each register line the words of its fields.
    bool comments = false;
    // A save goes to the end of the file instead of replacing it.
    bool mergeFile = false;
    // A file's map name must be the map's; off, every file is the first map's.
    bool configCheck = true;
    // A full save keeps the status registers, and the service registers.
    bool statusBits = true;
    bool serviceBits = true;
    // A save goes on past register 106 to the chip's last register, 290.
    bool allRegisters = false;
    // A read of the chip comes round again, autoPauseSeconds after the last
    // one ended.
    bool repeatRead = false;
    int autoPauseSeconds = 0;
    // The register that the single-register commands read or write, and the
    // value written or read.
    int registerNumber = 0;
    quint8 registerValue = 0;

private:
    auto members() const
    {
        return std::tie(readStyle, writeStyle, changesOnly, readBack, readBackWritten, writePauseMs, separateWrite, comments, mergeFile,
                        configCheck, statusBits, serviceBits, allRegisters, repeatRead, autoPauseSeconds, registerNumber,
                        registerValue);
    }

public:
    bool operator==(const PanelSettings& o) const { return members() == o.members(); }
    bool operator!=(const PanelSettings& o) const { return !(*this == o); }
};
