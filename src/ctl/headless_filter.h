// Spares the windows of zv4280ctl, which are never shown, the style and
// layout work that only serves the eye.
#pragma once

#include <QObject>

class HeadlessFilter : public QObject
{
public:
    using QObject::QObject;

    // Drops polish, style change and layout requests: fields keep their
    // texts, items, states and values, which is all the tool reads.
    bool eventFilter(QObject* watched, QEvent* event) override;
};
