// Everything that a save of the GUI state writes, taken on the GUI thread
// before the worker starts: the worker then touches no widget.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

class FormModel;

struct GuiSave
{
    QString chipName;
    QByteArray guiImage;
    QByteArray icImage;
    bool changesOnly = false;  // only registers where guiImage and icImage differ
    bool withComments = false; // each register line carries its comment
    QStringList comments;      // one per register when withComments
    QVector<bool> leftOut;     // registers that a full save leaves out

    // The map's images, comments and filters under the panel's flags
    // "ChangesOnly", "HexComment", "StatusBits" and "ServiceBits" (the last
    // two count as on when missing), from the form model on its thread.
    static GuiSave take(const FormModel& model, const QMap<QString, int>& settings);
};
