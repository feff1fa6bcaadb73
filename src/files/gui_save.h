// Everything that a save of the GUI state writes, taken on the thread of the
// forms before the worker starts: the worker then reads no form.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

class FormModel;
struct PanelSettings;

struct GuiSave
{
    QString chipName;
    QByteArray guiImage;
    QByteArray icImage;
    bool changesOnly = false;  // only registers where guiImage and icImage differ
    bool withComments = false; // each register line carries its comment
    bool allRegisters = false; // registers 0 to 290, not 0 to 106
    QStringList comments;      // one per register when withComments
    QVector<bool> leftOut;     // registers that a full save leaves out

    // The map's images, comments and filters under the panel's flags
    // (changes only, comments, status and service registers), from the form
    // model on its thread.
    static GuiSave take(const FormModel& model, const PanelSettings& settings);
};
