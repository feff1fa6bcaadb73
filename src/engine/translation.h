#pragma once

class QCoreApplication;

// Installs the embedded English translation of the program's Russian texts.
// A translation that fails to load leaves the Russian texts, silently.
void installTranslation(QCoreApplication& app);
