// The comments of a save with comments: each register's fields in the words
// of the screens, read from the live widgets on the GUI thread.
#pragma once

#include <QStringList>

class mapshow;

class CommentBuilder
{
public:
    // One comment per register of the map, in register order. With
    // changesOnly, fields whose bits are the same in guiImage and icImage
    // are left out. Reads widgets: call it on the GUI thread.
    static QStringList build(const mapshow& map, bool changesOnly);
};
