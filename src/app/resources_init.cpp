#include "resources_init.h"

#include <QtGlobal>

static void initZvResources()
{
    Q_INIT_RESOURCE(resources);
    Q_INIT_RESOURCE(translations);
}

void zvInitResources()
{
    initZvResources();
}
