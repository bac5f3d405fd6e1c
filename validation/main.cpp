// Runs one validation case and writes its JSON and result files, or lists the cases.
#include "result_json.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>

using namespace fluvane::validation;

namespace {

int fail(const QString& text) {
    std::fprintf(stderr, "fluvane_validation: %s\n", qPrintable(text));
    return 2;
}

int listCases() {
    for (const Case& c : allCases())
        std::printf("%s\t%d\t%s\t%s\n", qPrintable(c.name), c.seconds, c.inQuick ? "quick" : "report",
                    qPrintable(c.title));
    return 0;
}

int runCase(const Case& which, const Context& context) {
    if (!QDir().mkpath(context.folder))
        return fail("cannot make the folder " + context.folder);
    const Result result = which.run(context);
    QFile file(QDir(context.folder).filePath(which.name + ".json"));
    const QByteArray text = resultJson(which, context, result);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        return fail("cannot write " + file.fileName());
    return 0;
}

} // namespace

/// Exit code 0: ran, whatever the figures are; 2: nothing was run or written.
int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription("Runs one validation case; without --case lists them.");
    parser.addHelpOption();
    parser.addOptions({{"case", "The case to run.", "name"},
                       {"size", "quick or report.", "size", "quick"},
                       {"out", "Folder for what is written.", "folder", "."},
                       {"threads", "Threads of the parallel loops.", "number", "1"}});
    parser.process(application);
    if (!parser.isSet("case"))
        return listCases();

    Context context;
    if (parser.value("size") != "quick" && parser.value("size") != "report")
        return fail("--size is quick or report");
    context.size = parser.value("size") == "report" ? Size::report : Size::quick;
    context.folder = parser.value("out");
    context.threads = parser.value("threads").toUInt();
    if (context.threads == 0)
        return fail("--threads is a number from 1");
    for (const Case& c : allCases())
        if (c.name == parser.value("case"))
            return runCase(c, context);
    return fail("no case " + parser.value("case"));
}
