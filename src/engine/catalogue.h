#pragma once

// Every field of the forms, made from the .ui files at build time: what a
// field is (registers and bits, kind, window, group, caption, items, range,
// display) without any widget. QtCore only.

#include "field_kind.h"
#include "part.h"

#include <QString>
#include <QStringList>
#include <QVector>

// A field and its widget as the form gives it. record.widget stays null.
struct FieldEntry
{
    QString objectName;
    part record;
    FieldKind kind = FieldKind::Other;
    QString window, tab, group, groupName; // window: its key among the main window's windows
    QString caption, checkText;            // caption: the text of its "<stem>LabelG" sibling
    QString captionObject;                 // that sibling's object name; empty when it has none
    QStringList items;                     // a combo box's item texts
    int minimum = 0, maximum = 99;         // a spin box's range in the form
    bool enabled = true, ancestorsEnabled = true;
    QString display; // object name of its "_Expression" sibling, if any
};

// A display "<fieldKey>_Expression" and the field whose location it shows.
struct DisplayEntry
{
    QString objectName, key, window, tab, group, text, tooltipOwner;
    bool enabled = true, ancestorsEnabled = true;
};

// A caption: a label whose object name ends in "LabelG" or "Lab".
struct CaptionEntry
{
    QString objectName, text, window;
    bool enabled = true;
};

class Catalogue
{
public:
    // Built once, on first use, from the generated tables.
    static const Catalogue& instance();

    // Sorted by fieldKey (record.name), in QString order.
    const QVector<FieldEntry>& fields() const { return fieldList; }
    // By fieldKey; nullptr when none.
    const FieldEntry* field(const QString& key) const;
    const FieldEntry* fieldByObjectName(const QString& name) const;
    // Index into fields(), -1 when none.
    int indexOf(const QString& key) const;

    // Sorted by key.
    const QVector<DisplayEntry>& displays() const { return displayList; }
    const DisplayEntry* display(const QString& key) const;

    // Sorted by object name.
    const QVector<CaptionEntry>& captions() const { return captionList; }
    const CaptionEntry* caption(const QString& objectName) const;

    // The one chip word of the fields, "ZV4280v2".
    QString chipName() const { return chip; }
    // Highest position + width over all fields, in whole registers.
    quint32 registerCount() const { return registers; }

private:
    Catalogue();

    QVector<FieldEntry> fieldList;
    QVector<int> byObjectName; // indexes into fieldList, sorted by object name
    QVector<DisplayEntry> displayList;
    QVector<CaptionEntry> captionList;
    QString chip;
    quint32 registers = 0;
};
