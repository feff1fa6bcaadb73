#include "MainClass.h"

#include "mapshow.h"
#include "part.h"

#include <QMessageBox>
#include <QSpinBox>

#include <memory>

namespace {

// Refuses a frequency that the field cannot hold: the box goes back to the
// image's code and the image stays as it is.
bool rangeGuard(mapshow* map, const part& p, int val, QObject* sender)
{
    qint64 limit = -1;
    if (p.name.contains(QLatin1String("Flo"), Qt::CaseInsensitive) && p.name.contains(QLatin1String("Ch"), Qt::CaseInsensitive))
        limit = 8388607;
    else if (p.name.contains(QLatin1String("Fx_ZV4280")))
        limit = 65535;
    if (limit < 0 || val <= limit)
        return true;
    if (auto* box = qobject_cast<QSpinBox*>(sender))
        box->setValue(int(map->getBrim(p.position, p.width)));
    return false;
}

} // namespace

// The slot behind every editing widget: commits the widget's value to
// guiImage and runs the rules that depend on the field.
void MainClass::change_Value(int val)
{
    QObject* s = sender();
    std::unique_ptr<part> p(s ? mapshow::ParseObjName(s->objectName()) : nullptr);
    if (!p) {
        QMessageBox box;
        box.setText(tr("Невозможное событие!"));
        box.exec();
        return;
    }
    mapshow* map = maps.value(p->chip);
    if (!map)
        return;
    if (!rangeGuard(map, *p, val, s))
        return;
    const quint32 fieldValue = map->applyPartToImage(p->name);
    Q_UNUSED(fieldValue);
}
