#pragma once

#include "RepeaterRouting.h"
#include "SetupForms.h"

#include <QWidget>
#include <array>

class ModemSession;
class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

// The fields of a route as the routing form and its examples lay them out: the route's number,
// three repeaters, and four address rows with a second address and a group box each.
struct RouteFields
{
    QLabel *lblRoute;
    std::array<QLineEdit *, 3> txtRep;
    std::array<QLineEdit *, 8> txtAdd;
    std::array<QCheckBox *, 4> chkGroup;

    explicit RouteFields(QGroupBox *frame);
    void showRoute(int number) const;
    void clear() const;
};

// "Routing": the master's routes, turned into ROUTE and APPEND lines for the command list.
class Routing : public QWidget
{
    Q_OBJECT
public:
    Routing(ModemSession &session, AddCommandHook addCommand, QWidget *parent);

    RouteFields fields;
    QPushButton *cmdNext;
    QPushButton *cmdMore;
    QPushButton *cmdExample;
    QPushButton *cmdExit;

private:
    // One press of Next or More; true when all its lines went to the list.
    bool addRoute(RouteAction action);
    void cmdExit_Click();

    ModemSession &m_session;
    AddCommandHook m_addCommand;
    RoutingCounters m_counters;
};

// "Repeater Routing": four example routes on the routing form's layout, one at a time.
class RoutingExamp : public QWidget
{
    Q_OBJECT
public:
    explicit RoutingExamp(QWidget *parent);

    RouteFields fields;
    QPushButton *cmdNext;
    QPushButton *Command2;

private:
    void showExample();

    int m_example = 0;
};

// "Repeater Routing Example": three programmed modems with their routes to the master, and a figure.
class RoutingExample : public QWidget
{
    Q_OBJECT
public:
    explicit RoutingExample(QWidget *parent);

    QPushButton *Command1;
};
