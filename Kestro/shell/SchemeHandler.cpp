#include "SchemeHandler.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>

namespace Kestro::SchemeHandler {

namespace {

constexpr char entryName[] = "kestro-url-handler.desktop";
constexpr char mimeType[] = "x-scheme-handler/kestro";

// A desktop entry's Exec argument: in double quotes, with the characters
// the Desktop Entry format reserves inside them escaped; then, as the whole
// value is a string, its backslashes doubled again; and "%" as "%%".
QString quoted(const QString& argument)
{
    QString inner;
    for (const QChar c : argument) {
        if (c == QLatin1Char('"') || c == QLatin1Char('`') || c == QLatin1Char('$') || c == QLatin1Char('\\'))
            inner += QLatin1Char('\\');
        inner += c;
    }
    QString value = QLatin1Char('"') + inner + QLatin1Char('"');
    value.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    value.replace(QLatin1Char('%'), QStringLiteral("%%"));
    return value;
}

} // namespace

QString desktopEntry(const QString& program)
{
    return QStringLiteral("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=Kestro\n"
                          "Comment=Opens kestro: links, such as the sign-in's return, in Kestro\n"
                          "Exec=%1 %u\n"
                          "NoDisplay=true\n"
                          "MimeType=%2;\n")
        .arg(quoted(program), QLatin1String(mimeType));
}

void ensureRegistered(const QString& program, std::function<void(bool)> done)
{
    const QString xdgMime = QStandardPaths::findExecutable(QStringLiteral("xdg-mime"));
    if (xdgMime.isEmpty() || QFile::exists(QStringLiteral("/.flatpak-info"))) {
        if (done)
            done(false);
        return;
    }
    auto* query = new QProcess;
    QObject::connect(query, &QProcess::errorOccurred, query, [query, done](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return; // a crash or a time-out ends in finished() too
        query->deleteLater();
        if (done)
            done(false);
    });
    QObject::connect(query, &QProcess::finished, query, [query, xdgMime, program, done] {
        query->deleteLater();
        if (!query->readAllStandardOutput().trimmed().isEmpty()) {
            if (done)
                done(false); // someone handles it already
            return;
        }
        const QString dir = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                            QStringLiteral("/applications");
        QSaveFile file(dir + QLatin1Char('/') + QLatin1String(entryName));
        if (!QDir().mkpath(dir) || !file.open(QIODevice::WriteOnly) ||
            file.write(desktopEntry(program).toUtf8()) < 0 || !file.commit()) {
            if (done)
                done(false);
            return;
        }
        auto* set = new QProcess;
        QObject::connect(set, &QProcess::finished, set, [set, done](int code, QProcess::ExitStatus status) {
            set->deleteLater();
            if (done)
                done(status == QProcess::NormalExit && code == 0);
        });
        set->start(xdgMime, {QStringLiteral("default"), QLatin1String(entryName), QLatin1String(mimeType)});
    });
    query->start(xdgMime, {QStringLiteral("query"), QStringLiteral("default"), QLatin1String(mimeType)});
}

} // namespace Kestro::SchemeHandler
