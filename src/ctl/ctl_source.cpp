// The chip or a settings file as a source of register values for zv4280ctl.
#include "ctl_source.h"

#include "ctl_board.h"
#include "ctl_session.h"
#include "engine/register_images.h"
#include "hex_format.h"

CtlSource::CtlSource(CtlSession& s, const QString& sourceName) : name(sourceName), session(s) {}

bool CtlSource::load(QString* error, bool* board)
{
    RegisterImages& map = session.images();
    *board = false;
    if (isChip()) {
        const QString failure = session.run(clerk::Command::ChipToGui, QString(), false);
        if (!failure.isEmpty()) {
            const QString why = CtlBoard::absence(session.boardChosen());
            *error = why.isEmpty() ? failure : failure + QStringLiteral(": ") + why;
            *board = true;
            return false;
        }
        image = QByteArray(reinterpret_cast<const char*>(map.icImage), int(map.registerCount));
        known.fill(true, int(map.registerCount));
        entries = HexEntries::ofImage(image, HexFormat::lastSavedRegister);
        return true;
    }
    if (!HexEntries::read(name, map.chipName, map.registerCount, &entries, error))
        return false;
    image = HexEntries::image(entries, map.registerCount, &known);
    return true;
}
