// The field commands of zv4280ctl: fields read or changed on the chip
// through the forms and their rules, and the list of every field.
#pragma once

#include <QList>
#include <QStringList>

class CtlField;
class CtlOutput;
class CtlSession;

class FieldCommands
{
public:
    FieldCommands(CtlSession& session, CtlOutput& out);

    // "field NAME..." reads; "field NAME=CODE..." changes and verifies.
    int field(const QStringList& arguments);
    // "fields [NAME...]".
    int list(const QStringList& names);
    // "fields --match TEXT": the fields the text finds, best first.
    int match(const QString& text);

private:
    int read(const QStringList& names);
    int write(const QStringList& assignments);
    // The fields of the names; false after a refusal.
    bool resolve(const QStringList& names, QList<CtlField>* fields, int* status);
    void report(const QList<CtlField>& fields, const QList<quint32>& asked);
    int boardFailure(const QString& what);

    CtlSession& session;
    CtlOutput& out;
};
