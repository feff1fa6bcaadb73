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

private:
    const QStaticText& laidOut(const QString& text, const QFont& font) const;

    mutable QHash<QString, QStaticText> texts; // laid out in `textFont`
    mutable QFont textFont;
};
