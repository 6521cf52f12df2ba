#include "Drafts.h"

#include "MainThread.h"

#include <QHash>

namespace Kestro::Drafts {

namespace {
QHash<QString, QString>& store()
{
    static QHash<QString, QString> drafts;
    return drafts;
}
} // namespace

QString of(const QString& place)
{
    return store().value(place);
}

void keep(const QString& place, const QString& text)
{
    requireMainThread("Drafts::keep");
    if (text.trimmed().isEmpty())
        store().remove(place);
    else
        store().insert(place, text);
}

void clear()
{
    requireMainThread("Drafts::clear");
    store().clear();
}

} // namespace Kestro::Drafts
