#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <array>
#include <functional>

class CommControl;
class ModemSession;

// The tags that decide the front panel picture and the frequency screen of the setup guide.
inline const QString kTagCombine = QStringLiteral("Q40Combine");
inline const QString kTagSpread = QStringLiteral("Q40Z");
inline const QString kSpreadEntry = QStringLiteral("Model Q40Z");

// One entry of the model list on the power step: what the model draws for each output choice and
// what converter feeds it. The labels a click on a choice writes differ in a few places from those
// the list writes; they are kept side by side.
struct PowerModel
{
    const char *entry;
    const char *tag;
    std::array<const char *, 3> outputs; // captions of the choices; nullptr where the row has fewer
    std::array<const char *, 3> listTX;  // the transmit current the list writes for each choice
    std::array<const char *, 3> clickTX; // the transmit current a click on each choice writes
    std::array<const char *, 3> clickRX; // the receive current a click writes; nullptr keeps rx
    const char *rx;
    const char *converter;
};

// The entries of the model list, in list order.
const std::array<PowerModel, 10> &powerModels();
// The input voltage, the same for every model.
inline const QString kInputVoltage = QStringLiteral("11-15 VDC");

// What the power step shows of a model.
struct PowerLabels
{
    QString tx;
    QString rx;
    QString converter;
    QString reqs;
    bool operator==(const PowerLabels &) const = default;
};

// A model chosen from the list, with the output choice that is selected at that moment.
PowerLabels modelSelected(const PowerModel &model, int choice);
// A click on an output choice: the currents change, the rest stays as shown.
PowerLabels choiceClicked(const PowerModel &model, int choice, PowerLabels shown);
// A day taken as half transmit and half receive: 12*T + 12*R, T and R read from the front of the labels.
QString solarConsumption(const QString &tx, const QString &rx);

// The entry of the model list for a model code and serial number; empty for a code with no entry.
QString modelEntryFor(const QString &model, const QString &serial);

// The text shown when no modem answers at the start-up rate.
inline const QString kNotDetectedText = QStringLiteral(
    "Unable to automatically detect modem on selected serial port.  Please select your model number "
    "manually and continue with Starting Out");

// Looks for a modem at the rate its setup switches force for the search, through the adaptor when
// one is used, and names its entry of the model list. Empty when no prompt came (the box has said so)
// or the code has no entry. The port stays at that rate either way.
QString detectModelEntry(ModemSession &session, bool dongle);

// Asks for a unique address, the current one offered, and sets and saves it.
void SetAddress(ModemSession &session);

// A second view of the port for the length of a test: what arrives is shown through show(), what
// the user types goes out. Ending it gives the port back to the first view and, when asked, closes
// and reopens it so that the line starts afresh.
class PortShare : public QObject
{
    Q_OBJECT
public:
    PortShare(ModemSession &session, std::function<void(const QByteArray &)> show);
    ~PortShare() override;

    // Sends the text as it stands; a failure shows the standard box.
    void send(const QByteArray &bytes);
    // Detaches; the screen's unload also resets the port, a screen deleted with its owner does not.
    void end(bool resetPort);

private:
    ModemSession &m_session;
    std::function<void(const QByteArray &)> m_show;
    int m_threshold = 0;
};
