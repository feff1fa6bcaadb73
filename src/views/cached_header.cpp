// The map window's headers: sections as images made once.

#include "cached_header.h"

#include <QEvent>
#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QPainter>

CachedHeader::CachedHeader(Qt::Orientation orientation, QWidget* parent) : QHeaderView(orientation, parent)
{
    setSectionsClickable(true);
    setHighlightSections(true);
    // The sections of other sizes are not needed again.
    connect(this, &QHeaderView::sectionResized, this, [this] { sections.clear(); });
}

void CachedHeader::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const
{
    // A section under the mouse, one of a selection, or one on a background
    // that is not a plain colour is painted as the header paints it, and so
    // is every section for a painter that scales.
    const QWidget* port = viewport();
    const QBrush fill = port->palette().brush(port->backgroundRole());
    const QItemSelectionModel* selection = selectionModel();
    if (!rect.isValid() || underMouse() || QGuiApplication::mouseButtons() != Qt::NoButton ||
        (selection && selection->hasSelection()) || isSortIndicatorShown() || hiddenSectionCount() > 0 ||
        !port->autoFillBackground() || fill.style() != Qt::SolidPattern ||
        painter->deviceTransform().type() > QTransform::TxTranslate) {
        QHeaderView::paintSection(painter, rect, logicalIndex);
        return;
    }
    const int visual = visualIndex(logicalIndex);
    const quint64 look = quint64(quint16(rect.width())) | quint64(quint16(rect.height())) << 16 |
                         quint64(visual == 0) << 32 | quint64(visual == count() - 1) << 33 |
                         quint64(isEnabled()) << 34 | quint64(window()->isActiveWindow()) << 35;
    const QPair<QString, quint64> key(model()->headerData(logicalIndex, orientation()).toString(), look);
    auto it = sections.find(key);
    if (it == sections.end()) {
        // Painted on the viewport's colour away from the image's edges,
        // where glyphs are placed apart.
        const int margin = 4;
        QImage image(rect.size() + QSize(2 * margin, 2 * margin), QImage::Format_RGB32);
        image.setDotsPerMeterX(qRound(port->logicalDpiX() / 0.0254));
        image.setDotsPerMeterY(qRound(port->logicalDpiY() / 0.0254));
        image.fill(fill.color());
        {
            QPainter sectionPainter(&image);
            sectionPainter.setFont(painter->font());
            sectionPainter.setPen(painter->pen());
            sectionPainter.setBrush(painter->brush());
            sectionPainter.setBackground(painter->background());
            sectionPainter.setRenderHints(painter->renderHints());
            sectionPainter.setLayoutDirection(painter->layoutDirection());
            QHeaderView::paintSection(&sectionPainter, QRect(QPoint(margin, margin), rect.size()), logicalIndex);
        }
        it = sections.insert(key, image.copy(QRect(QPoint(margin, margin), rect.size())));
    }
    painter->drawImage(rect.topLeft(), *it);
}

// The models of the map window give their headers a text and no other role.
QSize CachedHeader::sectionSizeFromContents(int logicalIndex) const
{
    if (isSortIndicatorShown())
        return QHeaderView::sectionSizeFromContents(logicalIndex);
    const QString text = model()->headerData(logicalIndex, orientation()).toString();
    auto it = contentSizes.find(text);
    if (it == contentSizes.end())
        it = contentSizes.insert(text, QHeaderView::sectionSizeFromContents(logicalIndex));
    return *it;
}

void CachedHeader::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange ||
        event->type() == QEvent::StyleChange || event->type() == QEvent::LayoutDirectionChange) {
        sections.clear();
        contentSizes.clear();
    }
    QHeaderView::changeEvent(event);
}
