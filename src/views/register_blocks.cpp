// The block layout shared by the triad view and the bit table model.

#include "register_blocks.h"

#include <QColor>
#include <QHeaderView>
#include <QTableView>

#include <cstdio>

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

RegisterBlocks::Face RegisterBlocks::face(const Cell& cell, bool shown, bool changed, const quint8* const* images,
                                          const Look& look)
{
    static const char digits[] = "0123456789ABCDEF";
    Face face = {{0, 0, 0, 0}, true, None};
    const quint8* image = cell.isImageLine() ? images[cell.line - GuiLine] : nullptr;
    // None on the number line, yellow in the hexadecimal column, grey on the
    // bit line and behind the last register, blue for a changed bit, grey for
    // a set bit, white otherwise.
    if (cell.line == NumberLine)
        face.shade = None;
    else if (!cell.isBit())
        face.shade = Yellow;
    else if (cell.line == BitLine || !shown)
        face.shade = Grey;
    else if (changed)
        face.shade = Blue;
    else
        face.shade = image && bit(image, cell.position()) ? Grey : White;

    if (!shown) {
        face.text[0] = '-';
        return face;
    }
    switch (cell.line) {
    case NumberLine:
        std::snprintf(face.text, sizeof face.text, "%u", unsigned(cell.reg) % 1000u);
        break;
    case BitLine:
        if (cell.isBit())
            face.text[0] = char('7' - cell.x);
        else
            qstrncpy(face.text, look.hexTitle, sizeof face.text);
        break;
    case SpacerLine:
        face.hasText = look.spacerText;
        break;
    default:
        if (cell.isBit()) {
            face.text[0] = bit(image, cell.position()) ? '1' : '0';
        } else {
            face.text[0] = digits[image[cell.reg] >> 4];
            face.text[1] = digits[image[cell.reg] & 15];
        }
    }
    return face;
}

QVariant RegisterBlocks::data(const Cell& cell, int role, bool shown, bool changed, const quint8* const* images,
                              const Look& look)
{
    switch (role) {
    case Qt::TextAlignmentRole:
        return look.alignment;
    case Qt::DisplayRole:
    case Qt::EditRole: {
        const Face f = face(cell, shown, changed, images, look);
        if (!f.hasText)
            return QVariant();
        if (cell.line == NumberLine && shown && !look.numberAsText)
            return cell.reg;
        return QString::fromLatin1(f.text);
    }
    case Qt::BackgroundRole: {
        const Shade shade = face(cell, shown, changed, images, look).shade;
        return shade == None ? QVariant() : QVariant(colour(shade));
    }
    default:
        return QVariant();
    }
}

QColor RegisterBlocks::colour(Shade shade)
{
    static const QColor colours[] = {QColor(), QColor(QStringLiteral("#FFFF00")), QColor(QStringLiteral("#DDDDDD")),
                                     QColor(QStringLiteral("#00BFFF")), QColor(QStringLiteral("#FFFFFF"))};
    return colours[shade];
}

QString RegisterBlocks::hexByte(quint8 byte)
{
    static const char digits[] = "0123456789ABCDEF";
    const QChar text[2] = {QLatin1Char(digits[byte >> 4]), QLatin1Char(digits[byte & 15])};
    return QString(text, 2);
}
