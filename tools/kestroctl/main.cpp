// kestroctl: the service layer of Kestro desktop on the command line.

#include "Commands.h"

#include "service/LogRedaction.h"
#include "service/ServiceOrigin.h"

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Kestro"));
    QCoreApplication::setApplicationName(QStringLiteral("Kestro"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KESTRO_VERSION));
    Kestro::LogRedaction::install();

    QStringList words = app.arguments().mid(1);
    Kestroctl::Options options;
    for (qsizetype i = 0; i < words.size();) {
        if (words[i] == QLatin1String("--origin")) {
            const auto origin =
                i + 1 < words.size() ? Kestro::ServiceOrigin::parse(words[i + 1]) : std::nullopt;
            if (!origin) {
                QTextStream(stderr) << "--origin needs a web address such as http://127.0.0.1:8787, not \""
                                    << (i + 1 < words.size() ? words[i + 1] : QString()) << "\"." << Qt::endl;
                return Kestroctl::Failed;
            }
            Kestro::ServiceOrigin::setOverride(*origin);
            words.remove(i, 2);
        } else if (words[i] == QLatin1String("--no-browser")) {
            options.openBrowser = false;
            words.remove(i);
        } else {
            ++i;
        }
    }
    if (words.isEmpty())
        return Kestroctl::usage(true);
    const QString command = words.takeFirst();
    if (command == QLatin1String("sign-in"))
        return Kestroctl::signIn(options);
    if (command == QLatin1String("sign-out"))
        return Kestroctl::signOut();
    if (command == QLatin1String("call"))
        return Kestroctl::call(words);
    if (command == QLatin1String("actions"))
        return Kestroctl::actions();
    if (command == QLatin1String("help") || command == QLatin1String("--help") ||
        command == QLatin1String("-h"))
        return Kestroctl::usage(false);
    QTextStream(stderr) << "kestroctl does not know the command \"" << command << "\"." << Qt::endl;
    return Kestroctl::usage(true);
}
