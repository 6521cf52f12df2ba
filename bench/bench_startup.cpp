// Cold start and memory of Kestro beside a bare Qt Quick window, measured in
// the same run: from starting the process to the signed-in frame drawn
// (tokens in the keyring, the local service running), and the resident
// memory at that moment. Run under Xvfb with a Secret Service:
//   xvfb-run -a scripts/headless-session build/default/bench/bench_startup [rounds]
// Goals: start within 2x the bare window's time; memory within its + 60 MB.

#include "DevServiceProcess.h"
#include "StoredSignIn.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTextStream>

namespace {

struct Run {
    double millis = 0;
    double residentMB = 0;
    double settledMillis = 0; // Kestro only: its first page loaded
    double settledMB = 0;
};

// Starts `program` and waits for its "ready <kB>" line, and with `settles`
// also for its "settled <kB>" line.
Run launch(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment,
           bool settles)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    Run run;
    QElapsedTimer clock;
    clock.start();
    process.start(program, arguments);
    QByteArray out;
    while (process.waitForReadyRead(60'000)) {
        out += process.readAllStandardOutput();
        auto field = [&](const QByteArray& word) {
            const int at = out.indexOf(word + ' ');
            const int end = out.indexOf('\n', at);
            return at < 0 || end < 0
                       ? 0.0
                       : out.mid(at + word.size() + 1, end - at - word.size() - 1).toDouble() / 1024.0;
        };
        if (run.residentMB == 0 && (run.residentMB = field("ready")) > 0)
            run.millis = double(clock.nsecsElapsed()) / 1e6;
        if (!settles && run.residentMB > 0)
            break;
        if ((run.settledMB = field("settled")) > 0) {
            run.settledMillis = double(clock.nsecsElapsed()) / 1e6;
            break;
        }
    }
    process.waitForFinished(10'000);
    if (run.residentMB == 0) {
        QTextStream(stderr) << program << " did not report that it was ready; its own messages are above.\n";
        std::exit(1);
    }
    return run;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int rounds = argc > 1 ? std::max(1, atoi(argv[1])) : 5;

    KestroTest::DevServiceProcess service{QStringLiteral(KESTRO_DEVSERVICE)};
    service.start({QStringLiteral("--auto-approve")});
    const QUrl origin = service.origin();

    // Signed in once, as the app would, so every launch finds stored tokens.
    KestroTest::storeSignIn(origin);

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("KESTRO_EXIT_WHEN_READY"), QStringLiteral("1"));
    std::vector<double> appTimes, bareTimes, appMemory, bareMemory, settledTimes, settledMemory;
    // Interleaved, so both see the same machine load; one warm-up of each.
    for (int i = 0; i <= rounds; ++i) {
        const Run bare = launch(QStringLiteral(KESTRO_BARE_WINDOW), {}, environment, false);
        const Run kestro = launch(QStringLiteral(KESTRO_APP), {QStringLiteral("--origin"), origin.toString()},
                                  environment, true);
        if (i == 0)
            continue;
        bareTimes.push_back(bare.millis);
        bareMemory.push_back(bare.residentMB);
        appTimes.push_back(kestro.millis);
        appMemory.push_back(kestro.residentMB);
        settledTimes.push_back(kestro.settledMillis);
        settledMemory.push_back(kestro.settledMB);
    }
    const double appTime = median(appTimes), bareTime = median(bareTimes);
    const double appRss = median(appMemory), bareRss = median(bareMemory);
    QTextStream(stdout) << "Cold start to the signed-in frame, medians of " << rounds << " runs:\n"
                        << "  Kestro      " << appTime << " ms, " << appRss << " MB resident\n"
                        << "  bare window " << bareTime << " ms, " << bareRss << " MB resident\n"
                        << "  start ratio " << appTime / bareTime << "x (goal at most 2x)\n"
                        << "  memory      +" << appRss - bareRss << " MB (goal at most +60 MB)\n"
                        << "Kestro's first page loaded: " << median(settledTimes) << " ms, "
                        << median(settledMemory) << " MB resident in the app's own process\n";
    return 0;
}
