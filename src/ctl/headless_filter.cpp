// Style and layout work skipped for windows that are never shown.
#include "headless_filter.h"

#include <QEvent>

bool HeadlessFilter::eventFilter(QObject*, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Polish:
    case QEvent::PolishRequest:
    case QEvent::StyleChange:
    case QEvent::LayoutRequest:
        return true;
    default:
        return false;
    }
}
