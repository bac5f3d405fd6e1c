// What a validation case is, what it hands to the report, and the list of all cases.
#pragma once

#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

namespace fluvane::validation {

enum class Size {
    quick, ///< seconds a case, part of the tests
    report ///< minutes a case, for docs/validation.md
};

/// Where a case runs.
struct Context {
    Size size = Size::quick;
    QString folder;       ///< for mesh and result files; exists
    unsigned threads = 1; ///< of the program's parallel loops

    bool quick() const { return size == Size::quick; }
};

/// One run of the program on one mesh.
struct Run {
    QString name; ///< also the base name of its files
    QString mesh; ///< in words: "64 x 64 squares"
    int cells = 0;
    double Ma = 0.0;
    double CFL = 0.0;
    int steps = 0;
    double seconds = 0.0;  ///< on the wall clock, result files included
    double residual = 0.0; ///< the larger of the two that the last terminal line tells
    QString resultFile;    ///< the last one, relative to the folder
    bool ended = false;    ///< false: a NaN, or refused
};

/// A table of the report; cells are ready text. The first column is a label.
struct Table {
    QString caption;
    QStringList header;
    std::vector<QStringList> rows;
};

/// A figure that must lie in [low, high]; outside, the quick run fails and the report says so.
struct Band {
    QString what;
    double value = 0.0;
    double low = 0.0;
    double high = 0.0;
};

struct Series {
    QString label;
    std::vector<std::pair<double, double>> points;
    bool published = false; ///< symbols instead of a line
};

/// An x-y plot.
struct Plot {
    QString name; ///< of the picture file, without the case's name
    QString caption;
    QString xLabel;
    QString yLabel;
    std::vector<Series> series;
    bool logX = false;
    bool logY = false;
};

/// A picture of a result file by tools/fluvane-view.
struct Picture {
    QString name; ///< of the picture file, without the case's name
    QString caption;
    QString resultFile;    ///< relative to the folder
    QStringList arguments; ///< of fluvane-view's command "picture"
};

struct Result {
    QStringList sources; ///< papers and formulas, in full
    QStringList setUp;   ///< what a user types, one line a window
    std::vector<Run> runs;
    std::vector<Table> tables;
    std::vector<Plot> plots;
    std::vector<Picture> pictures;
    std::vector<Band> bands;
    QStringList remarks; ///< what to know about the figures, one paragraph each
};

struct Case {
    int order = 0;                              ///< place in the report
    QString name;                               ///< on the command line and of the files: "cavity-100"
    QString title;                              ///< heading in the report
    Result (*run)(const Context& context) = {}; ///< starts from any process state
    int seconds = 10;    ///< rough time at report size on one core: the longest case is started first
    bool inQuick = true; ///< false: too long for the quick form
};

/// All cases, in the order of the report.
std::vector<Case> allCases();

/// Puts a case into the list; one static object of this a case.
struct Registered {
    explicit Registered(Case entry);
};

/// "1.234" with this many significant digits.
QString number(double value, int digits = 4);

/// A share as "0.12 %".
QString percent(double share, int digits = 2);

/// The order at which an error falls from one spacing to a finer one.
double observedOrder(double coarseError, double fineError, double refinement);

} // namespace fluvane::validation
