// The USB log dock.
#include "usb_log_dock.h"

#include "frame_decoder.h"
#include "register_names.h"
#include "usb_link.h"

#include <QAction>
#include <QFile>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextStream>
#include <QTimer>
#include <QToolBar>

namespace {

// A register as the filter takes it: 21, 0x15, Reg21 or ChA_RDIV.
int registerOf(QString text)
{
    text = text.trimmed();
    if (text.startsWith(QLatin1String("reg"), Qt::CaseInsensitive) && text.size() > 3 && text.at(3).isDigit())
        text = text.mid(3);
    bool ok = false;
    const int number = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive) ? text.mid(2).toInt(&ok, 16)
                                                                                 : text.toInt(&ok, 10);
    if (ok)
        return number >= 0 ? number : -1;
    for (int r = 0; r < registerNames.size(); ++r)
        if (!text.isEmpty() && registerNames.at(r).compare(text, Qt::CaseInsensitive) == 0)
            return r;
    return -1;
}

} // namespace

UsbLogDock::UsbLogDock(usb_link& link, QMainWindow& window)
    : QDockWidget(tr("USB log"), &window), link(link), list(new QPlainTextEdit), filter(new QLineEdit),
      poll(new QTimer(this))
{
    setObjectName(QStringLiteral("dock_USBLog"));
    auto* body = new QWidget;
    auto* layout = new QVBoxLayout(body);
    auto* row = new QHBoxLayout;
    filter->setObjectName(QStringLiteral("usbLogFilter"));
    filter->setPlaceholderText(tr("Register: 21, 0x15 or ChA_RDIV"));
    filter->setClearButtonEnabled(true);
    auto* clearButton = new QPushButton(tr("Clear"));
    auto* saveButton = new QPushButton(tr("Save…"));
    row->addWidget(filter, 1);
    row->addWidget(clearButton);
    row->addWidget(saveButton);
    layout->addLayout(row);
    list->setObjectName(QStringLiteral("usbLogList"));
    list->setReadOnly(true);
    list->setLineWrapMode(QPlainTextEdit::NoWrap);
    list->setMaximumBlockCount(FrameLog::kCapacity);
    list->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    layout->addWidget(list);
    setWidget(body);

    connect(filter, &QLineEdit::textChanged, this, &UsbLogDock::setFilter);
    connect(clearButton, &QPushButton::clicked, this, &UsbLogDock::clear);
    connect(saveButton, &QPushButton::clicked, this, [this] {
        const QString name = QFileDialog::getSaveFileName(this, tr("Save USB log"), QString(), tr("Text (*.txt)"));
        const QString fault = name.isEmpty() ? QString() : save(name);
        if (!fault.isEmpty())
            QMessageBox::warning(this, tr("USB log"), fault);
    });
    // The frames wait in the log while the dock is closed, and come in a
    // few times a second while it shows.
    poll->setInterval(150);
    connect(poll, &QTimer::timeout, this, &UsbLogDock::takeNew);
    connect(this, &QDockWidget::visibilityChanged, this, [this](bool visible) {
        if (visible) {
            takeNew();
            poll->start();
        } else {
            poll->stop();
        }
    });

    window.addDockWidget(Qt::BottomDockWidgetArea, this);
    hide();
    QAction* toggle = toggleViewAction();
    toggle->setObjectName(QStringLiteral("usbLogToggle"));
    // Beside the windows of the View menu, when the main window has one.
    QMenu* view = window.menuBar()->findChild<QMenu*>(QStringLiteral("menu_View"));
    if (view)
        view->addSeparator();
    else
        view = window.menuBar()->addMenu(tr("View"));
    view->addAction(toggle);
    link.setFrameObserver(&log);
}

UsbLogDock::~UsbLogDock()
{
    link.setFrameObserver(nullptr);
}

bool UsbLogDock::shows(const FrameLog::Entry& entry) const
{
    return shownRegister < 0 || FrameDecoder::registers(entry.bytes, entry.request).contains(shownRegister);
}

void UsbLogDock::setFilter(const QString& text)
{
    shownRegister = registerOf(text);
    refill();
}

void UsbLogDock::takeNew()
{
    const QVector<FrameLog::Entry> fresh = log.since(taken);
    if (fresh.isEmpty())
        return;
    taken = fresh.last().number;
    QString lines;
    for (const FrameLog::Entry& entry : fresh)
        if (shows(entry))
            lines += (lines.isEmpty() ? QString() : QStringLiteral("\n")) + FrameLog::line(entry);
    if (!lines.isEmpty())
        list->appendPlainText(lines);
}

void UsbLogDock::refill()
{
    list->clear();
    taken = 0;
    takeNew();
}

void UsbLogDock::clear()
{
    log.clear();
    list->clear();
}

QString UsbLogDock::save(const QString& fileName) const
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text | QIODevice::Truncate))
        return tr("Cannot write %1: %2").arg(fileName, file.errorString());
    QTextStream out(&file);
    const QString text = list->toPlainText();
    out << text << (text.isEmpty() ? "" : "\n");
    out.flush();
    return file.error() == QFile::NoError ? QString() : tr("Cannot write %1: %2").arg(fileName, file.errorString());
}
