#include "resources_init.h"

#include <QtGlobal>

static void initZvResources()
{
    Q_INIT_RESOURCE(resources);
}

void zvInitResources()
{
    initZvResources();
}
