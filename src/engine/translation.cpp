// The program's Russian texts in English, for the program and zv4280ctl.
#include "translation.h"

#include <QCoreApplication>
#include <QTranslator>

// The compiled translation is embedded in the engine's static library.
static void initTranslations()
{
    Q_INIT_RESOURCE(translations);
}

void installTranslation(QCoreApplication& app)
{
    initTranslations();
    // The resources hold only the compiled .qm; the translator's own
    // fallback (".ts" dropped, ".qm" appended) finds it.
    auto* translator = new QTranslator(&app);
    (void)translator->load(QStringLiteral(":/Translations/template_en.ts"), QString(), QString(), QString());
    app.installTranslator(translator);
}
