// The comments of a save with comments: each register's fields in the words
// of the screens, read from the live widgets on the GUI thread.
#pragma once

#include <QStringList>

class mapshow;
struct part;

class CommentBuilder
{
public:
    // What a field's widget says on the screens, in the words of a comment,
    // for its range of bits that starts at `rangeStart`: "Execute: enabled",
    // "Mode: single", "C-divider ratio:  4". Reads widgets: GUI thread only.
    static QString fieldText(const mapshow& map, const part& field, qint64 rangeStart);

    // One comment per register of the map, in register order. With
    // changesOnly, fields whose bits are the same in guiImage and icImage
    // are left out. Reads widgets: call it on the GUI thread.
    static QStringList build(const mapshow& map, bool changesOnly);
};
