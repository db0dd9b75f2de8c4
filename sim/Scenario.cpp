#include "Scenario.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace sim {

Scenario Scenario::standard()
{
    Scenario s;
    s.description = QStringLiteral("One new-case Q4U at address 1, network 37, at 19200,N,8,1.");
    ModemProfile local;
    local.name = QStringLiteral("local");
    local.switchBits = 1; // switch 1 up: the unit runs at its comrate
    s.modems.append(local);
    return s;
}

namespace {

QMap<QString, QString> readMap(const QJsonValue &value)
{
    QMap<QString, QString> map;
    const QJsonObject o = value.toObject();
    for (auto it = o.begin(); it != o.end(); ++it)
        map.insert(it.key().toUpper(),
                   it.value().isString() ? it.value().toString() : QString::number(it.value().toDouble()));
    return map;
}

QStringList readList(const QJsonValue &value)
{
    QStringList list;
    for (const QJsonValue &v : value.toArray())
        list.append(v.toString());
    return list;
}

} // namespace

std::optional<Scenario> Scenario::fromJson(const QByteArray &json, QString *error)
{
    QJsonParseError parseError;
    const QJsonDocument doc = QJsonDocument::fromJson(json, &parseError);
    if (!doc.isObject()) {
        if (error)
            *error = parseError.errorString();
        return std::nullopt;
    }
    const QJsonObject root = doc.object();
    Scenario s;
    s.name = root.value(QLatin1String("name")).toString(s.name);
    s.description = root.value(QLatin1String("description")).toString();
    s.localIndex = root.value(QLatin1String("local")).toInt(0);
    s.irAdaptor = root.value(QLatin1String("irAdaptor")).toBool(false);
    s.seed = quint32(root.value(QLatin1String("seed")).toInt(1));
    for (const QJsonValue &v : root.value(QLatin1String("modems")).toArray()) {
        const QJsonObject o = v.toObject();
        ModemProfile m;
        m.name = o.value(QLatin1String("name")).toString();
        m.model = o.value(QLatin1String("model")).toString(m.model);
        m.option = o.value(QLatin1String("option")).toInt(m.option);
        m.serial = o.value(QLatin1String("serial")).toInt(m.serial);
        m.version = o.value(QLatin1String("version")).toString(m.version);
        m.hours = o.value(QLatin1String("hours")).toDouble(m.hours);
        m.switches = o.value(QLatin1String("switches")).toInt(m.serial < 12000 ? 8 : 2);
        m.switchBits = o.value(QLatin1String("switchBits")).toInt(m.switches == 8 ? 0x20 : 1);
        m.operatingSystem = o.value(QLatin1String("operatingSystem")).toBool(true);
        m.dead = o.value(QLatin1String("dead")).toBool(false);
        m.settings = readMap(o.value(QLatin1String("settings")));
        m.factory = readMap(o.value(QLatin1String("factory")));
        m.routes = readList(o.value(QLatin1String("routes")));
        m.appends = readList(o.value(QLatin1String("appends")));
        s.modems.append(m);
    }
    if (s.modems.isEmpty()) {
        if (error)
            *error = QStringLiteral("the scenario has no modems");
        return std::nullopt;
    }
    if (s.localIndex < 0 || s.localIndex >= s.modems.size()) {
        if (error)
            *error = QStringLiteral("\"local\" names no modem of the scenario");
        return std::nullopt;
    }
    for (const QJsonValue &v : root.value(QLatin1String("links")).toArray()) {
        const QJsonObject o = v.toObject();
        LinkProfile l;
        l.from = o.value(QLatin1String("from")).toInt();
        l.to = o.value(QLatin1String("to")).toInt();
        l.microvolts = o.value(QLatin1String("microvolts")).toDouble(l.microvolts);
        l.noiseMicrovolts = o.value(QLatin1String("noise")).toDouble(0);
        l.qualitySpread = o.value(QLatin1String("qualitySpread")).toDouble(l.qualitySpread);
        l.lossRate = o.value(QLatin1String("lossRate")).toDouble(0);
        for (const QJsonValue &d : o.value(QLatin1String("drops")).toArray())
            l.drops.append({qint64(d.toObject().value(QLatin1String("atMs")).toDouble()),
                            qint64(d.toObject().value(QLatin1String("durationMs")).toDouble())});
        s.links.append(l);
    }
    for (const QJsonValue &v : root.value(QLatin1String("interference")).toArray()) {
        const QJsonObject o = v.toObject();
        s.interference.append({o.value(QLatin1String("channel")).toString(),
                               o.value(QLatin1String("microvolts")).toDouble(),
                               o.value(QLatin1String("dutyCycle")).toDouble(1.0),
                               o.value(QLatin1String("spread")).toDouble(0.1)});
    }
    return s;
}

std::optional<Scenario> Scenario::fromFile(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = file.errorString();
        return std::nullopt;
    }
    return fromJson(file.readAll(), error);
}

} // namespace sim
