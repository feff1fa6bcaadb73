#pragma once

// The field catalogue as the generator writes it from the forms at build
// time: numbers, and texts as indexes into one pool of texts, in which index
// 0 is the empty text. Each text is static string data (QtCompat::StaticText),
// so that the catalogue's texts cost no allocation and no copy.
// Catalogue turns the tables into its entries.

#include "qt_compat.h"

#include <QString>

struct CatalogueTables
{
    // Members in the order in which the generator writes them.
    struct Field
    {
        quint32 objectName, key, chip, window, tab, group, groupName, caption, captionObject, checkText, display;
        quint32 firstSegment, segmentCount, firstItem, itemCount;
        quint32 kind; // a FieldKind
        bool inverted, joined, enabled, ancestorsEnabled;
        qint32 minimum, maximum;
    };
    struct Segment
    {
        quint32 position, width;
    };
    struct Display
    {
        quint32 objectName, key, window, tab, group, text, tooltipOwner;
        bool enabled, ancestorsEnabled;
    };
    struct Caption
    {
        quint32 objectName, text, window;
        bool enabled;
    };

    const QtCompat::StaticText* const* texts;
    quint32 textCount;
    const Field* fields; // sorted by key
    quint32 fieldCount;
    const quint32* fieldsByObjectName; // indexes into fields, sorted by object name
    const Segment* segments;
    const quint32* items; // texts of the combo boxes' items; equal lists are stored once
    const Display* displays; // sorted by key
    quint32 displayCount;
    const Caption* captions; // sorted by object name
    quint32 captionCount;
    quint32 chip;
    quint32 registerCount;
};

extern const CatalogueTables catalogueTables;
