#include "MainClass.h"
#include "ui_MainClass.h"

#include "mapshow.h"

// The toolbar commands. The worker that carries them out is not built yet:
// the slots only keep the window's state as the commands will leave it.

void MainClass::on_action_load_default_triggered()
{
    setWindowTitle(QLatin1String(kWindowTitle));
}

void MainClass::on_action_GUIFILE_triggered() {}
void MainClass::on_action_FILEGUI_triggered() {}
void MainClass::on_action_FILEIC_triggered() {}
void MainClass::on_action_GUIIC_triggered() {}
void MainClass::on_action_ICGUI_triggered() {}
void MainClass::on_Button_ICFILE_clicked() {}
void MainClass::error_message(QString) {}
