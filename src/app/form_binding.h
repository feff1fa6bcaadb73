// The widgets of the forms bound to the engine's form model: what the model
// changes is shown in the widgets (with their signals held, so that nothing
// comes back), and what a user does to a widget reaches the model through
// MainClass::change_Value.
#pragma once

#include "engine/form_model.h"

#include <QHash>
#include <QVector>

class QObject;
class QWidget;

class FormBinding : public FormObserver
{
public:
    // `objects` finds a widget of any window by object name.
    FormBinding(FormModel& model, const QHash<QString, QWidget*>& objects);
    ~FormBinding() override;

    // Every widget shows what the model holds now.
    void showAll();
    // The widget of a field, or null.
    QWidget* widget(int field) const { return fieldWidgets.value(field); }
    // A widget's value in the model's terms: a spin box's number, a check
    // box's 0 or 1, a combo box's index.
    static qint64 valueOf(const QObject* widget);

    void valueChanged(int field, qint64 value) override;
    void enabledChanged(const QString& objectName, bool enabled) override;
    void textChanged(const QString& objectName, const QString& text) override;
    // An estimate shows in italic, with a tooltip that says so.
    void estimatedChanged(const QString& objectName, bool estimated) override;
    void bulbChanged(int field, Bulb bulb) override;
    void itemTextChanged(int field, int index, const QString& text) override;
    void minimumChanged(int field, int minimum) override;

private:
    FormModel& model;
    QHash<QString, QWidget*> byName;
    QVector<QWidget*> fieldWidgets;
    QHash<QString, QString> plainToolTips; // of the displays that show an estimate
};
