// Paints the table of the map window's triad view: each cell from one lookup
// of its face, as one image of its background, text and grid lines, made
// once for all cells that look alike. A maximised window has thousands of
// cells, and the view's own way (cell by cell through the delegate, the
// grid clipped around the spanned lines) is several times slower.

#pragma once

#include "register_blocks.h"

#include <QColor>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QString>

class QPainter;
class QStyleOptionViewItem;
class QTableView;
class TableTriadaModel;

class TriadPainter : public QObject
{
    Q_OBJECT

public:
    // Paints `view`'s viewport, which shows `model`, from now on.
    TriadPainter(QTableView* view, TableTriadaModel* model);

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    // A cell's text as the delegate paints it on the cell's background: the
    // rows of the laid-out text that fall inside a cell, from `top` down.
    struct Text
    {
        QImage image;
        int top = 0;
    };

    void paint(const QRect& area);
    // The cell at `row` spanning `span` columns from `first`, inside `rect`,
    // and its grid lines. `blit` puts images in place.
    void paintSpan(QPainter& painter, const QStyleOptionViewItem& option, int row, int first, int span,
                   const QRect& rect, bool blit);
    // A cell as the view paints it: the style's row panel and the delegate.
    void paintItem(QPainter& painter, QStyleOptionViewItem option, const QRect& rect, int row, int column) const;
    // The grid lines right of and below `section`, a cell with its lines.
    void paintGrid(QPainter& painter, const QRect& section) const;
    // A cell `section` large with its grid lines; null where a text is wider
    // than its cell.
    const QImage* cell(const RegisterBlocks::Face& face, const QSize& section, const QStyleOptionViewItem& option);
    const Text& text(const RegisterBlocks::Face& face, int height, const QStyleOptionViewItem& option);
    QColor background(RegisterBlocks::Shade shade) const;

    QTableView* const view;
    TableTriadaModel* const model;
    QHash<quint64, Text> texts;   // by text, background and cell height
    QHash<quint64, QImage> cells; // by text, background and cell size; of the present sizes only
    QString look;                 // font, colours and alignment of the images above
    QColor grid, base;
    Qt::Alignment alignment;
};
