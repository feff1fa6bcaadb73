// Finding the bridge boards on the bus for zv4280ctl, and choosing one by
// its bus and device address, as lsusb shows them.
#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

class CtlOutput;

class CtlBoard
{
public:
    // A bridge board on the bus.
    struct Found
    {
        quint8 bus = 0;
        quint8 address = 0;
        quint16 vendor = 0;
        quint16 product = 0;
        QString key; // usb_link's device key
    };

    // The bridge boards on the bus; false when the bus cannot be listed.
    static bool scan(QList<Found>* boards);

    // The device key of the board that "--board BUS:ADDRESS" names. Empty
    // with a message in `error` when the text is no BUS:ADDRESS (`usage`
    // set) or no board sits there.
    static QString choose(const QString& choice, QString* error, bool* usage);

    // Why a register operation found no board, when the bus tells: none,
    // or several and none chosen. Empty otherwise.
    static QString absence(bool boardChosen);

    // A board as JSON: {bus, address, vendor, product}, the ids as "2976", "0003".
    static QJsonObject json(const Found& board);

    // The board that a register operation would open: the chosen one
    // (usb_link's key), or the only one on the bus; none otherwise.
    static std::optional<Found> current(const QString& chosenKey);

    // The command "devices".
    static int listCommand(CtlOutput& out);
};
