#pragma once

#include <QWidget>

// The status docks and the expert windows: forms without logic of their own,
// whose fields the main window binds like all others.

namespace Ui {
class dockA;
class dockB;
class dockC;
class dockD;
class dockMain;
class GrAllSS;
class GrGenServ;
class GrSChA;
class GrSChB;
class GrSChC;
class GrSChD;
}

class dockA : public QWidget
{
    Q_OBJECT

public:
    explicit dockA(QWidget* parent = nullptr);
    ~dockA() override;

private:
    Ui::dockA* ui;
};

class dockB : public QWidget
{
    Q_OBJECT

public:
    explicit dockB(QWidget* parent = nullptr);
    ~dockB() override;

private:
    Ui::dockB* ui;
};

class dockC : public QWidget
{
    Q_OBJECT

public:
    explicit dockC(QWidget* parent = nullptr);
    ~dockC() override;

private:
    Ui::dockC* ui;
};

class dockD : public QWidget
{
    Q_OBJECT

public:
    explicit dockD(QWidget* parent = nullptr);
    ~dockD() override;

private:
    Ui::dockD* ui;
};

class dockMain : public QWidget
{
    Q_OBJECT

public:
    explicit dockMain(QWidget* parent = nullptr);
    ~dockMain() override;

private:
    Ui::dockMain* ui;
};

class GrAllSS : public QWidget
{
    Q_OBJECT

public:
    explicit GrAllSS(QWidget* parent = nullptr);
    ~GrAllSS() override;

private:
    Ui::GrAllSS* ui;
};

class GrGenServ : public QWidget
{
    Q_OBJECT

public:
    explicit GrGenServ(QWidget* parent = nullptr);
    ~GrGenServ() override;

private:
    Ui::GrGenServ* ui;
};

class GrSChA : public QWidget
{
    Q_OBJECT

public:
    explicit GrSChA(QWidget* parent = nullptr);
    ~GrSChA() override;

private:
    Ui::GrSChA* ui;
};

class GrSChB : public QWidget
{
    Q_OBJECT

public:
    explicit GrSChB(QWidget* parent = nullptr);
    ~GrSChB() override;

private:
    Ui::GrSChB* ui;
};

class GrSChC : public QWidget
{
    Q_OBJECT

public:
    explicit GrSChC(QWidget* parent = nullptr);
    ~GrSChC() override;

private:
    Ui::GrSChC* ui;
};

class GrSChD : public QWidget
{
    Q_OBJECT

public:
    explicit GrSChD(QWidget* parent = nullptr);
    ~GrSChD() override;

private:
    Ui::GrSChD* ui;
};
