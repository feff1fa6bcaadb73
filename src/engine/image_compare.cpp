// The field-by-field comparison of two register images.
#include "image_compare.h"

#include "catalogue.h"
#include "comment_builder.h"
#include "field_search.h"
#include "form_model.h"
#include "part.h"
#include "register_images.h"
#include "register_names.h"

#include <algorithm>
#include <memory>
#include <numeric>

namespace {

// The bits of each register that some field covers.
QByteArray coveredBits(const Catalogue& catalogue)
{
    QByteArray covered(int(catalogue.registerCount()), 0);
    for (const FieldEntry& e : catalogue.fields()) {
        const part& p = e.record;
        for (int s = 0; s < qMin(p.positions.size(), p.widths.size()); ++s)
            for (quint32 b = 0; b < p.widths.at(s); ++b) {
                const quint32 position = p.positions.at(s) + b;
                if (position / 8 < quint32(covered.size()))
                    covered[int(position / 8)] = char(quint8(covered.at(int(position / 8))) | (0x80u >> (position % 8)));
            }
    }
    return covered;
}

// The forms' state for one image, on images of their own.
struct Scratch
{
    RegisterImages images;
    FormModel model;
    Scratch(const Catalogue& c, const QByteArray& image, const Calibration& calibration)
        : images(c.chipName(), c.registerCount()), model(images)
    {
        model.setCalibration(calibration);
        std::copy(image.cbegin(), image.cbegin() + int(images.registerCount), images.guiImage);
        model.push(reinterpret_cast<const quint8*>(image.constData()));
    }
    // What the screens show for a field, without its caption.
    QString text(int field, quint32 code) const
    {
        // A spin box cannot show a code below its minimum: the code stands.
        if (model.entry(field).kind == FieldKind::Spin && model.widgetValue(field) != qint64(code))
            return QString::number(code);
        QString shown = CommentBuilder::fieldText(model, field, model.entry(field).record.position);
        const int colon = shown.indexOf(QLatin1String(": "));
        if (colon >= 0)
            shown = shown.mid(colon + 2);
        shown = shown.trimmed();
        return shown.isEmpty() ? QString::number(code) : shown;
    }
};

QString byteText(quint8 value)
{
    return QStringLiteral("0x") + QString::number(value, 16).rightJustified(2, QLatin1Char('0')).toUpper();
}

} // namespace

QVector<ImageDifference> ImageCompare::compare(const QByteArray& a, const QByteArray& b, const Calibration& calibration,
                                               const QVector<bool>& known)
{
    const Catalogue& catalogue = Catalogue::instance();
    const int count = int(catalogue.registerCount());
    QVector<ImageDifference> rows;
    if (a.size() < count || b.size() < count)
        return rows;
    auto isKnown = [&known](int r) { return known.isEmpty() || known.value(r, false); };
    const auto* imageA = reinterpret_cast<const quint8*>(a.constData());
    const auto* imageB = reinterpret_cast<const quint8*>(b.constData());

    QVector<qint64> order; // where each row goes: by its first bit
    std::unique_ptr<Scratch> formsA, formsB;
    const QVector<FieldEntry>& fields = catalogue.fields();
    for (int f = 0; f < fields.size(); ++f) {
        const FieldEntry& e = fields.at(f);
        const QVector<int> registers = registersOf(e.record);
        if (!std::all_of(registers.cbegin(), registers.cend(), isKnown))
            continue;
        if (RegisterImages::fieldValue(e.record, imageA) == RegisterImages::fieldValue(e.record, imageB))
            continue;
        if (!formsA) {
            formsA = std::make_unique<Scratch>(catalogue, a, calibration);
            formsB = std::make_unique<Scratch>(catalogue, b, calibration);
        }
        ImageDifference row;
        row.field = f;
        row.reg = registers.value(0);
        row.name = FieldSearch::shortName(e);
        row.caption = FieldSearch::caption(e);
        row.location = buildToolTip(e.record);
        row.codeA = FormModel::imageCode(e, imageA);
        row.codeB = FormModel::imageCode(e, imageB);
        row.textA = formsA->text(f, row.codeA);
        row.textB = formsB->text(f, row.codeB);
        rows.append(row);
        order.append(2 * qint64(e.record.position));
    }

    static const QByteArray covered = coveredBits(catalogue);
    for (int r = 0; r < count; ++r) {
        if (!isKnown(r) || ((imageA[r] ^ imageB[r]) & ~quint8(covered.at(r))) == 0)
            continue;
        ImageDifference row;
        row.reg = r;
        row.name = registerNames.value(r);
        row.location = QStringLiteral("Reg%1").arg(r);
        row.codeA = imageA[r];
        row.codeB = imageB[r];
        row.textA = byteText(imageA[r]);
        row.textB = byteText(imageB[r]);
        rows.append(row);
        order.append(2 * (qint64(r) * 8 + 7) + 1); // after the register's fields
    }

    QVector<int> index(rows.size());
    std::iota(index.begin(), index.end(), 0);
    std::stable_sort(index.begin(), index.end(), [&order](int x, int y) { return order.at(x) < order.at(y); });
    QVector<ImageDifference> sorted;
    sorted.reserve(rows.size());
    for (int i : qAsConst(index))
        sorted.append(rows.at(i));
    return sorted;
}
