// The comparison of two register settings in the terms of the forms.
#include "compare_window.h"

#include "engine/form_model.h"
#include "engine/register_images.h"
#include "hex_entries.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

CompareWindow::CompareWindow(FormModel& formModel, QWidget* parent) : QWidget(parent, Qt::Window), model(formModel)
{
    setObjectName(QStringLiteral("compareWindow"));
    setWindowTitle(tr("Compare"));
    resize(1100, 520);
    auto* layout = new QVBoxLayout(this);
    auto* bar = new QHBoxLayout;
    const char* sideNames[2] = {"A:", "B:"};
    for (int side = 0; side < 2; ++side) {
        sources[side] = new QComboBox(this);
        sources[side]->setObjectName(side == 0 ? QStringLiteral("compareA") : QStringLiteral("compareB"));
        sources[side]->setAccessibleName(QLatin1String(side == 0 ? "Compare A" : "Compare B"));
        sources[side]->addItems({tr("Forms"), tr("Chip as last read"), tr("File last loaded"), tr("File…")});
        bar->addWidget(new QLabel(QLatin1String(sideNames[side]), this));
        bar->addWidget(sources[side]);
        connect(sources[side], QOverload<int>::of(&QComboBox::activated), this, [this, side] { sourceChosen(side); });
    }
    sources[1]->setCurrentIndex(Chip);
    auto* again = new QPushButton(tr("Compare again"), this);
    again->setObjectName(QStringLiteral("compareAgain"));
    connect(again, &QPushButton::clicked, this, &CompareWindow::refresh);
    bar->addWidget(again);
    bar->addStretch();
    layout->addLayout(bar);
    summary = new QLabel(this);
    summary->setObjectName(QStringLiteral("compareSummary"));
    layout->addWidget(summary);

    table = new QTableWidget(0, 7, this);
    table->setObjectName(QStringLiteral("compareTable"));
    table->setHorizontalHeaderLabels({tr("Field"), tr("Caption"), tr("Location"), tr("Code A"), tr("Shows A"),
                                      tr("Code B"), tr("Shows B")});
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setStretchLastSection(true);
    layout->addWidget(table);
    connect(table, &QTableWidget::cellDoubleClicked, this, [this](int row) {
        if (row >= 0 && row < rows.size() && rows.at(row).field >= 0)
            emit findField(rows.at(row).field);
    });
}

void CompareWindow::choose(int side, Source source, const QString& file)
{
    sources[side]->setCurrentIndex(source);
    files[side] = file;
    refresh();
}

void CompareWindow::sourceChosen(int side)
{
    if (sources[side]->currentIndex() == ChosenFile) {
        const QString file = QFileDialog::getOpenFileName(this, tr("Open .hex"), files[side], tr("Map files (*.hex)"));
        if (file.isEmpty()) {
            sources[side]->setCurrentIndex(LastFile);
        } else {
            files[side] = file;
            sources[side]->setItemText(ChosenFile, QFileInfo(file).fileName());
        }
    }
    refresh();
}

bool CompareWindow::image(int side, QByteArray* bytes, QVector<bool>* known)
{
    const RegisterImages& images = model.images();
    const int count = int(images.registerCount);
    known->clear();
    switch (sources[side]->currentIndex()) {
    case Forms: *bytes = QByteArray(reinterpret_cast<const char*>(images.guiImage), count); return true;
    case Chip: *bytes = QByteArray(reinterpret_cast<const char*>(images.icImage), count); return true;
    case LastFile: *bytes = QByteArray(reinterpret_cast<const char*>(images.cfgImage), count); return true;
    default: break;
    }
    QVector<HexEntries::Entry> entries;
    QString error;
    if (files[side].isEmpty() || !HexEntries::read(files[side], images.chipName, images.registerCount, &entries, &error)) {
        summary->setText(files[side].isEmpty() ? tr("Choose a file.") : error);
        return false;
    }
    *bytes = HexEntries::image(entries, images.registerCount, known);
    return true;
}

void CompareWindow::refresh()
{
    QByteArray a, b;
    QVector<bool> knownA, knownB;
    rows.clear();
    table->setRowCount(0);
    if (!image(0, &a, &knownA) || !image(1, &b, &knownB))
        return;
    QVector<bool> known = knownA.isEmpty() ? knownB : knownA;
    for (int r = 0; r < known.size() && !knownA.isEmpty() && !knownB.isEmpty(); ++r)
        known[r] = knownA.at(r) && knownB.at(r);
    rows = ImageCompare::compare(a, b, model.calibration(), known);

    table->setRowCount(rows.size());
    for (int i = 0; i < rows.size(); ++i) {
        const ImageDifference& d = rows.at(i);
        const QStringList cells{d.name, d.caption, d.location, QString::number(d.codeA), d.textA,
                                QString::number(d.codeB), d.textB};
        for (int c = 0; c < cells.size(); ++c)
            table->setItem(i, c, new QTableWidgetItem(cells.at(c)));
    }
    table->resizeColumnsToContents();
    summary->setText(rows.isEmpty() ? tr("No difference.")
                                    : tr("%n difference(s); a double-click finds the field.", nullptr, rows.size()));
}
