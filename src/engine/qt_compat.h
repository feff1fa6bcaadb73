// The few places where Qt 5.15 and Qt 6 spell a thing differently, said once
// here: the rest of the tree calls these and builds on either (ZV_QT).
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>
#include <QtGlobal>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QStringDecoder>
#else
#include <QTextCodec>
#endif

namespace QtCompat {

// The text of UTF-8 bytes, less a byte order mark that stands first;
// *invalid tells whether any of the bytes were no UTF-8.
inline QString fromUtf8(const QByteArray& bytes, bool* invalid)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    QStringDecoder decoder(QStringConverter::Utf8);
    QString text = decoder(bytes);
    *invalid = decoder.hasError();
#else
    QTextCodec::ConverterState state;
    QString text = QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    *invalid = state.invalidChars > 0;
#endif
    return text;
}

// The number that text in the base spells, 0 when it spells none. Qt 6 reads
// the digits before a zero character as the number; Qt 5, as here, none.
inline int toInt(QStringView text, int base)
{
    return text.contains(QChar(0)) ? 0 : text.toInt(nullptr, base);
}
inline uint toUInt(QStringView text, int base)
{
    return text.contains(QChar(0)) ? 0 : text.toUInt(nullptr, base);
}

// The catalogue's texts stand in static storage and become QStrings with no
// copy and no allocation, as QStringLiteral makes them. Qt 5 wants a header
// before the characters, Qt 6 none. ZV_STATIC_TEXT(name, size, u"...") defines
// one; ZV_STATIC_TEXT_REF(name) is its StaticText* for a table.
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
struct StaticText
{
    const char16_t* chars;
    qsizetype size;
};
#define ZV_STATIC_TEXT(name, size, literal) constexpr QtCompat::StaticText name = {literal, size}
#define ZV_STATIC_TEXT_REF(name) (&name)
inline QString staticText(const StaticText* text)
{
    return QString::fromRawData(reinterpret_cast<const QChar*>(text->chars), text->size);
}
#else
using StaticText = QArrayData;
#define ZV_STATIC_TEXT(name, size, literal) \
    const QStaticStringData<size> name = {Q_STATIC_STRING_DATA_HEADER_INITIALIZER(size), literal}
#define ZV_STATIC_TEXT_REF(name) (&name.str)
inline QString staticText(const StaticText* text)
{
    return QString(QStringDataPtr{static_cast<QStringData*>(const_cast<QArrayData*>(text))});
}
#endif

} // namespace QtCompat
