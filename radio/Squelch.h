#pragma once

#include <QString>
#include <functional>

class ModemSession;

// The receiver's squelch: the level a signal must pass before the receiver opens. Units with noise
// squelch have a second value, Asquelch, from 0 to 255.

inline const QString kRemoteSquelchMode = QStringLiteral("RemoteSquelch");
inline const QString kRemoteSquelchSMode = QStringLiteral("RemoteSquelchS");

// The sensitivity of a slider position 0 to 3, as the squelch screens show it.
QString sensitivityText(int position);
// The Asquelch value of a squelch profile for a model; 0 for a model without profiles.
int profileAsquelch(const QString &model, int position);
// The highest Asquelch the automatic search may leave for a model.
int autoSquelchLimit(const QString &model);

// The walk that finds the level with the user's answers about the RX light: for the units without
// noise squelch, and for the spread-spectrum model, which walks Asquelch and Squelch together.
void SquelchWalk(ModemSession &session);
void SpreadSquelchWalk(ModemSession &session);

// Whether the carrier indicator was seen on at least once in 20 reads.
bool CheckFlickerCD(ModemSession &session);
// Raises Asquelch in steps of 10 from 0 until the carrier indicator stays dark, and gives that level
// with a margin of 20, limited for the model. bar(value) follows the progress bar (0 to 100). A
// carrier that stays on up to 255 ends with the "Squelch Error" box and leaves result as it was.
void SetAsquelchLevel(ModemSession &session, const QString &model, int &result,
                      const std::function<void(int)> &bar);
// Writes and saves the result of the search with Squelch 30; returns the box that reports it.
QString saveAutoSquelch(ModemSession &session, int asquelch);

// The slider screens' writes; each returns the box that reports them.
QString saveSquelch(ModemSession &session, int squelch, bool remote);
QString saveSpreadSquelch(ModemSession &session, int squelch, int asquelch, bool remote);
QString saveSquelchProfile(ModemSession &session, const QString &model, int position);
