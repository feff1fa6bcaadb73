// Writes the field catalogue's tables (catalogue_tables.h) from the forms of
// the field windows, at build time:
//   catalogue_generator OUTPUT.cpp FORM.ui...
// A widget whose object name is a field name is a field; "<key>_Expression"
// is the display of field <key>; names ending in "LabelG" or "Lab" are
// captions. Everything else a form holds is left out.
#include "catalogue.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QMap>
#include <QSaveFile>
#include <QSet>
#include <QStringList>
#include <QTextStream>
#include <QXmlStreamReader>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

// One <widget> of a form with what the catalogue takes of it; children in
// the order of the form, which is the order of the live widget's children.
struct Widget
{
    QString className, name;
    QHash<QString, QString> properties; // text, title, enabled, minimum, maximum
    QString pageTitle;                  // attribute "title": a page of a tab widget
    QStringList items;                  // a combo box's item texts
    std::vector<std::unique_ptr<Widget>> children;
};

const QStringList kProperties = {"text", "title", "enabled", "minimum", "maximum"};

void readWidget(QXmlStreamReader& xml, Widget& widget);

// A property's value (<string>, <bool>, <number>) as its text.
QString readValue(QXmlStreamReader& xml)
{
    QString value;
    bool first = true;
    while (xml.readNextStartElement()) {
        if (first)
            value = xml.readElementText(QXmlStreamReader::SkipChildElements);
        else
            xml.skipCurrentElement();
        first = false;
    }
    return value;
}

void readProperty(QXmlStreamReader& xml, QHash<QString, QString>& properties)
{
    const QString name = xml.attributes().value(QLatin1String("name")).toString();
    if (kProperties.contains(name))
        properties.insert(name, readValue(xml));
    else
        xml.skipCurrentElement();
}

Widget& addChild(QXmlStreamReader& xml, Widget& parent)
{
    auto child = std::make_unique<Widget>();
    child->className = xml.attributes().value(QLatin1String("class")).toString();
    child->name = xml.attributes().value(QLatin1String("name")).toString();
    parent.children.push_back(std::move(child));
    return *parent.children.back();
}

// A layout holds widgets of the widget that holds the layout: layouts are no
// parents.
void readLayout(QXmlStreamReader& xml, Widget& owner)
{
    while (xml.readNextStartElement()) {
        if (xml.name() != QLatin1String("item")) {
            xml.skipCurrentElement();
            continue;
        }
        while (xml.readNextStartElement()) {
            if (xml.name() == QLatin1String("widget"))
                readWidget(xml, addChild(xml, owner));
            else if (xml.name() == QLatin1String("layout"))
                readLayout(xml, owner);
            else
                xml.skipCurrentElement();
        }
    }
}

void readWidget(QXmlStreamReader& xml, Widget& widget)
{
    while (xml.readNextStartElement()) {
        const auto element = xml.name();
        if (element == QLatin1String("widget")) {
            readWidget(xml, addChild(xml, widget));
        } else if (element == QLatin1String("layout")) {
            readLayout(xml, widget);
        } else if (element == QLatin1String("property")) {
            readProperty(xml, widget.properties);
        } else if (element == QLatin1String("attribute")
                   && xml.attributes().value(QLatin1String("name")) == QLatin1String("title")) {
            widget.pageTitle = readValue(xml);
        } else if (element == QLatin1String("item")) { // an item of a combo box
            QHash<QString, QString> item;
            while (xml.readNextStartElement()) {
                if (xml.name() == QLatin1String("property"))
                    readProperty(xml, item);
                else
                    xml.skipCurrentElement();
            }
            widget.items.append(item.value(QStringLiteral("text")));
        } else {
            xml.skipCurrentElement();
        }
    }
}

// A form's class name and top widget; an error text when it cannot be read.
struct Form
{
    QString className;
    std::unique_ptr<Widget> top;
};

QString readForm(const QString& path, Form& form)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("%1: cannot be read: %2").arg(path, file.errorString());
    QXmlStreamReader xml(&file);
    if (xml.readNextStartElement() && xml.name() == QLatin1String("ui")) {
        while (xml.readNextStartElement()) {
            if (xml.name() == QLatin1String("class")) {
                form.className = xml.readElementText();
            } else if (xml.name() == QLatin1String("widget") && !form.top) {
                form.top = std::make_unique<Widget>();
                form.top->className = xml.attributes().value(QLatin1String("class")).toString();
                form.top->name = xml.attributes().value(QLatin1String("name")).toString();
                readWidget(xml, *form.top);
            } else {
                xml.skipCurrentElement();
            }
        }
    }
    if (xml.hasError())
        return QStringLiteral("%1:%2: %3").arg(path).arg(xml.lineNumber()).arg(xml.errorString());
    if (form.className.isEmpty() || !form.top)
        return QStringLiteral("%1: no form: a <ui> with a <class> and a <widget> is expected").arg(path);
    return QString();
}

// Where a widget stands in its window.
struct Place
{
    QString window, tab, group, groupName;
    bool enabled = true;
};

class Collector
{
public:
    std::vector<FieldEntry> fields;
    std::vector<DisplayEntry> displays;
    std::vector<CaptionEntry> captions;

    // Every widget below the top one of a window's form.
    void collect(const Widget& parent, const Place& place)
    {
        for (const auto& child : parent.children) {
            const Widget& w = *child;
            const bool enabled = w.properties.value(QStringLiteral("enabled")) != QLatin1String("false");
            if (std::optional<part> record = parseFieldName(w.name))
                addField(w, parent, place, std::move(*record), enabled);
            else if (w.name.contains(QLatin1String("_Expression")))
                addDisplay(w, parent, place, enabled);
            if (w.name.endsWith(QLatin1String("LabelG")) || w.name.endsWith(QLatin1String("Lab")))
                captions.push_back({w.name, w.properties.value(QStringLiteral("text")), place.window, enabled});

            Place inner = place;
            inner.enabled = place.enabled && enabled;
            if (parent.className == QLatin1String("QTabWidget"))
                inner.tab = w.pageTitle;
            if (w.className == QLatin1String("QGroupBox")) {
                inner.group = w.properties.value(QStringLiteral("title"));
                inner.groupName = w.name;
            }
            collect(w, inner);
        }
    }

private:
    // The first or the last child of `parent` whose object name contains `text`.
    static const Widget* sibling(const Widget& parent, const QString& text, bool last)
    {
        const Widget* found = nullptr;
        for (const auto& child : parent.children) {
            if (!child->name.contains(text))
                continue;
            found = child.get();
            if (!last)
                break;
        }
        return found;
    }

    void addField(const Widget& w, const Widget& parent, const Place& place, part record, bool enabled)
    {
        FieldEntry f;
        f.kind = fieldKindOf(w.className);
        f.objectName = w.name;
        f.window = place.window;
        f.tab = place.tab;
        f.group = place.group;
        f.groupName = place.groupName;
        // The caption "ChA_PLL_LILabelG" of the field "ChA_PLL_LI_ZV4280v2".
        const QString& key = record.name;
        if (const Widget* caption = sibling(parent, key.left(key.lastIndexOf(QLatin1Char('_'))) + "LabelG", true)) {
            f.caption = caption->properties.value(QStringLiteral("text"));
            f.captionObject = caption->name;
        }
        if (f.kind == FieldKind::Check)
            f.checkText = w.properties.value(QStringLiteral("text"));
        if (f.kind == FieldKind::Combo)
            f.items = w.items;
        if (f.kind == FieldKind::Spin) {
            f.minimum = w.properties.value(QStringLiteral("minimum"), QStringLiteral("0")).toInt();
            f.maximum = w.properties.value(QStringLiteral("maximum"), QStringLiteral("99")).toInt();
        }
        f.enabled = enabled;
        f.ancestorsEnabled = place.enabled;
        if (const Widget* display = sibling(parent, key + "_Expression", true))
            f.display = display->name;
        f.record = std::move(record);
        fields.push_back(std::move(f));
    }

    void addDisplay(const Widget& w, const Widget& parent, const Place& place, bool enabled)
    {
        DisplayEntry d{w.name, w.name.left(w.name.indexOf(QLatin1String("_Expression"))), place.window, place.tab,
                  place.group, w.properties.value(QStringLiteral("text")), QString(), enabled, place.enabled};
        // Its tooltip is that of the first sibling field that bears its name.
        const QString search = "ZV_" + w.name.left(w.name.lastIndexOf(QLatin1Char('_')));
        for (const auto& child : parent.children) {
            if (child->name.contains(search) && parseFieldName(child->name)) {
                d.tooltipOwner = child->name;
                break;
            }
        }
        displays.push_back(std::move(d));
    }
};

// A UTF-16 string literal of a text. Escapes have a fixed length, so that
// no character behind one can join it.
QString literal(const QString& text)
{
    QString out = QStringLiteral("u\"");
    for (const uint c : text.toUcs4()) {
        if (c == '"' || c == '\\')
            out += QLatin1Char('\\');
        if (c >= 0x20 && c < 0x7f)
            out += QChar(c);
        else if (c < 0x80)
            out += QStringLiteral("\\%1").arg(c, 3, 8, QLatin1Char('0'));
        else if (c <= 0xffff)
            out += QStringLiteral("\\u%1").arg(c, 4, 16, QLatin1Char('0'));
        else
            out += QStringLiteral("\\U%1").arg(c, 8, 16, QLatin1Char('0'));
    }
    return out + QLatin1Char('"');
}

QString flag(bool b)
{
    return b ? QStringLiteral("true") : QStringLiteral("false");
}

QString writeSource(const QString& path, const QStringList& forms, Collector& c)
{
    // The texts of the output, each once; text 0 is the empty one.
    QStringList texts;
    QHash<QString, quint32> ids;
    auto id = [&](const QString& text) {
        auto it = ids.constFind(text);
        if (it != ids.constEnd())
            return *it;
        ids.insert(text, quint32(texts.size()));
        texts.append(text);
        return quint32(texts.size() - 1);
    };
    id(QString());
    QString body;
    QTextStream out(&body);

    // Fields sorted by key as QString orders it, and by object name.
    auto byKey = [](const FieldEntry& a, const FieldEntry& b) { return a.record.name < b.record.name; };
    std::sort(c.fields.begin(), c.fields.end(), byKey);
    QSet<QString> chips;
    qint64 bits = 0;
    for (size_t i = 0; i < c.fields.size(); ++i) {
        const FieldEntry& f = c.fields[i];
        if (i > 0 && f.record.name == c.fields[i - 1].record.name)
            return QStringLiteral("two widgets edit the field %1: %2 (%3) and %4 (%5)")
                .arg(f.record.name, c.fields[i - 1].objectName, c.fields[i - 1].window, f.objectName, f.window);
        chips.insert(f.record.chip);
        bits = qMax(bits, qint64(f.record.position) + f.record.width);
    }
    if (chips.size() > 1)
        return QStringLiteral("the fields name more than one chip: %1").arg(QStringList(chips.values()).join(", "));

    out << "const CatalogueTables::Field fields[] = {\n";
    QStringList segments, items;
    QHash<QString, int> itemLists; // where each list of items begins, by its texts
    for (const FieldEntry& f : c.fields) {
        const part& r = f.record;
        const QString list = f.items.join(QChar(0));
        if (!f.items.isEmpty() && !itemLists.contains(list)) {
            itemLists.insert(list, items.size());
            for (const QString& item : f.items)
                items << QString::number(id(item));
        }
        out << "    {" << id(f.objectName) << ", " << id(r.name) << ", " << id(r.chip) << ", "
            << id(f.window) << ", " << id(f.tab) << ", " << id(f.group) << ", "
            << id(f.groupName) << ", " << id(f.caption) << ", " << id(f.captionObject) << ", " << id(f.checkText) << ", "
            << id(f.display) << ", " << segments.size() << ", " << r.positions.size() << ", "
            << itemLists.value(list) << ", " << f.items.size() << ", " << int(f.kind) << ", " << flag(r.inverted)
            << ", " << flag(r.joined) << ", " << flag(f.enabled) << ", " << flag(f.ancestorsEnabled) << ", "
            << f.minimum << ", " << f.maximum << "},\n";
        for (int s = 0; s < r.positions.size(); ++s)
            segments << QStringLiteral("{%1, %2}").arg(r.positions.at(s)).arg(r.widths.value(s));
    }
    out << "    {},\n};\n\n";

    std::vector<quint32> byName(c.fields.size());
    for (size_t i = 0; i < byName.size(); ++i)
        byName[i] = quint32(i);
    std::sort(byName.begin(), byName.end(),
              [&](quint32 a, quint32 b) { return c.fields[a].objectName < c.fields[b].objectName; });
    out << "const quint32 fieldsByObjectName[] = {";
    for (size_t i = 0; i < byName.size(); ++i)
        out << (i % 16 ? " " : "\n    ") << byName[i] << ",";
    out << "\n    0,\n};\n\nconst CatalogueTables::Segment segments[] = {\n";
    for (const QString& s : qAsConst(segments))
        out << "    " << s << ",\n";
    out << "    {},\n};\n\n";
    out << "const quint32 items[] = {" << items.join(", ") << (items.isEmpty() ? "0" : ", 0") << "};\n\n";

    std::stable_sort(c.displays.begin(), c.displays.end(),
                     [](const DisplayEntry& a, const DisplayEntry& b) { return a.key < b.key; });
    out << "const CatalogueTables::Display displays[] = {\n";
    for (size_t i = 0; i < c.displays.size(); ++i) {
        const DisplayEntry& d = c.displays[i];
        if (i > 0 && d.key == c.displays[i - 1].key)
            return QStringLiteral("two displays show the field %1: %2 (%3) and %4 (%5)")
                .arg(d.key, c.displays[i - 1].objectName, c.displays[i - 1].window, d.objectName, d.window);
        out << "    {" << id(d.objectName) << ", " << id(d.key) << ", " << id(d.window) << ", "
            << id(d.tab) << ", " << id(d.group) << ", " << id(d.text) << ", "
            << id(d.tooltipOwner) << ", " << flag(d.enabled) << ", " << flag(d.ancestorsEnabled) << "},\n";
    }
    out << "    {},\n};\n\n";

    std::stable_sort(c.captions.begin(), c.captions.end(),
                     [](const CaptionEntry& a, const CaptionEntry& b) { return a.objectName < b.objectName; });
    out << "const CatalogueTables::Caption captions[] = {\n";
    for (const CaptionEntry& k : c.captions)
        out << "    {" << id(k.objectName) << ", " << id(k.text) << ", " << id(k.window) << ", "
            << flag(k.enabled) << "},\n";
    out << "    {},\n};\n\n";

    const quint32 chip = id(chips.isEmpty() ? QString() : *chips.cbegin());
    QString head;
    QTextStream h(&head);
    h << "// Made by catalogue_generator from the forms\n//   " << forms.join(", ")
      << "\n// Do not edit: the forms are the one definition of a field.\n"
      << "#include \"catalogue_tables.h\"\n\nnamespace {\n\n";
    for (int i = 0; i < texts.size(); ++i)
        h << "ZV_STATIC_TEXT(t" << i << ", " << texts.at(i).size() << ", " << literal(texts.at(i)) << ");\n";
    h << "\nconst QtCompat::StaticText* const texts[] = {";
    for (int i = 0; i < texts.size(); ++i)
        h << (i % 8 ? " " : "\n    ") << "ZV_STATIC_TEXT_REF(t" << i << "),";
    h << "\n};\n\n";
    h.flush();
    out << "} // namespace\n\nextern const CatalogueTables catalogueTables = {texts, " << texts.size()
        << ", fields, " << c.fields.size() << ", fieldsByObjectName, segments, items, displays, " << c.displays.size()
        << ", captions, " << c.captions.size() << ", " << chip << ", " << (bits + 7) / 8 << "};\n";
    out.flush();

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write((head + body).toUtf8()) < 0 || !file.commit())
        return QStringLiteral("%1: cannot be written: %2").arg(path, file.errorString());
    return QString();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: catalogue_generator OUTPUT.cpp FORM.ui...\n");
        return 2;
    }
    Collector collector;
    QStringList forms;
    for (int i = 2; i < argc; ++i) {
        const QString path = QFile::decodeName(argv[i]);
        Form form;
        const QString error = readForm(path, form);
        if (!error.isEmpty()) {
            std::fprintf(stderr, "catalogue_generator: %s\n", qPrintable(error));
            return 1;
        }
        forms << QFileInfo(path).fileName();
        // The main window's key among the windows is "mainWindow"; every
        // other window's is its class name.
        Place place;
        place.window = form.className == QLatin1String("MainClass") ? QStringLiteral("mainWindow") : form.className;
        place.enabled = form.top->properties.value(QStringLiteral("enabled")) != QLatin1String("false");
        collector.collect(*form.top, place);
    }
    const QString error = writeSource(QFile::decodeName(argv[1]), forms, collector);
    if (!error.isEmpty()) {
        std::fprintf(stderr, "catalogue_generator: %s\n", qPrintable(error));
        return 1;
    }
    return 0;
}
