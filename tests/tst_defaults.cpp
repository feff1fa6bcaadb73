#include "gui_save.h"
#include "hex_writer.h"
#include "testsupport.h"

// The shipped "default.hex" is the GUI's start state as the tool itself saves
// it, with comments: the form's own settings of every widget, with the
// displays worked out. A change of a form's default must come with a new
// file; ZV_WRITE_DEFAULT_HEX=1 makes this test write it.
class tst_defaults : public QObject
{
    Q_OBJECT

private slots:
    void defaultFileIsTheFormsStartState()
    {
        zvTestInit(true);
        QTemporaryDir empty; // no "default.hex" here: the widgets keep the forms' values
        QVERIFY(QDir::setCurrent(empty.path()));
        ModalCatcher catcher;
        MainClass window;
        QVERIFY(waitIdle(&window));
        QCOMPARE(catcher.texts, QStringList({"\".hex\" file is not available"}));
        mapshow* map = window.firstMap();
        for (const part* p : map->parts) {
            if (auto* spin = qobject_cast<QSpinBox*>(p->widget))
                emit spin->valueChanged(spin->value());
            else if (auto* combo = qobject_cast<QComboBox*>(p->widget))
                emit combo->currentIndexChanged(combo->currentIndex());
            else if (auto* check = qobject_cast<QCheckBox*>(p->widget))
                emit check->stateChanged(check->checkState());
        }
        PanelSettings full;
        full.changesOnly = false;
        full.comments = true;
        const QString text = HexWriter::guiText(GuiSave::take(*window.model(), full));

        const QString shipped = QStringLiteral(ZV_SOURCE_DIR "/resources/default.hex");
        if (qEnvironmentVariableIntValue("ZV_WRITE_DEFAULT_HEX"))
            QVERIFY(HexWriter::writeFile(shipped, text, false));
        QFile file(shipped);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(file.readAll()), text);
    }
};

QTEST_MAIN(tst_defaults)
#include "tst_defaults.moc"
