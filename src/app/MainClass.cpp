#include "MainClass.h"
#include "ui_MainClass.h"

#include "app/bench_menu.h"
#include "app/form_binding.h"
#include "app/undo_actions.h"
#include "app/usb_log_dock.h"
#include "app/view_menu.h"
#include "app/operation_status.h"
#include "engine/form_model.h"
#include "mapshow.h"
#include "part.h"
#include "service_block.h"
#include "windows.h"

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>

const char* const kWindowTitle = "ZV4280(v2/v3) TB 1.0.3";

QMap<QString, QWidget*> MainClass::createWindows()
{
    // Every window is top-level and lives to the end of the process.
    QMap<QString, QWidget*> set;
    set.insert(QStringLiteral("dockA"), new dockA(nullptr));
    set.insert(QStringLiteral("dockB"), new dockB(nullptr));
    set.insert(QStringLiteral("dockC"), new dockC(nullptr));
    set.insert(QStringLiteral("dockD"), new dockD(nullptr));
    set.insert(QStringLiteral("dockMain"), new dockMain(nullptr));
    set.insert(QStringLiteral("GrAllSS"), new GrAllSS(nullptr));
    set.insert(QStringLiteral("GrGenServ"), new GrGenServ(nullptr));
    set.insert(QStringLiteral("GrSChA"), new GrSChA(nullptr));
    set.insert(QStringLiteral("GrSChB"), new GrSChB(nullptr));
    set.insert(QStringLiteral("GrSChC"), new GrSChC(nullptr));
    set.insert(QStringLiteral("GrSChD"), new GrSChD(nullptr));
    return set;
}

MainClass::MainClass(QWidget* parent) : MainClass(createWindows(), Start::LoadDefaults, parent) {}

MainClass::MainClass(Start start, QWidget* parent) : MainClass(createWindows(), start, parent) {}

MainClass::MainClass(const QMap<QString, QWidget*>& windowSet, QWidget* parent)
    : MainClass(windowSet, Start::LoadDefaults, parent)
{
}

MainClass::MainClass(const QMap<QString, QWidget*>& windowSet, Start start, QWidget* parent)
    : QMainWindow(parent), windows(windowSet), ui(new Ui::MainClass)
{
    ui->setupUi(this);
    windows.insert(QStringLiteral("mainWindow"), this);
    installEventFilter(this);

    service = new service_block(nullptr);
    service->installEventFilter(this);
    windows.insert(QStringLiteral("service"), service);
    // The panel's (hidden) chip-to-file button starts the main window's command.
    if (auto* icfile = service->findChild<QPushButton*>(QStringLiteral("Button_ICFILE")))
        connect(icfile, &QPushButton::clicked, this, &MainClass::on_Button_ICFILE_clicked);

    scanWindows();
    setDefaultState();
    bindForms();
    ViewMenu::install(*this);
    tools = new BenchMenu(*this);
    usbLog = new UsbLogDock(*service->usb, *this);
    if (start == Start::LoadDefaults)
        on_action_load_default_triggered();
    if (undoActions)
        undoActions->forgetOperation(); // the start is no step to undo
}

MainClass::~MainClass()
{
    // An operation still running is stopped and waited for; it may need the
    // GUI thread to hand over the images meanwhile.
    if (worker) {
        disconnect(worker, nullptr, this, nullptr);
        worker->interrupted = true;
        while (worker && !worker->wait(5))
            QCoreApplication::processEvents();
    }
    undoActions.reset();
    binding.reset();
    delete ui;
}

void MainClass::loadCalibration(const QString& given)
{
    const QString file = Calibration::startFile(given);
    if (file.isEmpty() || !formModel)
        return;
    Calibration calibration;
    const QString fault = calibration.load(file);
    if (fault.isEmpty())
        formModel->setCalibration(calibration);
    else
        showModal(fault + QStringLiteral("\n\nThe built-in calibration tables serve."));
}

void MainClass::showModal(const QString& text)
{
    QMessageBox box;
    box.setText(text);
    box.exec();
}

mapshow* MainClass::firstMap() const
{
    return maps.isEmpty() ? nullptr : maps.first();
}

QWidget* MainClass::findWidget(const QString& objectName) const
{
    if (QWidget* w = findChild<QWidget*>(objectName))
        return w;
    for (QWidget* window : windows) {
        if (window == this)
            continue;
        if (window->objectName() == objectName)
            return window;
        if (QWidget* w = window->findChild<QWidget*>(objectName))
            return w;
    }
    return nullptr;
}

// Walks every descendant of every window, breadth first, and makes the
// register map out of the object names it finds.
void MainClass::scanWindows()
{
    QObjectList objects;
    for (auto it = windows.cbegin(); it != windows.cend(); ++it) {
        objects.append(it.value()->children());
        it.value()->installEventFilter(this);
    }
    for (int i = 0; i < objects.size(); ++i)
        objects.append(objects.at(i)->children());

    QMap<QString, qint32> bitCounts;
    QMap<QString, part*> fields;
    for (QObject* object : qAsConst(objects)) {
        const QString className = QString::fromLatin1(object->metaObject()->className());
        const QString objectName = object->objectName();
        if (part* p = mapshow::ParseObjName(objectName)) {
            p->widget = object;
            bitCounts[p->chip] = qMax(bitCounts.value(p->chip, 0), p->width + p->position);
            if (fields.contains(p->name))
                showModal(tr("Совпадение имён!"));
            fields.insert(p->name, p);
            if (className.contains(QLatin1String("QLineEdit"))) {
                outputs.insert(p->name, p);
                static_cast<QLineEdit*>(object)->setReadOnly(true);
            } else if (className.contains(QLatin1String("QLabel"))) {
                outputs.insert(p->name, p);
            }
            if (className.contains(QLatin1String("QSpinBox")))
                connect(object, SIGNAL(valueChanged(int)), this, SLOT(change_Value(int)));
            else if (className.contains(QLatin1String("QCheckBox")))
                connect(object, SIGNAL(stateChanged(int)), this, SLOT(change_Value(int)));
            else if (className.contains(QLatin1String("QComboBox")))
                connect(object, SIGNAL(currentIndexChanged(int)), this, SLOT(change_Value(int)));
            if (className.compare(QLatin1String("QSpinBox"), Qt::CaseInsensitive) == 0)
                object->setProperty("maximum", 2147483647);
            object->setProperty("toolTip", buildToolTip(*p));
        } else if (objectName.contains(QLatin1String("_Expression"))) {
            part* display = new part;
            display->widget = object;
            outputs.insert(objectName.left(objectName.indexOf(QLatin1String("_Expression"))), display);
            if (auto* edit = qobject_cast<QLineEdit*>(object))
                edit->setReadOnly(true);
            const QString search = QStringLiteral("ZV_") + objectName.left(objectName.lastIndexOf(QLatin1Char('_')));
            const QObjectList siblings = object->parent() ? object->parent()->children() : QObjectList();
            for (QObject* sibling : siblings) {
                if (!sibling->objectName().contains(search))
                    continue;
                if (part* owner = mapshow::ParseObjName(sibling->objectName())) {
                    object->setProperty("toolTip", buildToolTip(*owner));
                    delete owner;
                    break;
                }
            }
        } else if (className == QLatin1String("QPushButton") && windows.contains(objectName.mid(6))) {
            connect(object, SIGNAL(clicked()), this, SLOT(Button_open_window_clicked()));
        }
    }

    if (bitCounts.size() > 1)
        showModal(tr("Больше одной карты регистров?!"));

    for (auto it = bitCounts.cbegin(); it != bitCounts.cend(); ++it) {
        const QString& chip = it.key();
        const quint32 bits = quint32(it.value());
        const quint32 registerCount = bits / 8 + (bits % 8 > 0 ? 1 : 0);
        auto* map = new mapshow(chip, registerCount, nullptr);
        map->setWindowTitle(QStringLiteral("ZV4280(v2/v3)"));
        maps.insert(chip, map);
        windows.insert(chip, map);
        // The map window takes the function keys like every other window.
        map->installEventFilter(this);

        auto* mapAction = new QAction(chip, this);
        mapAction->setCheckable(true);
        mapAction->setChecked(true);
        ui->toolBar_RegMap->addAction(mapAction);

        auto* showAction = new QAction(tr("Regmap"), this);
        showAction->setObjectName(QStringLiteral("action_table_") + chip);
        connect(showAction, &QAction::triggered, this, &MainClass::slotMapWindow);
        const QList<QAction*> barActions = ui->toolBar_RegWindow->actions();
        ui->toolBar_RegWindow->insertAction(barActions.isEmpty() ? nullptr : barActions.first(), showAction);
    }

    for (auto it = fields.cbegin(); it != fields.cend(); ++it) {
        part* p = it.value();
        mapshow* map = maps.value(p->chip);
        map->parts.insert(p->name, p);
        for (int s = 0; s < p->positions.size() && s < p->widths.size(); ++s) {
            const qint32 segmentWidth = qint32(p->widths.at(s));
            for (qint32 b = 0; b < segmentWidth; ++b) {
                BitOwner owner;
                owner.widget = p->widget;
                if (p->width >= 2)
                    owner.label = QString::number(segmentWidth - 1 - b);
                map->bitOwners.insert(qint32(p->positions.at(s)) + b, owner);
            }
        }
    }
}

void MainClass::setDefaultState()
{
    auto hideNamed = [this](const char* name) {
        if (QWidget* w = findWidget(QLatin1String(name)))
            w->hide();
    };
    for (const char* name : {"ButtonGrSChA", "ButtonGrSChB", "ButtonGrSChC", "ButtonGrSChD", "ButtonGrGenServ"})
        hideNamed(name);

    ui->toolBar_RegMap->hide();
    for (QToolBar* bar : {ui->toolBar_file, ui->toolBar_IC, ui->toolBar_RegWindow, ui->toolBar_RegMap})
        bar->setContextMenuPolicy(Qt::PreventContextMenu);

    progressBar = new QProgressBar(this);
    ui->toolBar_RegWindow->addWidget(progressBar);
    progressBar->setMaximumWidth(100);
    ui->toolBar_RegWindow->actions().last()->setVisible(false);
    operationStatus = new OperationStatus(this);
    statusBar()->addWidget(operationStatus, 1);

    worker = nullptr;
    showOperationCount();

    if (mapshow* map = firstMap()) {
        for (const char* key : {"ChA_LNA1_EN_st_ZV4280v2", "ChA_AAD_WORK_ZV4280v2", "ChB_LNA1_EN_st_ZV4280v2",
                                "ChB_AAD_WORK_ZV4280v2", "ChC_LNA1_EN_st_ZV4280v2", "ChC_AAD_WORK_ZV4280v2"}) {
            if (part* p = map->parts.value(QLatin1String(key)))
                if (auto* w = qobject_cast<QWidget*>(p->widget))
                    w->hide();
        }
    }

    hideNamed("ZV_ChD_IFA_I_GCst_ZV4280v2_663_9");
    hideNamed("ZV_ChD_IFA_Q_GCst_ZV4280v2_679_9");

    for (const char* name : {"ZV_AOK_ZV4280v2_19_1", "ZV_ChA_AOK_ZV4280v2_20_1", "ZV_ChB_AOK_ZV4280v2_21_1",
                             "ZV_ChC_AOK_ZV4280v2_22_1", "ZV_ChD_AOK_ZV4280v2_23_1"}) {
        if (QWidget* w = findWidget(QLatin1String(name)))
            w->installEventFilter(this);
    }

    lastPath = QDir::currentPath();
}

// When the first map is this chip's, its forms get their state from the
// engine's form model (which starts as the forms do, then closes the
// temperature code and keeps the C-divider at 4 or more), and the widgets
// show it.
void MainClass::bindForms()
{
    mapshow* map = firstMap();
    const Catalogue& catalogue = Catalogue::instance();
    if (!map || map->chipName != catalogue.chipName() || map->registerCount != catalogue.registerCount())
        return;
    QHash<QString, QWidget*> byName;
    for (QWidget* window : qAsConst(windows))
        for (QWidget* w : window->findChildren<QWidget*>())
            if (!w->objectName().isEmpty())
                byName.insert(w->objectName(), w);
    formModel = std::make_unique<FormModel>(map->images);
    binding = std::make_unique<FormBinding>(*formModel, byName);
    binding->showAll();
    undoActions = std::make_unique<UndoActions>(*formModel, *this);
}

// The slot behind every editing widget: the change goes to the form model,
// which guards it, commits the code to guiImage and runs the rules; the
// widgets follow what it reports. A widget that is no field of the model
// only commits its value.
void MainClass::change_Value(int val)
{
    QObject* s = sender();
    std::unique_ptr<part> p(s ? mapshow::ParseObjName(s->objectName()) : nullptr);
    if (!p) {
        showModal(tr("Невозможное событие!"));
        return;
    }
    mapshow* map = maps.value(p->chip);
    if (!map)
        return;
    const int field = formModel && &formModel->images() == &map->images ? formModel->indexOf(p->name) : -1;
    if (field >= 0 && formModel->entry(field).objectName == s->objectName())
        undoActions->history().edit(field, val);
    else
        map->applyPartToImage(p->name);
}

void MainClass::toggleWindow(QWidget* window)
{
    if (!window)
        return;
    if (window->isVisible())
        window->hide();
    else
        window->show();
}

void MainClass::on_action_ExpertMode_triggered()
{
    toggleWindow(service);
}

void MainClass::Button_open_window_clicked()
{
    if (QObject* s = sender())
        toggleWindow(windows.value(s->objectName().mid(6)));
}

void MainClass::slotMapWindow()
{
    QObject* s = sender();
    if (!s)
        return;
    const QString name = s->objectName();
    mapshow* map = maps.value(name.mid(name.lastIndexOf(QLatin1Char('_')) + 1));
    if (!map)
        return;
    if (map->isVisible()) {
        map->hide();
    } else {
        map->show();
        map->refreshRegisterView();
    }
}

// Gives every window the function keys of the toolbar, lets a click on a
// status bulb open its dock, and closes the program with the main window.
bool MainClass::eventFilter(QObject* object, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Close:
        if (object == this) {
            for (QWidget* window : qAsConst(windows))
                if (window != this)
                    window->close();
        }
        break;
    case QEvent::KeyPress:
        if (object != this) {
            switch (static_cast<QKeyEvent*>(event)->key()) {
            case Qt::Key_F5: on_action_load_default_triggered(); break;
            case Qt::Key_F6: on_action_GUIFILE_triggered(); break;
            case Qt::Key_F7: on_action_FILEGUI_triggered(); break;
            case Qt::Key_F9: on_action_FILEIC_triggered(); break;
            case Qt::Key_F10: on_action_GUIIC_triggered(); break;
            case Qt::Key_F11: on_action_ICGUI_triggered(); break;
            default: break;
            }
        }
        break;
    case QEvent::MouseButtonPress: {
        static const QMap<QString, QString> bulbDocks = {
            {QStringLiteral("ZV_AOK_ZV4280v2_19_1"), QStringLiteral("dockMain")},
            {QStringLiteral("ZV_ChA_AOK_ZV4280v2_20_1"), QStringLiteral("dockA")},
            {QStringLiteral("ZV_ChB_AOK_ZV4280v2_21_1"), QStringLiteral("dockB")},
            {QStringLiteral("ZV_ChC_AOK_ZV4280v2_22_1"), QStringLiteral("dockC")},
            {QStringLiteral("ZV_ChD_AOK_ZV4280v2_23_1"), QStringLiteral("dockD")},
        };
        const auto dock = bulbDocks.constFind(object->objectName());
        if (dock != bulbDocks.cend())
            toggleWindow(windows.value(dock.value()));
        break;
    }
    default:
        break;
    }
    return false;
}
