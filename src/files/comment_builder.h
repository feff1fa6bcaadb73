// The comments of a save with comments: each register's fields in the words
// of the screens, as the form model holds them.
#pragma once

#include <QStringList>

class FormModel;

class CommentBuilder
{
public:
    // What a field says on the screens, in the words of a comment, for its
    // range of bits that starts at `rangeStart`: "Execute: enabled", "Mode:
    // single", "C-divider ratio:  4".
    static QString fieldText(const FormModel& model, int field, qint64 rangeStart);

    // One comment per register of the map, in register order. With
    // changesOnly, fields whose bits are the same in guiImage and icImage
    // are left out.
    static QStringList build(const FormModel& model, bool changesOnly);
};
