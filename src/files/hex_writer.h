// Writes .hex settings files: the text of a save of the GUI state or of the
// chip, and a file that is replaced whole or not at all, or appended to.
// Works on plain data only, so any thread may use it.
#pragma once

#include <QString>

#include <functional>
#include <memory>

class QByteArray;
class QFileDevice;
struct GuiSave;

class HexWriter
{
public:
    // A writer for `path`. With append the text goes to the end of the file,
    // which is never truncated; otherwise the file is replaced on commit().
    HexWriter(const QString& path, bool append);
    ~HexWriter();

    // False when the file cannot be written.
    bool open();
    // Adds text in UTF-8; false once anything failed.
    bool write(const QString& text);
    // Ends the file. Replacing: until commit() the old file stays as it was,
    // and a failure (or a writer dropped without commit) leaves it so.
    bool commit();

    // open(), write(text) and commit() in one.
    static bool writeFile(const QString& path, const QString& text, bool append);

    // The text of a save of the GUI state: the map line, then registers 0 to
    // 106 at most, in full or only the changed ones, with the comments and,
    // in a full save, the headings. `progress` hears i * 100 / 106 after each
    // register i below 106.
    static QString guiText(const GuiSave& save, const std::function<void(int)>& progress = {});
    // The text of a save of what the chip holds: the map line and every
    // register of `registers`, without comments.
    static QString chipText(const QString& chipName, const QByteArray& registers);

private:
    QString path;
    bool append = false;
    bool failed = false;
    std::unique_ptr<QFileDevice> file;
};
