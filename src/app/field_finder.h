// Ctrl+F: a small window with a search field whose completion lists the
// fields that the text finds (by name, caption or location); choosing one
// brings its window forward, switches to its tab, scrolls to it, gives it
// the focus and marks it for a moment.
#pragma once

#include <QPointer>
#include <QVector>
#include <QWidget>

class MainClass;
class QCompleter;
class QLineEdit;
class QStringListModel;

class FieldFinder : public QWidget
{
    Q_OBJECT

public:
    explicit FieldFinder(MainClass& main);

    // Opens the search field, its text selected.
    void open();
    // Brings a field (an index into the catalogue's fields) before the user;
    // false when its widget is not in any window.
    bool go(int field);
    // How long a found field stays marked.
    static constexpr int kMarkMs = 1500;

private:
    void update(const QString& text);
    void choose(const QString& text);
    void mark(QWidget* widget);

    MainClass& main;
    QLineEdit* edit = nullptr;
    QCompleter* completer = nullptr;
    QStringListModel* hitsModel = nullptr;
    QVector<int> hits;
};
