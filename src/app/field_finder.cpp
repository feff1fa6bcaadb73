// The find field of the windows.
#include "field_finder.h"

#include "MainClass.h"
#include "engine/catalogue.h"
#include "engine/field_search.h"

#include <QApplication>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QStackedWidget>
#include <QStringListModel>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace {

// At most this many hits are offered.
constexpr int kMostHits = 60;

QString hitText(const FieldEntry& e)
{
    const QString caption = FieldSearch::caption(e);
    return FieldSearch::shortName(e) + QStringLiteral("  —  ") + (caption.isEmpty() ? QString() : caption + QStringLiteral("  —  "))
           + buildToolTip(e.record);
}

} // namespace

FieldFinder::FieldFinder(MainClass& mainWindow) : QWidget(&mainWindow, Qt::Tool), main(mainWindow)
{
    setObjectName(QStringLiteral("fieldFinder"));
    setWindowTitle(tr("Find a field"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Name, caption or location (Reg21, Reg21 <D4>):"), this));
    edit = new QLineEdit(this);
    edit->setObjectName(QStringLiteral("findEdit"));
    edit->setAccessibleName(QStringLiteral("Find a field"));
    edit->setMinimumWidth(480);
    layout->addWidget(edit);
    hitsModel = new QStringListModel(this);
    completer = new QCompleter(hitsModel, this);
    completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    completer->setMaxVisibleItems(15);
    edit->setCompleter(completer);
    connect(edit, &QLineEdit::textEdited, this, &FieldFinder::update);
    connect(completer, QOverload<const QString&>::of(&QCompleter::activated), this, &FieldFinder::choose);
    connect(edit, &QLineEdit::returnPressed, this, [this] { choose(edit->text()); });
}

void FieldFinder::open()
{
    if (QWidget* active = QApplication::activeWindow(); active && active != this)
        move(active->geometry().center() - QPoint(width() / 2, height() / 2));
    show();
    raise();
    activateWindow();
    edit->setFocus();
    edit->selectAll();
}

void FieldFinder::update(const QString& text)
{
    const QVector<FieldEntry>& fields = Catalogue::instance().fields();
    hits = FieldSearch::match(Catalogue::instance(), text).mid(0, kMostHits);
    QStringList texts;
    for (int f : qAsConst(hits))
        texts.append(hitText(fields.at(f)));
    hitsModel->setStringList(texts);
    if (!hits.isEmpty())
        completer->complete();
}

// A hit chosen from the list, or the text as typed: the hit it names, else
// the best one.
void FieldFinder::choose(const QString& text)
{
    if (hits.isEmpty())
        update(text);
    if (hits.isEmpty())
        return;
    const int row = hitsModel->stringList().indexOf(text);
    if (go(hits.value(row, hits.first())))
        hide();
}

bool FieldFinder::go(int field)
{
    const QVector<FieldEntry>& fields = Catalogue::instance().fields();
    if (field < 0 || field >= fields.size())
        return false;
    const FieldEntry& e = fields.at(field);
    QWidget* window = main.windows.value(e.window);
    QWidget* widget = window ? window->findChild<QWidget*>(e.objectName) : nullptr;
    if (!widget)
        return false;
    // A field that the program keeps hidden is shown by its caption.
    QWidget* target = widget;
    if (widget->isHidden() && !e.captionObject.isEmpty())
        if (QWidget* caption = window->findChild<QWidget*>(e.captionObject))
            target = caption;

    for (QWidget* w = target; w && w != window; w = w->parentWidget()) {
        auto* stack = qobject_cast<QStackedWidget*>(w->parentWidget());
        if (auto* tabs = stack ? qobject_cast<QTabWidget*>(stack->parentWidget()) : nullptr)
            tabs->setCurrentWidget(w);
    }
    window->show();
    window->raise();
    window->activateWindow();
    for (QWidget* w = target->parentWidget(); w && w != window; w = w->parentWidget())
        if (auto* area = qobject_cast<QScrollArea*>(w))
            area->ensureWidgetVisible(target);
    target->setFocus(Qt::OtherFocusReason);
    mark(target);
    return true;
}

// A frame and a colour for kMarkMs; the widget's own style comes back then.
void FieldFinder::mark(QWidget* widget)
{
    if (widget->property("findMark").toBool())
        return;
    const QString own = widget->styleSheet();
    widget->setProperty("findMark", true);
    widget->setStyleSheet(own + QStringLiteral("#%1 { background-color: #ffd54f; border: 2px solid #e65100; }")
                                    .arg(widget->objectName()));
    QPointer<QWidget> marked(widget);
    QTimer::singleShot(kMarkMs, this, [marked, own] {
        if (!marked)
            return;
        marked->setStyleSheet(own);
        marked->setProperty("findMark", false);
    });
}
