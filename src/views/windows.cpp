#include "windows.h"

#include "ui_dockA.h"
#include "ui_dockB.h"
#include "ui_dockC.h"
#include "ui_dockD.h"
#include "ui_dockMain.h"
#include "ui_GrAllSS.h"
#include "ui_GrGenServ.h"
#include "ui_GrSChA.h"
#include "ui_GrSChB.h"
#include "ui_GrSChC.h"
#include "ui_GrSChD.h"

dockA::dockA(QWidget* parent) : QWidget(parent), ui(new Ui::dockA)
{
    ui->setupUi(this);
}

dockA::~dockA()
{
    delete ui;
}

dockB::dockB(QWidget* parent) : QWidget(parent), ui(new Ui::dockB)
{
    ui->setupUi(this);
}

dockB::~dockB()
{
    delete ui;
}

dockC::dockC(QWidget* parent) : QWidget(parent), ui(new Ui::dockC)
{
    ui->setupUi(this);
}

dockC::~dockC()
{
    delete ui;
}

dockD::dockD(QWidget* parent) : QWidget(parent), ui(new Ui::dockD)
{
    ui->setupUi(this);
}

dockD::~dockD()
{
    delete ui;
}

dockMain::dockMain(QWidget* parent) : QWidget(parent), ui(new Ui::dockMain)
{
    ui->setupUi(this);
}

dockMain::~dockMain()
{
    delete ui;
}

GrAllSS::GrAllSS(QWidget* parent) : QWidget(parent), ui(new Ui::GrAllSS)
{
    ui->setupUi(this);
}

GrAllSS::~GrAllSS()
{
    delete ui;
}

GrGenServ::GrGenServ(QWidget* parent) : QWidget(parent), ui(new Ui::GrGenServ)
{
    ui->setupUi(this);
}

GrGenServ::~GrGenServ()
{
    delete ui;
}

GrSChA::GrSChA(QWidget* parent) : QWidget(parent), ui(new Ui::GrSChA)
{
    ui->setupUi(this);
}

GrSChA::~GrSChA()
{
    delete ui;
}

GrSChB::GrSChB(QWidget* parent) : QWidget(parent), ui(new Ui::GrSChB)
{
    ui->setupUi(this);
}

GrSChB::~GrSChB()
{
    delete ui;
}

GrSChC::GrSChC(QWidget* parent) : QWidget(parent), ui(new Ui::GrSChC)
{
    ui->setupUi(this);
}

GrSChC::~GrSChC()
{
    delete ui;
}

GrSChD::GrSChD(QWidget* parent) : QWidget(parent), ui(new Ui::GrSChD)
{
    ui->setupUi(this);
}

GrSChD::~GrSChD()
{
    delete ui;
}
