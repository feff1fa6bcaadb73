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

#include <algorithm>
#include <vector>

namespace {
// Where the texts and cells are kept: by text, background and size.
quint64 key(const RegisterBlocks::Face& face, int width, int height)
{
    return quint64(quint8(face.text[0])) | quint64(quint8(face.text[1])) << 8 | quint64(quint8(face.text[2])) << 16 |
           quint64(face.shade) << 24 | quint64(quint16(height)) << 28 | quint64(quint16(width)) << 44;
}
} // namespace

TriadPainter::TriadPainter(QTableView* tableView, TableTriadaModel* tableModel)
    : QObject(tableView), view(tableView), model(tableModel)
{
    view->viewport()->installEventFilter(this);
    // The cells of other sizes are not needed again.
    auto forget = [this] { cells.clear(); };
    connect(view->horizontalHeader(), &QHeaderView::sectionResized, this, forget);
    connect(view->verticalHeader(), &QHeaderView::sectionResized, this, forget);
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
    grid = QColor::fromRgba(QRgb(view->style()->styleHint(QStyle::SH_Table_GridLineColor, &option, view)));
    if (option.state & QStyle::State_Enabled)
        option.palette.setCurrentColorGroup(QPalette::Normal);
    alignment = CellDelegate::alignment(model->index(0, 0).data(Qt::TextAlignmentRole).toInt());
    // Cells without a background of their own show the viewport's.
    const QBrush fill = viewport->palette().brush(viewport->backgroundRole());
    base = viewport->autoFillBackground() && fill.style() == Qt::SolidPattern ? fill.color() : QColor();
    const QString newLook = QStringLiteral("%1 %2 %3 %4 %5 %6")
                                .arg(option.font.key())
                                .arg(option.palette.color(QPalette::Text).rgba())
                                .arg(grid.rgba())
                                .arg(base.rgba())
                                .arg(viewport->logicalDpiY())
                                .arg(alignment);
    if (newLook != look) {
        texts.clear();
        cells.clear();
        look = newLook;
    }
    // Images are put in place only by a painter that does not scale, with
    // an opaque grid on a plain background.
    const bool blit =
        painter.deviceTransform().type() <= QTransform::TxTranslate && grid.alpha() == 255 && base.isValid();

    // The table ends at its last column and row; the rest stays the
    // viewport's background.
    QRect dirty = area;
    dirty.setRight(qMin(dirty.right(), columnHeader->length() - columnHeader->offset() - 1));
    dirty.setBottom(qMin(dirty.bottom(), rowHeader->length() - rowHeader->offset() - 1));
    if (!dirty.isValid())
        return;
    // Asked of the headers, as the view does, so that no pending layout of
    // the view is carried out while it is painted.
    const int firstRow = qMax(0, rowHeader->logicalIndexAt(dirty.top()));
    const int lastRow = rowHeader->logicalIndexAt(dirty.bottom()) < 0 ? rowHeader->count() - 1
                                                                        : rowHeader->logicalIndexAt(dirty.bottom());
    const int firstColumn = qMax(0, columnHeader->logicalIndexAt(dirty.left()));
    const int lastColumn = columnHeader->logicalIndexAt(dirty.right()) < 0
                               ? columnHeader->count() - 1
                               : columnHeader->logicalIndexAt(dirty.right());
    std::vector<int> left(size_t(lastColumn + 2));
    for (int c = firstColumn; c <= lastColumn; ++c)
        left[size_t(c)] = columnHeader->sectionViewportPosition(c);
    left[size_t(lastColumn + 1)] = left[size_t(lastColumn)] + columnHeader->sectionSize(lastColumn);

    const QItemSelectionModel* selection = view->selectionModel();
    const bool anySelected = selection && selection->hasSelection();
    for (int row = firstRow; row <= lastRow; ++row) {
        const int top = rowHeader->sectionViewportPosition(row), height = rowHeader->sectionSize(row);
        for (int c = firstColumn; c <= lastColumn; ++c) {
            const int span = view->columnSpan(row, c);
            if (span > 1) {
                // A spanned cell starts where it is met, unless the left
                // edge of what is painted cuts it.
                const int first = c > firstColumn || c == 0
                                      ? c
                                      : columnHeader->logicalIndexAt(view->visualRect(model->index(row, c)).left());
                int width = 0;
                for (int inner = first; inner < first + span; ++inner)
                    width += columnHeader->sectionSize(inner);
                const QRect rect(columnHeader->sectionViewportPosition(first), top, width - 1, height - 1);
                paintSpan(painter, option, row, first, span, rect, blit);
                c = first + span - 1;
                continue;
            }
            const QRect section(left[size_t(c)], top, left[size_t(c) + 1] - left[size_t(c)], height);
            const bool selected = anySelected && selection->isSelected(model->index(row, c));
            const QImage* image = blit && !selected ? cell(model->face(row, c), section.size(), option) : nullptr;
            if (image) {
                painter.drawImage(section.topLeft(), *image);
            } else {
                paintItem(painter, option, section.adjusted(0, 0, -1, -1), row, c);
                paintGrid(painter, section);
            }
        }
    }
}

void TriadPainter::paintSpan(QPainter& painter, const QStyleOptionViewItem& option, int row, int first, int span,
                             const QRect& rect, bool blit)
{
    const RegisterBlocks::Face face = model->face(row, first);
    const QItemSelectionModel* selection = view->selectionModel();
    const Text* shown = blit && face.hasText && face.text[0] ? &text(face, rect.height(), option) : nullptr;
    if (!blit || (selection && selection->isSelected(model->index(row, first))) ||
        (shown && shown->image.width() > rect.width())) {
        paintItem(painter, option, rect, row, first);
    } else {
        if (face.shade != RegisterBlocks::None)
            painter.fillRect(rect, background(face.shade));
        if (shown) {
            const QRect place = QStyle::alignedRect(option.direction, alignment, shown->image.size(), rect);
            painter.drawImage(QPoint(place.left(), rect.top() + shown->top), shown->image);
        }
    }
    paintGrid(painter, rect.adjusted(0, 0, 1, 1));
    // Above the spanned cells of the first row the view leaves the top
    // pixel of the column lines.
    if (row == 0) {
        const QHeaderView* columnHeader = view->horizontalHeader();
        for (int inner = first; inner < first + span - 1; ++inner)
            painter.fillRect(columnHeader->sectionViewportPosition(inner) + columnHeader->sectionSize(inner) - 1,
                             rect.top(), 1, 1, grid);
    }
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

void TriadPainter::paintGrid(QPainter& painter, const QRect& section) const
{
    painter.fillRect(section.right(), section.top(), 1, section.height(), grid);
    painter.fillRect(section.left(), section.bottom(), section.width() - 1, 1, grid);
}

const QImage* TriadPainter::cell(const RegisterBlocks::Face& face, const QSize& section,
                                 const QStyleOptionViewItem& option)
{
    if (face.shade == RegisterBlocks::None || section.isEmpty())
        return nullptr;
    const quint64 at = key(face, section.width(), section.height());
    auto it = cells.find(at);
    if (it == cells.end()) {
        // The background with the grid lines right and below, and the text
        // where the delegate places it.
        const QRect inside(0, 0, section.width() - 1, section.height() - 1);
        QImage image(section, QImage::Format_RGB32);
        image.fill(background(face.shade));
        for (int y = 0; y < section.height(); ++y)
            reinterpret_cast<QRgb*>(image.scanLine(y))[inside.width()] = grid.rgba();
        std::fill_n(reinterpret_cast<QRgb*>(image.scanLine(inside.height())), inside.width(), grid.rgba());
        if (face.hasText && face.text[0]) {
            const Text& shown = text(face, inside.height(), option);
            if (shown.image.width() > inside.width()) {
                image = QImage();
            } else {
                const int x = QStyle::alignedRect(option.direction, alignment, shown.image.size(), inside).left();
                for (int y = 0; y < shown.image.height(); ++y)
                    std::copy_n(reinterpret_cast<const QRgb*>(shown.image.constScanLine(y)), shown.image.width(),
                                reinterpret_cast<QRgb*>(image.scanLine(shown.top + y)) + x);
            }
        }
        it = cells.insert(at, image);
    }
    return it->isNull() ? nullptr : &*it;
}

const TriadPainter::Text& TriadPainter::text(const RegisterBlocks::Face& face, int height,
                                             const QStyleOptionViewItem& option)
{
    const quint64 at = key(face, 0, height);
    auto it = texts.find(at);
    if (it != texts.end())
        return *it;

    // The text as the delegate places it in a cell of this height, cut to
    // the cell's rows.
    auto* delegate = static_cast<CellDelegate*>(view->itemDelegate());
    const QStaticText& laidOut = delegate->laidOut(QString::fromLatin1(face.text), option.font);
    const QSize size = laidOut.size().toSize();
    const QRect place = QStyle::alignedRect(option.direction, alignment, size, QRect(0, 0, size.width(), height));
    Text made;
    made.top = qMax(0, place.top());
    const int rows = qMax(0, qMin(height, place.bottom() + 1) - made.top);
    // Laid out away from the image's edges, where glyphs are placed apart.
    const int margin = 4;
    QImage image(size.width() + 2 * margin, size.height() + 2 * margin, QImage::Format_RGB32);
    const QWidget* viewport = view->viewport();
    image.setDotsPerMeterX(qRound(viewport->logicalDpiX() / 0.0254));
    image.setDotsPerMeterY(qRound(viewport->logicalDpiY() / 0.0254));
    image.fill(background(face.shade));
    {
        QPainter textPainter(&image);
        textPainter.setFont(option.font);
        textPainter.setPen(option.palette.color(QPalette::Text));
        textPainter.drawStaticText(QPointF(margin, margin), laidOut);
    }
    made.image = image.copy(margin, margin + made.top - place.top(), size.width(), rows);
    return *texts.insert(at, made);
}

QColor TriadPainter::background(RegisterBlocks::Shade shade) const
{
    return shade == RegisterBlocks::None ? base : RegisterBlocks::colour(shade);
}
