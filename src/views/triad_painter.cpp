// The triad view's table, painted as the view with the cell delegate paints
// it, pixel for pixel, in a fraction of the time.

#include "triad_painter.h"
#include "cell_delegate.h"
#include "table_triada_model.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QPaintEvent>
#include <QPainter>
#include <QStyle>
#include <QTableView>

#include <vector>

TriadPainter::TriadPainter(QTableView* tableView, TableTriadaModel* tableModel)
    : QObject(tableView), view(tableView), model(tableModel)
{
    view->viewport()->installEventFilter(this);
}

bool TriadPainter::eventFilter(QObject* object, QEvent* event)
{
    // The view paints a table laid out right to left, or one without a
    // plain grid, itself.
    if (event->type() != QEvent::Paint || object != view->viewport() || view->isRightToLeft() || !view->showGrid() ||
        view->gridStyle() != Qt::SolidLine || !qobject_cast<CellDelegate*>(view->itemDelegate()))
        return false;
    paint(static_cast<QPaintEvent*>(event)->rect());
    return true;
}

void TriadPainter::paint(const QRect& area)
{
    QWidget* viewport = view->viewport();
    QPainter painter(viewport);
    const QHeaderView* columnHeader = view->horizontalHeader();
    const QHeaderView* rowHeader = view->verticalHeader();
    if (columnHeader->count() == 0 || rowHeader->count() == 0)
        return;

    // The options of every cell, as the view gives them.
    QStyleOptionViewItem option;
    option.initFrom(view);
    option.state &= ~(QStyle::State_MouseOver | QStyle::State_HasFocus);
    if (!view->hasFocus())
        option.state &= ~QStyle::State_Active;
    option.font = view->font();
    option.showDecorationSelected = true;
    option.widget = view;
    const QColor grid = QColor::fromRgba(QRgb(view->style()->styleHint(QStyle::SH_Table_GridLineColor, &option, view)));
    if (option.state & QStyle::State_Enabled)
        option.palette.setCurrentColorGroup(QPalette::Normal);

    // The table ends at its last column and row; the rest stays the
    // viewport's background.
    QRect dirty = area;
    dirty.setRight(qMin(dirty.right(), columnHeader->length() - columnHeader->offset() - 1));
    dirty.setBottom(qMin(dirty.bottom(), rowHeader->length() - rowHeader->offset() - 1));
    if (!dirty.isValid())
        return;
    const int firstRow = qMax(0, view->rowAt(dirty.top()));
    const int lastRow = view->rowAt(dirty.bottom()) < 0 ? model->rowCount() - 1 : view->rowAt(dirty.bottom());
    const int firstColumn = qMax(0, view->columnAt(dirty.left()));
    const int lastColumn =
        view->columnAt(dirty.right()) < 0 ? model->columnCount() - 1 : view->columnAt(dirty.right());
    std::vector<int> left(size_t(lastColumn + 2)), runTop(size_t(lastColumn + 1), -1);
    for (int c = firstColumn; c <= lastColumn; ++c)
        left[size_t(c)] = view->columnViewportPosition(c);
    left[size_t(lastColumn + 1)] = left[size_t(lastColumn)] + view->columnWidth(lastColumn);

    const bool tiled = painter.deviceTransform().type() <= QTransform::TxTranslate;
    const QItemSelectionModel* selection = view->selectionModel();
    const bool anySelected = selection && selection->hasSelection();
    const Qt::Alignment alignment = CellDelegate::alignment(model->index(0, 0).data(Qt::TextAlignmentRole).toInt());

    // The grid: a line below each row, and a line right of each column
    // except within a spanned cell, drawn as runs down the rows. Above the
    // spanned cells of the first row the view leaves one pixel of the
    // column lines.
    std::vector<QRect> lines;
    auto endRun = [&](int c, int bottom) {
        if (runTop[size_t(c)] >= 0)
            lines.emplace_back(left[size_t(c) + 1] - 1, runTop[size_t(c)], 1, bottom - runTop[size_t(c)]);
        runTop[size_t(c)] = -1;
    };

    for (int row = firstRow; row <= lastRow; ++row) {
        const int top = view->rowViewportPosition(row), height = view->rowHeight(row);
        for (int c = firstColumn; c <= lastColumn; ++c) {
            const int span = view->columnSpan(row, c);
            QRect cell(left[size_t(c)], top, left[size_t(c) + 1] - left[size_t(c)] - 1, height - 1);
            int first = c, last = c; // the columns of the cell
            if (span > 1) {
                cell = view->visualRect(model->index(row, c));
                first = view->columnAt(cell.left());
                last = view->columnAt(cell.right() + 1);
                for (int inner = c; inner < last && inner <= lastColumn; ++inner) {
                    endRun(inner, top);
                    if (row == 0)
                        lines.emplace_back(left[size_t(inner) + 1] - 1, top, 1, 1);
                }
                c = qMin(last, lastColumn);
            }
            if (last <= lastColumn && runTop[size_t(last)] < 0)
                runTop[size_t(last)] = top;

            const bool selected = anySelected && selection->isSelected(model->index(row, first));
            const RegisterBlocks::Face face = model->face(row, first);
            if (selected || face.shade == RegisterBlocks::None || !tiled) {
                paintItem(painter, option, cell, row, first);
                continue;
            }
            painter.fillRect(cell, RegisterBlocks::colour(face.shade));
            if (!face.hasText)
                continue;
            const Tile& text = tile(face, cell, option);
            if (text.image.width() > cell.width()) {
                paintItem(painter, option, cell, row, first);
                continue;
            }
            const QRect place = QStyle::alignedRect(option.direction, alignment, text.image.size(), cell);
            painter.drawImage(QPoint(place.left(), cell.top() + text.top), text.image);
        }
        lines.emplace_back(left[size_t(firstColumn)], top + height - 1,
                           left[size_t(lastColumn) + 1] - left[size_t(firstColumn)], 1);
    }
    const int bottom = view->rowViewportPosition(lastRow) + view->rowHeight(lastRow);
    for (int c = firstColumn; c <= lastColumn; ++c)
        endRun(c, bottom);
    for (const QRect& line : lines)
        painter.fillRect(line, grid);
}

void TriadPainter::paintItem(QPainter& painter, QStyleOptionViewItem option, const QRect& rect, int row,
                             int column) const
{
    const QModelIndex index = model->index(row, column);
    option.rect = rect;
    if (view->selectionModel() && view->selectionModel()->isSelected(index))
        option.state |= QStyle::State_Selected;
    if (index == view->currentIndex() && (view->hasFocus() || view->viewport()->hasFocus()))
        option.state |= QStyle::State_HasFocus;
    view->style()->drawPrimitive(QStyle::PE_PanelItemViewRow, &option, &painter, view);
    view->itemDelegate()->paint(&painter, option, index);
}

const TriadPainter::Tile& TriadPainter::tile(const RegisterBlocks::Face& face, const QRect& cell,
                                             const QStyleOptionViewItem& option)
{
    const QColor pen = option.palette.color(QPalette::Text);
    const QString look = QStringLiteral("%1 %2 %3 %4")
                             .arg(option.font.key())
                             .arg(pen.rgba())
                             .arg(cell.height())
                             .arg(view->viewport()->logicalDpiY());
    if (look != tileLook) {
        tiles.clear();
        tileLook = look;
    }
    const quint32 key = quint32(quint8(face.text[0])) | quint32(quint8(face.text[1])) << 8 |
                        quint32(quint8(face.text[2])) << 16 | quint32(face.shade) << 24;
    auto it = tiles.find(key);
    if (it != tiles.end())
        return *it;

    // The text as the delegate places it in a cell of this height, cut to
    // the cell's rows.
    auto* delegate = static_cast<CellDelegate*>(view->itemDelegate());
    const QStaticText& text = delegate->laidOut(QString::fromLatin1(face.text), option.font);
    const QSize size = text.size().toSize();
    const Qt::Alignment alignment = CellDelegate::alignment(model->index(0, 0).data(Qt::TextAlignmentRole).toInt());
    const QRect place = QStyle::alignedRect(option.direction, alignment, size,
                                            QRect(0, 0, size.width(), cell.height()));
    Tile made;
    made.top = qMax(0, place.top());
    const int rows = qMax(0, qMin(cell.height(), place.bottom() + 1) - made.top);
    // Laid out away from the image's edges, where glyphs are placed apart.
    const int margin = 4;
    QImage image(size.width() + 2 * margin, size.height() + 2 * margin, QImage::Format_RGB32);
    const QWidget* viewport = view->viewport();
    image.setDotsPerMeterX(qRound(viewport->logicalDpiX() / 0.0254));
    image.setDotsPerMeterY(qRound(viewport->logicalDpiY() / 0.0254));
    image.fill(RegisterBlocks::colour(face.shade));
    {
        QPainter tilePainter(&image);
        tilePainter.setFont(option.font);
        tilePainter.setPen(pen);
        tilePainter.drawStaticText(QPointF(margin, margin), text);
    }
    made.image = image.copy(margin, margin + made.top - place.top(), size.width(), rows);
    return *tiles.insert(key, made);
}
