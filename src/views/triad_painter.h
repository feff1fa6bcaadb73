// Paints the table of the map window's triad view row by row, each cell from
// one lookup of its face, its text blitted from a small image made once, and
// the grid as long lines: a maximised window has thousands of cells, and
// the view's own way (cell by cell, clipped around the spanned lines) is
// several times slower.

#pragma once

#include "register_blocks.h"

#include <QFont>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QStaticText>

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
    // A cell's text as painted on its background: the rows of its laid-out
    // text that fall inside the cell, from `top` down.
    struct Tile
    {
        QImage image;
        int top = 0;
    };

    void paint(const QRect& area);
    // A cell that is painted as the view would: by the style and the item
    // delegate, for a selected cell, a cell without a background or a
    // painter that scales.
    void paintItem(QPainter& painter, QStyleOptionViewItem option, const QRect& rect, int row, int column) const;
    const Tile& tile(const RegisterBlocks::Face& face, const QRect& cell, const QStyleOptionViewItem& option);

    QTableView* const view;
    TableTriadaModel* const model;
    QHash<quint32, Tile> tiles; // by text and background, for `tileLook`
    QString tileLook;           // font, text colour and cell height of the tiles
};
