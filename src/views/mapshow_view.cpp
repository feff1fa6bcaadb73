#include "mapshow.h"
#include "cached_header.h"
#include "cell_delegate.h"
#include "table_named_model.h"
#include "table_triada_model.h"
#include "triad_painter.h"
#include "ui_mapshow.h"

#include <QApplication>
#include <QEvent>
#include <QHeaderView>
#include <QTableView>

#include <cstring>

// The view side of the map window: its form and the table in it.

mapshow::mapshow(const QString& name, quint32 count, QWidget* parent, RegisterView view)
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
    ui->choose_view->setCurrentIndex(view);
    setUpView();
    QFont font(QStringLiteral("Courier"), ui->spinBox_font_size->value(), 50, false);
    ui->RegisterTable->setFont(font);
    ui->choose_view->hide();
    ui->grPanel->hide();
    ui->RegisterTable->setStyleSheet(QStringLiteral("QTableView::item {padding: 0;}"));

    // The triad view needs at least one register column in its table.
    const QMargins margins = layout()->contentsMargins();
    setMinimumWidth(qMax(minimumWidth(), TableTriadaModel::registerColumnWidth + margins.left() + margins.right()));
}

mapshow::~mapshow()
{
    delete[] guiImage;
    delete[] icImage;
    delete[] cfgImage;
    delete ui;
}

// The model by the view selector: the triad view lays its table out on every
// resize of the table, the named view has fixed columns.
void mapshow::setUpView()
{
    QTableView* table = ui->RegisterTable;
    if (ui->choose_view->currentIndex() == TriadView) {
        table->setHorizontalHeader(new CachedHeader(Qt::Horizontal, table));
        table->setVerticalHeader(new CachedHeader(Qt::Vertical, table));
        auto* model = new TableTriadaModel(table, 1, registerCount, this);
        viewModel = model;
        table->setModel(model);
        table->setItemDelegate(new CellDelegate(table));
        new TriadPainter(table, model);
        table->installEventFilter(this);
    } else if (ui->choose_view->currentIndex() == NamedView) {
        setUpNamedView();
    }
}

void mapshow::setUpNamedView()
{
    QTableView* table = ui->RegisterTable;
    auto* model = new TableNamedModel(this, guiImage, icImage, cfgImage);
    viewModel = model;
    table->setModel(model);
    table->verticalHeader()->hide();
    table->horizontalHeader()->show();
    table->setFont(QFont(QApplication::font().family(), 9, 50));
    table->setColumnWidth(TableNamedModel::AddressColumn, 34);
    table->setColumnWidth(TableNamedModel::NameColumn, 130);
    table->setColumnWidth(TableNamedModel::ValueColumn, 30);
    for (int column = TableNamedModel::FirstBitColumn; column < TableNamedModel::DefaultColumn; ++column)
        table->setColumnWidth(column, column % 2 ? 20 : 150);
    table->setColumnWidth(TableNamedModel::DefaultColumn, 50);
    table->verticalHeader()->setMinimumSectionSize(1);
    table->verticalHeader()->setDefaultSectionSize(18);
}

bool mapshow::eventFilter(QObject* object, QEvent* event)
{
    if (object == ui->RegisterTable && event->type() == QEvent::Resize) {
        if (auto* triad = qobject_cast<TableTriadaModel*>(ui->RegisterTable->model()))
            triad->resize(ui->RegisterTable->geometry().width(), ui->RegisterTable->geometry().height());
    }
    return false;
}

// The old copies belong to the triad view; with another view selected they
// keep their last state.
void mapshow::dropOld(int index)
{
    if (ui->choose_view->currentIndex() == TriadView && viewModel)
        viewModel->dropOld(index);
}

void mapshow::refreshRegisterView()
{
    if (viewModel)
        viewModel->refresh();
}

void mapshow::on_spinBox_font_size_valueChanged(int) {}
void mapshow::on_spinBox_column_num_valueChanged(int) {}
