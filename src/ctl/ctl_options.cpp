// Parsing of the command line of zv4280ctl, and its help texts.
#include "ctl_options.h"

#include <QCommandLineParser>

namespace {

// What a command takes: its arguments (fewest, most; -1 for any number),
// the options of its own, and its help.
struct Command
{
    const char* name;
    const char* synopsis;
    const char* summary;
    int fewest;
    int most;
    QStringList options;
    const char* details;
};

const QList<Command>& commands()
{
    static const QList<Command> table = {
        {"devices", "devices", "bridge boards on the bus", 0, 0, {},
         "Lists the bridge boards (vendor 2976) by bus and device address, as --board takes them.\n"
         "JSON: {\"devices\": [{\"bus\": 1, \"address\": 5, \"vendor\": \"2976\", \"product\": \"0003\"}]}\n"},
        {"dump", "dump [--style single|block|auto]", "all registers as a grid, 16 a row", 0, 0, {"style"},
         "Reads every register of the chip (0 to 290) and prints them as a grid of hexadecimal bytes,\n"
         "16 a row, the row's first register at the left in hexadecimal. --style chooses how the chip\n"
         "is read: one register at a time, in blocks of ten, or by autoincrement (the default).\n"
         "JSON: {\"style\": \"auto\", \"registers\": [291 numbers, register 0 first]}\n"},
        {"get", "get REGISTER", "one register", 1, 1, {},
         "Reads one register (0 to 290) and prints its value, 0x5f.\n"
         "JSON: {\"register\": 12, \"name\": \"CLK_OUT\", \"value\": 95}\n"},
        {"set", "set REGISTER VALUE", "write one register, read it back", 2, 2, {},
         "Writes one register (0 to 290) with a byte (0 to 255) and reads it back; exit status 3 when\n"
         "the register then holds another value (the chip keeps some bits of its own).\n"
         "JSON: {\"register\": 12, \"name\": \"CLK_OUT\", \"written\": 95, \"value\": 95}\n"},
        {"field", "field NAME... | field NAME=CODE...", "read fields, or change them on the chip", 1, -1, {},
         "With names: reads the chip and prints each field's code and what the screens show for it.\n"
         "With NAME=CODE: reads the chip, sets each field's widget to its code as a user would (the\n"
         "rules run), writes the registers that changed, reads the chip back and checks every field;\n"
         "exit status 3 when a field reads back another code. A code is the widget's: 0 or 1 for a\n"
         "check box, the item's index or its text for a combo box (CLK_SOURCE='PLL \"A\"'), the number\n"
         "for a spin box. Refused with exit status 2, before anything is written: fields that only\n"
         "display, fields that the chip alone writes (the temperature code TS_code, status bits such\n"
         "as ChA_AAD_WORK, the internal statuses) and fields that the forms show disabled. Names may\n"
         "carry the chip word (ChA_PLL_RDiv_ZV4280v2) or not, in any case; an unknown name gets the\n"
         "nearest names as suggestions.\n"
         "JSON: {\"fields\": [{\"name\": \"ChA_PLL_RDiv\", \"code\": 13, \"text\": \"R-divider ratio:  13\",\n"
         "       \"location\": \"Reg21 <D4-D0>\"}], \"written\": [21]}  (\"written\" only with NAME=CODE)\n"},
        {"fields", "fields [NAME...] [--match TEXT]", "every field: registers and bits, kind, codes", 0, -1, {"match"},
         "Lists every field of the chip, or the fields named: its registers and bits, its kind\n"
         "(check box, combo box, spin box; label and line edit only display), and the codes it\n"
         "takes; \"written by the chip alone\" (and \"editable\": false) for those field refuses.\n"
         "Needs no board. --match lists the fields whose name, caption or location\n"
         "(\"Reg21\", \"Reg21 <D4>\") holds TEXT, in any case, best hits first, as Ctrl+F finds them.\n"
         "JSON: {\"fields\": [{\"name\": \"TS_MD\", \"location\": \"Reg9 <D1>\", \"registers\": [9], \"width\": 1,\n"
         "       \"kind\": \"combobox\", \"editable\": true, \"inverted\": false, \"min\": 0, \"max\": 1,\n"
         "       \"items\": [\"single\", \"continuous\"]}]}  (\"items\" for combo boxes only; kind is one of\n"
         "       checkbox, combobox, spinbox, label, lineedit)\n"},
        {"load", "load FILE [--pause MS] [--lenient]", "file to chip", 1, 1, {"pause", "lenient"},
         "Sends the registers of a .hex file to the chip in file order, each section (what follows a\n"
         "map line) as one block after a pause (--pause, default 200 ms). The file is checked first:\n"
         "a missing, unreadable, empty or binary file, a map name that is not ZV4280, a register\n"
         "beyond 290 or a file without any register line is refused and nothing reaches the chip,\n"
         "and so (exit status 2, the lines named) is a line that is no plain register, map or \"//\"\n"
         "line, such as \"Reg12 ZZ\", unless --lenient is given: then such lines go as they read\n"
         "(\"Reg12 ZZ\" as 0, \"Reg12 5F5\" as F5) and the JSON names them under \"oddLines\".\n"
         "JSON: {\"file\": \"settings.hex\", \"registers\": 107}\n"},
        {"save", "save FILE [--all] [--comments] [--changes-only [--base FILE]]", "chip to file, as F6 saves", 1, 1,
         {"all", "comments", "changes-only", "base"},
         "Reads the chip into the forms and saves them as F6 of zv4280tb does (registers 0 to 106;\n"
         "with --all every register, 0 to 290, as the service panel's \"Save all 291 registers\" does).\n"
         "--comments adds each register's fields in the words of the screens. --changes-only saves\n"
         "only the registers where the chip differs from a base file: --base, by default \"default.hex\"\n"
         "in the current folder, the file zv4280tb starts with. It leaves out the registers that the\n"
         "chip alone writes (identity, status, temperature).\n"
         "JSON: {\"file\": \"out.hex\", \"comments\": true, \"changesOnly\": false}, \"base\" with\n"
         "      --changes-only, \"all\": true with --all\n"},
        {"serve", "serve [--listen PATH]", "JSON-RPC requests on stdin, one a line, answered on stdout", 0, 0,
         {"listen"},
         "Serves the scripting protocol, JSON-RPC 2.0 with one message a line (UTF-8), on standard\n"
         "input and output until the input ends, answering the requests in order. The board stays\n"
         "open through a burst of requests. With --listen, serves instead on a\n"
         "local socket made at PATH (mode 0600) until interrupted, to clients of this user only.\n"
         "Methods:\n"
         "  session.info      {} -> {\"server\", \"version\", \"board\": {bus, address, vendor, product}\n"
         "                    or null, \"chip\"}\n"
         "  registers.read    {first: 0, count: 291, style: \"auto\"|\"block\"|\"single\"}\n"
         "                    -> {\"first\", \"values\": [...]}\n"
         "  registers.write   {values: {\"12\": 95, ...}} -> {\"written\": [12], \"readBack\": {\"12\": 95}}\n"
         "  fields.list       {match} -> {\"fields\": [{name, location, kind, min, max, items, caption,\n"
         "                    editable}]}\n"
         "  fields.get        {names: [...], source: \"chip\"|FILE} -> {\"fields\": [{name, code, text,\n"
         "                    location}]}\n"
         "  fields.set        {values: {\"ChA_PLL_RDiv\": 13}} -> {\"fields\": [...], \"written\": [21]}\n"
         "  file.load         {path} -> {\"registers\": n};  file.save {path, comments} -> {\"path\"}\n"
         "Errors: -32700 no JSON, -32600 no request (or a message over 1 MiB, which closes the\n"
         "connection), -32601 unknown method, -32602 bad params (the message names the member),\n"
         "-32001 no board, -32002 the board failed, -32003 a register reads back another value,\n"
         "-32004 busy, -32005 file error. \"data\" tells what was written, if anything.\n"
         "Example: echo '{\"jsonrpc\": \"2.0\", \"id\": 1, \"method\": \"registers.read\",\n"
         "         \"params\": {\"first\": 12, \"count\": 2}}' | zv4280ctl serve\n"},
        {"diff", "diff A B", "two settings compared field by field", 2, 2, {},
         "Compares two sources of register settings, each a .hex file or \"chip\" (read now), and\n"
         "prints one line for each field whose code differs: name, location, caption, then code and\n"
         "what the screens show on each side, separated by tabs. Fields that only display count too;\n"
         "bits that no field covers are listed by register (name, \"Reg107\", 0x5F). A register\n"
         "that a file leaves out is not compared. Exit status as diff's: 0 when equal, 1 when they\n"
         "differ, 2 on bad input or a failed board.\n"
         "JSON: {\"a\": \"x.hex\", \"b\": \"chip\", \"equal\": false, \"differences\": [{\"kind\": \"field\",\n"
         "       \"name\": \"ChA_PLL_RDiv\", \"caption\": \"R-divider ratio\", \"location\": \"Reg21 <D4-D0>\",\n"
         "       \"a\": {\"code\": 13, \"text\": \"13\"}, \"b\": {...}}]}  (kind \"register\" rows carry\n"
         "       \"register\" instead of \"caption\")\n"},
        {"export", "export --format c|csv|json [--source chip|FILE] [--changes-only [--base FILE]] [-o FILE]",
         "register settings for firmware", 0, 0, {"format", "source", "changes-only", "base", "output"},
         "Writes the register settings of the chip (registers 0 to 106, read now) or of a .hex file\n"
         "(its writes in file order) for firmware, to FILE or stdout:\n"
         "  c     a header: a comment with tool, version, date, source, register count and CRC-32,\n"
         "        then static const struct { uint16_t reg; uint8_t value; } zv4280_settings[] in the\n"
         "        order file to chip writes them; a pause (a map line or \"Reg-1\") is an entry\n"
         "        { ZV4280_PAUSE, 0x00 }, ZV4280_PAUSE being 0xFFFF\n"
         "  csv   register,name,value and one line a register, value as 0x5F\n"
         "  json  {\"chip\", \"source\", \"created\", \"crc32\", \"registers\": [{\"register\", \"name\", \"value\"}]}\n"
         "The CRC-32 (as zlib's) covers each register write as three bytes: register high byte,\n"
         "register low byte, value. --changes-only keeps the registers whose value differs from the\n"
         "base file (--base, by default \"default.hex\").\n"
         "JSON (with -o): {\"file\", \"format\", \"source\", \"registers\": 107, \"crc32\": 305419896}\n"},
        {"help", "help [COMMAND]", "this help, or a command's", 0, 1, {}, ""},
    };
    return table;
}

const Command* find(const QString& name)
{
    for (const Command& c : commands())
        if (name == QLatin1String(c.name))
            return &c;
    return nullptr;
}

} // namespace

bool CtlOptions::parse(const QStringList& programArguments, QString* error)
{
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption jsonOption(QStringLiteral("json"));
    const QCommandLineOption boardOption(QStringLiteral("board"), QString(), QStringLiteral("BUS:ADDRESS"));
    const QCommandLineOption calibrationOption(QStringLiteral("calibration"), QString(), QStringLiteral("FILE"));
    const QCommandLineOption helpOption(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption styleOption(QStringLiteral("style"), QString(), QStringLiteral("STYLE"));
    const QCommandLineOption commentsOption(QStringLiteral("comments"));
    const QCommandLineOption changesOption(QStringLiteral("changes-only"));
    const QCommandLineOption allOption(QStringLiteral("all"));
    const QCommandLineOption baseOption(QStringLiteral("base"), QString(), QStringLiteral("FILE"));
    const QCommandLineOption pauseOption(QStringLiteral("pause"), QString(), QStringLiteral("MS"));
    const QCommandLineOption listenOption(QStringLiteral("listen"), QString(), QStringLiteral("PATH"));
    const QCommandLineOption matchOption(QStringLiteral("match"), QString(), QStringLiteral("TEXT"));
    const QCommandLineOption formatOption(QStringLiteral("format"), QString(), QStringLiteral("FORMAT"));
    const QCommandLineOption sourceOption(QStringLiteral("source"), QString(), QStringLiteral("SOURCE"));
    const QCommandLineOption outputOption(QStringList{QStringLiteral("o"), QStringLiteral("output")}, QString(),
                                          QStringLiteral("FILE"));
    const QCommandLineOption traceOption(QStringLiteral("trace"));
    const QCommandLineOption lenientOption(QStringLiteral("lenient"));
    parser.addOptions({jsonOption, boardOption, calibrationOption, helpOption, styleOption, commentsOption, changesOption,
                       allOption, baseOption, pauseOption, listenOption, matchOption, formatOption, sourceOption,
                       outputOption, traceOption, lenientOption});
    // Known before the parse, so that a refusal of the command line is told
    // as the command's own, and in JSON when --json is among the arguments.
    for (const QString& a : programArguments.mid(1)) {
        if (a == QLatin1String("--"))
            break;
        json = json || a == QLatin1String("--json") || a == QLatin1String("-json");
        if (command.isEmpty() && find(a))
            command = a;
    }
    if (!parser.parse(programArguments)) {
        *error = parser.errorText();
        const QStringList unknown = parser.unknownOptionNames();
        if (!unknown.isEmpty() && !unknown.first().isEmpty() && unknown.first().at(0).isDigit())
            *error = QStringLiteral("\"-%1\" is negative; numbers are 0 or more").arg(unknown.first());
        if (const Command* c = find(command))
            *error += QStringLiteral(" (usage: zv4280ctl %1)").arg(QLatin1String(c->synopsis));
        return false;
    }
    command.clear();

    arguments = parser.positionalArguments();
    json = parser.isSet(jsonOption);
    help = parser.isSet(helpOption);
    board = parser.value(boardOption);
    calibration = parser.value(calibrationOption);
    style = parser.value(styleOption);
    comments = parser.isSet(commentsOption);
    changesOnly = parser.isSet(changesOption);
    all = parser.isSet(allOption);
    base = parser.value(baseOption);
    pause = parser.value(pauseOption);
    listen = parser.value(listenOption);
    match = parser.value(matchOption);
    format = parser.value(formatOption);
    source = parser.value(sourceOption);
    output = parser.value(outputOption);
    trace = parser.isSet(traceOption);
    lenient = parser.isSet(lenientOption);
    if (arguments.isEmpty()) {
        if (help)
            return true;
        *error = QStringLiteral("no command given (zv4280ctl --help lists them)");
        return false;
    }
    command = arguments.takeFirst();
    const Command* c = find(command);
    if (!c) {
        *error = QStringLiteral("unknown command \"%1\" (zv4280ctl --help lists them)").arg(command);
        return false;
    }
    if (command == QLatin1String("help")) {
        help = true;
        command = arguments.value(0);
        if (!command.isEmpty() && !find(command)) {
            *error = QStringLiteral("unknown command \"%1\" (zv4280ctl --help lists them)").arg(command);
            return false;
        }
        arguments.clear();
        return true;
    }
    if (help)
        return true;

    for (const QString& name : parser.optionNames()) {
        const QString longName = name == QLatin1String("h")   ? QStringLiteral("help")
                                 : name == QLatin1String("o") ? QStringLiteral("output")
                                                              : name;
        if (longName == QLatin1String("json") || longName == QLatin1String("board") ||
            longName == QLatin1String("calibration") || longName == QLatin1String("trace"))
            continue;
        if (!c->options.contains(longName)) {
            *error = QStringLiteral("%1 takes no option --%2 (usage: zv4280ctl %3)").arg(command, longName, QLatin1String(c->synopsis));
            return false;
        }
    }
    if (arguments.size() < c->fewest || (c->most >= 0 && arguments.size() > c->most)) {
        *error = QStringLiteral("usage: zv4280ctl %1").arg(QLatin1String(c->synopsis));
        return false;
    }
    if (command == QLatin1String("export") && format.isEmpty()) {
        *error = QStringLiteral("export needs --format c, csv or json");
        return false;
    }
    if (!base.isEmpty() && !changesOnly) {
        *error = QStringLiteral("--base goes with --changes-only");
        return false;
    }
    return true;
}

QString CtlOptions::programHelp()
{
    QString text = QStringLiteral(
        "Usage: zv4280ctl [--json] [--board BUS:ADDRESS] COMMAND [ARGUMENTS]\n"
        "\n"
        "The ZV4280 bench tool's engine from the command line: the fields, rules, worker commands\n"
        "and .hex files of zv4280tb, with no display.\n"
        "\n"
        "Commands:\n");
    for (const Command& c : commands())
        text += QStringLiteral("  %1\n      %2\n").arg(QLatin1String(c.synopsis), QLatin1String(c.summary));
    text += QStringLiteral(
        "\n"
        "Options:\n"
        "  --json               one JSON document on stdout: {\"command\": ..., \"ok\": true, ...}, or on\n"
        "                       failure {\"command\": ..., \"ok\": false, \"exit\": N, \"error\": \"...\"};\n"
        "                       zv4280ctl help COMMAND shows each command's members\n"
        "  --board BUS:ADDRESS  the board at this bus and device address, decimal as lsusb shows\n"
        "                       them (zv4280ctl devices); by default the only board on the bus\n"
        "  --calibration FILE   measured calibration tables, lines \"table,index,value\" after that\n"
        "                       header; by default calibration.csv in the current folder, if any\n"
        "  --trace              every frame to and from the board on standard error, one line each:\n"
        "                       time, direction (out, in), bytes, meaning\n"
        "  --attach [PATH]      no command: standard input and output joined to the running\n"
        "                       program's scripting socket (by default the one zv4280tb running)\n"
        "  -h, --help           this help; zv4280ctl COMMAND --help for a command\n"
        "\n"
        "Registers are 0 to 290. Numbers are decimal, or hexadecimal behind 0x.\n"
        "\n"
        "Exit status:\n"
        "  0  done\n"
        "  1  the board failed or is absent\n"
        "  2  bad usage or bad input; nothing was written to the chip\n"
        "  3  the read-back differs from what was written\n"
        "\n"
        "See zv4280ctl(1).\n");
    return text;
}

QString CtlOptions::commandHelp(const QString& command)
{
    const Command* c = find(command);
    if (!c)
        return QString();
    return QStringLiteral("Usage: zv4280ctl [--json] [--board BUS:ADDRESS] %1\n\n%2")
        .arg(QLatin1String(c->synopsis), QLatin1String(c->details));
}

bool CtlOptions::number(const QString& text, qint64* value)
{
    bool ok = false;
    qint64 v = 0;
    if (text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        v = QStringView(text).mid(2).toLongLong(&ok, 16);
    else if (!text.isEmpty() && text.at(0).isDigit())
        v = text.toLongLong(&ok, 10);
    if (!ok || v < 0)
        return false;
    *value = v;
    return true;
}
