// The scripting protocol's methods, the same for zv4280ctl serve and for
// the running program.
#include "bench_methods.h"

#include "ctl_board.h"
#include "ctl_field.h"
#include "ctl_session.h"
#include "engine/catalogue.h"
#include "engine/field_search.h"
#include "engine/form_model.h"
#include "engine/register_images.h"
#include "file_commands.h"
#include "register_names.h"
#include "rpc_bench.h"
#include "rpc_dispatcher.h"
#include "rpc_params.h"
#include "usb_link.h"

#include <QFileInfo>
#include <QJsonArray>

#include <cmath>
#include <cstring>
#include <map>
#include <memory>

namespace {

QString hexByte(int value)
{
    return QStringLiteral("0x%1").arg(value, 2, 16, QLatin1Char('0'));
}

// The board held from the first step of a request to its last, whichever
// step ends it.
struct BoardHold
{
    explicit BoardHold(usb_link& l) : link(l) { link.holdBoard(); }
    ~BoardHold() { link.releaseBoard(); }
    usb_link& link;
};

// The registers where the forms differ from the chip: those a write sends.
QJsonArray changedRegisters(const RegisterImages& map)
{
    QJsonArray changed;
    for (quint32 r = 0; r < map.registerCount; ++r)
        if (map.guiImage[r] != map.icImage[r])
            changed.append(int(r));
    return changed;
}

const QString kChip = QStringLiteral("chip");
const QString kGui = QStringLiteral("gui");

} // namespace

BenchMethods::BenchMethods(RpcBench& b) : bench(b) {}

void BenchMethods::bind(RpcDispatcher& dispatcher)
{
    using namespace std::placeholders;
    const std::pair<const char*, void (BenchMethods::*)(const QJsonObject&, const RpcReply&)> methods[] = {
        {"session.info", &BenchMethods::info}, {"registers.read", &BenchMethods::read},
        {"registers.write", &BenchMethods::write}, {"fields.list", &BenchMethods::list},
        {"fields.get", &BenchMethods::get}, {"fields.set", &BenchMethods::set},
        {"file.load", &BenchMethods::load}, {"file.save", &BenchMethods::save},
    };
    for (const auto& [name, method] : methods)
        dispatcher.add(QLatin1String(name), std::bind(method, this, _1, _2));
}

QJsonObject BenchMethods::fieldJson(const CtlField& f)
{
    QJsonObject entry{{QStringLiteral("name"), f.name()},
                      {QStringLiteral("code"), qint64(f.code())},
                      {QStringLiteral("text"), f.text()},
                      {QStringLiteral("location"), buildToolTip(f.record())}};
    if (f.estimated())
        entry.insert(QStringLiteral("estimated"), true);
    return entry;
}

void BenchMethods::whenFree(bool wait, const RpcReply& reply, std::function<void()> work)
{
    if (!bench.busy())
        return work();
    if (!wait)
        return reply.error(RpcCode::Busy, QStringLiteral("an operation runs in the program; ask again when it has "
                                                         "ended, or add \"wait\": true to wait for it"));
    bench.whenIdle([this, reply, work = std::move(work)] { whenFree(true, reply, work); });
}

RpcError BenchMethods::boardError(const QString& what, bool stopped) const
{
    if (stopped)
        return {RpcCode::Busy, what + QStringLiteral(": stopped by a key of the program's toolbar")};
    const QString why = CtlBoard::absence(bench.boardChosen());
    if (!why.isEmpty())
        return {RpcCode::NoBoard, what + QStringLiteral(": ") + why};
    const QString reason = bench.link().reason();
    return {RpcCode::BoardFailed, what + (reason.isEmpty() ? QStringLiteral(": the board could not be opened")
                                                           : QStringLiteral(" (%1)").arg(reason))};
}

bool BenchMethods::formsServed(const QString& member, const RpcReply& reply) const
{
    if (bench.showsForms())
        return true;
    reply.error(RpcError::invalidParams(
        member, QStringLiteral("\"%1\": \"gui\" is served by the running program (zv4280tb) only; this server "
                               "has no forms")
                    .arg(member)));
    return false;
}

void BenchMethods::info(const QJsonObject& params, const RpcReply& reply)
{
    if (const auto error = RpcParams(params).error())
        return reply.error(*error);
    const auto board = CtlBoard::current(bench.link().selectedKey);
    reply.result(QJsonObject{{QStringLiteral("server"), bench.serverName()},
                             {QStringLiteral("version"), QStringLiteral(ZV_VERSION)},
                             {QStringLiteral("board"), board ? QJsonValue(CtlBoard::json(*board)) : QJsonValue()},
                             {QStringLiteral("chip"), QStringLiteral("ZV4280v2")}});
}

void BenchMethods::read(const QJsonObject& params, const RpcReply& reply)
{
    const int registers = registerNames.size();
    RpcParams p(params);
    const int first = p.integer(QStringLiteral("first"), 0, registers - 1, 0);
    const int count = p.integer(QStringLiteral("count"), 1, registers, registers);
    const QString style = p.choice(QStringLiteral("style"),
                                   {QStringLiteral("auto"), QStringLiteral("block"), QStringLiteral("single")},
                                   QStringLiteral("auto"));
    const bool wait = p.boolean(QStringLiteral("wait"), false);
    if (first + count > registers)
        p.fail(QStringLiteral("count"), QStringLiteral("\"count\" %1 from register %2 passes the last register, %3; "
                                                       "at most %4 from there")
                                            .arg(count)
                                            .arg(first)
                                            .arg(registers - 1)
                                            .arg(registers - first));
    if (const auto error = p.error())
        return reply.error(*error);

    whenFree(wait, reply, [=] {
        bench.step([=] {
            usb_link& link = bench.link();
            std::vector<quint8> values(static_cast<size_t>(count));
            bool ok = true;
            if (style == QLatin1String("single")) {
                for (int i = 0; ok && i < count; ++i)
                    ok = link.readRegister(first + i, &values[size_t(i)]);
            } else if (style == QLatin1String("block")) {
                std::vector<int> addresses;
                for (int i = 0; i < count; ++i)
                    addresses.push_back(first + i);
                std::vector<quint8> list = link.blockList(addresses);
                ok = link.readBlock(count, list.data());
                const size_t size = link.addressBytes + 1u;
                for (size_t i = 0; i < values.size(); ++i)
                    values[i] = list[i * size + size - 1];
            } else {
                ok = link.readAuto(first, count, values.data());
            }
            if (!ok)
                return reply.error(boardError(
                    QStringLiteral("registers %1 to %2 could not be read").arg(first).arg(first + count - 1), false));
            QJsonArray read;
            for (quint8 v : values)
                read.append(v);
            reply.result(QJsonObject{{QStringLiteral("first"), first}, {QStringLiteral("values"), read}});
        });
    });
}

// The registers are written in one block operation, then read back in one.
void BenchMethods::write(const QJsonObject& params, const RpcReply& reply)
{
    const int registers = registerNames.size();
    RpcParams p(params);
    const QJsonObject asked = p.object(QStringLiteral("values"));
    const bool wait = p.boolean(QStringLiteral("wait"), false);
    std::map<int, quint8> values; // in rising order
    for (auto it = asked.begin(); it != asked.end(); ++it) {
        bool number = false;
        const int reg = it.key().toInt(&number);
        int value = 0;
        if (!number || it.key() != QString::number(reg) || reg < 0 || reg >= registers)
            p.fail(QStringLiteral("values"), QStringLiteral("\"values\": \"%1\" is no register; registers are \"0\" "
                                                            "to \"%2\" in decimal")
                                                 .arg(it.key())
                                                 .arg(registers - 1));
        else if (!RpcParams::wholeNumber(it.value(), 0, 255, &value))
            p.fail(QStringLiteral("values"), QStringLiteral("\"values\": register %1 takes a value from 0 to 255, "
                                                            "not %2")
                                                 .arg(reg)
                                                 .arg(RpcParams::quote(it.value())));
        values[reg] = quint8(value);
    }
    if (const auto error = p.error())
        return reply.error(*error);

    std::vector<int> addresses;
    std::vector<quint8> bytes;
    QJsonArray written;
    for (const auto& [reg, value] : values) {
        addresses.push_back(reg);
        bytes.push_back(value);
        written.append(reg);
    }
    if (addresses.empty())
        return reply.result(QJsonObject{{QStringLiteral("written"), written}, {QStringLiteral("readBack"), QJsonObject()}});

    whenFree(wait, reply, [=] {
        bench.step([=] {
            usb_link& link = bench.link();
            // The writes and the read-back go to one board.
            const BoardHold hold(link);
            const int count = int(addresses.size());
            std::vector<quint8> list = link.blockList(addresses, bytes.data());
            if (!link.writeBlock(count, list.data())) {
                RpcError error = boardError(QStringLiteral("the registers could not be written"), false);
                error.data = QJsonObject{{QStringLiteral("written"), QJsonArray()}};
                if (!link.transferFailure().isEmpty()) {
                    // The frames before the one that failed reached the chip.
                    error.message += QStringLiteral("; some of them may have been written: read them to see");
                    error.data = QJsonObject{{QStringLiteral("written"), QJsonArray()}, {QStringLiteral("uncertain"), written}};
                }
                return reply.error(error);
            }

            list = link.blockList(addresses);
            if (!link.readBlock(count, list.data())) {
                RpcError error = boardError(QStringLiteral("the registers were written, but could not be read back"), false);
                error.data = QJsonObject{{QStringLiteral("written"), written}};
                return reply.error(error);
            }
            QJsonObject readBack;
            QJsonArray differs;
            QStringList differences;
            const size_t size = link.addressBytes + 1u;
            for (size_t i = 0; i < addresses.size(); ++i) {
                const quint8 value = list[i * size + size - 1];
                readBack.insert(QString::number(addresses[i]), value);
                if (value != bytes[i]) {
                    differs.append(addresses[i]);
                    differences.append(QStringLiteral("register %1 reads back %2 after %3 was written")
                                           .arg(addresses[i])
                                           .arg(hexByte(value), hexByte(bytes[i])));
                }
            }
            const QJsonObject result{{QStringLiteral("written"), written}, {QStringLiteral("readBack"), readBack}};
            if (differs.isEmpty())
                return reply.result(result);
            QJsonObject data = result;
            data.insert(QStringLiteral("differs"), differs);
            reply.error(RpcCode::ReadBackDiffers,
                        differences.join(QStringLiteral("; ")) + QStringLiteral(" (every write was made)"), data);
        });
    });
}

void BenchMethods::list(const QJsonObject& params, const RpcReply& reply)
{
    RpcParams p(params);
    const QString match = params.contains(QStringLiteral("match")) ? p.text(QStringLiteral("match")) : QString();
    if (const auto error = p.error())
        return reply.error(*error);
    FormModel& model = bench.model();
    QJsonArray fields;
    for (int index : FieldSearch::match(model.catalogue(), match)) {
        const CtlField f(model, index);
        QJsonObject entry{{QStringLiteral("name"), f.name()},
                          {QStringLiteral("location"), buildToolTip(f.record())},
                          {QStringLiteral("kind"), f.kindKey()},
                          {QStringLiteral("min"), qint64(f.lowest())},
                          {QStringLiteral("max"), qint64(f.highest())},
                          {QStringLiteral("caption"), model.entry(index).caption},
                          {QStringLiteral("editable"), f.editable()}};
        if (f.kind() == CtlField::Kind::ComboBox)
            entry.insert(QStringLiteral("items"), QJsonArray::fromStringList(f.items()));
        fields.append(entry);
    }
    reply.result(QJsonObject{{QStringLiteral("fields"), fields}});
}

namespace {

// The fields of the names in a request; the first unknown one fails the
// params.
QList<int> resolve(FormModel& model, const QStringList& names, RpcParams& p, const QString& member)
{
    QList<int> fields;
    for (const QString& name : names) {
        const CtlField f(model, name);
        if (!f.valid())
            p.fail(member, QStringLiteral("\"%1\": no field \"%2\" (fields.list lists them)").arg(member, name));
        else
            fields.append(model.indexOf(f.record().name));
    }
    return fields;
}

QJsonObject report(FormModel& model, const QList<int>& fields)
{
    QJsonArray list;
    for (int index : fields)
        list.append(BenchMethods::fieldJson(CtlField(model, index)));
    return QJsonObject{{QStringLiteral("fields"), list}};
}

} // namespace

// From the chip through the forms' rules, from the program's forms as they
// stand, or from a file loaded into forms of its own (which leaves the
// program's as they are).
void BenchMethods::get(const QJsonObject& params, const RpcReply& reply)
{
    RpcParams p(params);
    const QStringList names = p.texts(QStringLiteral("names"));
    const QString source = p.text(QStringLiteral("source"), kChip);
    const bool wait = p.boolean(QStringLiteral("wait"), false);
    const QList<int> fields = resolve(bench.model(), names, p, QStringLiteral("names"));
    const bool lenient = p.boolean(QStringLiteral("lenient"), false);
    if (const auto error = p.error())
        return reply.error(*error);
    if (source == kGui && !formsServed(QStringLiteral("source"), reply))
        return;

    if (source != kChip && source != kGui) {
        CtlSession scratch{QString()};
        scratch.calibration = bench.model().calibration();
        QString refusal;
        if (FileCommands::check(source, scratch.images(), lenient, &refusal) < 0)
            return reply.error(RpcCode::FileError, refusal);
        const QString failure = scratch.run(clerk::Command::FileToGui, source);
        if (!failure.isEmpty())
            return reply.error(RpcCode::FileError, QStringLiteral("\"%1\": %2").arg(source, failure));
        return reply.result(report(scratch.model(), fields));
    }
    whenFree(wait, reply, [=] {
        if (source == kGui)
            return bench.step([=] { reply.result(report(bench.model(), fields)); });
        bench.run(clerk::Command::ChipToGui, QString(), bench.settings(), [=](const QString& failure, bool stopped) {
            if (!failure.isEmpty())
                return reply.error(boardError(QStringLiteral("the chip could not be read: ") + failure, stopped));
            reply.result(report(bench.model(), fields));
        });
    });
}

// On the chip: read into the forms, the fields set there so that their
// rules run, the registers that then differ written, and the chip read back
// and compared field by field. On the program's forms: set there alone.
void BenchMethods::set(const QJsonObject& params, const RpcReply& reply)
{
    RpcParams p(params);
    const QJsonObject values = p.object(QStringLiteral("values"));
    const QString target = p.choice(QStringLiteral("target"), {kChip, kGui}, kChip);
    const bool wait = p.boolean(QStringLiteral("wait"), false);
    FormModel& model = bench.model();
    const QList<int> fields = resolve(model, values.keys(), p, QStringLiteral("values"));
    QList<quint32> codes;
    if (values.isEmpty())
        p.fail(QStringLiteral("values"), QStringLiteral("\"values\" names no field"));
    for (int i = 0; i < fields.size(); ++i) {
        const CtlField f(model, fields.at(i));
        const QJsonValue asked = values.value(values.keys().at(i));
        const double d = asked.toDouble(-1);
        // A number that is no whole code reads as text that no code takes.
        const QString given = asked.isString() ? asked.toString()
                              : asked.isDouble() && std::floor(d) == d && d >= 0 && d <= 4294967295.0
                                  ? QString::number(qint64(d))
                                  : RpcParams::quote(asked);
        quint32 code = 0;
        const QString refused = f.refusal(given, &code);
        if (!refused.isEmpty())
            p.fail(QStringLiteral("values"), QStringLiteral("\"values\": ") + refused);
        if (fields.indexOf(fields.at(i)) != i)
            p.fail(QStringLiteral("values"), QStringLiteral("\"values\": %1 is given twice").arg(f.name()));
        codes.append(code);
    }
    if (const auto error = p.error())
        return reply.error(*error);
    if (target == kGui && !formsServed(QStringLiteral("target"), reply))
        return;

    auto setCodes = [=, &model] {
        for (int i = 0; i < fields.size(); ++i)
            CtlField(model, fields.at(i)).setCode(codes.at(i));
    };
    whenFree(wait, reply, [=] {
        if (target == kGui)
            return bench.step([=] {
                setCodes();
                QJsonObject result = report(bench.model(), fields);
                result.insert(QStringLiteral("written"), QJsonArray());
                reply.result(result);
            });

        PanelSettings settings = bench.settings();
        settings.changesOnly = true;
        settings.readBack = true;
        settings.readBackWritten = true;
        settings.writePauseMs = 0;
        // The read, the write and the read-back go to one board.
        auto hold = std::make_shared<BoardHold>(bench.link());
        // The reply once the fields are written and read back: each field's
        // code compared with the one asked for.
        auto answer = [=](const QJsonArray& written) {
            QJsonObject result = report(bench.model(), fields);
            result.insert(QStringLiteral("written"), written);
            QStringList differing;
            for (int i = 0; i < fields.size(); ++i) {
                const CtlField f(bench.model(), fields.at(i));
                if (f.code() != codes.at(i))
                    differing.append(QStringLiteral("%1 reads back %2 after %3 was written")
                                         .arg(f.name())
                                         .arg(f.code())
                                         .arg(codes.at(i)));
            }
            if (differing.isEmpty())
                return reply.result(result);
            reply.error(RpcCode::ReadBackDiffers, differing.join(QStringLiteral("; ")), result);
        };
        if (chipAsShown())
            return bench.step([=] { writeShown(setCodes, answer, reply); });
        auto write = [=] {
            setCodes();
            const QJsonArray written = changedRegisters(bench.model().images());
            bench.run(clerk::Command::GuiToChip, QString(), settings, [=](const QString& failure, bool stopped) {
                (void)hold;
                if (!failure.isEmpty()) {
                    RpcError error = boardError(QStringLiteral("the fields could not be written: ") + failure, stopped);
                    error.data = QJsonObject{{QStringLiteral("written"), QJsonArray()}, {QStringLiteral("uncertain"), written}};
                    return reply.error(error);
                }
                answer(written);
            });
        };

        bench.run(clerk::Command::ChipToGui, QString(), settings, [=](const QString& failure, bool stopped) {
            if (!failure.isEmpty() || stopped) {
                RpcError error = boardError(failure.isEmpty() ? QStringLiteral("the chip was read, nothing was written")
                                                              : QStringLiteral("the chip could not be read: ") + failure,
                                            stopped);
                error.data = QJsonObject{{QStringLiteral("written"), QJsonArray()}};
                return reply.error(error);
            }
            write();
        });
    });
}

// A field write to a chip that holds what the forms show: one step with no
// operation of the worker, so no identity read either (the read that made
// the chip known had it): the registers that the fields' rules changed go in
// block frames and are read back, and the forms show what came back.
void BenchMethods::writeShown(const std::function<void()>& setCodes,
                              const std::function<void(const QJsonArray&)>& answer, const RpcReply& reply)
{
    usb_link& link = bench.link();
    const BoardHold hold(link);
    FormModel& model = bench.model();
    RegisterImages& map = model.images();
    setCodes();
    const QJsonArray written = changedRegisters(map);
    std::vector<int> addresses;
    std::vector<quint8> values;
    for (const QJsonValue& r : written) {
        addresses.push_back(r.toInt());
        values.push_back(map.guiImage[r.toInt()]);
    }
    const int count = int(addresses.size());
    std::vector<quint8> list = link.blockList(addresses, values.data());
    if (count > 0 && !link.writeBlock(count, list.data())) {
        RpcError error = boardError(QStringLiteral("the fields could not be written"), false);
        error.data = QJsonObject{{QStringLiteral("written"), QJsonArray()}, {QStringLiteral("uncertain"), written}};
        return reply.error(error);
    }
    list = link.blockList(addresses);
    if (count > 0 && !link.readBlock(count, list.data())) {
        RpcError error = boardError(QStringLiteral("the fields were written, but could not be read back"), false);
        error.data = QJsonObject{{QStringLiteral("written"), written}};
        return reply.error(error);
    }
    const size_t size = link.addressBytes + 1u;
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = list[i * size + size - 1];
    if (map.takeReadBack(addresses, values.data()))
        model.push(map.guiImage); // the forms show what the chip holds
    map.knownChanges = link.chipChanges();
    answer(written);
}

// The chip holds what the forms show, with no need to read it: the board
// has stayed open since the chip was last read, nothing has written to it
// since but the writes that were read back, and the forms hold no change
// that has not gone to the chip.
bool BenchMethods::chipAsShown()
{
    const RegisterImages& map = bench.model().images();
    return map.chipKnownOn(bench.link().keptBoard()) && map.knownChanges == bench.link().chipChanges()
           && std::memcmp(map.guiImage, map.icImage, map.registerCount) == 0;
}

// A file to the chip as it stands (F9), or into the program's forms (F7);
// the file is checked whole first.
void BenchMethods::load(const QJsonObject& params, const RpcReply& reply)
{
    RpcParams p(params);
    const QString path = p.text(QStringLiteral("path"));
    const QString target = p.choice(QStringLiteral("target"), {kChip, kGui}, kChip);
    const bool wait = p.boolean(QStringLiteral("wait"), false);
    const bool lenient = p.boolean(QStringLiteral("lenient"), false);
    if (const auto error = p.error())
        return reply.error(*error);
    if (target == kGui && !formsServed(QStringLiteral("target"), reply))
        return;
    QString refusal;
    QJsonArray sent;
    const int registers = FileCommands::check(path, bench.model().images(), lenient, &refusal, nullptr, &sent);
    if (registers < 0)
        return reply.error(RpcCode::FileError, refusal);

    whenFree(wait, reply, [=] {
        PanelSettings settings = bench.settings();
        // The map names are checked above, in the way that lets a saved file in.
        settings.configCheck = false;
        const bool toChip = target == kChip;
        bench.run(toChip ? clerk::Command::FileToChip : clerk::Command::FileToGui, path, settings,
                  [=](const QString& failure, bool stopped) {
                      if (failure.isEmpty())
                          return reply.result(QJsonObject{{QStringLiteral("registers"), registers}});
                      if (toChip) {
                          RpcError error = boardError(QStringLiteral("\"%1\" could not be sent: %2").arg(path, failure), stopped);
                          error.data = QJsonObject{{QStringLiteral("written"), QJsonArray()}};
                          // The sections before the stop or the failure are on the chip.
                          if (error.code != RpcCode::NoBoard) {
                              error.message += QStringLiteral("; some of its registers may have been written: read them to see");
                              error.data = QJsonObject{{QStringLiteral("written"), QJsonArray()}, {QStringLiteral("uncertain"), sent}};
                          }
                          return reply.error(error);
                      }
                      reply.error(RpcCode::FileError, QStringLiteral("\"%1\": %2").arg(path, failure));
                  });
    });
}

// What the forms hold (after a read of the chip, for source "chip") into a
// file, as F6 saves it.
void BenchMethods::save(const QJsonObject& params, const RpcReply& reply)
{
    RpcParams p(params);
    const QString path = p.text(QStringLiteral("path"));
    const QString source = p.choice(QStringLiteral("source"), {kChip, kGui}, kChip);
    const bool comments = p.boolean(QStringLiteral("comments"), false);
    const bool wait = p.boolean(QStringLiteral("wait"), false);
    if (const auto error = p.error())
        return reply.error(*error);
    if (source == kGui && !formsServed(QStringLiteral("source"), reply))
        return;
    const QFileInfo file(path);
    if (file.isDir() || !QFileInfo(file.absolutePath()).isDir())
        return reply.error(RpcCode::FileError, QStringLiteral("cannot write \"%1\": %2")
                                                   .arg(path, file.isDir() ? QStringLiteral("it is a folder")
                                                                           : QStringLiteral("no such folder")));

    whenFree(wait, reply, [=] {
        PanelSettings settings = bench.settings();
        settings.comments = comments;
        settings.changesOnly = false;
        settings.mergeFile = false;
        auto toFile = [=](const QString&, bool) {
            bench.run(clerk::Command::GuiToFile, path, settings, [=](const QString& failure, bool) {
                if (!failure.isEmpty())
                    return reply.error(RpcCode::FileError, QStringLiteral("cannot write \"%1\": %2").arg(path, failure));
                reply.result(QJsonObject{{QStringLiteral("path"), file.absoluteFilePath()}});
            });
        };
        if (source == kGui)
            return toFile(QString(), false);
        bench.run(clerk::Command::ChipToGui, QString(), settings, [=](const QString& failure, bool stopped) {
            if (!failure.isEmpty() || stopped)
                return reply.error(boardError(failure.isEmpty() ? QStringLiteral("the chip was read, nothing was saved")
                                                                : QStringLiteral("the chip could not be read: ") + failure,
                                              stopped));
            toFile(QString(), false);
        });
    });
}
