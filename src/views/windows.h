// The status docks and the expert windows: forms without logic of their own,
// whose fields the main window binds like all others. One window class shows
// any of them; each window's name is that class over its form.
#pragma once

#include "ui_GrAllSS.h"
#include "ui_GrGenServ.h"
#include "ui_GrSChA.h"
#include "ui_GrSChB.h"
#include "ui_GrSChC.h"
#include "ui_GrSChD.h"
#include "ui_dockA.h"
#include "ui_dockB.h"
#include "ui_dockC.h"
#include "ui_dockD.h"
#include "ui_dockMain.h"

#include <QWidget>

template <class Form>
class FormWindow final : public QWidget
{
public:
    explicit FormWindow(QWidget* parent = nullptr) : QWidget(parent) { form.setupUi(this); }

private:
    Form form;
};

using dockA = FormWindow<Ui::dockA>;
using dockB = FormWindow<Ui::dockB>;
using dockC = FormWindow<Ui::dockC>;
using dockD = FormWindow<Ui::dockD>;
using dockMain = FormWindow<Ui::dockMain>;
using GrAllSS = FormWindow<Ui::GrAllSS>;
using GrGenServ = FormWindow<Ui::GrGenServ>;
using GrSChA = FormWindow<Ui::GrSChA>;
using GrSChB = FormWindow<Ui::GrSChB>;
using GrSChC = FormWindow<Ui::GrSChC>;
using GrSChD = FormWindow<Ui::GrSChD>;
