#include "mapshow.h"
#include "ui_mapshow.h"

#include <QEvent>
#include <QTableView>

#include <cstring>

// The view side of the map window: its form and the table in it.

mapshow::mapshow(const QString& name, quint32 count, QWidget* parent)
    : QWidget(parent), registerCount(count), chipName(name), ui(new Ui::mapshow)
{
    ui->setupUi(this);
    guiImage = new quint8[registerCount];
    icImage = new quint8[registerCount];
    cfgImage = new quint8[registerCount];
    std::memset(guiImage, 0, registerCount);
    std::memset(icImage, 0, registerCount);
    std::memset(cfgImage, 0, registerCount);

    setWindowTitle(chipName);
    ui->spinBox_column_num->setValue(4);
    ui->choose_view->setCurrentIndex(0);
    setUpView();
    QFont font(QStringLiteral("Courier"), ui->spinBox_font_size->value(), 50, false);
    ui->RegisterTable->setFont(font);
    ui->choose_view->hide();
    ui->grPanel->hide();
    ui->RegisterTable->setStyleSheet(QStringLiteral("QTableView::item {padding: 0;}"));
}

mapshow::~mapshow()
{
    delete[] guiImage;
    delete[] icImage;
    delete[] cfgImage;
    delete ui;
}

// The table models come with the map window's views; until one is set the
// table stays empty.
void mapshow::setUpView()
{
    if (ui->choose_view->currentIndex() == 0)
        ui->RegisterTable->installEventFilter(this);
}

bool mapshow::eventFilter(QObject* object, QEvent* event)
{
    return QWidget::eventFilter(object, event);
}

// The old copies belong to the triad view; with another view selected they
// keep their last state.
void mapshow::dropOld(int index)
{
    if (ui->choose_view->currentIndex() == 0 && viewModel)
        viewModel->dropOld(index);
}

void mapshow::refreshRegisterView()
{
    ui->RegisterTable->reset();
}

void mapshow::on_spinBox_font_size_valueChanged(int) {}
void mapshow::on_spinBox_column_num_valueChanged(int) {}
