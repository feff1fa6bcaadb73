// Board listing and choice of zv4280ctl, over usb_link's scan.
#include "ctl_board.h"

#include "ctl_output.h"
#include "ctl_options.h"
#include "usb_link.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace {

QString busAddress(const CtlBoard::Found& b)
{
    return QStringLiteral("%1:%2").arg(b.bus).arg(b.address);
}

} // namespace

bool CtlBoard::scan(QList<Found>* boards)
{
    usb_link link;
    if (!link.scanDevices())
        return false;
    boards->clear();
    for (const QString& key : qAsConst(link.deviceList)) {
        Found b;
        b.key = key;
        if (usb_link::parseDeviceKey(key, &b.vendor, &b.product, &b.bus, &b.address))
            boards->append(b);
    }
    std::sort(boards->begin(), boards->end(), [](const Found& a, const Found& b) {
        return a.bus != b.bus ? a.bus < b.bus : a.address < b.address;
    });
    return true;
}

QString CtlBoard::choose(const QString& choice, QString* error, bool* usage)
{
    *usage = false;
    const QStringList parts = choice.split(QLatin1Char(':'));
    qint64 bus = -1, address = -1;
    if (parts.size() != 2 || parts[0].startsWith(QLatin1String("0x"), Qt::CaseInsensitive)
        || parts[1].startsWith(QLatin1String("0x"), Qt::CaseInsensitive) || !CtlOptions::number(parts[0], &bus)
        || !CtlOptions::number(parts[1], &address) || bus > 255 || address > 255) {
        *usage = true;
        *error = QStringLiteral("--board takes BUS:ADDRESS, two decimal numbers up to 255 as lsusb shows them, "
                                "such as 1:5; not \"%1\"").arg(choice);
        return QString();
    }
    QList<Found> boards;
    if (!scan(&boards)) {
        *error = QStringLiteral("cannot list the USB devices");
        return QString();
    }
    QStringList present;
    for (const Found& b : qAsConst(boards)) {
        if (b.bus == bus && b.address == address)
            return b.key;
        present.append(busAddress(b));
    }
    *error = QStringLiteral("no bridge board at bus %1 address %2").arg(bus).arg(address);
    *error += present.isEmpty() ? QStringLiteral("; none is attached")
                                : QStringLiteral("; boards at ") + present.join(QStringLiteral(", "));
    return QString();
}

QString CtlBoard::absence(bool boardChosen)
{
    QList<Found> boards;
    if (!scan(&boards))
        return QStringLiteral("cannot list the USB devices");
    if (boards.isEmpty())
        return QStringLiteral("no bridge board is attached");
    if (boards.size() > 1 && !boardChosen) {
        QStringList present;
        for (const Found& b : qAsConst(boards))
            present.append(busAddress(b));
        return QStringLiteral("%1 bridge boards are attached (%2): choose one with --board BUS:ADDRESS")
            .arg(boards.size())
            .arg(present.join(QStringLiteral(", ")));
    }
    return QString();
}

QJsonObject CtlBoard::json(const Found& b)
{
    return QJsonObject{{QStringLiteral("bus"), b.bus},
                       {QStringLiteral("address"), b.address},
                       {QStringLiteral("vendor"), QStringLiteral("%1").arg(b.vendor, 4, 16, QLatin1Char('0'))},
                       {QStringLiteral("product"), QStringLiteral("%1").arg(b.product, 4, 16, QLatin1Char('0'))}};
}

std::optional<CtlBoard::Found> CtlBoard::current(const QString& chosenKey)
{
    QList<Found> boards;
    if (!scan(&boards))
        return std::nullopt;
    for (const Found& b : qAsConst(boards))
        if (b.key == chosenKey)
            return b;
    if (boards.size() == 1)
        return boards.first();
    return std::nullopt;
}

int CtlBoard::listCommand(CtlOutput& out)
{
    QList<Found> boards;
    if (!scan(&boards))
        return out.fail(CtlExit::Board, QStringLiteral("cannot list the USB devices"));
    QJsonArray list;
    for (const Found& b : qAsConst(boards)) {
        const QJsonObject board = json(b);
        out.line(QStringLiteral("Bus %1 Device %2: ID %3:%4  --board %5")
                     .arg(b.bus, 3, 10, QLatin1Char('0'))
                     .arg(b.address, 3, 10, QLatin1Char('0'))
                     .arg(board.value(QLatin1String("vendor")).toString(),
                          board.value(QLatin1String("product")).toString(), busAddress(b)));
        list.append(board);
    }
    out.set(QStringLiteral("devices"), list);
    if (boards.isEmpty())
        return out.fail(CtlExit::Board, QStringLiteral("no bridge board found"));
    return out.done();
}
