// Paints a cell of the triad view as its background and its text, the few
// texts laid out once: a maximised map window has thousands of cells.

#pragma once

#include <QFont>
#include <QHash>
#include <QStaticText>
#include <QStyledItemDelegate>

class CellDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // `text` laid out in `font`, kept for the next call.
    const QStaticText& laidOut(const QString& text, const QFont& font) const;
    // The place of a text of the alignment role's value `role`: centred
    // vertically unless the role says otherwise.
    static Qt::Alignment alignment(int role);

private:

    mutable QHash<QString, QStaticText> texts; // laid out in `textFont`
    mutable QFont textFont;
};
