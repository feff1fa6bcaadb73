// A table header that paints each look of its sections once, into an image,
// and then puts that image in place, and measures each text of its sections
// once: the map window's headers hold a hundred sections drawn through the
// window's style sheet, each as costly as a row of cells, and a header
// measures up to 200 of them whenever a section is resized.

#pragma once

#include <QHash>
#include <QHeaderView>
#include <QImage>
#include <QPair>

class CachedHeader : public QHeaderView
{
    Q_OBJECT

public:
    // Clickable sections that show the selection, as a table view's own.
    CachedHeader(Qt::Orientation orientation, QWidget* parent);

protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    QSize sectionSizeFromContents(int logicalIndex) const override;
    void changeEvent(QEvent* event) override;

private:
    // By the section's text, and its size, place and state packed.
    mutable QHash<QPair<QString, quint64>, QImage> sections;
    mutable QHash<QString, QSize> contentSizes; // by the section's text
};
