#include "translation.h"

#include <QCoreApplication>
#include <QTranslator>

void installTranslation(QCoreApplication& app)
{
    // The resources hold only the compiled .qm; the translator's own
    // fallback (".ts" dropped, ".qm" appended) finds it.
    auto* translator = new QTranslator(&app);
    (void)translator->load(QStringLiteral(":/Translations/template_en.ts"), QString(), QString(), QString());
    app.installTranslator(translator);
}
