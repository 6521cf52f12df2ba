#include "ComposerPlace.h"

namespace Kestro {

ComposerPlace::ComposerPlace(QObject* parent) : QObject(parent)
{
    connect(&Drafts::instance(), &Drafts::changed, this, [this](const QString& place) {
        if (place == m_place)
            refresh();
    });
}

void ComposerPlace::setPlace(const QString& place)
{
    if (place == m_place)
        return;
    m_place = place;
    refresh();
}

void ComposerPlace::refresh()
{
    const Draft draft = Drafts::of(m_place);
    const bool textMoved = draft.text != m_shown.text;
    const bool stateMoved =
        draft.note != m_shown.note || draft.error != m_shown.error || draft.pending != m_shown.pending;
    m_shown = draft;
    if (textMoved)
        emit textChanged();
    if (stateMoved)
        emit stateChanged();
}

void ComposerPlace::setText(const QString& text)
{
    Drafts::keepText(m_place, text);
}

std::optional<ComposerPlace::Sending> ComposerPlace::begin()
{
    if (m_shown.pending)
        return std::nullopt;
    if (m_shown.text.trimmed().isEmpty()) {
        Drafts::setOutcome(m_place, {}, QStringLiteral("Tell us what you need first, then press Send."),
                           false);
        return std::nullopt;
    }
    Drafts::setOutcome(m_place, {}, {}, true);
    return Sending{m_place, m_shown.text, Drafts::generation()};
}

void ComposerPlace::finish(const Sending& sending, const QString& failure, const QString& note)
{
    if (sending.generation != Drafts::generation())
        return;
    if (!failure.isEmpty()) {
        Drafts::setOutcome(sending.place, {}, failure, false);
        return;
    }
    if (Drafts::of(sending.place).text == sending.text)
        Drafts::keepText(sending.place, {});
    Drafts::setOutcome(sending.place, note, {}, false);
}

} // namespace Kestro
