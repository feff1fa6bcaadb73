// The block layout shared by the triad view and the bit table model.

#include "register_blocks.h"

#include <QColor>
#include <QHeaderView>
#include <QTableView>

RegisterBlocks::Cell RegisterBlocks::cell(int row, int column) const
{
    const int block = row / linesPerBlock;
    return Cell{row % linesPerBlock, block * columns + column / columnsPerRegister, column % columnsPerRegister};
}

void RegisterBlocks::setSpans(QTableView* view, int rows) const
{
    view->clearSpans();
    const int width = tableColumns();
    for (int first = 0; first + SpacerLine < rows; first += linesPerBlock) {
        for (int c = 0; c < width; c += columnsPerRegister)
            view->setSpan(first + NumberLine, c, 1, columnsPerRegister);
        view->setSpan(first + SpacerLine, 0, 1, width);
    }
}

void RegisterBlocks::setColumnWidths(QTableView* view, int width) const
{
    // 30 of the width are left for the row header and the frame.
    const int w = qMax(2, (width - 30) / tableColumns());
    QHeaderView* header = view->horizontalHeader();
    for (int c = 0; c < tableColumns(); ++c) {
        const int size = c % columnsPerRegister == hexColumn ? w + 8 : w - 1;
        if (header->sectionSize(c) != size)
            header->resizeSection(c, size);
    }
}

QVariant RegisterBlocks::data(const Cell& cell, int role, bool shown, bool changed, const quint8* const* images,
                              const Look& look)
{
    const quint8* image = cell.isImageLine() ? images[cell.line - GuiLine] : nullptr;
    switch (role) {
    case Qt::TextAlignmentRole:
        return look.alignment;
    case Qt::DisplayRole:
    case Qt::EditRole:
        if (!shown)
            return QStringLiteral("-");
        switch (cell.line) {
        case NumberLine:
            return look.numberAsText ? QVariant(QString::number(cell.reg)) : QVariant(cell.reg);
        case BitLine:
            return cell.isBit() ? QString::number(7 - cell.x) : QString::fromLatin1(look.hexTitle);
        case SpacerLine:
            return look.spacerText ? QVariant(QString()) : QVariant();
        default:
            if (!cell.isBit())
                return hexByte(image[cell.reg]);
            return bit(image, cell.position()) ? QStringLiteral("1") : QStringLiteral("0");
        }
    case Qt::BackgroundRole: {
        // None on the number line, yellow in the hexadecimal column, grey on
        // the bit line and behind the last register, blue for a changed bit,
        // grey for a set bit, white otherwise.
        static const QColor yellow(QStringLiteral("#FFFF00"));
        static const QColor grey(QStringLiteral("#DDDDDD"));
        static const QColor blue(QStringLiteral("#00BFFF"));
        static const QColor white(QStringLiteral("#FFFFFF"));
        if (cell.line == NumberLine)
            return QVariant();
        if (!cell.isBit())
            return yellow;
        if (cell.line == BitLine || !shown)
            return grey;
        if (changed)
            return blue;
        return image && bit(image, cell.position()) ? grey : white;
    }
    default:
        return QVariant();
    }
}

QString RegisterBlocks::hexByte(quint8 byte)
{
    static const char digits[] = "0123456789ABCDEF";
    const QChar text[2] = {QLatin1Char(digits[byte >> 4]), QLatin1Char(digits[byte & 15])};
    return QString(text, 2);
}
