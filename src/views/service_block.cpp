#include "service_block.h"

service_block::service_block(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("service_block"));
    setWindowTitle(QStringLiteral("Service settings"));
    resize(330, 300);
}

service_block::~service_block() = default;
