// The block layout of the map window's tables: six table rows and nine
// columns per register, and what each cell of a block shows.

#pragma once

#include <QColor>
#include <QString>
#include <QVariant>

class QTableView;

class RegisterBlocks
{
public:
    enum Line { NumberLine, BitLine, GuiLine, IcLine, CfgLine, SpacerLine };
    static constexpr int linesPerBlock = 6;
    static constexpr int columnsPerRegister = 9;
    static constexpr int hexColumn = 8; // x of the hexadecimal column

    // One table cell: its line in the block, its register, and x, where 0 to
    // 7 is bit D(7 - x) and 8 the hexadecimal column.
    struct Cell
    {
        int line;
        int reg;
        int x;
        int position() const { return reg * 8 + x; }
        bool isBit() const { return x != hexColumn; }
        bool isImageLine() const { return line >= GuiLine && line <= CfgLine; }
    };

    // What differs between the tables of blocks.
    struct Look
    {
        const char* lineTitles[linesPerBlock]; // the row headers of a block
        const char* hexTitle;                  // the bit line's hexadecimal cell
        bool numberAsText;                     // the register number as text, else as a number
        bool spacerText;                       // the spacer line shows an empty text, else nothing
        int alignment;
    };

    explicit RegisterBlocks(int registerColumns) : columns(registerColumns < 1 ? 1 : registerColumns) {}

    int registerColumns() const { return columns; }
    int tableColumns() const { return columns * columnsPerRegister; }
    Cell cell(int row, int column) const;
    int row(int reg, int line) const { return reg / columns * linesPerBlock + line; }
    int column(int reg, int x) const { return reg % columns * columnsPerRegister + x; }

    // The number line's cells across each register and the spacer line
    // across the whole table, for `rows` table rows.
    void setSpans(QTableView* view, int rows) const;
    // Column widths that share `width` less 30 between the columns; the
    // register number and bit columns take one less than their share, the
    // hexadecimal columns 8 more.
    void setColumnWidths(QTableView* view, int width) const;

    // The backgrounds of the cells; `None` leaves the view's own colour.
    enum Shade : quint8 { None, Yellow, Grey, Blue, White };
    // What a cell shows, in one piece: its text (up to three Latin-1
    // characters, none when `hasText` is false) and its background.
    struct Face
    {
        char text[4];
        bool hasText;
        Shade shade;
    };

    // A cell's face. `images` are guiImage, icImage and cfgImage; a register
    // not `shown` is "-" on grey; a `changed` bit is blue.
    static Face face(const Cell& cell, bool shown, bool changed, const quint8* const* images, const Look& look);
    // A cell's text, alignment and background for the item roles, from its face.
    static QVariant data(const Cell& cell, int role, bool shown, bool changed, const quint8* const* images,
                         const Look& look);
    static QColor colour(Shade shade);
    static QString lineTitle(int section, const Look& look) { return QString::fromLatin1(look.lineTitles[section % linesPerBlock]); }

    static int bit(const quint8* image, int position) { return (image[position / 8] >> (7 - position % 8)) & 1; }
    // The byte as two upper-case hexadecimal digits.
    static QString hexByte(quint8 byte);

private:
    int columns;
};
