#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <optional>

namespace sim {

// A scheduled outage of a radio link: from atMs for durationMs of simulated time.
struct LinkDrop
{
    qint64 atMs = 0;
    qint64 durationMs = 0;
};

// One modem of a scenario, as it comes out of the factory and as the site has set it up.
struct ModemProfile
{
    QString name; // for messages and ground truth
    QString model = QStringLiteral("Q4U");
    int option = 0;
    int serial = 14210;
    QString version = QStringLiteral("1.52");
    double hours = 1234; // hour meter at the start of the scenario
    int switches = 2;    // two setup switches on new units, eight on the old case
    // Setup switches as a bit set, switch 1 the low bit. The last switch up means the unit starts
    // in its operating (converse) mode instead of at the command prompt.
    int switchBits = 0;
    bool operatingSystem = true;     // false: the unit sits in its flash loader
    bool dead = false;               // nothing at all comes back, whatever is sent
    QMap<QString, QString> settings; // working and saved values that differ from factory
    QMap<QString, QString> factory;  // factory values that differ from the firmware's defaults
    QList<QString> routes;           // "1,5," lines of the route table
    QList<QString> appends;          // "1,1,25,28,*" lines of the append table
};

// One radio path between two modems, both directions alike.
struct LinkProfile
{
    int from = 0; // addresses
    int to = 0;
    double microvolts = 10.0;   // received signal strength
    double noiseMicrovolts = 0; // spread of the reading from one sample to the next
    double lossRate = 0;        // chance that one packet is lost in the air
    QList<LinkDrop> drops;
    double qualitySpread = 2.0; // spread of the data quality figure from one packet to the next
};

// A source of interference on a channel: it raises the noise floor seen by every modem on it.
struct InterferenceSpec
{
    QString channel; // "a1,n1,n2" of the latches it sits on; empty for every channel
    double microvolts = 0;
    double dutyCycle = 1.0; // share of the time it is on
    double spread = 0.1;    // of its level from one moment to the next, as a share of it
};

// Everything a run of the simulator starts from: the modems, which one is on the cable, the radio
// paths between them, and how the computer reaches the local modem.
struct Scenario
{
    QString name = QStringLiteral("standard");
    QString description;
    QList<ModemProfile> modems;
    int localIndex = 0;
    QList<LinkProfile> links;
    QList<InterferenceSpec> interference;
    bool irAdaptor = false; // the computer reaches the modem through the infra-red adaptor
    quint32 seed = 1;       // for noise, losses and retries: a scenario always plays the same way

    // One new-case Q4U at address 1 on network 37, nothing else on the air.
    static Scenario standard();
    // Reads a scenario file (JSON). On failure returns nothing and puts the reason in *error.
    static std::optional<Scenario> fromFile(const QString &path, QString *error = nullptr);
    static std::optional<Scenario> fromJson(const QByteArray &json, QString *error = nullptr);
};

} // namespace sim
