// The three register images of one register map and the bit operations on
// them: what the forms edit (gui), what the chip last gave (ic) and what a
// file last gave (cfg).
#pragma once

#include <QObject>
#include <QString>

#include <vector>

struct part;

// Who hears of changes to the images: the map window's table, which keeps
// old copies to mark the bits that the last operation changed.
class ImageListener
{
public:
    virtual ~ImageListener() = default;
    // Copy live image `index` (0 gui, 1 ic, 2 cfg) into its old copy.
    virtual void dropOld(int index) = 0;
    // A bit of guiImage has changed.
    virtual void bitChanged(int position) = 0;
};

// Bit position p is bit D(7 - p % 8) of register p / 8; a run of bits keeps
// its most significant bit at its lowest position, across register borders.
// The images live on the thread that made the object; the worker reaches
// them there (see clerk).
class RegisterImages : public QObject
{
    Q_OBJECT

    std::vector<quint8> storage; // the three images, one after the other

public:
    RegisterImages(const QString& chipName, quint32 registerCount, QObject* parent = nullptr);

    const QString chipName;
    const quint32 registerCount;
    static constexpr quint32 bitsPerRegister = 8;
    quint8* const guiImage; // what the forms edit
    quint8* const icImage;  // what the chip last gave
    quint8* const cfgImage; // what a file last gave

    ImageListener* listener = nullptr;

    // The board (usb_link's key) whose chip icImage stands for, once that
    // chip has been read or written in full; empty while the chip is not
    // known. A replugged board comes back under another key, so a replug or
    // another board makes the chip unknown again.
    QString knownBoard;
    bool chipKnownOn(const QString& board) const { return !board.isEmpty() && board == knownBoard; }
    // usb_link's count of the chip's changes when icImage last caught up
    // with the chip: while the count has not moved since and the board has
    // stayed open, the chip holds icImage in every register it does not
    // write itself.
    quint64 knownChanges = 0;
    // What the chip gave back for these registers after a write of them,
    // into both images; true when one of them is not what the forms held.
    bool takeReadBack(const std::vector<int>& registers, const quint8* values);

    static int getBit(const quint8* image, qint32 position);
    static void setBit(quint8* image, qint32 position, int value);
    // A run of guiImage, and whether it differs from the same run of icImage.
    quint32 getBrim(qint32 position, qint32 width) const;
    void setBrim(qint32 position, qint32 width, quint32 value);
    bool isBrimChanged(qint32 position, qint32 width) const;

    // A field's code in an image as its bits hold it, before any inversion:
    // the last bit of the last segment is the least significant.
    static quint32 fieldValue(const part& field, const quint8* image);
    // Writes a field's code into guiImage, last bit of the last segment
    // first; only bits that differ are written, and the listener hears of
    // each.
    void writeField(const part& field, quint32 value);
    // Whether any bit of the field differs between guiImage and icImage.
    bool isFieldChanged(const part& field) const;

    void dropOldGUI() { dropOld(0); }
    void dropOldIC() { dropOld(1); }
    void dropOldCfg() { dropOld(2); }

private:
    static quint32 runValue(const quint8* image, qint32 position, qint32 width);
    void dropOld(int index);
};
