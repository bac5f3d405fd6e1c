// Writes results as JSON.
#include "result_json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace fluvane::validation {

namespace {

template <class Items, class ToJson>
QJsonArray arrayOf(const Items& items, ToJson toJson) {
    QJsonArray array;
    for (const auto& item : items)
        array.append(toJson(item));
    return array;
}

QJsonValue runJson(const Run& r) {
    return QJsonObject{{"name", r.name},       {"mesh", r.mesh},         {"cells", r.cells},
                       {"Ma", r.Ma},           {"CFL", r.CFL},           {"steps", r.steps},
                       {"seconds", r.seconds}, {"residual", r.residual}, {"result", r.resultFile},
                       {"ended", r.ended}};
}

QJsonValue tableJson(const Table& t) {
    return QJsonObject{
        {"caption", t.caption},
        {"header", QJsonArray::fromStringList(t.header)},
        {"rows", arrayOf(t.rows, [](const QStringList& row) { return QJsonArray::fromStringList(row); })}};
}

QJsonValue seriesJson(const Series& s) {
    const auto point = [](const std::pair<double, double>& p) { return QJsonArray{p.first, p.second}; };
    return QJsonObject{{"label", s.label}, {"published", s.published}, {"points", arrayOf(s.points, point)}};
}

QJsonValue plotJson(const Plot& p) {
    return QJsonObject{{"name", p.name},
                       {"caption", p.caption},
                       {"xLabel", p.xLabel},
                       {"yLabel", p.yLabel},
                       {"logX", p.logX},
                       {"logY", p.logY},
                       {"series", arrayOf(p.series, seriesJson)}};
}

QJsonValue pictureJson(const Picture& p) {
    return QJsonObject{{"name", p.name},
                       {"caption", p.caption},
                       {"result", p.resultFile},
                       {"arguments", QJsonArray::fromStringList(p.arguments)}};
}

QJsonValue bandJson(const Band& b) {
    const bool inside = b.value >= b.low && b.value <= b.high;
    return QJsonObject{
        {"what", b.what}, {"value", b.value}, {"low", b.low}, {"high", b.high}, {"inside", inside}};
}

} // namespace

QByteArray resultJson(const Case& which, const Context& context, const Result& result) {
    const QJsonObject object{{"order", which.order},
                             {"name", which.name},
                             {"title", which.title},
                             {"size", context.quick() ? "quick" : "report"},
                             {"threads", static_cast<int>(context.threads)},
                             {"sources", QJsonArray::fromStringList(result.sources)},
                             {"setUp", QJsonArray::fromStringList(result.setUp)},
                             {"runs", arrayOf(result.runs, runJson)},
                             {"tables", arrayOf(result.tables, tableJson)},
                             {"plots", arrayOf(result.plots, plotJson)},
                             {"pictures", arrayOf(result.pictures, pictureJson)},
                             {"bands", arrayOf(result.bands, bandJson)},
                             {"remarks", QJsonArray::fromStringList(result.remarks)}};
    return QJsonDocument(object).toJson();
}

} // namespace fluvane::validation
