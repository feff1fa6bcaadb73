#pragma once

#include "clerk.h"

#include <QMainWindow>
#include <QMap>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

class BenchMenu;
class FormBinding;
class FormModel;
class OperationStatus;
class QAction;
class QProgressBar;
class UndoActions;
class UsbLogDock;
class mapshow;
class service_block;
struct part;

namespace Ui {
class MainClass;
}

// The main window. It creates every window of the program, finds the
// register fields by their widgets' object names, binds the editing widgets
// to change_Value and through it to the engine's form model, and owns the
// operation cycle of the toolbar commands.
class MainClass : public QMainWindow
{
    Q_OBJECT

public:
    // How the window starts: the program loads "default.hex" as F5 does; the
    // command-line tool starts idle and brings in the chip's state itself.
    enum class Start { LoadDefaults, Idle };

    explicit MainClass(QWidget* parent = nullptr);
    explicit MainClass(Start start, QWidget* parent = nullptr);
    // The same with another set of windows beside the main window and the
    // service panel, as tests build it.
    MainClass(const QMap<QString, QWidget*>& windowSet, QWidget* parent);
    ~MainClass() override;

    service_block* service = nullptr;
    QMap<QString, QWidget*> windows;
    QMap<QString, part*> outputs;
    QMap<QString, mapshow*> maps;
    QString lastPath;
    // The running operation. `running` holds from the start until its end
    // message has been dealt with (a failure's message box closed); `worker`
    // follows the clerk's own deletion, which may come earlier, so it never
    // dangles.
    QPointer<clerk> worker;
    bool running = false;
    clerk::Command runningCommand = clerk::Command::ChipToGui;
    // Operations started, and ended with their end message dealt with. The
    // window tells both to accessibility tools as its description
    // ("operations: 3 started, 3 ended"), so that a script driving it sees
    // when what it started is over.
    int operationsStarted = 0;
    int operationsEnded = 0;
    QProgressBar* progressBar = nullptr;
    // Find a field, Compare and Export, with their keys.
    BenchMenu* tools = nullptr;
    // The status bar's line: how the last operation ended.
    OperationStatus* operationStatus = nullptr;

    // The first register map, which all map-wide operations serve.
    mapshow* firstMap() const;
    // The forms' state in the engine, which every edit of a field goes
    // through; the widgets follow it. Null when the windows are not this
    // chip's forms (a test's own windows): edits then only reach the image.
    FormModel* model() const { return formModel.get(); }
    // Undo and redo of the forms (null with a test's own windows), and the
    // log of the frames on the wire.
    UndoActions* undo() const { return undoActions.get(); }
    UsbLogDock* usbLog = nullptr;
    // Measured calibration tables for the displays, from the file given or
    // the start folder's "calibration.csv"; a faulty file is told of in a
    // message box and the tables stay as they were.
    void loadCalibration(const QString& given);
    // A widget of any window by its object name; the main window is searched
    // first.
    QWidget* findWidget(const QString& objectName) const;

    // A worker for a command with what it takes from this window: the
    // panel's USB link, the maps' images and, for GUI to file, the save taken
    // from the widgets now. The caller connects it, starts it and owns it.
    clerk* newWorker(clerk::Command command, const PanelSettings& settings, const QString& fileName = QString());
    // The widgets' side of a command that ended well: after a read or a load
    // the widgets show guiImage, the spin boxes' displays are recomputed, and
    // a load marks the chip-only status fields "n/a".
    void showOperationResult(clerk::Command command);

    // Chip to file, from the service panel's (hidden) button. A plain member
    // rather than a slot: the button lives on the panel, so the main form's
    // connection by name must not look for it.
    void on_Button_ICFILE_clicked();

    // Operations a script asks for: the cycle and the count of a toolbar
    // key's, their end handed to `ended` (the failure's text, empty after a
    // success, and whether a key asked it to stop) instead of a message
    // box. False, with nothing started, while an operation runs.
    using ScriptEnd = std::function<void(const QString& failure, bool stopped)>;
    bool startScripted(clerk::Command command, const PanelSettings& settings, const QString& fileName,
                       ScriptEnd ended);
    // Work done at once, counted as an operation; false while one runs.
    bool runScripted(const std::function<void()>& work);

signals:
    // An operation has ended: another may start.
    void operationEnded();

public slots:
    void change_Value(int val);
    bool eventFilter(QObject* object, QEvent* event) override;
    void on_action_ExpertMode_triggered();
    void on_action_load_default_triggered();
    void on_action_GUIFILE_triggered();
    void on_action_FILEGUI_triggered();
    void on_action_FILEIC_triggered();
    void on_action_GUIIC_triggered();
    void on_action_ICGUI_triggered();
    void Button_open_window_clicked();
    void slotMapWindow();
    void error_message(QString m);

private:
    MainClass(const QMap<QString, QWidget*>& windowSet, Start start, QWidget* parent);
    static QMap<QString, QWidget*> createWindows();
    void scanWindows();
    void setDefaultState();
    void toggleWindow(QWidget* window);
    static void showModal(const QString& text);

    QAction* progressAction() const;
    // Asks the running operation to stop; false when none runs.
    bool stopRunning();
    void startOperation(clerk::Command command, const QString& fileName = QString(),
                        const PanelSettings* settings = nullptr);
    void endOperation();
    void repeatReadTurn();
    void showOperationCount();
    QString askFile(bool save, const QString& caption, bool keepFolder = true);
    void openFileFor(clerk::Command command);
    void pushImage(mapshow* map);
    void bindForms();

    Ui::MainClass* ui;
    // The title that F7 or F9 gives once its file has been loaded.
    QString titleAfterLoad;
    ScriptEnd scriptEnd; // the running operation's, when a script started it
    bool repeatWaits = false; // the repeat read's turn came during a script's operation
    std::unique_ptr<FormModel> formModel;
    std::unique_ptr<FormBinding> binding;
    std::unique_ptr<UndoActions> undoActions;
};

// The window title after a load of the defaults or of a file.
extern const char* const kWindowTitle;
