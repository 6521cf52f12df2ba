#include "Drafts.h"

#include "MainThread.h"

#include <QHash>

namespace Kestro {

namespace {
QHash<QString, Draft>& store()
{
    static QHash<QString, Draft> drafts;
    return drafts;
}
} // namespace

Drafts& Drafts::instance()
{
    static Drafts drafts;
    return drafts;
}

Draft Drafts::of(const QString& place)
{
    return store().value(place);
}

void Drafts::put(const QString& place, Draft draft)
{
    requireMainThread("Drafts");
    if (draft == of(place))
        return;
    // Blank words with nothing to tell hold no place.
    if (draft.text.trimmed().isEmpty() && draft.note.isEmpty() && draft.error.isEmpty() && !draft.pending)
        store().remove(place);
    else
        store().insert(place, std::move(draft));
    emit instance().changed(place);
}

void Drafts::keepText(const QString& place, const QString& text)
{
    Draft draft = of(place);
    if (draft.text == text)
        return;
    draft.text = text;
    draft.note.clear();
    draft.error.clear();
    put(place, std::move(draft));
}

void Drafts::setOutcome(const QString& place, QString note, QString error, bool pending)
{
    Draft draft = of(place);
    draft.note = std::move(note);
    draft.error = std::move(error);
    draft.pending = pending;
    put(place, std::move(draft));
}

namespace {
quint64 clears = 0;
} // namespace

quint64 Drafts::generation()
{
    return clears;
}

void Drafts::clear()
{
    requireMainThread("Drafts::clear");
    ++clears;
    const QList<QString> places = store().keys();
    store().clear();
    for (const QString& place : places)
        emit instance().changed(place);
}

} // namespace Kestro
