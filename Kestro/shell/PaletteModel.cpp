#include "PaletteModel.h"

#include "PageCatalog.h"

#include "calls/app.h"
#include "service/ServiceError.h"

#include <QPointer>
#include <QSet>

namespace Kestro {

namespace {

bool matches(const QString& text, const QString& query)
{
    return query.isEmpty() || text.contains(query, Qt::CaseInsensitive);
}

QVariantMap item(const QString& kind, const QString& title, const QString& subtitle, const QString& href,
                 const QString& icon)
{
    return {{QStringLiteral("kind"), kind},
            {QStringLiteral("title"), title},
            {QStringLiteral("subtitle"), subtitle},
            {QStringLiteral("href"), href},
            {QStringLiteral("icon"), icon}};
}

} // namespace

PaletteModel::PaletteModel(QObject* parent) : QObject(parent)
{
    // Typing quickly asks the service once, for the text the user paused on.
    m_debounce.setSingleShot(true);
    m_debounce.setInterval(150);
    connect(&m_debounce, &QTimer::timeout, this, [this] { search(m_query, m_generation); });
    rebuild();
}

void PaletteModel::setQuery(const QString& query)
{
    if (m_query == query)
        return;
    m_query = query;
    ++m_generation; // answers for older text are dropped
    m_remote.clear();
    emit queryChanged();
    rebuild();
    m_debounce.start();
}

void PaletteModel::setTeammates(const QVariantList& teammates)
{
    m_teammates = teammates;
    rebuild();
}

void PaletteModel::reset()
{
    ++m_generation;
    m_debounce.stop();
    m_remote.clear();
    setSearching(false);
    if (!m_error.isEmpty()) {
        m_error.clear();
        emit errorChanged();
    }
    if (!m_query.isEmpty()) {
        m_query.clear();
        emit queryChanged();
    }
    rebuild();
}

QCoro::Task<> PaletteModel::search(QString query, quint64 generation)
{
    QPointer<PaletteModel> self(this);
    setSearching(true);
    QVariantList remote;
    QString failure;
    try {
        const Calls::app::PaletteActionResult result = co_await Calls::app::paletteAction(query);
        for (const auto& found : result.items)
            remote.append(item(found.kind, found.title, found.subtitle.value_or(QString()), found.href,
                               found.icon.value_or(QStringLiteral("arrow-right"))));
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    if (!self || generation != m_generation)
        co_return;
    setSearching(false);
    m_remote = remote;
    if (m_error != failure) {
        m_error = failure;
        emit errorChanged();
    }
    rebuild();
}

QVariantList PaletteModel::localItems(const QString& query, const QVariantList& teammates)
{
    const QString needle = query.trimmed();
    QVariantList out;
    for (const PageCatalog::Place& place : PageCatalog::placeList())
        if (matches(place.title, needle))
            out.append(item(QStringLiteral("page"), place.title, QString(), place.path, place.icon));
    for (const QVariant& entry : teammates) {
        const QVariantMap mate = entry.toMap();
        const QString name = mate.value(QStringLiteral("name")).toString();
        const QString title = mate.value(QStringLiteral("title")).toString();
        const QString handle = mate.value(QStringLiteral("handle")).toString();
        if (handle.isEmpty() || !(matches(name, needle) || matches(title, needle) || matches(handle, needle)))
            continue;
        out.append(item(QStringLiteral("teammate"), name, title, QStringLiteral("/kest/%1/chat").arg(handle),
                        QStringLiteral("bot")));
    }
    return out;
}

QVariantList PaletteModel::merge(const QVariantList& local, const QVariantList& remote)
{
    QVariantList out;
    QSet<QString> seen;
    for (const QVariantList* list : {&local, &remote})
        for (const QVariant& entry : *list) {
            QString href = entry.toMap().value(QStringLiteral("href")).toString();
            if (href.isEmpty() || seen.contains(href))
                continue;
            seen.insert(href);
            out.append(entry);
        }
    return out;
}

void PaletteModel::rebuild()
{
    m_items = merge(localItems(m_query, m_teammates), m_remote);
    emit itemsChanged();
}

void PaletteModel::setSearching(bool on)
{
    if (m_searching == on)
        return;
    m_searching = on;
    emit searchingChanged();
}

} // namespace Kestro
