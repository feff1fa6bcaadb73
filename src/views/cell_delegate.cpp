// The triad view's cells: background, aligned text, selection.

#include "cell_delegate.h"

#include <QPainter>
#include <QStyle>

const QStaticText& CellDelegate::laidOut(const QString& text, const QFont& font) const
{
    if (font != textFont) {
        texts.clear();
        textFont = font;
    }
    auto it = texts.find(text);
    if (it == texts.end()) {
        QStaticText staticText(text);
        staticText.setTextFormat(Qt::PlainText);
        staticText.setPerformanceHint(QStaticText::AggressiveCaching);
        staticText.prepare(QTransform(), font);
        it = texts.insert(text, staticText);
    }
    return *it;
}

Qt::Alignment CellDelegate::alignment(int role)
{
    const Qt::Alignment alignment(role);
    return alignment & Qt::AlignVertical_Mask ? alignment : alignment | Qt::AlignVCenter;
}

void CellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const QVariant background = index.data(Qt::BackgroundRole);
    if (selected)
        painter->fillRect(option.rect, option.palette.brush(QPalette::Highlight));
    else if (background.isValid())
        painter->fillRect(option.rect, background.value<QColor>());

    const QVariant display = index.data(Qt::DisplayRole);
    if (!display.isValid())
        return;
    const QStaticText& text = laidOut(display.toString(), option.font);
    const QSize size = text.size().toSize();
    const QRect place = QStyle::alignedRect(option.direction, alignment(index.data(Qt::TextAlignmentRole).toInt()),
                                            size, option.rect);
    painter->setFont(option.font);
    painter->setPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    // A text wider than its cell (a very narrow window) stays inside it.
    const bool clip = size.width() > option.rect.width();
    if (clip) {
        painter->save();
        painter->setClipRect(option.rect);
    }
    painter->drawStaticText(place.topLeft(), text);
    if (clip)
        painter->restore();
}
