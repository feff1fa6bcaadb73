// The register map window. It owns the three register images of its chip
// (RegisterImages, in the engine) and shows them; its bit operations are
// those of the images.
#pragma once

#include "engine/register_images.h"

#include <QMap>
#include <QString>
#include <QWidget>

struct part;

namespace Ui {
class mapshow;
}

// Who shows a bit: the field's widget and the bit's label within its field.
struct BitOwner
{
    QObject* widget = nullptr;
    QString label;
};

// What the map window asks of its table model: keep the old copies that mark
// the bits changed by the last operation, repaint the cells of a bit of
// guiImage that changed, and show all three images anew.
class ImageViewModel : public ImageListener
{
public:
    // The images have changed anywhere: one reset of the model.
    virtual void refresh() = 0;
};

// The register map window and the owner of the three register images.
// Bit position p is bit D(7 - p % 8) of register p / 8; a run of bits keeps
// its most significant bit at its lowest position, across register borders.
class mapshow : public QWidget
{
    Q_OBJECT

public:
    // The table views, as the indexes of the view selector.
    enum RegisterView { TriadView = 0, NamedView = 1 };

    // The program runs the triad view; the named view is there for whoever
    // builds the window with it.
    mapshow(const QString& chipName, quint32 registerCount, QWidget* parent = nullptr,
            RegisterView view = TriadView);
    ~mapshow() override;

    RegisterImages images;
    const quint32 registerCount;
    const quint32 bitsPerRegister = RegisterImages::bitsPerRegister;
    quint8* const guiImage; // what the widgets edit
    quint8* const icImage;  // what the chip last gave
    quint8* const cfgImage; // what a file last gave
    QMap<QString, part*> parts;
    QMap<qint32, BitOwner> bitOwners;
    const QString chipName;

    // The table model in use, if any; the map window's view side sets it.
    ImageViewModel* viewModel = nullptr;

    bool eventFilter(QObject* object, QEvent* event) override;

    // A field's code in an image as its bits hold it, before any inversion
    // for the widget.
    quint32 fieldImageValue(const part& p, const quint8* image) const;

public slots:
    static part* ParseObjName(const QString& name);

    int getBit(const quint8* image, qint32 position) const;
    void setBit(quint8* image, qint32 position, int value);
    quint32 getBrim(qint32 position, qint32 width) const;
    void setBrim(qint32 position, qint32 width, quint32 value);
    bool isBrimChanged(qint32 position, qint32 width) const;
    void dropOldGUI();
    void dropOldIC();
    void dropOldCfg();

    quint32 getPartValue(const QString& fieldKey);
    void setPartValue(const QString& fieldKey, const quint8* image);
    quint32 applyPartToImage(const QString& fieldKey);

    void refreshRegisterView();
    void on_spinBox_font_size_valueChanged(int);
    void on_spinBox_column_num_valueChanged(int);

private:
    void writeField(const part& p, quint32 value) { images.writeField(p, value); }
    void setUpView();
    void setUpNamedView();

    Ui::mapshow* ui = nullptr;
};
