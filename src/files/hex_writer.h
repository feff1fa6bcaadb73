// Writes .hex settings files: the text of a save of the GUI state or of the
// chip, and a file that is replaced whole or not at all, or appended to.
// Works on plain data only, so any thread may use it.
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

class QFileDevice;
struct GuiSave;

class HexWriter
{
public:
    // A writer for `path`. With append the text goes to the end of the file;
    // otherwise the file is replaced on commit(), through a temporary file,
    // or written over in place when its folder refuses one (or with inPlace).
    // Whatever fails, the old content stays or is put back: an append is cut
    // off again, and a file written in place gets its old bytes back.
    HexWriter(const QString& path, bool append, bool inPlace = false);
    ~HexWriter();

    // False when the file cannot be written.
    bool open();
    // Adds text in UTF-8; false once anything failed.
    bool write(const QString& text);
    // Ends the file: every byte written and flushed, or the old content
    // kept. False when the new text is not there whole.
    bool commit();
    // What went wrong, in words for the user; empty while all is well or
    // when the file could not even be opened.
    QString errorText() const { return error; }

    // open(), write(text) and commit() in one.
    static bool writeFile(const QString& path, const QString& text, bool append);

    // The text of a save of the GUI state: the map line, then registers 0 to
    // 106 at most (to the last one with allRegisters), in full or only the
    // changed ones, with the comments and, in a full save, the headings.
    // `progress` hears i * 100 / last after each register i below the last.
    static QString guiText(const GuiSave& save, const std::function<void(int)>& progress = {});
    // The text of a save of what the chip holds: the map line and every
    // register of `registers`, without comments.
    static QString chipText(const QString& chipName, const QByteArray& registers);

private:
    // Notes the failure of the file device and gives false.
    bool fail();
    // Gives the file back its old content after a failed append or a failed
    // write in place; false when even that failed.
    bool putBack();

    QString path;
    bool append = false;
    bool inPlace = false;
    bool failed = false;
    QString error;
    qint64 keptFrom = 0;  // append: the old size
    QByteArray keptBytes; // in place: the old content
    std::unique_ptr<QFileDevice> file;
};
