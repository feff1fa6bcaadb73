// The run of zv4280ctl: options, help, board choice and the commands.
#include "ctl_program.h"

#include "attach_command.h"
#include "ctl_board.h"
#include "ctl_options.h"
#include "ctl_output.h"
#include "ctl_session.h"
#include "diff_command.h"
#include "export_command.h"
#include "field_commands.h"
#include "frame_trace.h"
#include "file_commands.h"
#include "register_commands.h"
#include "serve_command.h"

#include <QtGlobal>

namespace {

QtMessageHandler qtHandler = nullptr;

// Qt looks for the session's runtime folder while it starts and complains
// when there is none, as on a bench machine without a login session; a
// program that shows nothing has no use for the folder, and the complaint
// would only stand in the way of the tool's own messages.
void messageHandler(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtWarningMsg && text.startsWith(QLatin1String("QStandardPaths: ")))
        return;
    qtHandler(type, context, text);
}

} // namespace

void CtlProgram::prepareEnvironment()
{
    // The GLib event loop costs its set-up and a write for every event
    // posted; nothing here needs it.
    if (!qEnvironmentVariableIsSet("QT_NO_GLIB"))
        qputenv("QT_NO_GLIB", "1");
    qtHandler = qInstallMessageHandler(messageHandler);
}

int CtlProgram::run(const QStringList& programArguments)
{
    // --attach [PATH] relays to the running program; no command goes with it.
    const int attach = programArguments.indexOf(QStringLiteral("--attach"));
    if (attach > 0)
        return AttachCommand::run(programArguments.value(attach + 1));
    CtlOptions options;
    QString error;
    const bool parsed = options.parse(programArguments, &error);
    CtlOutput out(options.command, options.json);
    if (!parsed)
        return out.fail(CtlExit::Usage, error);
    if (options.help) {
        CtlOutput::print(options.command.isEmpty() ? CtlOptions::programHelp()
                                                   : CtlOptions::commandHelp(options.command));
        return int(CtlExit::Done);
    }

    // A faulty calibration file is told of, and the built-in tables serve.
    Calibration calibration;
    const QString calibrationFile = Calibration::startFile(options.calibration);
    const QString calibrationFault = calibrationFile.isEmpty() ? QString() : calibration.load(calibrationFile);
    if (!calibrationFault.isEmpty())
        for (const QString& line : (calibrationFault + QStringLiteral("\nthe built-in calibration tables serve"))
                                       .split(QLatin1Char('\n')))
            CtlOutput::printError(QStringLiteral("zv4280ctl: ") + line + QLatin1Char('\n'));

    const QString& command = options.command;
    const QStringList& args = options.arguments;
    if (command == QLatin1String("devices"))
        return CtlBoard::listCommand(out);
    if (command == QLatin1String("fields")) { // the forms alone, no board
        CtlSession session{QString()};
        session.calibration = calibration;
        return options.match.isEmpty() ? FieldCommands(session, out).list(args)
                                       : FieldCommands(session, out).match(options.match);
    }

    QString key;
    if (!options.board.isEmpty()) {
        bool usage = false;
        key = CtlBoard::choose(options.board, &error, &usage);
        if (key.isEmpty())
            return out.fail(usage ? CtlExit::Usage : CtlExit::Board, error);
    }
    FrameTrace trace;
    CtlSession session(key);
    session.calibration = calibration;
    if (options.trace)
        session.link().setFrameObserver(&trace);
    RegisterCommands registers(session, out);
    FieldCommands fields(session, out);
    FileCommands files(session, out);
    if (command == QLatin1String("dump"))
        return registers.dump(options.style);
    if (command == QLatin1String("get"))
        return registers.get(args.at(0));
    if (command == QLatin1String("set"))
        return registers.set(args.at(0), args.at(1));
    if (command == QLatin1String("field"))
        return fields.field(args);
    if (command == QLatin1String("load"))
        return files.load(args.at(0), options.pause, options.lenient);
    if (command == QLatin1String("serve"))
        return ServeCommand(session, out).run(options.listen);
    if (command == QLatin1String("diff"))
        return DiffCommand(session, out).run(args.at(0), args.at(1));
    if (command == QLatin1String("export"))
        return ExportCommand(session, out).run(options.format, options.source, options.changesOnly, options.base,
                                               options.output);
    if (command == QLatin1String("save"))
        return files.save(args.at(0), options.comments, options.changesOnly, options.base, options.all);
    return out.fail(CtlExit::Usage, QStringLiteral("unknown command \"%1\"").arg(command));
}
